#include "recipes.h"

#include <fstream>
#include <sstream>

namespace art {
namespace {

Recipes g_recipes;

const char* const kCaptionKeys[] = {
    "studio", "presents", "title", "subtitle", "mm_start", "mm_load", "mm_credits", "mm_quit",
    "gamemenu", "gm_back", "gm_save", "gm_load", "gm_help", "gm_exit", "tut1", "tut2", "tut3",
    "tut4", "tut_greeting", "hud_gear", "hud_bag"};

std::string Trim(const std::string& s) {
    size_t a = s.find_first_not_of(" \t\r"), b = s.find_last_not_of(" \t\r");
    return a == std::string::npos ? std::string() : s.substr(a, b - a + 1);
}

}  // namespace

bool LoadRecipes(const std::string& dir, std::string& error) {
    Recipes r;
    std::ifstream cap(dir + "/captions.txt");
    if (!cap) return error = "cannot read " + dir + "/captions.txt", false;
    std::string line;
    int no = 0;
    while (std::getline(cap, line)) {
        ++no;
        std::string t = Trim(line);
        if (t.empty() || t[0] == '#') continue;
        size_t eq = t.find('=');
        if (eq == std::string::npos) return error = "captions.txt line " + std::to_string(no) + ": no '='", false;
        r.captions[Trim(t.substr(0, eq))] = Trim(t.substr(eq + 1));
    }
    for (const char* k : kCaptionKeys)
        if (r.captions.find(k) == r.captions.end()) return error = std::string("captions.txt lacks ") + k, false;

    std::ifstream tiles(dir + "/tiles.txt");
    if (!tiles) return error = "cannot read " + dir + "/tiles.txt", false;
    no = 0;
    while (std::getline(tiles, line)) {
        ++no;
        std::string t = Trim(line);
        if (t.empty() || t[0] == '#') continue;
        std::istringstream ls(t);
        TileType tt;
        if (!(ls >> tt.type >> tt.prefix >> tt.name >> tt.count) || tt.count < 1 || tt.count > 99 ||
            tt.type != int(r.tiles.size()) + 1 || tt.prefix.size() > 16)
            return error = "tiles.txt line " + std::to_string(no) + ": expected '<type> <prefix> <name> <count 1-99>' in type order", false;
        // A name "a-b" makes corner pieces from full ground a to full ground b, both
        // listed earlier.
        const size_t dash = tt.name.find('-');
        if (dash != std::string::npos) {
            const std::string a = tt.name.substr(0, dash), b = tt.name.substr(dash + 1);
            for (const TileType& f : r.tiles) {
                if (f.base != 0) continue;
                if (f.name == a) tt.base = f.type;
                if (f.name == b) tt.other = f.type;
            }
            if (tt.base == 0 || tt.other == 0 || tt.base == tt.other)
                return error = "tiles.txt line " + std::to_string(no) + ": " + tt.name +
                               " must join two different full grounds listed before it", false;
            if (tt.count % 14 != 0)
                return error = "tiles.txt line " + std::to_string(no) + ": corner pieces come in sets of 14", false;
        } else if (!KnownGround(tt.name)) {
            return error = "tiles.txt line " + std::to_string(no) + ": no painter for the ground " + tt.name, false;
        }
        r.tiles.push_back(tt);
    }
    if (r.tiles.size() < 10) return error = "tiles.txt must list at least the ten types 1-10", false;
    g_recipes = r;
    return true;
}

const Recipes& GetRecipes() { return g_recipes; }

const std::string& Caption(const std::string& key) {
    static const std::string empty;
    auto it = g_recipes.captions.find(key);
    return it == g_recipes.captions.end() ? empty : it->second;
}

}  // namespace art
