// CVRN_File: game-data archive reader.
#include "resources/vrn_file.h"

#include <cstdio>
#include <cstring>
#include <deque>

#include "resources/lz77.h"
#include "base/gbk.h"
#include "base/log.h"
#include "base/message_box.h"
#include "base/paths.h"

namespace {

constexpr size_t kMaxPath = 4096;            // longer paths only come from damaged directories
constexpr uint32_t kMaxEntry = 256u << 20;   // no game file comes near this

uint32_t Le32(const uint8_t* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24; }

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

// Where the archive bytes come from: the file (reopened for every Open and Read,
// so no handle is held between calls) or an image in memory.
struct CVRN_File::SSource {
    FILE* file = nullptr;
    const uint8_t* mem = nullptr;
    uint64_t size = 0;
    uint64_t pos = 0;

    ~SSource() {
        if (file) std::fclose(file);
    }
    bool OpenFile(const char* path) {
        file = std::fopen(path, "rb");
        if (!file) return false;
        if (fseeko(file, 0, SEEK_END) != 0) return false;
        off_t end = ftello(file);
        if (end < 0 || fseeko(file, 0, SEEK_SET) != 0) return false;
        size = uint64_t(end);
        return true;
    }
    void OpenMemory(const uint8_t* data, size_t n) {
        mem = data;
        size = n;
    }
    // Reads exactly n bytes at the current position; false when fewer remain.
    bool Get(void* dst, uint64_t n) {
        if (n > size || pos > size - n) return false;
        if (mem) {
            std::memcpy(dst, mem + pos, size_t(n));
        } else if (n > 0 && std::fread(dst, 1, size_t(n), file) != size_t(n)) {
            return false;
        }
        pos += n;
        return true;
    }
    bool Seek(uint64_t to) {
        if (to > size) return false;
        if (file && fseeko(file, off_t(to), SEEK_SET) != 0) return false;
        pos = to;
        return true;
    }
};

CVRN_File::CVRN_File() : m_pLog(new CLog("GameEngine.log", false)) {}

CVRN_File::~CVRN_File() { Close(); }

void CVRN_File::Close() {
    m_pCurrent = nullptr;
    m_pRoot.reset();
}

bool CVRN_File::Open(const char* archivePath) {
    if (!archivePath) return false;
    SSource src;
    if (!src.OpenFile(HostPath(archivePath).c_str())) {
        ShowCannotOpen(archivePath);
        return false;
    }
    if (!Load(src, archivePath)) return false;
    m_strPath = archivePath;
    m_pMemory = nullptr;
    m_nMemorySize = 0;
    return true;
}

bool CVRN_File::OpenMemory(const uint8_t* data, size_t size, const char* displayName) {
    SSource src;
    src.OpenMemory(data, size);
    if (!Load(src, displayName)) return false;
    m_strPath = displayName ? displayName : "";
    m_pMemory = data;
    m_nMemorySize = size;
    return true;
}

// Reads the header and the breadth-first directory into a new tree. The old
// tree is replaced only when the whole directory was read and checked.
bool CVRN_File::Load(SSource& src, const char* displayName) {
    const char* name = displayName ? displayName : "";
    uint8_t header[kVrnHeaderSize];
    if (!src.Get(header, sizeof header) || std::memcmp(header, kVrnMagic, 4) != 0) {
        ShowNotArchive(name);
        return false;
    }
    auto damaged = [&](const char* why) {
        m_pLog->Write("cvrn:damaged directory in %s (%s).", name, why);
        ShowNotArchive(name);
        return false;
    };
    const uint32_t dataBase = Le32(header + 4);
    auto root = std::make_unique<SVrnNode>();
    root->path = "root";
    root->name = "root";
    root->kind = kVrnKindDir;
    root->size = Le32(header + 8);

    // Nodes whose path repeats an earlier one are kept aside so that the
    // records of their children are still consumed in order.
    std::vector<std::unique_ptr<SVrnNode>> duplicates;
    std::deque<std::pair<uint32_t, SVrnNode*>> queue;
    queue.emplace_back(root->size, root.get());
    std::string nameBuf;
    while (!queue.empty()) {
        auto [count, parent] = queue.front();
        queue.pop_front();
        // Each record takes at least 25 bytes: a count that cannot fit is a lie.
        if (uint64_t(count) * (kVrnRecordSize + 1) > src.size - src.pos) return damaged("record count");
        for (uint32_t k = 0; k < count; ++k) {
            uint8_t rec[kVrnRecordSize];
            if (!src.Get(rec, sizeof rec)) return damaged("truncated record");
            const uint32_t nameLen = Le32(rec + 16);
            if (nameLen == 0 || nameLen > kMaxPath) return damaged("name length");
            if (parent->path.size() + 1 + nameLen > kMaxPath) return damaged("path too long");
            nameBuf.resize(size_t(nameLen) + 1);
            if (!src.Get(nameBuf.data(), uint64_t(nameLen) + 1)) return damaged("truncated name");
            auto node = std::make_unique<SVrnNode>();
            // The name is a zero-terminated string: an embedded zero ends it.
            node->name.assign(nameBuf.data(), strnlen(nameBuf.data(), nameLen));
            node->path = parent->path + "\\" + node->name;
            node->size = Le32(rec + 0);
            node->fullSize = Le32(rec + 4);
            node->offset = Le32(rec + 8);
            node->kind = rec[12];
            node->compressed = rec[13];
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
    SSource src;
    if (m_pMemory) {
        src.OpenMemory(m_pMemory, m_nMemorySize);
    } else if (!src.OpenFile(HostPath(m_strPath).c_str())) {
        ShowCannotOpen(m_strPath.c_str());
        return false;
    }
    return ReadStored(src, node, static_cast<uint8_t*>(buffer));
}

bool CVRN_File::ReadStored(SSource& src, const SVrnNode& node, uint8_t* dst) {
    const uint64_t start = uint64_t(m_nDataBase) + node.offset;
    if (start > src.size || node.size > src.size - start) {
        m_pLog->Write("cvrn:read error.read size do not equal real size.");
        return false;
    }
    if (!node.compressed) {
        if (node.size != node.fullSize) {
            m_pLog->Write("cvrn:read error.stored size of %s differs from its size.", node.path.c_str());
            return false;
        }
        if (!src.Seek(start) || !src.Get(dst, node.size)) {
            m_pLog->Write("cvrn:read error.read size do not equal real size.");
            return false;
        }
        return true;
    }

    std::vector<uint8_t> owned;
    const uint8_t* stored;
    if (src.mem) {
        stored = src.mem + start;
    } else {
        owned.assign(node.size, 0);
        if (!src.Seek(start) || !src.Get(owned.data(), node.size)) {
            m_pLog->Write("cvrn:read error.read size do not equal real size.");
            return false;
        }
        stored = owned.data();
    }
    // Each chunk decodes straight into its place in the destination: a block
    // only refers to its own output.
    CCompressLZ77 codec;
    uint64_t p = 0, o = 0;
    const uint64_t full = node.fullSize, total = node.size;
    while (p < total) {
        if (o >= full || total - p < 2) break;
        const uint32_t out = o + kVrnChunkOutput < full ? kVrnChunkOutput : uint32_t(full - o);
        const uint32_t len = uint32_t(stored[p]) | uint32_t(stored[p + 1]) << 8;
        if (len > total - p - 2 ||
            codec.DecompressBounded(dst + o, int32_t(out), stored + p + 2, len) != 1) {
            p = total + 1;  // damaged
            break;
        }
        p += 2 + uint64_t(len);
        o += out;
    }
    if (p != total || o != full) {
        m_pLog->Write("cvrn:read error.damaged compressed data in %s.", node.path.c_str());
        return false;
    }
    return true;
}
