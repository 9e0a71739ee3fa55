// mapc: compiles Tiled maps (TMX) into the game's map files and writes the exit
// and script registries.
//   mapc [--objects objects.txt] [--tiles tiles.txt] --out-maps DIR --out-ini DIR MAP.tmx...
// Each MAP.tmx becomes DIR/MAP.map; maps.ini and scripts.ini gather the exits and
// scripts of all the maps given.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "mapc.h"

namespace {

bool WriteFile(const std::filesystem::path& path, const void* data, size_t size) {
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    if (!f) return false;
    f.write(static_cast<const char*>(data), std::streamsize(size));
    return bool(f);
}

int Usage() {
    std::fprintf(stderr,
                 "usage: mapc [--objects objects.txt] [--tiles tiles.txt] --out-maps DIR --out-ini DIR MAP.tmx...\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    std::string objects, tiles, outMaps, outIni;
    std::vector<std::string> inputs;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        auto next = [&](std::string& into) {
            if (i + 1 >= argc) return false;
            into = argv[++i];
            return true;
        };
        if (a == "--objects") {
            if (!next(objects)) return Usage();
        } else if (a == "--tiles") {
            if (!next(tiles)) return Usage();
        } else if (a == "--out-maps") {
            if (!next(outMaps)) return Usage();
        } else if (a == "--out-ini") {
            if (!next(outIni)) return Usage();
        } else if (!a.empty() && a[0] == '-') {
            return Usage();
        } else {
            inputs.push_back(a);
        }
    }
    if (inputs.empty() || outMaps.empty()) return Usage();

    SManifest manifest;
    std::string error;
    if (!objects.empty() && !ReadObjectManifest(objects, manifest, error)) {
        std::fprintf(stderr, "mapc: %s\n", error.c_str());
        return 1;
    }
    if (!tiles.empty() && !ReadTileManifest(tiles, manifest, error)) {
        std::fprintf(stderr, "mapc: %s\n", error.c_str());
        return 1;
    }

    SRegistries registries;
    std::vector<std::string> errors;
    std::vector<std::pair<std::string, SMapFile>> compiled;
    for (const std::string& in : inputs) {
        std::string name = std::filesystem::path(in).stem().string() + ".map";
        SMapFile map;
        if (CompileTmx(in, name, manifest, registries, map, errors)) compiled.emplace_back(name, std::move(map));
    }
    for (const auto& [name, map] : compiled)
        for (const SMapCell& c : map.cells)
            if (c.exit && !registries.exits.count(c.exit)) errors.push_back(name + ": exit without registry entry");
    if (!errors.empty()) {
        for (const std::string& e : errors) std::fprintf(stderr, "mapc: %s\n", e.c_str());
        return 1;
    }

    std::error_code ec;
    std::filesystem::create_directories(outMaps, ec);
    for (const auto& [name, map] : compiled) {
        const std::vector<uint8_t> bytes = MapFileBytes(map);
        if (!WriteFile(std::filesystem::path(outMaps) / name, bytes.data(), bytes.size())) {
            std::fprintf(stderr, "mapc: cannot write %s/%s\n", outMaps.c_str(), name.c_str());
            return 1;
        }
    }
    if (!outIni.empty()) {
        std::filesystem::create_directories(outIni, ec);
        const std::string maps = MapsIniText(registries), scripts = ScriptsIniText(registries);
        if (!WriteFile(std::filesystem::path(outIni) / "maps.ini", maps.data(), maps.size()) ||
            !WriteFile(std::filesystem::path(outIni) / "scripts.ini", scripts.data(), scripts.size())) {
            std::fprintf(stderr, "mapc: cannot write the registries in %s\n", outIni.c_str());
            return 1;
        }
    }
    return 0;
}
