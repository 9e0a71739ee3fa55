// vrn: builds, lists and extracts game-data archives, runs the LZ77 block codec
// and reads INI values, for modders, the data build and the tests.
//
//   vrn pack <source-dir> <archive>
//   vrn list <archive>
//   vrn cat <archive> <path>
//   vrn unpack <archive> <dir>
//   vrn lz77 compress <in> <out>          (exit 3: not shorter, 4: over 65536 bytes)
//   vrn lz77 decompress <in> <out> <size>
//   vrn ini <file> <section> <key> [--archive <archive>]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "resources/ini.h"
#include "resources/lz77.h"
#include "resources/vrn_file.h"
#include "resources/vrn_writer.h"

namespace fs = std::filesystem;

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage:\n"
                 "  vrn pack <source-dir> <archive>\n"
                 "  vrn list <archive>\n"
                 "  vrn cat <archive> <path>\n"
                 "  vrn unpack <archive> <dir>\n"
                 "  vrn lz77 compress <in> <out>\n"
                 "  vrn lz77 decompress <in> <out> <size>\n"
                 "  vrn ini <file> <section> <key> [--archive <archive>]\n");
    return 2;
}

bool ReadFile(const fs::path& p, std::vector<uint8_t>* out) {
    std::ifstream in(p, std::ios::binary);
    if (!in) return false;
    out->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

// Writes through a temporary file and a rename, so a reader never sees half
// an archive.
bool WriteFile(const fs::path& p, const uint8_t* data, size_t size) {
    std::error_code ec;
    if (p.has_parent_path()) fs::create_directories(p.parent_path(), ec);
    fs::path tmp = p;
    tmp += ".tmp";
    {
        std::ofstream o(tmp, std::ios::binary | std::ios::trunc);
        o.write(reinterpret_cast<const char*>(data), std::streamsize(size));
        if (!o) return false;
    }
    fs::rename(tmp, p, ec);
    return !ec;
}

int Pack(const char* srcDir, const char* archive) {
    std::error_code ec;
    std::vector<fs::path> files;
    if (!fs::is_directory(srcDir, ec)) {
        std::fprintf(stderr, "vrn: %s is not a folder\n", srcDir);
        return 1;
    }
    for (auto it = fs::recursive_directory_iterator(srcDir, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        if (it->is_regular_file()) files.push_back(it->path());
    if (ec) {
        std::fprintf(stderr, "vrn: cannot list %s: %s\n", srcDir, ec.message().c_str());
        return 1;
    }
    std::vector<SVrnInput> entries;
    entries.reserve(files.size());
    for (const fs::path& f : files) {
        SVrnInput e;
        std::string rel = fs::relative(f, srcDir).generic_string();
        if (rel.find('\\') != std::string::npos) {
            std::fprintf(stderr, "vrn: %s: a backslash in a file name cannot be stored\n", f.c_str());
            return 1;
        }
        std::replace(rel.begin(), rel.end(), '/', '\\');
        e.path = rel;
        if (!ReadFile(f, &e.data)) {
            std::fprintf(stderr, "vrn: cannot read %s\n", f.c_str());
            return 1;
        }
        entries.push_back(std::move(e));
    }
    std::vector<uint8_t> image;
    std::string error;
    if (!BuildVrnArchive(entries, VRN_COMPRESS_AUTO, &image, &error)) {
        std::fprintf(stderr, "vrn: %s\n", error.c_str());
        return 1;
    }
    if (!WriteFile(archive, image.data(), image.size())) {
        std::fprintf(stderr, "vrn: cannot write %s\n", archive);
        return 1;
    }
    return 0;
}

void CollectFiles(const SVrnNode& node, std::vector<const SVrnNode*>* out) {
    for (const auto& [path, child] : node.children) {
        if (child->IsDir())
            CollectFiles(*child, out);
        else
            out->push_back(child.get());
    }
}

std::vector<const SVrnNode*> SortedFiles(const CVRN_File& vrn) {
    std::vector<const SVrnNode*> files;
    CollectFiles(*vrn.Root(), &files);
    std::sort(files.begin(), files.end(),
              [](const SVrnNode* a, const SVrnNode* b) { return a->path < b->path; });
    return files;
}

// The path inside the archive, without "root\".
std::string Inner(const SVrnNode* n) { return n->path.substr(5); }

int List(const char* archive) {
    CVRN_File vrn;
    if (!vrn.Open(archive)) return 1;
    for (const SVrnNode* n : SortedFiles(vrn)) std::printf("%s\n", Inner(n).c_str());
    return 0;
}

bool ReadEntry(CVRN_File& vrn, const std::string& path, std::vector<uint8_t>* out) {
    if (!vrn.FindEntry(path.c_str())) return false;
    out->assign(size_t(vrn.GetSize()), 0);
    return vrn.Read(out->data(), vrn.GetSize() == 0 ? 0 : vrn.GetSize()) || vrn.GetSize() == 0;
}

int Cat(const char* archive, const char* path) {
    CVRN_File vrn;
    if (!vrn.Open(archive)) return 1;
    if (!vrn.FindEntry(path) || vrn.Current()->IsDir()) {
        std::fprintf(stderr, "vrn: %s holds no entry %s\n", archive, path);
        return 1;
    }
    std::vector<uint8_t> bytes;
    if (!ReadEntry(vrn, path, &bytes)) {
        std::fprintf(stderr, "vrn: cannot read %s from %s\n", path, archive);
        return 1;
    }
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    return 0;
}

int Unpack(const char* archive, const char* dir) {
    CVRN_File vrn;
    if (!vrn.Open(archive)) return 1;
    int failures = 0;
    for (const SVrnNode* n : SortedFiles(vrn)) {
        const std::string inner = Inner(n);
        // Only plain components: nothing may land outside the target folder.
        fs::path target = dir;
        bool safe = true;
        size_t start = 0;
        for (;;) {
            size_t bs = inner.find('\\', start);
            std::string part = inner.substr(start, bs == std::string::npos ? std::string::npos : bs - start);
            if (part.empty() || part == "." || part == ".." || part.find('/') != std::string::npos) safe = false;
            target /= part;
            if (bs == std::string::npos) break;
            start = bs + 1;
        }
        std::vector<uint8_t> bytes;
        if (!safe) {
            std::fprintf(stderr, "vrn: skipping unsafe entry name %s\n", inner.c_str());
            ++failures;
        } else if (!ReadEntry(vrn, inner, &bytes)) {
            std::fprintf(stderr, "vrn: cannot read %s\n", inner.c_str());
            ++failures;
        } else if (!WriteFile(target, bytes.data(), bytes.size())) {
            std::fprintf(stderr, "vrn: cannot write %s\n", target.c_str());
            ++failures;
        }
    }
    return failures ? 1 : 0;
}

int Lz77(int argc, char** argv) {
    if (argc < 5) return Usage();
    std::vector<uint8_t> in;
    if (!ReadFile(argv[3], &in)) {
        std::fprintf(stderr, "vrn: cannot read %s\n", argv[3]);
        return 1;
    }
    CCompressLZ77 codec;
    if (std::strcmp(argv[2], "compress") == 0 && argc == 5) {
        if (in.size() > size_t(CCompressLZ77::kMaxBlock)) {
            std::fprintf(stderr, "vrn: %s is over 65536 bytes\n", argv[3]);
            return 4;
        }
        std::vector<uint8_t> out(in.size() + 8, 0);
        int32_t n = codec.Compress(in.data(), int32_t(in.size()), out.data());
        if (n <= 0) {
            std::fprintf(stderr, "vrn: %s does not get shorter\n", argv[3]);
            return 3;
        }
        return WriteFile(argv[4], out.data(), size_t(n)) ? 0 : 1;
    }
    if (std::strcmp(argv[2], "decompress") == 0 && argc == 6) {
        char* end = nullptr;
        long size = std::strtol(argv[5], &end, 10);
        if (*end != '\0' || size < 0 || size > CCompressLZ77::kMaxBlock) {
            std::fprintf(stderr, "vrn: the size must be 0 to 65536\n");
            return 1;
        }
        std::vector<uint8_t> out(size_t(size) + 1, 0);
        if (codec.DecompressBounded(out.data(), int32_t(size), in.data(), in.size()) != 1) {
            std::fprintf(stderr, "vrn: %s is not a valid block of %ld bytes\n", argv[3], size);
            return 1;
        }
        return WriteFile(argv[4], out.data(), size_t(size)) ? 0 : 1;
    }
    return Usage();
}

int Ini(int argc, char** argv) {
    const char* archive = nullptr;
    if (argc == 7 && std::strcmp(argv[5], "--archive") == 0)
        archive = argv[6];
    else if (argc != 5)
        return Usage();
    CIni ini;
    ini.Open(argv[2], archive);
    if (ini.IsFailed()) std::fprintf(stderr, "vrn: cannot load %s\n", argv[2]);
    std::string v = ini.GetString(argv[3], argv[4]);
    std::fwrite(v.data(), 1, v.size(), stdout);
    return ini.IsFailed() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Usage();
    const std::string cmd = argv[1];
    if (cmd == "pack" && argc == 4) return Pack(argv[2], argv[3]);
    if (cmd == "list" && argc == 3) return List(argv[2]);
    if (cmd == "cat" && argc == 4) return Cat(argv[2], argv[3]);
    if (cmd == "unpack" && argc == 4) return Unpack(argv[2], argv[3]);
    if (cmd == "lz77") return Lz77(argc, argv);
    if (cmd == "ini") return Ini(argc, argv);
    return Usage();
}
