// The engine's folders form layers: a folder may include its own headers and those
// of the folders below it, never one above. This test holds the table and scans
// every source file under src/ for quoted includes that break it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Bottom to top. Each folder may include itself and every folder listed before it.
// Items sit below characters because a role carries its bag, its equipment and its
// skills (whose records are in the skill database); ui sits below script because the
// dialogue box and the story commands drive panels.
const std::vector<std::string> kLayers = {"base",       "resources", "media",  "world", "items",
                                          "characters", "ui",        "script", "shell"};
// Entry points sit above every layer.
const std::set<std::string> kTop = {"main.cpp", "launcher"};

struct SViolation {
    std::string file;
    int line;
    std::string include;
};

// The first path component of a quoted include ("world/map.h" -> "world"), or ""
// for an include without a folder.
std::string IncludedFolder(const std::string& line) {
    size_t p = line.find_first_not_of(" \t");
    if (p == std::string::npos || line.compare(p, 1, "#") != 0) return "";
    p = line.find_first_not_of(" \t", p + 1);
    if (p == std::string::npos || line.compare(p, 7, "include") != 0) return "";
    size_t q = line.find('"', p);
    if (q == std::string::npos) return "";
    size_t slash = line.find('/', q + 1);
    size_t end = line.find('"', q + 1);
    if (slash == std::string::npos || end == std::string::npos || slash > end) return "";
    return line.substr(q + 1, slash - q - 1);
}

// Scans a source tree laid out as <root>/<folder>/... and reports every include of
// a folder that lies above the including file's own folder. Includes that do not
// name a known layer (system headers, relative includes) are not judged.
std::vector<SViolation> ScanLayers(const fs::path& root) {
    std::map<std::string, size_t> rank;
    for (size_t i = 0; i < kLayers.size(); ++i) rank[kLayers[i]] = i;
    std::vector<SViolation> out;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        const std::string ext = entry.path().extension().string();
        if (ext != ".h" && ext != ".cpp") continue;
        const fs::path rel = fs::relative(entry.path(), root);
        const std::string top = rel.begin()->string();
        if (kTop.count(top)) continue;
        auto own = rank.find(top);
        if (own == rank.end()) {
            out.push_back({rel.string(), 0, "(folder not in the layer table)"});
            continue;
        }
        std::ifstream in(entry.path());
        std::string line;
        int n = 0;
        while (std::getline(in, line)) {
            ++n;
            const std::string folder = IncludedFolder(line);
            auto inc = rank.find(folder);
            if (inc != rank.end() && inc->second > own->second) out.push_back({rel.string(), n, line});
        }
    }
    return out;
}

// File-format modules (<folder>/*_file.h and .cpp) are built into the SDL-free
// core that the tools link: they may include only base/, resources/ and other
// format modules, and no SDL header.
std::vector<SViolation> ScanFormatModules(const fs::path& root) {
    std::vector<SViolation> out;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        const std::string stem = entry.path().stem().string();
        const std::string ext = entry.path().extension().string();
        if ((ext != ".h" && ext != ".cpp") || stem.size() < 5 || stem.compare(stem.size() - 5, 5, "_file") != 0)
            continue;
        const std::string rel = fs::relative(entry.path(), root).string();
        std::ifstream in(entry.path());
        std::string line;
        int n = 0;
        while (std::getline(in, line)) {
            ++n;
            if (line.find("#include") == std::string::npos || line.compare(0, 2, "//") == 0) continue;
            if (line.find("<SDL") != std::string::npos) {
                out.push_back({rel, n, line});
                continue;
            }
            const std::string folder = IncludedFolder(line);
            if (folder.empty() || folder == "base" || folder == "resources") continue;
            const size_t close = line.rfind('"');
            if (close != std::string::npos && close >= 7 && line.compare(close - 7, 7, "_file.h") == 0) continue;
            out.push_back({rel, n, line});
        }
    }
    return out;
}

std::string Describe(const std::vector<SViolation>& v) {
    std::string s;
    for (const auto& x : v) s += x.file + ":" + std::to_string(x.line) + ": " + x.include + "\n";
    return s;
}

void Write(const fs::path& p, const std::string& text) {
    fs::create_directories(p.parent_path());
    std::ofstream(p) << text;
}

}  // namespace

TEST(Layering, NoFolderIncludesAFolderAboveIt) {
    const auto violations = ScanLayers(fs::path(ASHEN_SOURCE_DIR) / "src");
    EXPECT_TRUE(violations.empty()) << "upward includes:\n" << Describe(violations);
}

TEST(Layering, ScannerCatchesUpwardIncludesAndUnknownFolders) {
    const fs::path root = fs::current_path() / "layers";
    Write(root / "base" / "a.h", "#include <string>\n#include \"base/b.h\"\n");
    Write(root / "world" / "map.cpp", "#include \"media/graph.h\"\n  #  include \"shell/game.h\"\n");
    Write(root / "ui" / "panel.cpp", "#include \"ui/button.h\"\n#include \"script/mission.h\"\n");
    Write(root / "characters" / "role.cpp", "#include \"items/database.h\"\n#include \"ui/hud.h\"\n");
    Write(root / "items" / "x.cpp", "// #include \"shell/game.h\" in a comment is not an include\n");
    Write(root / "main.cpp", "#include \"shell/game.h\"\n");
    Write(root / "extra" / "y.cpp", "\n");
    const auto v = ScanLayers(root);
    ASSERT_EQ(v.size(), 4u) << Describe(v);
    std::set<std::string> files;
    for (const auto& x : v) files.insert(x.file + ":" + std::to_string(x.line));
    EXPECT_TRUE(files.count("world/map.cpp:2"));
    EXPECT_TRUE(files.count("ui/panel.cpp:2"));
    EXPECT_TRUE(files.count("characters/role.cpp:2"));
    EXPECT_TRUE(files.count("extra/y.cpp:0"));
}

TEST(Layering, FormatModulesStayInTheSdlFreeCore) {
    const auto violations = ScanFormatModules(fs::path(ASHEN_SOURCE_DIR) / "src");
    EXPECT_TRUE(violations.empty()) << "format modules reaching outside the core:\n" << Describe(violations);

    const fs::path root = fs::current_path() / "formats";
    Write(root / "world" / "map_file.cpp",
          "#include \"world/map_file.h\"\n#include \"base/byte_reader.h\"\n#include \"resources/bmp.h\"\n"
          "#include \"characters/role_file.h\"\n#include <cstring>\n");
    Write(root / "media" / "wav_file.cpp", "#include <SDL.h>\n#include \"media/mixer.h\"\n");
    Write(root / "media" / "sound.cpp", "#include <SDL.h>\n#include \"media/mixer.h\"\n");
    const auto v = ScanFormatModules(root);
    ASSERT_EQ(v.size(), 2u) << Describe(v);
    EXPECT_EQ(v[0].file + ":" + std::to_string(v[0].line) + "," + v[1].file + ":" + std::to_string(v[1].line),
              "media/wav_file.cpp:1,media/wav_file.cpp:2");
}
