// CSkill: choosing a skill, damage growth, range, the strike animation.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "../model_db.h"
#include "characters/skill.h"
#include "media/graph.h"
#include "media/surface.h"
#include "resources/vrn_writer.h"

namespace {

SSkillInfo Animated(const char* name, int32_t frames) {
    SSkillInfo s = TestSkill(name, 1, 10, 5, 10, 6, 'A', 30);
    s.nFrameCount = frames;
    for (int32_t k = 0; k < 20; ++k) std::snprintf(s.szFrames[k], sizeof s.szFrames[k], "f%d.bmp", k);
    return s;
}

// A 24-bit bottom-up BMP, red except for a magenta first column.
std::vector<uint8_t> RedPicture(int32_t w, int32_t h) {
    const uint32_t stride = (uint32_t(w) * 3 + 3) & ~3u;
    std::vector<uint8_t> f(54 + stride * uint32_t(h), 0);
    auto put32 = [&](size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i) f[at + size_t(i)] = uint8_t(v >> (8 * i));
    };
    f[0] = 'B';
    f[1] = 'M';
    put32(2, uint32_t(f.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, uint32_t(w));
    put32(22, uint32_t(h));
    f[26] = 1;
    f[28] = 24;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            uint8_t* p = &f[54 + size_t(y) * stride + size_t(x) * 3];
            p[0] = x == 0 ? 255 : 0;  // blue
            p[1] = 0;
            p[2] = 255;
        }
    return f;
}

}  // namespace

TEST(Skill, DamageGrowsPerLevelInDoubles) {
    SSkillInfo s = TestSkill("strike", 1, 10, 9, 10);
    EXPECT_EQ(SkillDamageAt(s, 1), 10);
    EXPECT_EQ(SkillDamageAt(s, 2), 11);
    EXPECT_EQ(SkillDamageAt(s, 3), 12);  // 12.1
    EXPECT_EQ(SkillDamageAt(s, 4), 13);  // 13.31
    EXPECT_EQ(SkillDamageAt(s, 5), 14);  // 14.641
    EXPECT_EQ(SkillDamageAt(s, 0), 10);
    // Truncation happens once at the end, not per level: 7 * 1.5^3 = 23.625.
    SSkillInfo half = TestSkill("half", 1, 7, 9, 50);
    EXPECT_EQ(SkillDamageAt(half, 4), 23);
    // Huge levels neither hang nor leave 32 bits.
    EXPECT_EQ(SkillDamageAt(s, INT32_MAX), INT32_MAX);
    EXPECT_EQ(SkillDamageAt(TestSkill("fade", 1, 10, 9, -50), INT32_MAX), 0);
    EXPECT_EQ(SkillDamageAt(TestSkill("flat", 1, 10, 9, 0), INT32_MAX), 10);
    EXPECT_EQ(SkillDamageAt(TestSkill("neg", 1, -10, 9, 10), INT32_MAX), INT32_MIN);
}

TEST(Skill, SetChoosesAndCapsTheLevel) {
    SSkillInfo sound = TestSkill("roar", 1, 10, 5, 10, 4, 'R', 0);
    std::memcpy(sound.szSound, "roar_long_name1", 15);  // fills the field, no terminator
    CTestDatabases db({}, {TestSkill("strike", 1, 10, 5, 10, 3, 'Q', 0), sound});
    CSkill s;
    EXPECT_EQ(s.Id(), 1);
    EXPECT_EQ(s.Level(), 1);
    EXPECT_EQ(s.Frame(), -1);
    EXPECT_FALSE(s.IsRunning());
    ASSERT_EQ(s.Set(1, 9), 1);
    EXPECT_EQ(s.Level(), 5);   // capped at the highest level
    EXPECT_EQ(s.Damage(), 14);
    EXPECT_EQ(s.GetRange(), 20);  // range 0 means 20
    EXPECT_EQ(s.Cost(), 3);
    EXPECT_EQ(s.Kind(), 1);
    EXPECT_STREQ(s.SoundName(), "");
    ASSERT_EQ(s.Set(2, 0), 1);
    EXPECT_EQ(s.Level(), 1);   // at least 1
    EXPECT_STREQ(s.SoundName(), "roar_long_name1");
    // Past the database: refused, the skill stays.
    EXPECT_EQ(s.Set(3, 1), 0);
    EXPECT_EQ(s.Id(), 2);
    // Below 1: no usable skill.
    EXPECT_EQ(s.Set(0, 4), 0);
    EXPECT_EQ(s.Id(), 0);
    EXPECT_EQ(s.Level(), 1);
    EXPECT_EQ(s.Kind(), -1);
    EXPECT_EQ(s.GetRange(), 0);
    EXPECT_EQ(s.Damage(), 0);
    EXPECT_EQ(s.Cost(), 0);
    EXPECT_STREQ(s.SoundName(), "");
    s.StartAnimation(10, 10);
    EXPECT_FALSE(s.IsRunning());
    EXPECT_EQ(s.Set(-3, 1), 0);
    EXPECT_EQ(s.Id(), -3);
    // Without a skill database every id is refused.
    CSkillDataBase* saved = g_pSkillDB;
    g_pSkillDB = nullptr;
    CSkill none;
    EXPECT_EQ(none.Set(1, 1), 0);
    g_pSkillDB = saved;
}

TEST(Skill, StrikeAnimationRunsOneFramePerCall) {
    CTestDatabases db({}, {Animated("bolt", 3), Animated("still", 0), Animated("broken", 400)});
    ASSERT_EQ(g_pGraph, nullptr);  // no display: frames advance without drawing
    CSkill s;
    ASSERT_EQ(s.Set(1, 1), 1);
    s.StartAnimation(200, 300);
    EXPECT_TRUE(s.IsRunning());
    EXPECT_EQ(s.Frame(), 0);  // the first frame is shown at once
    EXPECT_EQ(s.Set(2, 1), 0);  // no change mid-strike
    EXPECT_EQ(s.Id(), 1);
    EXPECT_EQ(s.DrawNextFrame(), 1);
    EXPECT_EQ(s.Frame(), 1);
    EXPECT_EQ(s.DrawNextFrame(), 1);
    EXPECT_EQ(s.Frame(), 2);
    EXPECT_EQ(s.DrawNextFrame(), 0);
    EXPECT_FALSE(s.IsRunning());
    EXPECT_EQ(s.Frame(), -1);
    // A record without frames never starts.
    ASSERT_EQ(s.Set(2, 1), 1);
    s.StartAnimation(1, 1);
    EXPECT_FALSE(s.IsRunning());
    // A frame count past the 20 names stops at 20.
    ASSERT_EQ(s.Set(3, 1), 1);
    s.StartAnimation(1, 1);
    int frames = 1;
    while (s.DrawNextFrame()) ++frames;
    EXPECT_EQ(frames, 20);
    // Stopping ends a strike at once.
    s.StartAnimation(1, 1);
    s.StopAnimation();
    EXPECT_FALSE(s.IsRunning());
    EXPECT_EQ(s.Frame(), -1);
}

TEST(Skill, StrikeFramesAreDrawnCentredWithTheColourKey) {
    std::vector<uint8_t> image;
    std::string error;
    ASSERT_TRUE(BuildVrnArchive({{"f0.bmp", RedPicture(20, 10)}, {"f1.bmp", RedPicture(20, 10)}},
                                VRN_COMPRESS_NEVER, &image, &error))
        << error;
    FILE* f = std::fopen("skill_test_pack.vrn", "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(image.data(), 1, image.size(), f);
    std::fclose(f);
    CGraph graph;
    ASSERT_TRUE(graph.Init(1));
    graph.SetPackPath(4, "skill_test_pack.vrn");
    g_pGraph = &graph;
    struct SReset {
        ~SReset() { g_pGraph = nullptr; }
    } reset;
    CTestDatabases db({}, {Animated("bolt", 2)});
    CSurface* layer = graph.GetSurface(SURF_ROLE);
    graph.FillRect(SURF_ROLE, nullptr, 0x0841);
    CSkill s;
    ASSERT_EQ(s.Set(1, 1), 1);
    s.StartAnimation(2000, 900);  // world pixels: the role layer spans the map
    // The 20 x 10 picture covers (1990, 895) .. (2009, 904).
    EXPECT_EQ(layer->At(1991, 895), 0xF800);
    EXPECT_EQ(layer->At(2009, 904), 0xF800);
    EXPECT_EQ(layer->At(1990, 900), 0x0841);  // the magenta column is see-through
    EXPECT_EQ(layer->At(2010, 900), 0x0841);
    EXPECT_EQ(layer->At(2000, 894), 0x0841);
    EXPECT_EQ(layer->At(2000, 905), 0x0841);
    // Near the edge of the map the picture is clipped, not refused.
    graph.FillRect(SURF_ROLE, nullptr, 0x0841);
    s.StopAnimation();
    s.StartAnimation(3195, 2);
    EXPECT_EQ(layer->At(3199, 0), 0xF800);
    EXPECT_EQ(layer->At(3186, 6), 0xF800);
}
