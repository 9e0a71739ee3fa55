// rolec: compiles role descriptions (content/roles/*.txt) into role animation
// files. Usage: rolec OUTDIR DESC.txt...  writes OUTDIR/<file> for each one.
//        rolec --dump FILE    prints the actions and frames of a role file.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "role_desc.h"

namespace fs = std::filesystem;

static int Dump(const char* path) {
    std::ifstream f(path, std::ios::binary);
    if (!f) {
        std::fprintf(stderr, "%s: cannot open\n", path);
        return 1;
    }
    std::vector<uint8_t> b((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
    rolefile::RoleFile rf;
    std::string err;
    if (!rolefile::ParseRoleFile(b, rf, err)) {
        std::fprintf(stderr, "%s: %s\n", path, err.c_str());
        return 1;
    }
    std::printf("%zu actions, %zu frames\n", rf.actions.size(), rf.frames.size());
    for (const auto& a : rf.actions) std::printf("action %-8s n=%d first=%d\n", a.name.c_str(), a.frames, a.first);
    for (size_t i = 0; i < rf.frames.size(); ++i)
        std::printf("frame %4zu %dx%d %s\n", i, rf.frames[i].width, rf.frames[i].height, rf.frames[i].name.c_str());
    return 0;
}

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--dump") return Dump(argv[2]);
    if (argc < 3) {
        std::fprintf(stderr, "usage: rolec OUTDIR DESC.txt...\n       rolec --dump FILE\n");
        return 2;
    }
    fs::path outDir = argv[1];
    std::error_code ec;
    fs::create_directories(outDir, ec);
    int failures = 0;
    for (int i = 2; i < argc; ++i) {
        rolefile::Desc d;
        std::string errors;
        if (!rolefile::LoadDesc(argv[i], d, errors)) {
            std::fputs(errors.c_str(), stderr);
            ++failures;
            continue;
        }
        std::vector<uint8_t> bytes = rolefile::BuildRoleFile(d);
        // The engine's own reader must take it (counts and frame sizes within limits).
        CByteReader check(bytes, d.file);
        SRoleFile back;
        if (!ReadRoleFile(check, back, ERoleCheck::Strict)) {
            std::fprintf(stderr, "%s: the game would refuse the role file: %s\n", argv[i], check.Error().c_str());
            ++failures;
            continue;
        }
        fs::path out = outDir / d.file;
        std::ofstream f(out, std::ios::binary);
        f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!f) {
            std::fprintf(stderr, "%s: cannot write\n", out.c_str());
            ++failures;
        }
    }
    return failures ? 1 : 0;
}
