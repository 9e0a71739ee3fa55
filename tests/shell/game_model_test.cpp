// The game object's share of the model: it installs the mission system as the
// progress listener and the message line as the message handler, keeps the
// player records, and takes all of them down again.
#include <gtest/gtest.h>

#include <cstring>

#include "base/message_line_hook.h"
#include "items/database.h"
#include "items/progress.h"
#include "media/graph.h"
#include "script/mission.h"
#include "script/records.h"
#include "shell/game.h"

TEST(GameModel, HooksAndRecordsLiveWithTheGame) {
    {
        CGame game;
        ASSERT_NE(game.m_pMissionSystem, nullptr);
        ASSERT_NE(game.m_pRecords, nullptr);
        EXPECT_EQ(g_pProgress, game.m_pMissionSystem);
        EXPECT_EQ(g_pItemDB, game.m_pItemDB);
        EXPECT_EQ(g_pSkillDB, game.m_pSkillDB);
        // Events reach the game's missions.
        game.m_pMissionSystem->AddMission("rats", "Rats", MISSION_KILL_NAMED, "rat", 2, 0, 0);
        EXPECT_EQ(ReportProgress("rat", 1), 1);
        EXPECT_EQ(game.m_pMissionSystem->GetMissionObjCount("rats"), 1);
        // Messages reach the game's message line.
        ShowGameMessage("Level Up!");
        EXPECT_STREQ(game.m_pGraph->MessageLine().text, "Level Up!");
        EXPECT_GT(game.m_pGraph->MessageLine().framesLeft, 0);
        // A feud raised through the records shows on that line too.
        game.m_pRecords->ChangeFactionEnmity("Crows", 50, 1);
        EXPECT_NE(std::strstr(game.m_pGraph->MessageLine().text, "Crows"), nullptr);
        ASSERT_EQ(game.m_pRecords->m_vecNotes.size(), 1u);
    }
    // Gone with the game: nothing dangles.
    EXPECT_EQ(g_pProgress, nullptr);
    EXPECT_EQ(g_pItemDB, nullptr);
    EXPECT_EQ(ReportProgress("rat", 1), 0);
    ShowGameMessage("nobody listens");
}
