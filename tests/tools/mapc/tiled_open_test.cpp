// The map sources open in the Tiled map editor: Tiled itself exports each one
// (run offscreen), and the export describes our isometric 50 x 50 grid of 64 x 32
// cells with its tilesets resolved.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

TEST(TiledSources, EveryMapOpensInTiled) {
    if (access("/usr/bin/tiled", X_OK) != 0) GTEST_SKIP() << "Tiled is not installed";
    fs::path maps = fs::path(ASHEN_SOURCE_DIR) / "content/maps";
    // Tiled keeps its settings and runtime files under the scratch folder.
    const fs::path home = fs::current_path() / "tiled_home";
    fs::create_directories(home / "runtime");
    fs::permissions(home / "runtime", fs::perms::owner_all, fs::perm_options::replace);
    const std::string env = "HOME='" + home.string() + "' XDG_CONFIG_HOME='" + (home / "config").string() +
                            "' XDG_CACHE_HOME='" + (home / "cache").string() + "' XDG_DATA_HOME='" +
                            (home / "data").string() + "' XDG_RUNTIME_DIR='" + (home / "runtime").string() + "'";
    int count = 0;
    for (auto& e : fs::directory_iterator(maps)) {
        if (e.path().extension() != ".tmx") continue;
        ++count;
        fs::path out = fs::current_path() / ("ashen_tiled_" + e.path().stem().string() + ".json");
        fs::remove(out);
        std::string cmd = "cd '" + maps.string() + "' && QT_QPA_PLATFORM=offscreen " + env + " tiled --export-map json '" +
                          e.path().filename().string() + "' '" + out.string() + "' >/dev/null 2>&1";
        ASSERT_EQ(std::system(cmd.c_str()), 0) << e.path();
        std::ifstream in(out);
        std::stringstream s;
        s << in.rdbuf();
        std::string json = s.str();
        EXPECT_NE(json.find("\"orientation\":\"isometric\""), std::string::npos) << e.path();
        EXPECT_NE(json.find("\"width\":50"), std::string::npos);
        EXPECT_NE(json.find("\"height\":50"), std::string::npos);
        EXPECT_NE(json.find("\"tilewidth\":64"), std::string::npos);
        EXPECT_NE(json.find("\"tileheight\":32"), std::string::npos);
        EXPECT_NE(json.find("\"name\":\"ground\""), std::string::npos);
        EXPECT_NE(json.find("tilesets\\/tiles_"), std::string::npos);  // external tilesets found
        fs::remove(out);
    }
    EXPECT_GE(count, 2);
}
