// The role file module: every shipped role file reads and writes back byte for
// byte; frame sizes off the staging sheet, lying counts and oversized files are
// refused with a message naming the file, the frame and the field; roles placed
// at the edge of the coordinate range draw without overflowing.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "characters/role.h"
#include "characters/role_file.h"
#include "common/bytes.h"
#include "media/graph.h"
#include "media/text.h"

namespace fs = std::filesystem;
using namespace testbytes;

namespace {

SRoleFile SmallRole(int framesPerDir, int width, int height) {
    SRoleFile f;
    f.header.magic = ROLE_FILE_MAGIC;
    SRoleAction stand{};
    std::snprintf(stand.name, sizeof stand.name, "stand");
    stand.framesPerDir = framesPerDir;
    f.actions.push_back(stand);
    for (int i = 0; i < 8 * framesPerDir; ++i) {
        SRoleFrame fr{};
        fr.width = width;
        fr.height = height;
        std::snprintf(fr.bitmap, sizeof fr.bitmap, "t\\s%d.bmp", i);
        f.frames.push_back(fr);
    }
    return f;
}

std::string EngineLog() {
    const Bytes b = LoadFile("GameEngine.log");
    return std::string(b.begin(), b.end());
}

}  // namespace

TEST(RoleFileFormat, ShippedRoleFilesRoundTripByteForByte) {
    int files = 0;
    for (const auto& e : fs::directory_iterator(std::string(ASHEN_GAME_DIR) + "/data")) {
        const std::string ext = e.path().extension().string();
        if (ext != ".rol" && ext != ".pmg") continue;
        SCOPED_TRACE(e.path().string());
        const Bytes bytes = LoadFile(e.path());
        for (ERoleCheck check : {ERoleCheck::Engine, ERoleCheck::Strict}) {
            CByteReader in(bytes, e.path().filename().string());
            SRoleFile f;
            ASSERT_TRUE(ReadRoleFile(in, f, check)) << in.Error();
            EXPECT_EQ(RoleFileBytes(f), bytes);
        }
        SRoleFile f;
        std::string error;
        ASSERT_TRUE(LoadRoleFile(e.path().string(), f, &error)) << error;
        EXPECT_GT(f.frames.size(), 0u);
        ++files;
    }
    EXPECT_GE(files, 12);  // the hero's role.pmg and eleven NPC looks
}

TEST(RoleFileFormat, FrameSizesMustFitTheStagingSheet) {
    // 640 x 640 is the largest frame the tile sheet can stage.
    const Bytes edge = RoleFileBytes(SmallRole(1, 640, 640));
    {
        CByteReader in(edge, "edge.rol");
        SRoleFile f;
        EXPECT_TRUE(ReadRoleFile(in, f)) << in.Error();
    }
    const size_t frame3 = 2532 + 3188 + 3 * 44;
    const struct {
        size_t at;
        int32_t value;
        const char* message;
    } cases[] = {
        {frame3 + 4, 641, "edge.rol: frame 3 width 641 does not fit the 640 x 640 frame sheet at byte 5856"},
        {frame3 + 8, 0x7FFFFFFF, "frame 3 height 2147483647 does not fit"},
        {frame3 + 4, -1, "frame 3 width -1"},
        {frame3 + 8, INT_MIN, "frame 3 height -2147483648"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        Bytes bad = edge;
        Set32(bad, c.at, uint32_t(c.value));
        CByteReader in(bad, "edge.rol");
        SRoleFile f;
        EXPECT_FALSE(ReadRoleFile(in, f));
        EXPECT_NE(in.Error().find(c.message), std::string::npos) << in.Error();
    }

    // The engine refuses such a file with one log line naming it; the role has
    // no actions and stays where it was put.
    fs::create_directories("data");
    Bytes bad = edge;
    Set32(bad, frame3 + 4, 0x7FFFFFFF);
    SaveFile("data/wide.rol", bad);
    std::remove("GameEngine.log");
    CRole r("wide.rol", "x", 10, 20, 1, 1, 0);
    EXPECT_FALSE(r.HasActions());
    EXPECT_EQ(r.m_x, 10);
    const std::string log = EngineLog();
    EXPECT_NE(log.find("role file data/wide.rol: frame 3 width 2147483647 does not fit"), std::string::npos) << log;
    // A missing file is not logged here.
    std::remove("GameEngine.log");
    CRole missing("nothing.rol", "x", 0, 0, 1, 1, 0);
    EXPECT_EQ(EngineLog(), "");
}

TEST(RoleFileFormat, CountsAndSizesBeyondTheFormatAreRefused) {
    const Bytes good = RoleFileBytes(SmallRole(2, 30, 40));
    SRoleFile f;
    // More actions or frames than a role may have, even when the file is long enough.
    Bytes many = good;
    Set32(many, 28, uint32_t(ROLE_MAX_ACTIONS + 1));
    many.resize(2532 + size_t(ROLE_MAX_ACTIONS + 1) * 3188 + 16 * 44, 0);
    CByteReader a(many, "many.rol");
    EXPECT_FALSE(ReadRoleFile(a, f));
    EXPECT_NE(a.Error().find("257 actions and 16 frames, more than the 256 and 65536 a role may have"),
              std::string::npos)
        << a.Error();
    // The engine allows bytes after the frame table; the tools do not.
    Bytes longer = good;
    longer.push_back(0);
    CByteReader e(longer, "l.rol");
    EXPECT_TRUE(ReadRoleFile(e, f, ERoleCheck::Engine));
    CByteReader s(longer, "l.rol");
    EXPECT_FALSE(ReadRoleFile(s, f, ERoleCheck::Strict));
    EXPECT_EQ(s.Reason(), "size does not match the counts");
    // An action whose frames run past the table: the engine reads it (and shows
    // nothing for those frames), the tools refuse it.
    Bytes past = good;
    Set32(past, 2532 + 3184, 1);
    CByteReader pe(past, "p.rol");
    EXPECT_TRUE(ReadRoleFile(pe, f, ERoleCheck::Engine));
    CByteReader ps(past, "p.rol");
    EXPECT_FALSE(ReadRoleFile(ps, f, ERoleCheck::Strict));
    EXPECT_EQ(ps.Reason(), "action 'stand' frames outside the frame table");
    // Unterminated names are cut by the engine and refused by the tools.
    Bytes name = good;
    for (int i = 0; i < 52; ++i) name[2532 + 4 + size_t(i)] = 'n';
    CByteReader ne(name, "n.rol");
    ASSERT_TRUE(ReadRoleFile(ne, f, ERoleCheck::Engine));
    EXPECT_EQ(std::string(f.actions[0].name), std::string(51, 'n'));
    CByteReader ns(name, "n.rol");
    EXPECT_FALSE(ReadRoleFile(ns, f, ERoleCheck::Strict));
    // Bytes after a name's terminator are kept: the file writes back unchanged.
    Bytes tail = good;
    tail[2532 + 4 + 50] = 'x';
    tail[2532 + 3188 + 12 + 31] = 'y';
    CByteReader te(tail, "t.rol");
    ASSERT_TRUE(ReadRoleFile(te, f, ERoleCheck::Strict));
    EXPECT_STREQ(f.actions[0].name, "stand");
    EXPECT_EQ(RoleFileBytes(f), tail);
    // A file longer than any role file may be is refused by its size.
    {
        FILE* big = std::fopen("big.rol", "wb");
        ASSERT_NE(big, nullptr);
        std::fwrite(good.data(), 1, good.size(), big);
        std::fseek(big, long(ROLE_FILE_MAX_BYTES), SEEK_SET);
        std::fputc(0, big);
        std::fclose(big);
    }
    std::string error;
    bool missingFile = true;
    EXPECT_FALSE(LoadRoleFile("big.rol", f, &error, &missingFile));
    EXPECT_FALSE(missingFile);
    EXPECT_NE(error.find("big.rol: "), std::string::npos) << error;
    EXPECT_FALSE(LoadRoleFile("none.rol", f, &error, &missingFile));
    EXPECT_TRUE(missingFile);
}

// Positions near the ends of the 32-bit range: the frame offsets saturate
// instead of overflowing, and nothing is drawn out there.
TEST(RoleFileFormat, FrameOffsetsAtTheEdgeOfTheRangeDoNotOverflow) {
    CTextCache::SetFontPath("/nonexistent/font.ttf");
    CGraph graph;
    ASSERT_TRUE(graph.Init(1));
    fs::create_directories("data");
    SaveFile("data/edge.rol", RoleFileBytes(SmallRole(1, 640, 640)));
    CRole far("edge.rol", "x", INT_MAX - 10, INT_MIN + 10, 1, 1, 0);
    ASSERT_TRUE(far.HasActions());
    EXPECT_EQ(far.m_x, INT_MAX);
    EXPECT_EQ(far.m_y, INT_MIN);
    const SRect r = far.GetRect();
    EXPECT_EQ(r.left, INT_MAX - 320);
    EXPECT_EQ(r.right, INT_MAX);
    EXPECT_EQ(r.top, INT_MIN);
    graph.FillRect(SURF_ROLE, nullptr, 0x1111);
    far.SetAction(3, "stand", 0);
    far.Update(0);
    for (uint16_t v : graph.GetSurface(SURF_ROLE)->pixels) ASSERT_EQ(v, 0x1111);
    far.SetPosition(INT_MIN, INT_MAX, 5);
    far.DrawFrame(0);
    EXPECT_EQ(far.GetRect().left, INT_MIN);
    EXPECT_EQ(far.GetRect().bottom, INT_MAX);
}
