// Archive writer used by the vrn tool and the tests.
#include "resources/vrn_writer.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <memory>

#include "resources/lz77.h"
#include "resources/vrn_file.h"

namespace {

struct SDirBuild;
struct SChild {
    std::unique_ptr<SDirBuild> dir;  // set for folders
    const SVrnInput* file = nullptr; // set for files
};
struct SDirBuild {
    std::map<std::string, SChild> children;  // ordered bytewise by name
};

void Put32(std::vector<uint8_t>& out, uint32_t v) {
    for (int i = 0; i < 4; ++i) out.push_back(uint8_t(v >> (8 * i)));
}

void PutRecord(std::vector<uint8_t>& out, uint32_t size, uint32_t full, uint32_t offset, uint8_t kind,
               uint8_t compressed, const std::string& name) {
    Put32(out, size);
    Put32(out, full);
    Put32(out, offset);
    out.push_back(kind);
    out.push_back(compressed);
    out.push_back(0);
    out.push_back(0);
    Put32(out, uint32_t(name.size()));
    Put32(out, 0);
    out.insert(out.end(), name.begin(), name.end());
    out.push_back(0);
}

}  // namespace

bool CompressVrnEntry(const std::vector<uint8_t>& data, std::vector<uint8_t>* out) {
    out->clear();
    if (data.empty()) return false;
    CCompressLZ77 codec;
    std::vector<uint8_t> block(kVrnChunkOutput + 8);
    for (size_t pos = 0; pos < data.size(); pos += kVrnChunkOutput) {
        const size_t n = std::min<size_t>(kVrnChunkOutput, data.size() - pos);
        std::fill(block.begin(), block.end(), 0);
        const int32_t len = codec.Compress(data.data() + pos, int32_t(n), block.data());
        if (len <= 0) return false;
        out->push_back(uint8_t(len & 0xFF));
        out->push_back(uint8_t(len >> 8));
        out->insert(out->end(), block.begin(), block.begin() + len);
    }
    return true;
}

bool BuildVrnArchive(const std::vector<SVrnInput>& entries, EVrnCompression mode, std::vector<uint8_t>* out,
                     std::string* error) {
    auto fail = [&](const std::string& why) {
        if (error) *error = why;
        return false;
    };
    SDirBuild root;
    for (const SVrnInput& e : entries) {
        SDirBuild* dir = &root;
        size_t start = 0;
        for (;;) {
            size_t bs = e.path.find('\\', start);
            std::string part = e.path.substr(start, bs == std::string::npos ? std::string::npos : bs - start);
            if (part.empty()) return fail("empty path component in \"" + e.path + "\"");
            SChild& child = dir->children[part];
            if (bs == std::string::npos) {
                if (child.dir || child.file) return fail("\"" + e.path + "\" is given twice or is also a folder");
                child.file = &e;
                break;
            }
            if (child.file) return fail("\"" + e.path + "\" needs a folder where a file is");
            if (!child.dir) child.dir = std::make_unique<SDirBuild>();
            dir = child.dir.get();
            start = bs + 1;
        }
        if (e.data.size() > 0xFFFFFFFFull) return fail("\"" + e.path + "\" is over 4 GiB");
    }

    // Breadth-first order: a folder's records, then each subfolder's in the
    // order the subfolders were written.
    std::vector<const SChild*> order;  // every record in file order
    std::vector<std::string> names;
    std::deque<const SDirBuild*> queue{&root};
    while (!queue.empty()) {
        const SDirBuild* d = queue.front();
        queue.pop_front();
        for (const auto& [name, child] : d->children) {
            order.push_back(&child);
            names.push_back(name);
            if (child.dir) queue.push_back(child.dir.get());
        }
    }

    // Stored forms of the files, in record order.
    std::vector<std::vector<uint8_t>> stored(order.size());
    std::vector<uint8_t> compressed(order.size(), 0);
    uint64_t dirSize = kVrnHeaderSize;
    for (size_t i = 0; i < order.size(); ++i) dirSize += kVrnRecordSize + names[i].size() + 1;
    uint64_t dataSize = 0;
    for (size_t i = 0; i < order.size(); ++i) {
        const SChild* c = order[i];
        if (!c->file) continue;
        if (mode == VRN_COMPRESS_AUTO && CompressVrnEntry(c->file->data, &stored[i])) compressed[i] = 1;
        dataSize += compressed[i] ? stored[i].size() : c->file->data.size();
    }
    if (dirSize + dataSize > 0xFFFFFFFFull) return fail("archive over 4 GiB");

    out->clear();
    out->reserve(size_t(dirSize + dataSize));
    for (char c : kVrnMagic) out->push_back(uint8_t(c));
    Put32(*out, uint32_t(dirSize));
    Put32(*out, uint32_t(root.children.size()));
    uint32_t offset = 0;
    for (size_t i = 0; i < order.size(); ++i) {
        const SChild* c = order[i];
        if (c->dir) {
            PutRecord(*out, uint32_t(c->dir->children.size()), 0, 0, kVrnKindDir, 0, names[i]);
            continue;
        }
        const uint32_t full = uint32_t(c->file->data.size());
        const uint32_t size = compressed[i] ? uint32_t(stored[i].size()) : full;
        PutRecord(*out, size, full, offset, 0, compressed[i], names[i]);
        offset += size;
    }
    for (size_t i = 0; i < order.size(); ++i) {
        const SChild* c = order[i];
        if (!c->file) continue;
        const std::vector<uint8_t>& bytes = compressed[i] ? stored[i] : c->file->data;
        out->insert(out->end(), bytes.begin(), bytes.end());
    }
    return true;
}
