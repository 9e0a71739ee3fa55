// The role animation file: reading with the engine's or the tools' checks, writing.
#include "characters/role_file.h"

#include <cstdio>
#include <cstring>

#include "base/byte_reader.h"

namespace {

bool Terminated(const char* field, size_t size) { return std::memchr(field, 0, size) != nullptr; }

bool CheckFrames(CByteReader& in, const SRoleFile& f, size_t framesAt) {
    for (size_t k = 0; k < f.frames.size(); ++k) {
        const SRoleFrame& fr = f.frames[k];
        const bool wBad = fr.width < 0 || fr.width > ROLE_FRAME_MAX_W;
        if (!wBad && fr.height >= 0 && fr.height <= ROLE_FRAME_MAX_H) continue;
        return in.FailAt(framesAt + k * sizeof(SRoleFrame) + (wBad ? 4 : 8),
                         "frame %zu %s %d does not fit the %d x %d frame sheet", k, wBad ? "width" : "height",
                         wBad ? fr.width : fr.height, ROLE_FRAME_MAX_W, ROLE_FRAME_MAX_H);
    }
    return true;
}

bool CheckStrict(CByteReader& in, const SRoleFile& f, size_t actionsAt, size_t framesAt) {
    if (!in.AtEnd()) return in.Fail("size does not match the counts");
    const int64_t frameCount = int64_t(f.frames.size());
    for (size_t a = 0; a < f.actions.size(); ++a) {
        const SRoleAction& ra = f.actions[a];
        const size_t at = actionsAt + a * sizeof(SRoleAction);
        if (!Terminated(ra.name, sizeof ra.name)) return in.FailAt(at + 4, "action name not terminated");
        if (ra.framesPerDir < 1 || ra.firstFrame < 0 ||
            int64_t(ra.firstFrame) + int64_t(ROLE_DIRECTIONS) * ra.framesPerDir > frameCount)
            return in.FailAt(at + 56, "action '%s' frames outside the frame table", ra.name);
    }
    for (size_t k = 0; k < f.frames.size(); ++k)
        if (!Terminated(f.frames[k].bitmap, sizeof f.frames[k].bitmap))
            return in.FailAt(framesAt + k * sizeof(SRoleFrame) + 12, "frame name not terminated");
    return true;
}

}  // namespace

bool ReadRoleFile(CByteReader& in, SRoleFile& out, ERoleCheck check) {
    SRoleFile f;
    if (in.Remaining() < sizeof f.header) return in.Fail("shorter than the header");
    in.ReadRecord(f.header, "header");
    if (f.header.magic != ROLE_FILE_MAGIC) return in.FailAt(0, "bad magic");
    const int32_t actions = f.header.actionCount, frames = f.header.frameCount;
    if (actions < 0 || frames < 0) return in.FailAt(24, "negative count");
    if (actions > ROLE_MAX_ACTIONS || frames > ROLE_MAX_FRAMES)
        return in.FailAt(24, "%d actions and %d frames, more than the %d and %d a role may have", actions, frames,
                         ROLE_MAX_ACTIONS, ROLE_MAX_FRAMES);
    if (uint64_t(actions) * sizeof(SRoleAction) + uint64_t(frames) * sizeof(SRoleFrame) > in.Remaining())
        return in.FailAt(24, "size does not match the counts");
    const size_t actionsAt = in.Offset();
    in.ReadRecords(f.actions, uint64_t(actions), "actions");
    const size_t framesAt = in.Offset();
    in.ReadRecords(f.frames, uint64_t(frames), "frames");
    if (!in.Ok()) return false;
    if (check == ERoleCheck::Strict && !CheckStrict(in, f, actionsAt, framesAt)) return false;
    if (!CheckFrames(in, f, framesAt)) return false;
    // Unterminated names are cut to their fields; terminated ones keep every byte.
    for (SRoleAction& a : f.actions)
        if (!Terminated(a.name, sizeof a.name)) a.name[sizeof a.name - 1] = 0;
    for (SRoleFrame& fr : f.frames)
        if (!Terminated(fr.bitmap, sizeof fr.bitmap)) fr.bitmap[sizeof fr.bitmap - 1] = 0;
    out = std::move(f);
    return true;
}

bool LoadRoleFile(const std::string& hostPath, SRoleFile& out, std::string* error, bool* missing) {
    std::vector<uint8_t> bytes;
    const EFileRead got = ReadFileBytes(hostPath, ROLE_FILE_MAX_BYTES, bytes, error);
    if (missing) *missing = got == EFileRead::Missing;
    if (got != EFileRead::Ok) return false;
    CByteReader in(bytes, hostPath);
    if (ReadRoleFile(in, out, ERoleCheck::Engine)) return true;
    if (error) *error = in.Error();
    return false;
}

std::vector<uint8_t> RoleFileBytes(const SRoleFile& file) {
    SRoleFileHeader header = file.header;
    header.actionCount = int32_t(file.actions.size());
    header.frameCount = int32_t(file.frames.size());
    std::vector<uint8_t> out(sizeof header + file.actions.size() * sizeof(SRoleAction) +
                             file.frames.size() * sizeof(SRoleFrame));
    uint8_t* p = out.data();
    std::memcpy(p, &header, sizeof header);
    p += sizeof header;
    if (!file.actions.empty()) std::memcpy(p, file.actions.data(), file.actions.size() * sizeof(SRoleAction));
    p += file.actions.size() * sizeof(SRoleAction);
    if (!file.frames.empty()) std::memcpy(p, file.frames.data(), file.frames.size() * sizeof(SRoleFrame));
    return out;
}

bool WriteRoleFile(const char* hostPath, const std::vector<SRoleAction>& actions,
                   const std::vector<SRoleFrame>& frames) {
    SRoleFile file;
    file.header.magic = ROLE_FILE_MAGIC;
    file.actions = actions;
    file.frames = frames;
    const std::vector<uint8_t> bytes = RoleFileBytes(file);
    FILE* f = std::fopen(hostPath, "wb");
    if (!f) return false;
    const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return std::fclose(f) == 0 && ok;
}
