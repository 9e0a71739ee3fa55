// The mode table: one row per game mode, and what Esc, a left click and the
// hero's keys do in each mode of the real game.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "../common/game_fixture.h"
#include "shell/game_modes.h"

TEST(ModeTable, OneRowPerModeInOrderWithItsName) {
    int count = 0;
    const SGameMode* rows = GameModes(&count);
    ASSERT_EQ(count, 20);  // 0 .. 20 without 11
    std::set<std::string> names;
    for (int i = 0; i < count; ++i) {
        if (i > 0) EXPECT_GT(rows[i].mode, rows[i - 1].mode);
        EXPECT_NE(rows[i].frame, nullptr) << rows[i].name;
        EXPECT_EQ(std::string(rows[i].name).rfind("GS_", 0), 0u);
        EXPECT_TRUE(names.insert(rows[i].name).second) << rows[i].name;
        EXPECT_EQ(FindGameMode(rows[i].mode), &rows[i]);
    }
    for (int unused : {-1, 11, 21, 1000}) {
        EXPECT_EQ(FindGameMode(unused), nullptr) << unused;
        EXPECT_STREQ(GameModeName(unused), "unknown");
    }
    EXPECT_STREQ(GameModeName(GS_SPLASH), "GS_SPLASH");
    EXPECT_STREQ(GameModeName(GS_LOADGAME), "GS_LOADGAME");
    EXPECT_STREQ(GameModeName(GS_BOSSKEY), "GS_BOSSKEY");
    // The hero's keys act in play and over the information screens and packs only.
    for (int i = 0; i < count; ++i) {
        const bool hero = rows[i].mode == GS_PLAY || rows[i].mode == GS_INFO || rows[i].mode == GS_PACK;
        EXPECT_EQ(rows[i].heroKeys, hero) << rows[i].name;
    }
}

using ModeInput = CGameTest;

TEST_F(ModeInput, EscapeByMode) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    struct SCase {
        int mode, after;
    } cases[] = {{GS_PLAY, GS_GAMEMENU}, {GS_GAMEMENU, GS_MAINMENU}, {GS_LOAD, GS_MAINMENU},
                 {GS_BOSSKEY, GS_MAINMENU}, {GS_SAVE, GS_PLAY}, {GS_HELP, GS_PLAY}, {GS_INFO, GS_PLAY},
                 {GS_PACK, GS_PLAY}, {GS_SPLASH, GS_SPLASH}, {GS_MAINMENU, GS_MAINMENU}, {GS_TALK, GS_TALK},
                 {GS_CREDITS, GS_CREDITS}, {GS_DEAD, GS_DEAD}, {GS_RESULT, GS_RESULT}, {GS_MAPMSG, GS_MAPMSG},
                 {GS_FADE, GS_FADE}};
    for (const SCase& c : cases) {
        game->m_nGameState = c.mode;
        game->m_nResumeState = GS_MAINMENU;  // where the resuming modes go back to
        game->m_nOpenScreen = 3;
        game->m_bTrading = 1;
        game->m_bHandEmpty = 0;
        EXPECT_EQ(game->OnKeyDown(VK_ESCAPE), 1);
        EXPECT_EQ(game->m_nGameState, c.after) << GameModeName(c.mode);
        // Leaving an information screen forgets it; leaving the packs ends trading.
        EXPECT_EQ(game->m_nOpenScreen, c.mode == GS_INFO ? 0 : 3) << GameModeName(c.mode);
        EXPECT_EQ(game->m_bTrading, c.mode == GS_PACK ? 0 : 1) << GameModeName(c.mode);
        EXPECT_EQ(game->m_bHandEmpty, c.mode == GS_PACK ? 1 : 0) << GameModeName(c.mode);
    }
}

TEST_F(ModeInput, LeftClickByModeAndTheHerosKeys) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    // The death, result and credits screens fade out to the main menu and clear
    // the music flag; the boss picture goes back where it came from.
    for (int mode : {GS_DEAD, GS_RESULT, GS_CREDITS}) {
        game->m_nGameState = mode;
        game->m_bMusicStarted = 1;
        game->OnLButtonDown();
        EXPECT_EQ(game->m_nGameState, GS_FADE) << GameModeName(mode);
        EXPECT_EQ(game->m_nResumeState, GS_MAINMENU);
        EXPECT_EQ(game->m_fade.kind, FADE_OUT);
        EXPECT_EQ(game->m_bMusicStarted, 0);
    }
    game->m_nGameState = GS_BOSSKEY;
    game->m_nResumeState = GS_SAVE;
    game->OnLButtonDown();
    EXPECT_EQ(game->m_nGameState, GS_SAVE);
    // Clicks in modes without a click column change nothing.
    for (int mode : {GS_SPLASH, GS_PLAY, GS_TALK, GS_PACK, GS_QUIT, GS_MAPMSG, GS_ENTERMAP, GS_LOADMSG}) {
        game->m_nGameState = mode;
        game->OnLButtonDown();
        EXPECT_EQ(game->m_nGameState, mode) << GameModeName(mode);
    }
    // F2 opens the notes screen only where the hero's keys act.
    for (int mode : {GS_PLAY, GS_GAMEMENU, GS_SAVE, GS_MAINMENU}) {
        game->m_nGameState = mode;
        game->m_nOpenScreen = 0;
        game->m_nHeldItemId = 0;
        game->OnKeyDown(VK_F2);
        EXPECT_EQ(game->m_nOpenScreen, mode == GS_PLAY ? 2 : 0) << GameModeName(mode);
    }
}
