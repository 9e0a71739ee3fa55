// The generated characters: role files against the frame pictures they name,
// picture format, transparency, feet placement, portraits and determinism.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "tools/rolegen/role_desc.h"
#include "characters/role.h"
#include "common/bytes.h"

namespace fs = std::filesystem;
using namespace rolefile;
using testbytes::Get32;

namespace {

std::vector<uint8_t> ReadFile(const fs::path& p) {
    std::ifstream f(p, std::ios::binary);
    return std::vector<uint8_t>((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
}

// A 24-bit bottom-up BMP, decoded independently of the generator's own writer.
struct Pic {
    int w = 0, h = 0;
    std::vector<uint8_t> rgb;  // top row first
    const uint8_t* At(int x, int y) const { return &rgb[(static_cast<size_t>(y) * w + x) * 3]; }
    bool Magenta(int x, int y) const {
        const uint8_t* p = At(x, y);
        return p[0] == 255 && p[1] == 0 && p[2] == 255;
    }
};

bool LoadPic(const fs::path& p, Pic& pic, std::string& why) {
    std::vector<uint8_t> b = ReadFile(p);
    if (b.size() < 54) return why = "missing or short", false;
    if (b[0] != 'B' || b[1] != 'M') return why = "no BM signature", false;
    uint32_t off = static_cast<uint32_t>(Get32(b, 10));
    int32_t w = Get32(b, 18), h = Get32(b, 22);
    int bpp = b[28] | (b[29] << 8);
    if (bpp != 24 || Get32(b, 30) != 0) return why = "not uncompressed 24-bit", false;
    if (w <= 0 || h <= 0) return why = "not a bottom-up picture", false;
    size_t stride = (static_cast<size_t>(w) * 3 + 3) & ~size_t{3};
    if (off != 54 || b.size() != 54 + stride * h || static_cast<size_t>(Get32(b, 2)) != b.size())
        return why = "size fields disagree with the file", false;
    pic.w = w;
    pic.h = h;
    pic.rgb.resize(static_cast<size_t>(w) * h * 3);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const uint8_t* s = &b[off + stride * static_cast<size_t>(h - 1 - y) + x * 3];
            uint8_t* d = &pic.rgb[(static_cast<size_t>(y) * w + x) * 3];
            d[0] = s[2];
            d[1] = s[1];
            d[2] = s[0];
        }
    return true;
}

std::vector<Desc> Looks() {
    std::vector<Desc> out;
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(fs::path(ASHEN_SOURCE_DIR) / "content/roles"))
        if (e.path().extension() == ".txt") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    for (const auto& f : files) {
        Desc d;
        std::string err;
        EXPECT_TRUE(LoadDesc(f.string(), d, err)) << err;
        out.push_back(d);
    }
    return out;
}

bool RunTool(const std::string& cmd) { return std::system((cmd + " > /dev/null").c_str()) == 0; }

std::string Bin(const char* tool) { return std::string(ASHEN_BIN_DIR) + "/" + tool; }

// The build's stage; when the game data has not been built, a fresh one.
const fs::path& Stage() {
    static fs::path stage = [] {
        fs::path built = fs::path(ASHEN_GAME_DIR) / ".." / "stage";
        if (fs::exists(built / "loose/data/role.pmg") && fs::exists(built / "role/hero/stand1_0.bmp")) return built;
        fs::path tmp = fs::current_path() / ("roles_stage_" + std::to_string(::getpid()));
        std::string roles = std::string(ASHEN_SOURCE_DIR) + "/content/roles";
        EXPECT_TRUE(RunTool(Bin("rolec") + " " + (tmp / "loose/data").string() + " " + roles + "/*.txt"));
        EXPECT_TRUE(RunTool(Bin("rolegen") + " " + tmp.string() + " " + roles));
        return tmp;
    }();
    return stage;
}

fs::path FramePath(const std::string& name) {
    std::string p = name;
    std::replace(p.begin(), p.end(), '\\', '/');
    return Stage() / "role" / p;
}

}  // namespace

TEST(RoleOutput, EveryLookHasFiveActionsInEightDirectionsWithFramesOnDisk) {
    ASSERT_TRUE(fs::exists(Bin("rolegen"))) << "build the rolegen tool first";
    std::vector<Desc> looks = Looks();
    std::map<std::string, std::string> files;
    for (const auto& d : looks) files[d.look] = d.file;
    const std::map<std::string, std::string> want = {
        {"hero", "role.pmg"},         {"villager_m", "villager_m.rol"}, {"villager_f", "villager_f.rol"},
        {"elder", "elder.rol"},       {"merchant1", "merchant1.rol"},   {"merchant2", "merchant2.rol"},
        {"merchant3", "merchant3.rol"}, {"guard", "guard.rol"},         {"bandit", "bandit.rol"},
        {"wolf", "wolf.rol"},         {"skeleton", "skeleton.rol"},     {"ashknight", "ashknight.rol"}};
    for (const auto& [look, file] : want) EXPECT_EQ(files[look], file) << look;

    const std::map<std::string, int> minimum = {{"stand", 4}, {"walk", 8}, {"run", 8}, {"fight", 6}, {"die", 6}};
    for (const auto& d : looks) {
        SCOPED_TRACE(d.look);
        // A role is placed by the bottom-left corner of its first standing frame;
        // every look keeps its feet at the same offset from that corner, so roles
        // placed at the same point stand on the same spot.
        EXPECT_EQ(d.footX * 2, d.width);
        EXPECT_EQ(d.height - d.footY, 16);
        std::vector<uint8_t> bytes = ReadFile(Stage() / "loose/data" / d.file);
        // The staged file is exactly what the description compiles to.
        EXPECT_EQ(bytes, BuildRoleFile(d));
        RoleFile rf;
        std::string err;
        ASSERT_TRUE(ParseRoleFile(bytes, rf, err)) << err;
        std::map<std::string, int> seen;
        int next = 0;
        for (const auto& a : rf.actions) {
            seen[a.name] = a.frames;
            EXPECT_EQ(a.first, next) << a.name;  // actions own consecutive blocks of 8 * n
            next += 8 * a.frames;
            for (int dir = 1; dir <= 8; ++dir)
                for (int k = 0; k < a.frames; ++k) {
                    const std::string& name = rf.frames[static_cast<size_t>(a.first + (dir - 1) * a.frames + k)].name;
                    EXPECT_EQ(name, d.look + "\\" + a.name + std::to_string(dir) + "_" + std::to_string(k) + ".bmp");
                }
        }
        EXPECT_EQ(next, static_cast<int>(rf.frames.size()));
        for (const auto& [action, n] : minimum) EXPECT_GE(seen[action], n) << action;
        // Every frame named exists in the role pack with the declared size.
        int bad = 0;
        for (const auto& f : rf.frames) {
            EXPECT_LE(f.name.size(), 31u);
            Pic pic;
            std::string why;
            if (!LoadPic(FramePath(f.name), pic, why)) {
                if (++bad < 5) ADD_FAILURE() << f.name << ": " << why;
                continue;
            }
            if (pic.w != f.width || pic.h != f.height) {
                if (++bad < 5) ADD_FAILURE() << f.name << " is " << pic.w << "x" << pic.h;
            }
        }
        EXPECT_EQ(bad, 0);
    }
}

TEST(RoleOutput, MagentaOnlyWhereTransparentAndHardDarkEdges) {
    for (const auto& d : Looks()) {
        SCOPED_TRACE(d.look);
        int nearMagenta = 0, softEdge = 0, thin = 0;
        for (size_t a = 0; a < d.actions.size(); ++a)
            for (int dir = 1; dir <= 8; ++dir)
                for (int k = 0; k < d.actions[a].frames; ++k) {
                    Pic pic;
                    std::string why;
                    ASSERT_TRUE(LoadPic(FramePath(d.FrameName(a, dir, k)), pic, why)) << why;
                    int solid = 0;
                    for (int y = 0; y < pic.h; ++y)
                        for (int x = 0; x < pic.w; ++x) {
                            if (pic.Magenta(x, y)) continue;
                            ++solid;
                            const uint8_t* p = pic.At(x, y);
                            // Anything that would turn into the 5-6-5 key, or looks like it.
                            if (p[0] >= 224 && p[1] <= 40 && p[2] >= 224) ++nearMagenta;
                            // Pixels touching the background belong to the dark outline.
                            bool edge = (x > 0 && pic.Magenta(x - 1, y)) || (x + 1 < pic.w && pic.Magenta(x + 1, y)) ||
                                        (y > 0 && pic.Magenta(x, y - 1)) || (y + 1 < pic.h && pic.Magenta(x, y + 1));
                            if (edge && std::max({p[0], p[1], p[2]}) > 96) ++softEdge;
                        }
                    if (solid < 150) ++thin;
                }
        EXPECT_EQ(nearMagenta, 0);
        EXPECT_EQ(softEdge, 0);
        EXPECT_EQ(thin, 0) << "frames with almost nothing drawn";
    }
}

// Lowest solid row and centroid of a frame.
struct Shape {
    int lowest = -1;
    double cx = 0, cy = 0;
    int solid = 0;
};

Shape Measure(const Pic& pic) {
    Shape s;
    long sx = 0, sy = 0;
    for (int y = 0; y < pic.h; ++y)
        for (int x = 0; x < pic.w; ++x)
            if (!pic.Magenta(x, y)) {
                s.lowest = y;
                sx += x;
                sy += y;
                ++s.solid;
            }
    if (s.solid) {
        s.cx = static_cast<double>(sx) / s.solid;
        s.cy = static_cast<double>(sy) / s.solid;
    }
    return s;
}

TEST(RoleOutput, FeetOnOneBaselineAndSmoothCycles) {
    for (const auto& d : Looks()) {
        SCOPED_TRACE(d.look);
        // Feet reach forward and back on the ground plane, which the camera tilts:
        // a foot ahead of the body shows a few rows below the foot point.
        // Held weapons may reach a little lower than the soles.
        const int below = static_cast<int>(10 * d.scale + 0.5), stride = static_cast<int>(12 * d.scale + 0.5);
        std::vector<int> standLowest;
        for (size_t a = 0; a < d.actions.size(); ++a) {
            const std::string& act = d.actions[a].name;
            if (act != "stand" && act != "walk" && act != "run") continue;
            const int n = d.actions[a].frames;
            for (int dir = 1; dir <= 8; ++dir) {
                std::vector<Pic> pics(static_cast<size_t>(n));
                std::vector<Shape> shapes;
                double meanLowest = 0;
                for (int k = 0; k < n; ++k) {
                    std::string why;
                    ASSERT_TRUE(LoadPic(FramePath(d.FrameName(a, dir, k)), pics[static_cast<size_t>(k)], why)) << why;
                    shapes.push_back(Measure(pics[static_cast<size_t>(k)]));
                    meanLowest += shapes.back().lowest / static_cast<double>(n);
                }
                std::string at = act + std::to_string(dir);
                if (act == "stand") {
                    for (int k = 0; k < n; ++k) {
                        const Shape& s = shapes[static_cast<size_t>(k)];
                        standLowest.push_back(s.lowest);
                        EXPECT_GE(s.lowest, d.footY - 1) << at << "_" << k;
                        EXPECT_LE(s.lowest, d.footY + below) << at << "_" << k;
                        // The figure stands over the foot point, not beside it.
                        long sx = 0, cnt = 0;
                        const Pic& pic = pics[static_cast<size_t>(k)];
                        for (int y = std::max(0, d.footY - 6); y < d.footY; ++y)
                            for (int x = 0; x < pic.w; ++x)
                                if (!pic.Magenta(x, y)) {
                                    sx += x;
                                    ++cnt;
                                }
                        ASSERT_GT(cnt, 0);
                        EXPECT_NEAR(static_cast<double>(sx) / cnt, d.footX, 9.0 * d.scale) << at << "_" << k;
                    }
                } else {
                    for (int k = 0; k < n; ++k) {
                        EXPECT_GE(shapes[static_cast<size_t>(k)].lowest, d.footY - 8) << at << "_" << k;
                        EXPECT_LE(shapes[static_cast<size_t>(k)].lowest, d.footY + stride) << at << "_" << k;
                    }
                    EXPECT_GE(meanLowest, d.footY - 4) << at;
                    EXPECT_LE(meanLowest, d.footY + below + 1) << at;
                }
                // Cycles run smoothly round, the last frame leading back into the first:
                // the figure moves between steps, but never jumps.
                for (int k = 0; k < n; ++k) {
                    const Shape& s0 = shapes[static_cast<size_t>(k)];
                    const Shape& s1 = shapes[static_cast<size_t>((k + 1) % n)];
                    const double jump = (act == "run" ? 6.0 : 3.0) * d.scale;
                    EXPECT_LE(std::abs(s1.cx - s0.cx), jump) << at << "_" << k;
                    EXPECT_LE(std::abs(s1.cy - s0.cy), jump) << at << "_" << k;
                    int differ = 0;
                    const Pic& p0 = pics[static_cast<size_t>(k)];
                    const Pic& p1 = pics[static_cast<size_t>((k + 1) % n)];
                    for (size_t i = 0; i < p0.rgb.size(); ++i) differ += p0.rgb[i] != p1.rgb[i];
                    EXPECT_GT(differ, act == "stand" ? 3 : 30) << at << "_" << k << " does not move";
                }
            }
        }
        // Most standing frames end just under the foot row: soles reach a little
        // forward of the ankles, and the outline adds a row.
        ASSERT_FALSE(standLowest.empty());
        std::sort(standLowest.begin(), standLowest.end());
        int median = standLowest[standLowest.size() / 2];
        EXPECT_GE(median, d.footY - 1);
        EXPECT_LE(median, d.footY + static_cast<int>(5 * d.scale + 0.5));
    }
}

TEST(RoleOutput, PortraitsForEverySpeakingCharacter) {
    const char* faces[] = {"hadrin", "maren", "brannoc", "lisse", "oda", "fen", "ivo",
                           "pell", "villager_m", "villager_f", "guard", "vey", "ashknight"};
    std::vector<uint64_t> sums;
    for (const char* f : faces) {
        SCOPED_TRACE(f);
        Pic pic;
        std::string why;
        ASSERT_TRUE(LoadPic(Stage() / "face" / (std::string(f) + ".bmp"), pic, why)) << why;
        EXPECT_EQ(pic.w, 80);
        EXPECT_EQ(pic.h, 80);
        uint64_t sum = 0;
        int nearMagenta = 0;
        for (int y = 0; y < pic.h; ++y)
            for (int x = 0; x < pic.w; ++x) {
                const uint8_t* p = pic.At(x, y);
                if (p[0] >= 224 && p[1] <= 40 && p[2] >= 224) ++nearMagenta;
                sum = sum * 31 + p[0] + p[1] * 7 + p[2] * 13;
            }
        EXPECT_EQ(nearMagenta, 0);
        sums.push_back(sum);
    }
    // No two characters share a picture.
    std::sort(sums.begin(), sums.end());
    EXPECT_EQ(std::adjacent_find(sums.begin(), sums.end()), sums.end());
}

TEST(RoleOutput, GenerationIsDeterministic) {
    fs::path tmp = fs::current_path() / ("roles_det_" + std::to_string(::getpid()));
    std::string roles = std::string(ASHEN_SOURCE_DIR) + "/content/roles";
    ASSERT_TRUE(RunTool(Bin("rolegen") + " " + (tmp / "a").string() + " " + roles + " wolf hero faces"));
    ASSERT_TRUE(RunTool(Bin("rolegen") + " " + (tmp / "b").string() + " " + roles + " wolf hero faces"));
    int files = 0;
    for (const auto& e : fs::recursive_directory_iterator(tmp / "a")) {
        if (!e.is_regular_file()) continue;
        fs::path rel = fs::relative(e.path(), tmp / "a");
        std::vector<uint8_t> a = ReadFile(e.path());
        EXPECT_EQ(a, ReadFile(tmp / "b" / rel)) << rel;
        // The same bytes as the build's own stage.
        EXPECT_EQ(a, ReadFile(Stage() / rel)) << rel;
        ++files;
    }
    EXPECT_EQ(files, 2 * 8 * (4 + 8 + 8 + 6 + 6) + 13);
    fs::remove_all(tmp);
}

TEST(RoleOutput, GeneratorReportsFaultyRecipesWithFileAndLine) {
    fs::path tmp = fs::current_path() / ("roles_bad_" + std::to_string(::getpid()));
    fs::create_directories(tmp / "roles/faces");
    fs::copy_file(fs::path(ASHEN_SOURCE_DIR) / "content/roles/wolf.txt", tmp / "roles/wolf.txt");
    std::ofstream(tmp / "roles/broken.txt") << "look broken\nfile broken.rol\nrig spider\nsize 64 80\naction stand 4\n";
    std::ofstream(tmp / "roles/faces/portraits.txt") << "# faces\n"
                                                        "face a nosuch\n"
                                                        "face b wolf colour:fur:300,0,0\n"
                                                        "face c wolf +hood bg:10,20,30\n"
                                                        "face d\n";
    std::string cmd = Bin("rolegen") + " " + (tmp / "stage").string() + " " + (tmp / "roles").string() + " 2>" +
                      (tmp / "err.txt").string();
    EXPECT_NE(std::system((cmd + " >/dev/null").c_str()), 0);
    std::ifstream ef(tmp / "err.txt");
    std::string err((std::istreambuf_iterator<char>(ef)), std::istreambuf_iterator<char>());
    EXPECT_NE(err.find("broken.txt:3: unknown rig 'spider'"), std::string::npos) << err;
    EXPECT_NE(err.find("portraits.txt:2: unknown look 'nosuch'"), std::string::npos) << err;
    EXPECT_NE(err.find("portraits.txt:3: bad colour option"), std::string::npos) << err;
    EXPECT_NE(err.find("portraits.txt:5: expected"), std::string::npos) << err;
    // The valid parts still come out: the wolf's frames and the good portrait.
    EXPECT_TRUE(fs::exists(tmp / "stage/role/wolf/die8_5.bmp"));
    EXPECT_TRUE(fs::exists(tmp / "stage/face/c.bmp"));
    EXPECT_FALSE(fs::exists(tmp / "stage/face/b.bmp"));
    EXPECT_FALSE(fs::exists(tmp / "stage/role/broken"));
    fs::remove_all(tmp);
}

TEST(RoleOutput, EngineReaderAcceptsEveryGeneratedRoleFile) {
    for (const auto& d : Looks()) {
        SCOPED_TRACE(d.look);
        SRoleFile file;
        std::string error;
        ASSERT_TRUE(LoadRoleFile((Stage() / "loose/data" / d.file).string(), file, &error)) << error;
        const SRoleFileHeader& header = file.header;
        const std::vector<SRoleAction>& actions = file.actions;
        const std::vector<SRoleFrame>& frames = file.frames;
        EXPECT_EQ(header.magic, ROLE_FILE_MAGIC);
        ASSERT_EQ(actions.size(), d.actions.size());
        ASSERT_EQ(frames.size(), static_cast<size_t>(d.FrameCount()));
        for (size_t a = 0; a < actions.size(); ++a) {
            EXPECT_STREQ(actions[a].name, d.actions[a].name.c_str());
            EXPECT_EQ(actions[a].framesPerDir, d.actions[a].frames);
            // Last step of the last direction: the end of the action's block.
            int last = actions[a].firstFrame + 7 * actions[a].framesPerDir + actions[a].framesPerDir - 1;
            EXPECT_STREQ(frames[static_cast<size_t>(last)].bitmap, d.FrameName(a, 8, d.actions[a].frames - 1).c_str());
            EXPECT_EQ(frames[static_cast<size_t>(last)].width, d.width);
            EXPECT_EQ(frames[static_cast<size_t>(last)].height, d.height);
        }
    }
}
