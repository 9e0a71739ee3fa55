// Recipes read from content/art: the captions painted into interface pictures and
// the table of ground tile types. Loaded once before painting; a missing file, a
// missing caption or a malformed line stops the generator with a message.
#pragma once
#include <map>
#include <string>
#include <vector>

namespace art {

struct TileType {
    int type = 0;
    std::string prefix, name;
    int count = 0;
    // Corner pieces ("grass-dirt"): the two full grounds they join, by type number;
    // 0 for a full ground.
    int base = 0, other = 0;
};

struct Recipes {
    std::map<std::string, std::string> captions;
    std::vector<TileType> tiles;
};

bool LoadRecipes(const std::string& dir, std::string& error);
// Whether the tile painter knows a full ground of this name (tiles.cpp).
bool KnownGround(const std::string& name);
const Recipes& GetRecipes();
// The caption for a key (checked to exist when the recipes were loaded).
const std::string& Caption(const std::string& key);

}  // namespace art
