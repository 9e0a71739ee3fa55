// Player records: notes and honours, faction membership, enmity with its feud
// and peace messages, affection and VIP info.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "base/message_line_hook.h"
#include "script/records.h"

namespace {

std::vector<std::string> g_shown;
void Catch(const char* text) { g_shown.emplace_back(text); }

// The texts for the faction "Wolves", as GBK bytes.
const std::string kFeudMessage = "\xCE\xD2\xD3\xEBWolves\xBD\xE1\xD4\xB9\xA3\xAC\xD2\xD4\xBA\xF3\xBF\xC9\xD2\xAA\xB6\xE0\xB6\xE0\xCC\xE1\xB7\xC0";
const std::string kFeudNote = std::string("* ") + "\xCE\xD2\xD3\xEB<2Wolves/>\xBD\xE1\xD4\xB9\xA3\xAC\xCF\xD6\xD4\xDAWolves\xB5\xC4\xC8\xCB\xBC\xFB\xB5\xBD\xCE\xD2\xBE\xCD\xBB\xE1\xC0\xB4\xD5\xD2\xCE\xD2\xB5\xC4\xC2\xE9\xB7\xB3\xA3\xAC\xD2\xD4\xBA\xF3\xBF\xC9\xD2\xAA\xB6\xE0\xB6\xE0\xCC\xE1\xB7\xC0\xC1\xCB";
const std::string kPeaceMessage = "\xCE\xD2\xD3\xEBWolves\xBA\xCD\xBD\xE2\xA3\xAC\xB2\xBB\xB9\xFD\xD7\xEE\xBD\xFC\xBB\xB9\xCA\xC7\xC9\xD9\xC8\xA5\xC8\xC7\xCB\xFB\xC3\xC7\xCE\xAA\xBA\xC3";
const std::string kPeaceNote = std::string("* ") + "\xCE\xD2\xD3\xEB<2Wolves/>\xBA\xCD\xBD\xE2\xA3\xAC\xB2\xBB\xD3\xC3\xD4\xD9\xB5\xA3\xD0\xC4Wolves\xB5\xC4\xC8\xCB\xBC\xFB\xCE\xD2\xBE\xCD\xD5\xD2\xCE\xD2\xB5\xC4\xC2\xE9\xB7\xB3\xA3\xAC\xB2\xBB\xB9\xFD\xD7\xEE\xBD\xFC\xBB\xB9\xCA\xC7\xC9\xD9\xC8\xA5\xC8\xC7\xCB\xFB\xC3\xC7\xCE\xAA\xBA\xC3";

class Records : public ::testing::Test {
protected:
    void SetUp() override {
        g_shown.clear();
        SetGameMessageHandler(Catch);
    }
    void TearDown() override { SetGameMessageHandler(nullptr); }
    CPlayerRecords m_rec;
};

}  // namespace

TEST_F(Records, NotesNewestFirstHonoursInOrder) {
    m_rec.AddNote("met the ferryman");
    m_rec.AddNote("crossed the river");
    ASSERT_EQ(m_rec.m_vecNotes.size(), 2u);
    EXPECT_EQ(m_rec.m_vecNotes[0], "* crossed the river");
    EXPECT_EQ(m_rec.m_vecNotes[1], "* met the ferryman");
    m_rec.AddHonor("Oathkeeper");
    m_rec.AddHonor("Ashwalker");
    ASSERT_EQ(m_rec.m_vecHonours.size(), 2u);
    EXPECT_EQ(m_rec.m_vecHonours[0], "Oathkeeper");
    EXPECT_EQ(m_rec.m_vecHonours[1], "Ashwalker");
}

TEST_F(Records, FactionsJoinOnceAndLeaveAnEmptyEntry) {
    EXPECT_EQ(m_rec.ChangeFaction("Wardens", 1), 1);
    EXPECT_EQ(m_rec.ChangeFaction("Wardens", 1), 0);
    EXPECT_EQ(m_rec.ChangeFaction("Ferrymen", 1), 1);
    EXPECT_EQ(m_rec.ChangeFaction("wardens", 0), 0);  // exact bytes
    EXPECT_EQ(m_rec.ChangeFaction("Wardens", 0), 1);
    ASSERT_EQ(m_rec.m_vecFactions.size(), 2u);
    EXPECT_EQ(m_rec.m_vecFactions[0], "");  // keeps its place
    EXPECT_EQ(m_rec.ChangeFaction("Wardens", 0), 0);
    EXPECT_EQ(m_rec.ChangeFaction("Wardens", 1), 1);
    ASSERT_EQ(m_rec.m_vecFactions.size(), 3u);
    EXPECT_EQ(m_rec.m_vecFactions[0], "");
    EXPECT_EQ(m_rec.m_vecFactions[1], "Ferrymen");
    EXPECT_EQ(m_rec.m_vecFactions[2], "Wardens");
    EXPECT_EQ(m_rec.ChangeFaction(nullptr, 1), 0);
}

TEST_F(Records, EnmityCrossingFiftyMakesFeudAndPeace) {
    EXPECT_EQ(m_rec.Enmity("Wolves"), 0);
    EXPECT_TRUE(m_rec.m_mapEnmity.empty());  // reading creates nothing
    m_rec.ChangeFactionEnmity("Wolves", 40, 1);
    EXPECT_TRUE(g_shown.empty());
    m_rec.ChangeFactionEnmity("Wolves", 10, 1);  // 50 reached: a feud
    EXPECT_EQ(m_rec.Enmity("Wolves"), 50);
    ASSERT_EQ(g_shown.size(), 1u);
    EXPECT_EQ(g_shown[0], kFeudMessage);
    ASSERT_EQ(m_rec.m_vecNotes.size(), 1u);
    EXPECT_EQ(m_rec.m_vecNotes[0], kFeudNote);
    m_rec.ChangeFactionEnmity("Wolves", 5, 1);  // already hostile: nothing more
    EXPECT_EQ(g_shown.size(), 1u);
    EXPECT_EQ(m_rec.m_vecNotes.size(), 1u);
    m_rec.ChangeFactionEnmity("Wolves", 5, 0);  // 55 - 5 = 50 is not below 50
    EXPECT_EQ(m_rec.Enmity("Wolves"), 50);
    EXPECT_EQ(g_shown.size(), 1u);
    m_rec.ChangeFactionEnmity("Wolves", 5, 1);
    m_rec.ChangeFactionEnmity("Wolves", 6, 0);  // 55 - 6 = 49: peace
    EXPECT_EQ(m_rec.Enmity("Wolves"), 49);
    ASSERT_EQ(g_shown.size(), 2u);
    EXPECT_EQ(g_shown[1], kPeaceMessage);
    ASSERT_EQ(m_rec.m_vecNotes.size(), 2u);
    EXPECT_EQ(m_rec.m_vecNotes[0], kPeaceNote);
    EXPECT_EQ(m_rec.m_vecNotes[1], kFeudNote);
    // One big step from far below counts as crossing; lowering a new entry just
    // goes negative.
    m_rec.ChangeFactionEnmity("Wolves", 1000, 1);
    EXPECT_EQ(g_shown.size(), 3u);
    m_rec.ChangeFactionEnmity("Crows", 10, 0);
    EXPECT_EQ(m_rec.Enmity("Crows"), -10);
    EXPECT_EQ(g_shown.size(), 3u);
    // Values stay inside 32 bits.
    m_rec.ChangeFactionEnmity("Crows", INT32_MAX, 0);
    m_rec.ChangeFactionEnmity("Crows", INT32_MAX, 0);
    EXPECT_EQ(m_rec.Enmity("Crows"), INT32_MIN);
    // Without a handler the note is still written.
    SetGameMessageHandler(nullptr);
    m_rec.ChangeFactionEnmity("Rats", 60, 1);
    EXPECT_EQ(g_shown.size(), 3u);
    EXPECT_EQ(m_rec.m_vecNotes.size(), 4u);
}

TEST_F(Records, AffectionAndVipReadZeroWithoutCreating) {
    EXPECT_EQ(m_rec.GetGirlLove("Maren"), 0);
    EXPECT_TRUE(m_rec.m_mapAffection.empty());
    m_rec.ChangeGirlLove("Ilse", 5, 0);
    EXPECT_EQ(m_rec.GetGirlLove("Ilse"), -5);
    m_rec.ChangeGirlLove("Ilse", 12, 1);
    EXPECT_EQ(m_rec.GetGirlLove("Ilse"), 7);
    EXPECT_EQ(m_rec.GetGirlLove("ilse"), 0);
    EXPECT_EQ(m_rec.m_mapAffection.size(), 1u);
    EXPECT_EQ(m_rec.GetVIPInfo("gate_open"), 0);
    EXPECT_TRUE(m_rec.m_mapVip.empty());
    m_rec.SetVIPInfo("gate_open", 3);
    m_rec.SetVIPInfo("gate_open", -2);
    EXPECT_EQ(m_rec.GetVIPInfo("gate_open"), -2);
    EXPECT_EQ(m_rec.GetVIPInfo(nullptr), 0);

    // A new game starts from nothing.
    m_rec.AddNote("n");
    m_rec.AddHonor("h");
    m_rec.ChangeFaction("Wardens", 1);
    m_rec.ChangeFactionEnmity("Wolves", 3, 1);
    m_rec.ClearForNewGame();
    EXPECT_TRUE(m_rec.m_vecNotes.empty());
    EXPECT_TRUE(m_rec.m_vecHonours.empty());
    EXPECT_TRUE(m_rec.m_vecFactions.empty());
    EXPECT_TRUE(m_rec.m_mapEnmity.empty());
    EXPECT_TRUE(m_rec.m_mapAffection.empty());
    EXPECT_TRUE(m_rec.m_mapVip.empty());
}
