// Role descriptions and the binary role file: byte layout, frame numbering,
// name limits, error reports and the checks on reading a damaged file.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <cstdlib>
#include <iterator>
#include <unistd.h>

#include "common/bytes.h"
#include "tools/rolegen/role_desc.h"

namespace fs = std::filesystem;
using namespace rolefile;
using testbytes::Get32;
using testbytes::Set32;

namespace {

const char* kTwoActions =
    "# test role\n"
    "look tst\n"
    "file tst.rol\n"
    "rig humanoid\n"
    "size 40 50\n"
    "action stand 4   # four frames a direction\n"
    "action fight 6\n";

Desc ParseOk(const std::string& text) {
    Desc d;
    std::string err;
    EXPECT_TRUE(ParseDesc(text, "t.txt", d, err)) << err;
    return d;
}

std::string Errors(const std::string& text) {
    Desc d;
    std::string err;
    EXPECT_FALSE(ParseDesc(text, "t.txt", d, err));
    return err;
}

std::string NameAt(const std::vector<uint8_t>& b, size_t at) { return std::string(reinterpret_cast<const char*>(&b[at])); }

}  // namespace

TEST(RoleFile, ByteLayoutOfHeaderActionsAndFrames) {
    Desc d = ParseOk(kTwoActions);
    std::vector<uint8_t> b = BuildRoleFile(d);
    const int F = 8 * 4 + 8 * 6;
    ASSERT_EQ(b.size(), size_t(2532 + 2 * 3188 + F * 44));
    // Magic 8077 little-endian, counts at 24 and 28.
    EXPECT_EQ(b[0], 0x8D);
    EXPECT_EQ(b[1], 0x1F);
    EXPECT_EQ(b[2], 0);
    EXPECT_EQ(b[3], 0);
    EXPECT_EQ(Get32(b, 24), F);
    EXPECT_EQ(Get32(b, 28), 2);
    // Action records: name at 4, frames per direction at 56, first frame at 3184.
    EXPECT_EQ(NameAt(b, 2532 + 4), "stand");
    EXPECT_EQ(Get32(b, 2532 + 56), 4);
    EXPECT_EQ(Get32(b, 2532 + 3184), 0);
    EXPECT_EQ(NameAt(b, 2532 + 3188 + 4), "fight");
    EXPECT_EQ(Get32(b, 2532 + 3188 + 56), 6);
    EXPECT_EQ(Get32(b, 2532 + 3188 + 3184), 32);
    // The name field is NUL padded to its end.
    for (int i = 4 + 5; i < 56; ++i) ASSERT_EQ(b[2532 + i], 0) << i;
    // Frame records: width at 4, height at 8, name at 12.
    const size_t frames = 2532 + 2 * 3188;
    EXPECT_EQ(Get32(b, frames + 4), 40);
    EXPECT_EQ(Get32(b, frames + 8), 50);
    EXPECT_EQ(NameAt(b, frames + 12), "tst\\stand1_0.bmp");
    // Direction 8 with n = 4 owns frames first + 28 .. first + 31.
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(d.FrameIndex(0, 8, k), 28 + k);
        EXPECT_EQ(NameAt(b, frames + (28 + k) * 44 + 12), "tst\\stand8_" + std::to_string(k) + ".bmp");
    }
    // The second action starts after all 8 * 4 stand frames; direction 3, step 5.
    EXPECT_EQ(d.FrameIndex(1, 3, 5), 32 + 2 * 6 + 5);
    EXPECT_EQ(NameAt(b, frames + (32 + 17) * 44 + 12), "tst\\fight3_5.bmp");
    EXPECT_EQ(NameAt(b, frames + (F - 1) * 44 + 12), "tst\\fight8_5.bmp");

    // Reading back gives the same table.
    RoleFile rf;
    std::string err;
    ASSERT_TRUE(ParseRoleFile(b, rf, err)) << err;
    ASSERT_EQ(rf.actions.size(), 2u);
    EXPECT_EQ(rf.actions[1].first, 32);
    EXPECT_EQ(rf.frames.size(), size_t(F));
    EXPECT_EQ(rf.frames[49].name, "tst\\fight3_5.bmp");
}

TEST(RoleFile, NameLimitsAndErrorLines) {
    std::string base = "look l\nfile l.rol\nrig humanoid\nsize 10 10\n";
    // 51-byte action name fits its 52-byte field (with a one-letter look the frame
    // name is too long, which is reported as a separate fault on the same line).
    std::string n51(51, 'a'), n52(52, 'a');
    std::string e = Errors(base + "action " + n52 + " 1\n");
    EXPECT_NE(e.find("t.txt:5: action name"), std::string::npos) << e;
    e = Errors(base + "action " + n51 + " 1\n");
    EXPECT_EQ(e.find("action name"), std::string::npos) << e;
    EXPECT_NE(e.find("t.txt:5: frame name"), std::string::npos) << e;

    // Frame names: "<look>\<action>8_<n-1>.bmp" must be at most 31 bytes.
    // look of 14 + "\" + "stand" + "8_3" + ".bmp" = 14 + 1 + 5 + 3 + 4 = 27.
    std::string look14(14, 'x');
    std::string ok = "look " + look14 + "\nfile l.rol\nrig humanoid\nsize 10 10\naction stand 4\n";
    Desc d = ParseOk(ok);
    EXPECT_EQ(d.FrameName(0, 8, 3).size(), 27u);
    // An action of 10 frames gives "_9" still; 11 frames gives "_10", one byte more.
    std::string look18(18, 'x');  // 18 + 1 + 5 + 3 + 4 = 31: fits exactly
    ParseOk("look " + look18 + "\nfile l.rol\nrig humanoid\nsize 10 10\naction stand 10\n");
    e = Errors("look " + look18 + "\nfile l.rol\nrig humanoid\nsize 10 10\naction stand 11\n");
    EXPECT_NE(e.find("t.txt:5: frame name"), std::string::npos) << e;

    // Several faults are all reported, each with its line.
    e = Errors(base + "colour cloak 255 0 255\nbogus 1\naction walk 0\naction walk 2\naction walk 2\ngear sword wings\n");
    EXPECT_NE(e.find("t.txt:5: colour 'cloak' is too close"), std::string::npos) << e;
    EXPECT_NE(e.find("t.txt:6: unknown key 'bogus'"), std::string::npos) << e;
    EXPECT_NE(e.find("t.txt:7: '0' is not a number from 1"), std::string::npos) << e;
    EXPECT_NE(e.find("t.txt:9: action 'walk' is declared twice"), std::string::npos) << e;
    EXPECT_NE(e.find("t.txt:10: unknown gear 'wings'"), std::string::npos) << e;
    // Missing required lines.
    e = Errors("look l\n");
    EXPECT_NE(e.find("no 'file' line"), std::string::npos);
    EXPECT_NE(e.find("no 'size' line"), std::string::npos);
    EXPECT_NE(e.find("no 'action' line"), std::string::npos);
    // A foot point outside the frame, and a default one at the bottom centre.
    e = Errors(base + "foot 10 3\naction stand 1\n");
    EXPECT_NE(e.find("t.txt:4: the foot point"), std::string::npos) << e;
    d = ParseOk("look l\nfile l.rol\nrig bony\nsize 40 60\naction stand 1\n");
    EXPECT_EQ(d.footX, 20);
    EXPECT_EQ(d.footY, 52);
}

TEST(RoleFile, ReadingRejectsDamagedFiles) {
    Desc d = ParseOk(kTwoActions);
    const std::vector<uint8_t> good = BuildRoleFile(d);
    RoleFile rf;
    std::string err;
    ASSERT_TRUE(ParseRoleFile(good, rf, err));

    auto bad = good;
    bad.resize(2531);
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    bad = good;
    bad.pop_back();  // one byte short of the last frame
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    bad = good;
    Set32(bad, 0, 8078);
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    EXPECT_EQ(err, "bad magic");
    bad = good;
    Set32(bad, 24, 0x7FFFFFFF);  // absurd frame count must not overflow the size check
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    bad = good;
    Set32(bad, 28, -1);
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    bad = good;
    Set32(bad, 2532 + 3188 + 3184, 33);  // fight would end one frame past the table
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    Set32(bad, 2532 + 3188 + 3184, 32);
    EXPECT_TRUE(ParseRoleFile(bad, rf, err)) << err;
    for (int i = 0; i < 52; ++i) bad[2532 + 4 + i] = 'x';  // unterminated action name
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
    bad = good;
    for (int i = 0; i < 32; ++i) bad[2532 + 2 * 3188 + 12 + i] = 'y';  // unterminated frame name
    EXPECT_FALSE(ParseRoleFile(bad, rf, err));
}

TEST(RoleFile, CompilerToolWritesEveryLookAndReportsFaults) {
    const std::string rolec = std::string(ASHEN_BIN_DIR) + "/rolec";
    ASSERT_TRUE(fs::exists(rolec)) << "build the rolec tool first";
    fs::path tmp = fs::current_path() / ("rolec_test_" + std::to_string(::getpid()));
    fs::create_directories(tmp);

    // The game's own descriptions: all compile, the hero's goes to role.pmg.
    std::string cmd = rolec + " " + tmp.string();
    int looks = 0;
    for (const auto& e : fs::directory_iterator(fs::path(ASHEN_SOURCE_DIR) / "content/roles"))
        if (e.path().extension() == ".txt") {
            cmd += " " + e.path().string();
            ++looks;
        }
    EXPECT_GE(looks, 12);
    ASSERT_EQ(std::system((cmd + " 2>" + (tmp / "err.txt").string()).c_str()), 0);
    EXPECT_TRUE(fs::exists(tmp / "role.pmg"));
    for (const char* f : {"villager_m.rol", "villager_f.rol", "elder.rol", "merchant1.rol", "merchant2.rol",
                          "merchant3.rol", "guard.rol", "bandit.rol", "wolf.rol", "skeleton.rol", "ashknight.rol"})
        EXPECT_TRUE(fs::exists(tmp / f)) << f;

    // A faulty description fails the run with file and line on stderr.
    fs::path badDesc = tmp / "bad.txt";
    std::ofstream(badDesc) << "look bad\nfile bad.rol\nrig humanoid\nsize 10 10\naction stand 0\n";
    int rc = std::system((rolec + " " + tmp.string() + " " + badDesc.string() + " 2>" + (tmp / "err.txt").string())
                             .c_str());
    EXPECT_NE(rc, 0);
    std::ifstream ef(tmp / "err.txt");
    std::string errText((std::istreambuf_iterator<char>(ef)), std::istreambuf_iterator<char>());
    EXPECT_NE(errText.find(badDesc.string() + ":5:"), std::string::npos) << errText;
    EXPECT_FALSE(fs::exists(tmp / "bad.rol"));
    fs::remove_all(tmp);
}
