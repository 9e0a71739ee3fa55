// Missions: status codes, progress and count-down, the starting count from the
// bag, the mission screen, and the saved record's bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "../model_db.h"
#include "items/item_pack.h"
#include "items/progress.h"
#include "script/mission.h"

namespace {

enum : int32_t { HERB = 1, SWORD = 2 };

class Missions : public ::testing::Test {
protected:
    CTestDatabases m_db{{TestItem("herb", ITEM_POTION), TestItem("sword", ITEM_WEAPON)}, {}};
    CMissionSystem m_missions;
};

int32_t Le32(const uint8_t* p) { return int32_t(uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24); }

}  // namespace

TEST_F(Missions, GatheringCountsTheBagAndCompletesOnCheck) {
    CUserItemPack bag(9);
    bag.Add(HERB);
    bag.Add(HERB);
    bag.Add(SWORD);
    ASSERT_EQ(m_missions.AddMissionCountingBag("herbs", "Gather herbs", MISSION_GET_ITEMS, "herb", 3, 0, 0, &bag), 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 2);
    EXPECT_EQ(m_missions.CheckMission("herbs"), MISSION_OPEN);
    EXPECT_EQ(m_missions.OnProgress("herb", 1), 1);  // one more picked up
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 3);
    EXPECT_EQ(m_missions.CheckMission("herbs"), MISSION_COMPLETED);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 0);  // restarts from 0
    EXPECT_EQ(m_missions.CheckMission("herbs"), MISSION_WAS_DONE);
    // Events still advance a finished mission; its status stays 2.
    m_missions.OnProgress("herb", 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 1);
    EXPECT_EQ(m_missions.CheckMission("herbs"), MISSION_WAS_DONE);
    // No such mission.
    EXPECT_EQ(m_missions.CheckMission("nothing"), MISSION_NONE);
    EXPECT_EQ(m_missions.GetMissionObjCount("nothing"), 0);
    EXPECT_EQ(m_missions.FindMission("herbs"), 0);
    EXPECT_EQ(m_missions.FindMission("Herbs"), -1);

    // The starting count advances every gathering mission with that target.
    ASSERT_EQ(m_missions.AddMission("more herbs", "More", MISSION_GET_ITEMS, "herb", 9, 0, 0), 1);
    ASSERT_EQ(m_missions.AddMissionCountingBag("last herbs", "Last", MISSION_GET_ITEMS, "herb", 9, 0, 0, &bag), 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("more herbs"), 2);
    EXPECT_EQ(m_missions.GetMissionObjCount("last herbs"), 2);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 3);
    // Only "get items" missions count the bag; unknown item names count nothing.
    ASSERT_EQ(m_missions.AddMissionCountingBag("kill herbs", "Odd", MISSION_KILL_NAMED, "herb", 9, 0, 0, &bag), 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("kill herbs"), 0);
    ASSERT_EQ(m_missions.AddMissionCountingBag("stones", "Stones", MISSION_GET_ITEMS, "stone", 9, 0, 0, &bag), 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("stones"), 0);
    ASSERT_EQ(m_missions.AddMissionCountingBag("nobag", "No bag", MISSION_GET_ITEMS, "herb", 9, 0, 0, nullptr), 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("nobag"), 0);
}

TEST_F(Missions, AutoCompleteTagsAndDuplicates) {
    ASSERT_EQ(m_missions.AddMission("herbs", "Gather", MISSION_GET_ITEMS, "herb", 3, 1, 0), 1);
    ASSERT_EQ(m_missions.AddMission("tagged", "Tagged", MISSION_KILL_NAMED, "wolf", 1, 0, 1), 1);
    m_missions.OnProgress("herb", 1);
    m_missions.OnProgress("herb", 1);
    EXPECT_EQ(m_missions.Missions()[0].m_nDone, 0);
    m_missions.OnProgress("herb", 1);  // the third completes it at once
    EXPECT_EQ(m_missions.Missions()[0].m_nDone, 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 0);
    EXPECT_EQ(m_missions.CheckMission("herbs"), MISSION_WAS_DONE);  // never 1
    m_missions.OnProgress("wolf", 1);
    EXPECT_EQ(m_missions.CheckMission("tagged"), MISSION_COMPLETED_TAGGED);
    EXPECT_EQ(m_missions.CheckMission("tagged"), MISSION_WAS_DONE);

    // A repeated name changes nothing, skips the starting count, and is logged.
    CUserItemPack bag(9);
    bag.Add(HERB);
    EXPECT_EQ(m_missions.AddMissionCountingBag("herbs", "Again", MISSION_GET_ITEMS, "herb", 7, 0, 0, &bag), 0);
    EXPECT_EQ(m_missions.GetMissionCount(), 2);
    EXPECT_EQ(m_missions.Missions()[0].m_strText, "Gather");
    EXPECT_EQ(m_missions.Missions()[0].m_nRequired, 3);
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), 0);
    std::ifstream log("GameEngine.log", std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(log)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("----->add mission herbs failed,mission name should not be repeated!"), std::string::npos);
}

TEST_F(Missions, CountDownAndKillAnyEnemies) {
    ASSERT_EQ(m_missions.AddMission("herbs", "Gather", MISSION_GET_ITEMS, "herb", 3, 0, 0), 1);
    ASSERT_EQ(m_missions.AddMission("hunt", "Hunt", MISSION_KILL_NAMED, "herb", 3, 0, 0), 1);
    m_missions.OnProgress("herb", 1);
    // Losing an item counts down every mission with that target, without a floor.
    m_missions.OnLose("herb");
    m_missions.OnLose("herb");
    m_missions.OnLose("herb");
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), -2);
    EXPECT_EQ(m_missions.GetMissionObjCount("hunt"), -2);
    EXPECT_EQ(m_missions.Missions()[0].Description(), "* Gather(need to get <25/> herb yet)");
    m_missions.OnLose("sword");
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), -2);

    // Any enemy: every event reported with the any-flag counts, kills or items.
    ASSERT_EQ(m_missions.AddMission("purge", "Purge", MISSION_KILL_ANY, "", 5, 0, 0), 1);
    ASSERT_EQ(m_missions.AddMission("wolves", "Wolves", MISSION_KILL_ANY, "wolf", 2, 0, 0), 1);
    for (int i = 0; i < 3; ++i) m_missions.OnProgress("rat", 1);
    m_missions.OnProgress("sword", 1);
    m_missions.OnProgress("wolf", 1);
    EXPECT_EQ(m_missions.GetMissionObjCount("purge"), 5);
    EXPECT_EQ(m_missions.Missions()[2].Description(), "* Purge(need to kill <20/> enemy)");
    // With a target it never advances: the event's name is emptied first.
    EXPECT_EQ(m_missions.GetMissionObjCount("wolves"), 0);
    // A starting-count style event (no any-flag) does not reach an empty target.
    m_missions.OnProgress("rat", 0);
    EXPECT_EQ(m_missions.GetMissionObjCount("purge"), 5);
    EXPECT_EQ(m_missions.OnProgress("nobody", 0), 0);
}

TEST_F(Missions, ScreenTextsOpenNewestFirstThenDone) {
    m_missions.AddMission("a", "First", MISSION_GET_ITEMS, "herb", 3, 0, 0);
    m_missions.AddMission("b", "Second", MISSION_KILL_NAMED, "wolf", 2, 0, 0);
    m_missions.AddMission("c", "Third", MISSION_KILL_ANY, "", 4, 0, 0);
    m_missions.AddMission("d", "Fourth", 7, "x", 1, 0, 0);
    m_missions.AddMission("e", "Fifth", MISSION_GET_ITEMS, "herb", 0, 0, 0);
    m_missions.OnProgress("wolf", 1);
    EXPECT_EQ(m_missions.CheckMission("a"), MISSION_OPEN);
    m_missions.OnProgress("x", 1);
    EXPECT_EQ(m_missions.CheckMission("d"), MISSION_COMPLETED);
    EXPECT_EQ(m_missions.CheckMission("e"), MISSION_COMPLETED);  // 0 of 0 is reached
    const std::vector<std::string> texts = m_missions.GetMissionTexts();
    ASSERT_EQ(texts.size(), 5u);
    EXPECT_EQ(texts[0], "* Third(need to kill <22/> enemy)");
    EXPECT_EQ(texts[1], "* Second(need to kill <21/> wolf yet)");
    EXPECT_EQ(texts[2], "* First(need to get <23/> herb yet)");
    EXPECT_EQ(texts[3], "* Fifth<4(Done)/>");
    EXPECT_EQ(texts[4], "* Fourth<4(Done)/>");
    // An open mission of an unknown kind shows its text only; more than needed
    // shows 0 remaining.
    m_missions.AddMission("f", "Sixth", 9, "x", 1, 0, 0);
    m_missions.OnProgress("wolf", 1);
    m_missions.OnProgress("wolf", 1);
    const std::vector<std::string> again = m_missions.GetMissionTexts();
    EXPECT_EQ(again[0], "* Sixth");
    EXPECT_EQ(again[2], "* Second(need to kill <20/> wolf yet)");
    m_missions.Clear();
    EXPECT_EQ(m_missions.GetMissionCount(), 0);
    EXPECT_TRUE(m_missions.GetMissionTexts().empty());
}

TEST_F(Missions, RecordBytesAndRoundTrip) {
    m_missions.AddMission("herbs", "Gather herbs", MISSION_KILL_NAMED, "herb", 3, 1, 1);
    m_missions.OnLose("herb");
    m_missions.OnLose("herb");
    uint8_t b[kMissionRecordSize];
    std::memset(b, 0xAA, sizeof b);
    EncodeMissionRecord(m_missions.GetMissionRecord(0), b);
    EXPECT_STREQ(reinterpret_cast<const char*>(b), "herbs");
    EXPECT_EQ(b[5], 0);
    EXPECT_STREQ(reinterpret_cast<const char*>(b + 100), "Gather herbs");
    EXPECT_EQ(Le32(b + 200), 0);   // done
    EXPECT_EQ(Le32(b + 204), 1);   // kind
    EXPECT_STREQ(reinterpret_cast<const char*>(b + 208), "herb");
    EXPECT_EQ(Le32(b + 260), 3);   // required
    EXPECT_EQ(b[264], 0xFE);       // current -2, little-endian
    EXPECT_EQ(b[267], 0xFF);
    EXPECT_EQ(Le32(b + 268), 1);   // auto-complete
    EXPECT_EQ(Le32(b + 272), 1);   // completion tag
    // Read back into another list: every field as stored.
    CMissionSystem other;
    other.AddMissionRecord(DecodeMissionRecord(b));
    other.AddMissionRecord(DecodeMissionRecord(b));  // loading does not test names
    ASSERT_EQ(other.GetMissionCount(), 2);
    const CMission& m = other.Missions()[0];
    EXPECT_EQ(m.m_strName, "herbs");
    EXPECT_EQ(m.m_strText, "Gather herbs");
    EXPECT_EQ(m.m_nKind, 1);
    EXPECT_EQ(m.m_strTarget, "herb");
    EXPECT_EQ(m.m_nRequired, 3);
    EXPECT_EQ(m.m_nCurrent, -2);
    EXPECT_EQ(m.m_nAutoComplete, 1);
    EXPECT_EQ(m.m_nTag, 1);
    uint8_t again[kMissionRecordSize];
    EncodeMissionRecord(other.GetMissionRecord(1), again);
    EXPECT_EQ(std::memcmp(again, b, sizeof b), 0);

    // Fields without a terminator are read to their end.
    std::memset(b, 'n', 100);
    std::memset(b + 208, 't', 52);
    CMissionSystem full;
    full.AddMissionRecord(DecodeMissionRecord(b));
    EXPECT_EQ(full.Missions()[0].m_strName, std::string(100, 'n'));
    EXPECT_EQ(full.Missions()[0].m_strTarget, std::string(52, 't'));
    // Saving cuts them to the field, before a two-byte character that does not
    // fit whole.
    const SMissionRecord cut = full.GetMissionRecord(0);
    EXPECT_EQ(std::string(cut.szName), std::string(99, 'n'));
    EXPECT_EQ(std::string(cut.szTarget), std::string(51, 't'));
    const std::string gbk = std::string(98, 'a') + "\xCE\xD2";
    full.AddMission(gbk.c_str(), "x", 0, "", 1, 0, 0);
    EXPECT_EQ(std::string(full.GetMissionRecord(1).szName), std::string(98, 'a'));
    const std::string fits = std::string(97, 'a') + "\xCE\xD2";
    full.AddMission(fits.c_str(), "x", 0, "", 1, 0, 0);
    EXPECT_EQ(std::string(full.GetMissionRecord(2).szName), fits);
    // Outside the list: a zero record.
    const SMissionRecord zero = full.GetMissionRecord(7);
    EXPECT_EQ(zero.szName[0], 0);
    EXPECT_EQ(zero.nRequired, 0);
    EXPECT_EQ(full.GetMissionRecord(-1).nKind, 0);
}

TEST_F(Missions, TheProgressHookReachesTheListener) {
    ASSERT_EQ(m_missions.AddMission("herbs", "Gather", MISSION_GET_ITEMS, "herb", 3, 0, 0), 1);
    EXPECT_EQ(ReportProgress("herb", 1), 0);  // nobody listens yet
    g_pProgress = &m_missions;
    EXPECT_EQ(ReportProgress("herb", 1), 1);
    EXPECT_EQ(ReportProgress("sword", 1), 0);
    ReportLoss("herb");
    ReportLoss("herb");
    EXPECT_EQ(ReportProgress(nullptr, 1), 0);
    g_pProgress = nullptr;
    ReportLoss("herb");
    EXPECT_EQ(m_missions.GetMissionObjCount("herbs"), -1);
}
