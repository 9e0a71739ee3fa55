// CVRN_File: game-data archive reader.
#include "resources/vrn_file.h"

#include <cstdio>
#include <cstring>
#include <deque>

#include "base/byte_reader.h"
#include "resources/lz77.h"
#include "base/gbk.h"
#include "base/log.h"
#include "base/message_box.h"
#include "base/paths.h"

namespace {

constexpr size_t kMaxPath = 4096;            // longer paths only come from damaged directories
constexpr uint32_t kMaxEntry = 256u << 20;   // no game file comes near this
constexpr size_t kMaxDirectory = 64u << 20;  // directory bytes read from a file at most

void ShowCannotOpen(const char* path) {
    char text[1200];
    std::snprintf(text, sizeof text, GbkText("无法打开文件%s"), path);
    MessageBox(text, "Error", MB_ICONERROR);
}

void ShowNotArchive(const char* path) {
    char text[1200];
    std::snprintf(text, sizeof text, GbkText("%s不是合法的Varnis游戏数据包文件，打开失败。"), path);
    MessageBox(text, "Error", MB_ICONERROR);
}

}  // namespace

CVRN_File::CVRN_File() : m_pLog(new CLog("GameEngine.log", false)) {}

CVRN_File::~CVRN_File() { Close(); }

void CVRN_File::Close() {
    m_pCurrent = nullptr;
    m_pRoot.reset();
}

bool CVRN_File::Open(const char* archivePath) {
    if (!archivePath) return false;
    // The header names where the data starts, which is where the directory ends:
    // only that much of the file is read.
    const std::string host = HostPath(archivePath);
    std::vector<uint8_t> bytes;
    uint64_t fileSize = 0;
    if (ReadFilePart(host, 0, kVrnHeaderSize, bytes, nullptr, &fileSize) != EFileRead::Ok) {
        ShowCannotOpen(archivePath);
        return false;
    }
    if (bytes.size() == kVrnHeaderSize) {
        const uint32_t dataBase = uint32_t(bytes[4]) | uint32_t(bytes[5]) << 8 | uint32_t(bytes[6]) << 16 |
                                  uint32_t(bytes[7]) << 24;
        const size_t want = dataBase > kVrnHeaderSize ? (dataBase < kMaxDirectory ? dataBase : kMaxDirectory)
                                                      : kVrnHeaderSize;
        if (want > bytes.size() && ReadFilePart(host, 0, want, bytes) != EFileRead::Ok) {
            ShowCannotOpen(archivePath);
            return false;
        }
    }
    CByteReader in(bytes, archivePath);
    if (!Load(in, archivePath)) return false;
    m_strPath = archivePath;
    m_pMemory = nullptr;
    m_nMemorySize = 0;
    return true;
}

bool CVRN_File::OpenMemory(const uint8_t* data, size_t size, const char* displayName) {
    CByteReader in(data, size, displayName ? displayName : "");
    if (!Load(in, displayName)) return false;
    m_strPath = displayName ? displayName : "";
    m_pMemory = data;
    m_nMemorySize = size;
    return true;
}

// Reads the header and the breadth-first directory into a new tree. The old
// tree is replaced only when the whole directory was read and checked.
bool CVRN_File::Load(CByteReader& in, const char* displayName) {
    const char* name = displayName ? displayName : "";
    if (!in.Expect(kVrnMagic, 4, "magic")) {
        ShowNotArchive(name);
        return false;
    }
    auto damaged = [&](const char* why) {
        m_pLog->Write("cvrn:damaged directory in %s (%s).", name, why);
        ShowNotArchive(name);
        return false;
    };
    const uint32_t dataBase = in.ReadU32("data offset");
    auto root = std::make_unique<SVrnNode>();
    root->path = "root";
    root->name = "root";
    root->kind = kVrnKindDir;
    root->size = in.ReadU32("root count");
    if (!in.Ok()) {
        ShowNotArchive(name);
        return false;
    }

    // Nodes whose path repeats an earlier one are kept aside so that the
    // records of their children are still consumed in order.
    std::vector<std::unique_ptr<SVrnNode>> duplicates;
    std::deque<std::pair<uint32_t, SVrnNode*>> queue;
    queue.emplace_back(root->size, root.get());
    while (!queue.empty()) {
        auto [count, parent] = queue.front();
        queue.pop_front();
        // Each record takes at least 25 bytes: a count that cannot fit is a lie.
        if (!in.CheckCount(count, kVrnRecordSize + 1, "records")) return damaged("record count");
        for (uint32_t k = 0; k < count; ++k) {
            const uint32_t size = in.ReadU32("stored size");
            const uint32_t fullSize = in.ReadU32("full size");
            const uint32_t offset = in.ReadU32("data offset");
            const uint8_t kind = in.ReadU8("kind");
            const uint8_t compressed = in.ReadU8("compression");
            in.Skip(2, "reserved");
            const uint32_t nameLen = in.ReadU32("name length");
            in.Skip(4, "reserved");
            if (!in.Ok()) return damaged("truncated record");
            if (nameLen == 0 || nameLen > kMaxPath) return damaged("name length");
            if (parent->path.size() + 1 + nameLen > kMaxPath) return damaged("path too long");
            // The name is a zero-terminated string: an embedded zero ends it.
            const uint8_t* nameBytes = in.ReadSpan(size_t(nameLen) + 1, "name");
            if (!nameBytes) return damaged("truncated name");
            auto node = std::make_unique<SVrnNode>();
            node->name.assign(reinterpret_cast<const char*>(nameBytes),
                              strnlen(reinterpret_cast<const char*>(nameBytes), nameLen));
            node->path = parent->path + "\\" + node->name;
            node->size = size;
            node->fullSize = fullSize;
            node->offset = offset;
            node->kind = kind;
            node->compressed = compressed;
            node->nameLength = nameLen;
            if (!node->IsDir()) {
                // Sizes no reader could fill are refused here, before any
                // caller allocates GetSize bytes for them.
                if (node->fullSize > kMaxEntry) return damaged("entry size");
                if (!node->compressed && node->size != node->fullSize) return damaged("stored size");
                if (node->compressed && uint64_t(node->fullSize) > uint64_t(node->size / 2) * kVrnChunkOutput)
                    return damaged("chunk count");
            }
            SVrnNode* raw = node.get();
            if (node->IsDir()) queue.emplace_back(node->size, raw);
            auto key = node->path;
            auto [it, inserted] = parent->children.try_emplace(std::move(key), nullptr);
            if (inserted)
                it->second = std::move(node);
            else
                duplicates.push_back(std::move(node));
        }
    }
    m_pRoot = std::move(root);
    m_pCurrent = nullptr;
    m_nDataBase = dataBase;
    return true;
}

bool CVRN_File::FindEntry(const char* path) {
    if (!m_pRoot || !path) return false;
    const std::string full = std::string("root\\") + path;
    SVrnNode* node = m_pRoot.get();
    for (size_t i = 5; i < full.size(); ++i) {
        if (full[i] != '\\') continue;
        auto it = node->children.find(full.substr(0, i));
        if (it == node->children.end()) return false;
        node = it->second.get();
    }
    auto it = node->children.find(full);
    if (it == node->children.end()) return false;
    m_pCurrent = it->second.get();
    return true;
}

int32_t CVRN_File::GetSize() const { return m_pCurrent ? int32_t(m_pCurrent->fullSize) : -1; }

bool CVRN_File::Read(void* buffer, int32_t size) {
    if (size == 0) size = GetSize();
    if (size == -1 || !m_pCurrent || !buffer) return false;
    const SVrnNode& node = *m_pCurrent;
    if (node.fullSize > uint32_t(INT32_MAX) || (size > 0 && uint32_t(size) < node.fullSize)) {
        m_pLog->Write("cvrn:read error.buffer smaller than %s.", node.path.c_str());
        return false;
    }
    const uint64_t start = uint64_t(m_nDataBase) + node.offset;
    std::vector<uint8_t> owned;
    const uint8_t* stored = nullptr;
    bool whole = false;  // the stored bytes lie inside the archive
    if (m_pMemory) {
        whole = start <= m_nMemorySize && node.size <= m_nMemorySize - start;
        stored = m_pMemory + (whole ? start : 0);
    } else {
        const EFileRead got = ReadFilePart(HostPath(m_strPath), start, node.size, owned);
        if (got == EFileRead::Missing) {
            ShowCannotOpen(m_strPath.c_str());
            return false;
        }
        whole = got == EFileRead::Ok && owned.size() == node.size;
        stored = owned.data();
    }
    if (!whole) {
        m_pLog->Write("cvrn:read error.read size do not equal real size.");
        return false;
    }
    return ReadStored(stored, node, static_cast<uint8_t*>(buffer));
}

bool CVRN_File::ReadStored(const uint8_t* stored, const SVrnNode& node, uint8_t* dst) {
    if (!node.compressed) {
        if (node.size != node.fullSize) {
            m_pLog->Write("cvrn:read error.stored size of %s differs from its size.", node.path.c_str());
            return false;
        }
        if (node.size) std::memcpy(dst, stored, node.size);
        return true;
    }
    // Each chunk (a 16-bit length, then LZ77 data for up to 49152 output bytes)
    // decodes straight into its place in the destination: a block only refers
    // to its own output.
    CByteReader in(stored, node.size, node.path);
    CCompressLZ77 codec;
    uint64_t o = 0;
    const uint64_t full = node.fullSize;
    bool ok = true;
    while (ok && in.Remaining() > 0) {
        if (o >= full || in.Remaining() < 2) {
            ok = false;
            break;
        }
        const uint32_t out = o + kVrnChunkOutput < full ? kVrnChunkOutput : uint32_t(full - o);
        const uint16_t len = in.ReadU16("chunk length");
        const uint8_t* chunk = in.ReadSpan(len, "chunk");
        ok = chunk && codec.DecompressBounded(dst + o, int32_t(out), chunk, len) == 1;
        o += out;
    }
    if (!ok || o != full) {
        m_pLog->Write("cvrn:read error.damaged compressed data in %s.", node.path.c_str());
        return false;
    }
    return true;
}
