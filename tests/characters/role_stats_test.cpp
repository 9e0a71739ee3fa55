// Role stats: the damage rule and death, the bounded changes, levelling, the
// known skills and the current skill; the random generator.
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "../model_db.h"
#include "base/clock.h"
#include "base/message_line_hook.h"
#include "characters/random.h"
#include "characters/role.h"
#include "characters/skill.h"
#include "items/progress.h"

namespace {

std::vector<std::string> g_messages;
void CatchMessage(const char* text) { g_messages.emplace_back(text); }

struct SProgressLog : IProgressListener {
    std::vector<std::pair<std::string, int>> events;
    int OnProgress(const char* name, int any) override {
        events.emplace_back(name, any);
        return 1;
    }
    void OnLose(const char* name) override { events.emplace_back(name, -1); }
};

// Installs the message and progress catchers for one test.
class Stats : public ::testing::Test {
protected:
    void SetUp() override {
        g_messages.clear();
        SetGameMessageHandler(CatchMessage);
        g_pProgress = &m_progress;
    }
    void TearDown() override {
        SetGameMessageHandler(nullptr);
        g_pProgress = nullptr;
    }
    SProgressLog m_progress;
};

SRoleAction Action(const char* name, int n, int first) {
    SRoleAction a{};
    std::snprintf(a.name, sizeof a.name, "%s", name);
    a.framesPerDir = n;
    a.firstFrame = first;
    return a;
}

// A role file with "stand" (1 frame per direction) and, optionally, "die"
// (2 frames per direction, from frame 8).
void WriteRole(const char* name, bool withDie) {
    std::filesystem::create_directories("data");
    std::vector<SRoleAction> actions{Action("stand", 1, 0)};
    if (withDie) actions.push_back(Action("die", 2, 8));
    std::vector<SRoleFrame> frames(withDie ? 24 : 8);
    for (SRoleFrame& f : frames) {
        f.width = 40;
        f.height = 60;
    }
    ASSERT_TRUE(WriteRoleFile((std::string("data/") + name).c_str(), actions, frames));
}

}  // namespace

TEST_F(Stats, DamageRuleAndHealing) {
    CRole r("none.rol", "wolf", 0, 0, 10, 100, 0);
    r.m_nDefence = 20;
    r.SetNowHealth('-', 18);  // 18 - 20 is below 5: 5 are lost
    EXPECT_EQ(r.m_nHp, 95);
    r.SetNowHealth('-', 4);   // 5 or less: taken whole, defence ignored
    EXPECT_EQ(r.m_nHp, 91);
    r.SetNowHealth('-', 5);
    EXPECT_EQ(r.m_nHp, 86);
    r.SetNowHealth('-', 26);  // 26 - 20 = 6
    EXPECT_EQ(r.m_nHp, 80);
    r.SetNowHealth('-', 25);  // 25 - 20 = 5 exactly
    EXPECT_EQ(r.m_nHp, 75);
    r.m_nDefence = 0;
    r.SetNowHealth('-', 6);
    EXPECT_EQ(r.m_nHp, 69);
    r.SetNowHealth('+', 20);
    EXPECT_EQ(r.m_nHp, 89);
    r.SetNowHealth('+', 30);  // never above max HP
    EXPECT_EQ(r.m_nHp, 100);
    r.SetNowHealth('*', 50);
    r.SetNowHealth(0, 50);
    EXPECT_EQ(r.m_nHp, 100);
    r.m_nDefence = INT32_MIN;  // a huge amount after a negative defence stays in range
    r.SetNowHealth('-', INT32_MAX);
    EXPECT_EQ(r.m_nHp, 0);
    EXPECT_EQ(m_progress.events.size(), 1u);
}

TEST_F(Stats, DeathReportsTheKillAndStartsDying) {
    WriteRole("dies.rol", true);
    WriteRole("plain.rol", false);
    CRole wolf("dies.rol", "wolf", 100, 300, 10, 30, 0);
    wolf.m_nNpcId = 3;
    wolf.SetDirection(3);
    wolf.SetNowHealth('-', 29);
    EXPECT_EQ(wolf.m_nHp, 1);
    EXPECT_TRUE(m_progress.events.empty());
    wolf.SetNowHealth('-', 40);
    EXPECT_EQ(wolf.m_nHp, 0);  // never below 0
    ASSERT_EQ(m_progress.events.size(), 1u);
    EXPECT_EQ(m_progress.events[0].first, "wolf");
    EXPECT_EQ(m_progress.events[0].second, 1);
    EXPECT_STREQ(wolf.GetState(), "die");
    EXPECT_EQ(wolf.m_nStep, 1);
    EXPECT_EQ(wolf.m_nFrame, 8 + 2 * 2);  // die frame 0, direction 3
    // The death animation then runs out.
    wolf.Update(0);
    wolf.Update(0);
    EXPECT_STREQ(wolf.GetState(), "dieout");

    // Without a "die" action the role is finished at once.
    CRole ghost("plain.rol", "ghost", 100, 300, 10, 30, 0);
    ghost.SetNowHealth('-', 3);
    EXPECT_STREQ(ghost.GetState(), "");
    ghost.SetNowHealth('-', 100);
    EXPECT_STREQ(ghost.GetState(), "dieout");
    ASSERT_EQ(m_progress.events.size(), 2u);
    EXPECT_EQ(m_progress.events[1].first, "ghost");

    // Without a listener the kill goes nowhere.
    g_pProgress = nullptr;
    CRole bat("plain.rol", "bat", 0, 300, 1, 10, 0);
    bat.SetNowHealth('-', 10);
    EXPECT_STREQ(bat.GetState(), "dieout");
    EXPECT_EQ(m_progress.events.size(), 2u);
}

TEST_F(Stats, BoundedChanges) {
    CRole r("none.rol", "hadrin", 0, 0, 10, 150, 1);
    // MP: '-' stops at 0, '+' at max MP.
    r.ChangeMp('-', 20);
    EXPECT_EQ(r.m_nMp, 30);
    r.ChangeMp('-', 30);
    EXPECT_EQ(r.m_nMp, 0);
    r.ChangeMp('-', 5);
    EXPECT_EQ(r.m_nMp, 0);
    r.ChangeMp('+', 80);
    EXPECT_EQ(r.m_nMp, 50);
    // Max HP and max MP: '-' never below 100, even from below 100; HP and MP
    // stay as they are.
    r.ChangeMaxHp('-', 30);
    EXPECT_EQ(r.m_nMaxHp, 120);
    r.ChangeMaxHp('-', 30);
    EXPECT_EQ(r.m_nMaxHp, 100);
    EXPECT_EQ(r.m_nHp, 150);
    r.ChangeMaxMp('-', 10);
    EXPECT_EQ(r.m_nMaxMp, 100);  // was 50
    r.ChangeMaxMp('+', 7);
    EXPECT_EQ(r.m_nMaxMp, 107);
    r.ChangeMaxHp('+', 5);
    EXPECT_EQ(r.m_nMaxHp, 105);
    EXPECT_EQ(r.m_nMp, 50);
    // Hit rate between 10 and 100.
    r.ChangeHitRate('+', 65);
    EXPECT_EQ(r.m_nHitRate, 95);
    r.ChangeHitRate('+', 10);
    EXPECT_EQ(r.m_nHitRate, 100);
    r.ChangeHitRate('-', 85);
    EXPECT_EQ(r.m_nHitRate, 15);
    r.ChangeHitRate('-', 10);
    EXPECT_EQ(r.m_nHitRate, 10);
    // Attack, defence, money: '-' stops at 0.
    r.ChangeAttack('-', 4);
    EXPECT_EQ(r.m_nAttack, 6);
    r.ChangeAttack('-', 40);
    EXPECT_EQ(r.m_nAttack, 0);
    r.ChangeDefence('+', 3);
    r.ChangeDefence('-', 5);
    EXPECT_EQ(r.m_nDefence, 0);
    r.ChangeMoney('+', 70);
    r.ChangeMoney('-', 20);
    EXPECT_EQ(r.m_nMoney, 50);
    r.ChangeMoney('-', 51);
    EXPECT_EQ(r.m_nMoney, 0);
    // Moral has no bound (amount first, then the sign).
    r.ChangeMoral(80, '-');
    EXPECT_EQ(r.m_nMoral, -30);
    r.ChangeMoral(5, '+');
    EXPECT_EQ(r.m_nMoral, -25);
    // Other signs change nothing.
    r.ChangeMoney('x', 5);
    r.ChangeMoral(5, 'x');
    r.ChangeAttack(' ', 5);
    r.ChangeExp('=', 500);
    EXPECT_EQ(r.m_nMoney, 0);
    EXPECT_EQ(r.m_nMoral, -25);
    EXPECT_EQ(r.m_nAttack, 0);
    EXPECT_EQ(r.m_nLevel, 1);
    // Huge changes stay inside 32 bits.
    r.ChangeMoney('+', INT32_MAX);
    r.ChangeMoney('+', INT32_MAX);
    EXPECT_EQ(r.m_nMoney, INT32_MAX);
    r.ChangeMoral(INT32_MAX, '-');
    r.ChangeMoral(INT32_MAX, '-');
    EXPECT_EQ(r.m_nMoral, INT32_MIN);
}

TEST_F(Stats, LevelUpThresholdsAndOneLevelPerGain) {
    CRole r("none.rol", "hadrin", 0, 0, 10, 100, 1);
    r.m_nHp = 40;
    r.m_nMp = 3;
    r.ChangeExp('+', 99);
    EXPECT_EQ(r.m_nLevel, 1);
    EXPECT_TRUE(g_messages.empty());
    r.ChangeExp('+', 1);  // 100 reached
    EXPECT_EQ(r.m_nLevel, 2);
    EXPECT_EQ(r.m_nExp, 0);
    EXPECT_EQ(r.m_nNextExp, 280);
    EXPECT_EQ(r.m_nMaxHp, 120);
    EXPECT_EQ(r.m_nHp, 120);
    EXPECT_EQ(r.m_nMaxMp, 68);
    EXPECT_EQ(r.m_nMp, 68);
    EXPECT_EQ(r.m_nAttack, 15);
    EXPECT_EQ(r.m_nDefence, 2);
    ASSERT_EQ(g_messages.size(), 1u);
    EXPECT_EQ(g_messages[0], "Level Up!");
    // 250 of 280 plus a gain of 100: one level, the excess is lost.
    r.ChangeExp('+', 250);
    r.ChangeExp('+', 100);
    EXPECT_EQ(r.m_nLevel, 3);
    EXPECT_EQ(r.m_nExp, 0);
    EXPECT_EQ(r.m_nNextExp, 480);
    // A gain worth several levels still gives one.
    r.ChangeExp('+', 100000);
    EXPECT_EQ(r.m_nLevel, 4);
    EXPECT_EQ(r.m_nNextExp, 700);
    EXPECT_EQ(r.m_nExp, 0);
    EXPECT_EQ(g_messages.size(), 3u);
    // Losing experience stops at 0.
    r.ChangeExp('+', 30);
    r.ChangeExp('-', 50);
    EXPECT_EQ(r.m_nExp, 0);
    // A direct LevelUp follows the same formula.
    r.LevelUp();
    EXPECT_EQ(r.m_nLevel, 5);
    EXPECT_EQ(r.m_nNextExp, (20 * 5 - 6) * 10);
    r.m_nLevel = INT32_MAX - 1;
    r.LevelUp();
    EXPECT_EQ(r.m_nLevel, INT32_MAX);
    EXPECT_EQ(r.m_nNextExp, INT32_MAX);
}

TEST_F(Stats, KnownSkillsAndTheCurrentSkill) {
    SSkillInfo blaze = TestSkill("blaze", 1, 8, 9, 20, 5, 'E', 64);
    blaze.nFrameCount = 2;
    CTestDatabases db({}, {TestSkill("strike", 1, 10, 5, 10, 2, 'Q'), TestSkill("mend", 0, 30, 3, 0, 8, 'W'), blaze});
    CRole r("none.rol", "hadrin", 0, 0, 10, 100, 1);
    ASSERT_NE(r.m_pSkill, nullptr);
    EXPECT_EQ(r.m_pSkill->Id(), 1);
    EXPECT_EQ(r.KnownSkillLevel(1), 1);
    EXPECT_EQ(r.KnownSkillLevel(2), 0);
    // Learning by exact name, once.
    EXPECT_EQ(r.LearnSkill("mend"), 1);
    EXPECT_EQ(r.LearnSkill("mend"), 0);
    EXPECT_EQ(r.LearnSkill("Mend"), 0);
    EXPECT_EQ(r.LearnSkill("men"), 0);
    EXPECT_EQ(r.LearnSkill("blaze"), 1);
    ASSERT_EQ(r.m_vecSkills.size(), 3u);
    EXPECT_EQ(r.m_vecSkills[2], std::make_pair(3, 1));
    r.m_vecSkills[2].second = 4;
    // Shortcut keys: the key code of the pressed key.
    int32_t id = -1;
    EXPECT_EQ(r.SelectSkillByKey('E', id), 1);
    EXPECT_EQ(id, 3);
    EXPECT_EQ(r.m_pSkill->Id(), 3);
    EXPECT_EQ(r.m_pSkill->Level(), 4);
    EXPECT_EQ(r.SelectSkillByKey('e', id), 0);
    EXPECT_EQ(id, 0);
    EXPECT_EQ(r.SelectSkillByKey('Z', id), 0);
    EXPECT_EQ(id, 0);
    EXPECT_EQ(r.m_pSkill->Id(), 3);
    // Mid-strike the choice is refused, though the key matched.
    r.m_pSkill->StartAnimation(50, 50);
    ASSERT_TRUE(r.m_pSkill->IsRunning());
    EXPECT_EQ(r.SelectSkillByKey('W', id), 0);
    EXPECT_EQ(id, 2);
    EXPECT_EQ(r.m_pSkill->Id(), 3);
    r.Update(0);  // the role's tick shows the second and last frame
    EXPECT_TRUE(r.m_pSkill->IsRunning());
    r.Update(0);
    EXPECT_FALSE(r.m_pSkill->IsRunning());
    EXPECT_EQ(r.SelectSkillByKey('W', id), 1);
    // Info snapshot carries the current skill.
    SRoleInfo info{};
    r.GetInfo(info);
    EXPECT_EQ(info.skillId, 2);
    EXPECT_EQ(info.skillLevel, 1);
    CRole other("none.rol", "x", 0, 0, 1, 1, 0);
    other.SetInfo(info, nullptr, nullptr);
    EXPECT_EQ(other.m_pSkill->Id(), 2);
    EXPECT_EQ(other.m_vecSkills.size(), 3u);
    // Removing the current skill when it is not the first: the first known skill
    // (with its own level) takes over.
    r.m_vecSkills[0].second = 2;
    EXPECT_EQ(r.RemoveSkill("mend"), 1);
    EXPECT_EQ(r.m_pSkill->Id(), 1);
    EXPECT_EQ(r.m_pSkill->Level(), 2);
    EXPECT_EQ(r.KnownSkillLevel(2), 0);
    EXPECT_EQ(r.RemoveSkill("mend"), 0);
    EXPECT_EQ(r.RemoveSkill("nothing"), 0);
    // Removing a skill that is not current leaves the current one.
    r.SetCurrentSkill(3, 4);
    EXPECT_EQ(r.RemoveSkill("strike"), 1);
    EXPECT_EQ(r.m_pSkill->Id(), 3);
    // The current skill that is also the first known: the next one takes over;
    // the last one stays current.
    r.LearnSkill("mend");
    EXPECT_EQ(r.RemoveSkill("blaze"), 1);
    EXPECT_EQ(r.m_pSkill->Id(), 2);
    EXPECT_EQ(r.RemoveSkill("mend"), 1);
    EXPECT_TRUE(r.m_vecSkills.empty());
    EXPECT_EQ(r.m_pSkill->Id(), 2);
    // Without a skill object nothing is removed.
    other.LearnSkill("blaze");
    delete other.m_pSkill;
    other.m_pSkill = nullptr;
    EXPECT_EQ(other.RemoveSkill("blaze"), 0);
    EXPECT_EQ(other.SetCurrentSkill(1, 1), 0);
    SRoleInfo none{};
    other.GetInfo(none);
    EXPECT_EQ(none.skillId, 0);
}

TEST(Random, SequenceAndClockSeeding) {
    // Seed 1 follows the minimal standard generator with multiplier 48271.
    CRandom r(1);
    EXPECT_EQ(r.Next(), 48271);
    EXPECT_EQ(r.Next(), 182605794);
    std::minstd_rand reference(1);
    reference.discard(2);
    for (int i = 3; i <= 10000; ++i) ASSERT_EQ(uint32_t(r.Next()), reference()) << i;
    EXPECT_EQ(r.State(), 399268537);
    // Range: Next / 2147483647.0 * n, truncated.
    CRandom a(1);
    EXPECT_EQ(a.Range(100), 0);           // 48271
    EXPECT_EQ(a.Range(100), 8);           // 182605794
    CRandom b(2147483646);
    EXPECT_EQ(b.Range(100), int32_t(double(b.State()) / 2147483647.0 * 100));

    // Seeds of 0 or less come from the calendar clock: q = t * t in 32 bits.
    clock_control::SetVirtualTicks(true);
    clock_control::SetCalendarStart(3);  // q = 9 > 0
    EXPECT_EQ(CRandom(0).State(), 9 ^ 0x5EECE66D);
    EXPECT_EQ(CRandom(-5).State(), 9 ^ 0x5EECE66D);
    clock_control::SetCalendarStart(46341);  // q wraps below 0
    const int32_t q = int32_t(uint32_t(46341u * 46341u));
    ASSERT_LT(q, 0);
    EXPECT_EQ(CRandom(0).State(), (q ^ int32_t(0xDEECE66D)) & 0x7FFFFFFF);
    clock_control::SetCalendarStart(65536);  // q wraps to 0
    EXPECT_EQ(CRandom(0).State(), 0x5EECE66D);
    clock_control::SetCalendarStart(0);
    EXPECT_EQ(CRandom(0).State(), 0x5EECE66D);
    // Two generators made within the same second roll alike.
    clock_control::SetCalendarStart(1299011409);
    CRandom first(0), second(0);
    EXPECT_EQ(first.Range(100), second.Range(100));
    clock_control::Reset();
}
