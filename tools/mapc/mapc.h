// The map compiler: Tiled TMX sources to the game's .map files, plus the exit
// and script registries "maps.ini" and "scripts.ini".
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "world/map_file.h"

// One object of the art manifest (stage/manifest/objects.txt).
struct SManifestObject {
    std::string name;
    int32_t x = 0, y = 0, w = 0, h = 0;     // rectangle on obj.bmp
    int32_t ax = 0, ay = 0;                 // base cell box inside the rectangle
    std::vector<std::pair<int32_t, int32_t>> block, walk, ground;
};

struct SManifest {
    std::map<std::string, SManifestObject> objects;
    // (type, k) -> sheet position; empty when no tile manifest was given.
    std::map<std::pair<int, int>, std::pair<int32_t, int32_t>> tiles;
};

bool ReadObjectManifest(const std::string& path, SManifest& m, std::string& error);
bool ReadTileManifest(const std::string& path, SManifest& m, std::string& error);

struct SExitEntry {
    std::string target;  // destination map file
    std::string label;   // hover text
    std::string where;   // first definition, for messages
};
struct SScriptEntry {
    std::string name;
    std::string where;
};

// Registries shared by every map of one run.
struct SRegistries {
    std::map<int, SExitEntry> exits;
    std::map<int, SScriptEntry> scripts;
};

// Compiles one TMX file (its tilesets are read relative to it) into a map file
// (world/map_file.h) that the engine's reader accepts. Errors name the file and
// the cell or object at fault; every error found is appended.
bool CompileTmx(const std::string& tmxPath, const std::string& outName, const SManifest& manifest,
                SRegistries& registries, SMapFile& out, std::vector<std::string>& errors);

// The registries as INI texts (GBK, CR LF).
std::string MapsIniText(const SRegistries& r);
std::string ScriptsIniText(const SRegistries& r);
