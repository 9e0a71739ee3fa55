// Roles: the animation file, frame choice, construction, view origin, highlight.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "characters/role.h"
#include "items/item_pack.h"
#include "media/surface.h"

namespace fs = std::filesystem;

namespace {

SRoleAction Action(const char* name, int n, int first) {
    SRoleAction a{};
    std::snprintf(a.name, sizeof a.name, "%s", name);
    a.framesPerDir = n;
    a.firstFrame = first;
    return a;
}

// Frames of one size, each with its own picture name.
std::vector<SRoleFrame> Frames(int count, int w, int h) {
    std::vector<SRoleFrame> f(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        f[size_t(i)].width = w;
        f[size_t(i)].height = h;
        std::snprintf(f[size_t(i)].bitmap, sizeof f[size_t(i)].bitmap, "t\\f%d.bmp", i);
    }
    return f;
}

// Runs each test in a fresh folder with a data/ subfolder for the role files.
class RoleFiles : public ::testing::Test {
protected:
    void SetUp() override {
        m_old = fs::current_path();
        m_dir = fs::current_path() /
                ("ashen_roles_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(m_dir);
        fs::create_directories(m_dir / "data");
        fs::current_path(m_dir);
    }
    void TearDown() override { fs::current_path(m_old); }
    void WriteRole(const char* name, const std::vector<SRoleAction>& a, const std::vector<SRoleFrame>& f) {
        ASSERT_TRUE(WriteRoleFile(("data/" + std::string(name)).c_str(), a, f));
    }
    std::vector<uint8_t> Bytes(const char* name) {
        std::ifstream in(m_dir / "data" / name, std::ios::binary);
        return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
    }
    void Put(const char* name, const std::vector<uint8_t>& b) {
        std::ofstream out(m_dir / "data" / name, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
    }
    fs::path m_old, m_dir;
};

}  // namespace

TEST_F(RoleFiles, FileLayoutAndFrameIndexing) {
    // walk: 8 x 2 frames from 0; stand: 8 x 4 frames from 16.
    WriteRole("r.rol", {Action("walk", 2, 0), Action("stand", 4, 16)}, Frames(48, 72, 80));
    const std::vector<uint8_t> b = Bytes("r.rol");
    ASSERT_EQ(b.size(), 2532u + 2 * 3188 + 48 * 44);
    EXPECT_EQ(b[0] | (b[1] << 8), 8077);
    EXPECT_EQ(b[24], 48);   // frame count
    EXPECT_EQ(b[28], 2);    // action count
    const uint8_t* second = b.data() + 2532 + 3188;
    EXPECT_STREQ(reinterpret_cast<const char*>(second + 4), "stand");
    EXPECT_EQ(second[56], 4);
    EXPECT_EQ(second[3184], 16);
    const uint8_t* frame1 = b.data() + 2532 + 2 * 3188 + 44;
    EXPECT_EQ(frame1[4], 72);
    EXPECT_EQ(frame1[8], 80);
    EXPECT_STREQ(reinterpret_cast<const char*>(frame1 + 12), "t\\f1.bmp");

    CRole role("r.rol", "hadrin", 100, 200, 10, 100, 1);
    ASSERT_TRUE(role.HasActions());
    EXPECT_EQ(role.FindAction("stand"), 1);
    EXPECT_EQ(role.FindAction("walk"), 0);
    EXPECT_EQ(role.FindAction("Stand"), -1);
    EXPECT_EQ(role.FindAction("sta"), -1);
    // Direction 8 with n = 4 shows first + 28 .. first + 31.
    EXPECT_EQ(role.FrameIndex(1, 8, 0), 16 + 28);
    EXPECT_EQ(role.FrameIndex(1, 8, 3), 16 + 31);
    EXPECT_EQ(role.FrameIndex(1, 1, 0), 16);
    EXPECT_EQ(role.FrameIndex(0, 5, 1), 9);
    EXPECT_EQ(role.FrameIndex(1, 9, 0), -1);  // past the table
    EXPECT_EQ(role.FrameIndex(-1, 1, 0), -1);
    // SetAction picks the frame, the state and the direction.
    EXPECT_EQ(role.SetAction(8, "stand", 3), 8);
    EXPECT_EQ(role.m_nFrame, 47);
    EXPECT_STREQ(role.GetState(), "stand");
    role.SetDirection(2);
    role.DrawFrame(1);
    EXPECT_EQ(role.m_nFrame, 16 + 4 + 1);
    // The stand handler loops 0..n-1.
    role.m_nStep = 3;
    role.Update(0);
    EXPECT_EQ(role.m_nStep, 0);
    role.Update(0);
    EXPECT_EQ(role.m_nStep, 1);
}

TEST_F(RoleFiles, ConstructionStartsOnTheStandingPicture) {
    // Odd sizes: the halves round toward zero.
    WriteRole("s.rol", {Action("walk", 1, 0), Action("stand", 1, 8)}, Frames(16, 73, 81));
    CRole a("s.rol", "hadrin", 100, 232, 10, 100, 1);
    EXPECT_EQ(a.m_nFrame, 8);
    EXPECT_EQ(a.m_x, 100 + 36);
    EXPECT_EQ(a.m_y, 232 - 40);
    EXPECT_EQ(a.m_nHp, 100);
    EXPECT_EQ(a.m_nMaxHp, 100);
    EXPECT_EQ(a.m_nAttack, 10);
    EXPECT_EQ(a.m_nMp, 50);
    EXPECT_EQ(a.m_nHitRate, 30);
    EXPECT_STREQ(a.m_szFightSound, "role_fight.wav");
    EXPECT_STREQ(a.GetState(), "");
    const SRect r = a.GetRect();
    EXPECT_EQ(r.left, 136 - 36);
    EXPECT_EQ(r.right, 136 + 36);
    EXPECT_EQ(r.top, 192 - 40);
    EXPECT_EQ(r.bottom, 192 + 40);
    // The first tick of a new role makes it stand.
    a.Update(0);
    EXPECT_STREQ(a.GetState(), "stand");

    // A file with walk but no stand starts on the first walk frame.
    std::vector<SRoleFrame> frames = Frames(16, 40, 60);
    frames[4].width = 50;
    WriteRole("w.rol", {Action("fight", 1, 8), Action("walk", 1, 4)}, frames);
    CRole w("w.rol", "x", 0, 100, 1, 1, 0);
    EXPECT_EQ(w.m_nFrame, 4);
    EXPECT_EQ(w.m_x, 25);
    EXPECT_EQ(w.m_y, 70);
}

TEST_F(RoleFiles, DamagedFilesLeaveARoleWithoutActions) {
    WriteRole("ok.rol", {Action("stand", 1, 0)}, Frames(8, 10, 10));
    const std::vector<uint8_t> good = Bytes("ok.rol");

    std::vector<uint8_t> magic = good;
    magic[0] = 0x8E;
    Put("magic.rol", magic);
    std::vector<uint8_t> cut(good.begin(), good.end() - 10);
    Put("cut.rol", cut);
    std::vector<uint8_t> lying = good;
    lying[28] = 200;  // 200 actions
    Put("lying.rol", lying);
    std::vector<uint8_t> negative = good;
    negative[27] = 0x80;  // negative frame count
    Put("negative.rol", negative);
    std::vector<uint8_t> header(good.begin(), good.begin() + 100);
    Put("header.rol", header);
    for (const char* name : {"missing.rol", "magic.rol", "cut.rol", "lying.rol", "negative.rol", "header.rol"}) {
        CRole r(name, "x", 5, 50, 1, 10, 0);
        EXPECT_FALSE(r.HasActions()) << name;
        EXPECT_EQ(r.m_x, 5) << name;
        EXPECT_EQ(r.m_y, 50) << name;
        r.Update(0);  // nothing to draw, nothing breaks
        r.SetAction(3, "walk", 2);
        EXPECT_EQ(r.FindAction("stand"), -1);
    }
    // An action whose frames run past the table draws nothing and keeps the frame.
    WriteRole("short.rol", {Action("stand", 4, 6)}, Frames(8, 10, 10));
    CRole s("short.rol", "x", 0, 0, 1, 1, 0);
    s.SetAction(8, "stand", 3);
    EXPECT_EQ(s.m_nFrame, 6);
}

TEST_F(RoleFiles, DeathRunsItsFramesThenStops) {
    WriteRole("d.rol", {Action("stand", 1, 0), Action("die", 3, 8)}, Frames(32, 10, 10));
    CRole r("d.rol", "x", 0, 100, 1, 10, 0);
    r.m_nNpcId = 2;
    r.SetHighlight(1);
    r.m_nHp = 0;
    r.Update(0);  // HP 0: "die", step 0 shown
    EXPECT_STREQ(r.GetState(), "die");
    EXPECT_EQ(r.m_nStep, 1);
    r.Update(0);
    EXPECT_EQ(r.m_nStep, 2);
    EXPECT_STREQ(r.GetState(), "die");
    r.Update(0);  // the last frame: onto the ground, "dieout"
    EXPECT_STREQ(r.GetState(), "dieout");
    EXPECT_EQ(r.m_nStep, 2);
    EXPECT_EQ(r.m_bHighlight, 0);
    EXPECT_EQ(r.m_nDrawSurface, 3);
    EXPECT_TRUE(r.IsDead());

    // Without a die action the role goes straight to "dieout".
    WriteRole("n.rol", {Action("stand", 1, 0)}, Frames(8, 10, 10));
    CRole n("n.rol", "x", 0, 100, 1, 10, 0);
    n.m_nHp = -3;
    n.Update(0);
    EXPECT_STREQ(n.GetState(), "dieout");
}

TEST(Role, ViewOriginAtTheWorldsCorners) {
    CRole r("none.rol", "x", 0, 0, 1, 1, 0);
    auto origin = [&r](int x, int y) {
        r.SetPosition(x, y, 5);
        return r.GetViewOrigin();
    };
    EXPECT_EQ(origin(100, 100).x, 0);
    EXPECT_EQ(origin(100, 100).y, 0);
    EXPECT_EQ(origin(3100, 1500).x, 2560);
    EXPECT_EQ(origin(3100, 1500).y, 1120);
    EXPECT_EQ(origin(1000, 800).x, 680);
    EXPECT_EQ(origin(1000, 800).y, 560);
    EXPECT_EQ(origin(320, 240).x, 0);
    EXPECT_EQ(origin(2880, 1360).x, 2560);
    EXPECT_EQ(origin(2880, 1360).y, 1120);
    EXPECT_EQ(origin(2879, 1359).x, 2559);
    EXPECT_EQ(origin(2879, 1359).y, 1119);
    EXPECT_EQ(origin(-50, 5000).x, 0);
    EXPECT_EQ(origin(-50, 5000).y, 1120);
}

TEST(Role, HighlightBrightensAndSaturates) {
    uint16_t px[6] = {KEY565, 0x0000, 0xFFFF, uint16_t((24 << 11) | (48 << 5) | 23),
                      uint16_t((25 << 11) | (49 << 5) | 24), 0xF81E};
    BrightenPixels(px, 3, 2, 3);
    EXPECT_EQ(px[0], KEY565);
    EXPECT_EQ(px[1], uint16_t((7 << 11) | (14 << 5) | 7));
    EXPECT_EQ(px[2], 0xFFFF);
    EXPECT_EQ(px[3], uint16_t((31 << 11) | (62 << 5) | 30));
    EXPECT_EQ(px[4], uint16_t((31 << 11) | (63 << 5) | 31));
    EXPECT_EQ(px[5], uint16_t((31 << 11) | (14 << 5) | 31));  // near the key: changed
}

TEST(Role, InfoRoundTrip) {
    CRole r("none.rol", "x", 0, 0, 12, 90, 0);
    r.m_nMoney = 77;
    r.m_nMoral = -5;
    r.m_vecSkills = {{1, 1}, {3, 2}};
    SRoleInfo info{};
    r.GetInfo(info);
    EXPECT_EQ(info.maxHp, 90);
    EXPECT_EQ(info.attack, 12);
    EXPECT_EQ(info.moral, -5);
    CRole other("none.rol", "y", 0, 0, 1, 1, 0);
    other.m_nFightTargetId = 4;
    CUserItemPack bag(9);
    CWeaponItemPack equipment;
    other.SetInfo(info, &bag, &equipment);
    EXPECT_EQ(other.m_nMoney, 77);
    EXPECT_EQ(other.m_nMaxHp, 90);
    EXPECT_EQ(other.m_nFightTargetId, -1);
    EXPECT_EQ(other.m_pBag, &bag);
    EXPECT_EQ(other.m_pEquipment, &equipment);
    ASSERT_EQ(other.m_vecSkills.size(), 2u);
    EXPECT_EQ(other.m_vecSkills[1].second, 2);
}
