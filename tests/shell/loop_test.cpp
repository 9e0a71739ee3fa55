// The game loop's frame pacing and the fade and splash state machine, frame by
// frame, on the real game data.
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <string>

#include "../common/game_fixture.h"
#include "base/clock.h"
#include "media/graph.h"
#include "media/window.h"
#include "shell/game.h"
#include "shell/harness.h"

using GameLoop = CGameTest;

TEST_F(GameLoop, FortyMillisecondsRunNoFrameFortyOneRunOne) {
    ASSERT_NO_FATAL_FAILURE(StartGame(false));
    CGame& game = *this->game;
    int code = 0;
    // A headless main window routes messages to the game's window procedure; its
    // first message is the activation.
    ASSERT_TRUE(platform::CreateMainWindow(true, &CGame::WindowProc));
    platform::SendMessage(UM_SETGAME, reinterpret_cast<uintptr_t>(&game), 0);
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 0);
    game.m_nLastFrameTick = 100000;
    clock_control::SetTicks(100040);
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 0);
    clock_control::SetTicks(100041);
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 1);
    EXPECT_EQ(game.m_nLastFrameTick, 100041u);
    // No catch-up: a late frame runs once and the next waits 40 ms from it.
    clock_control::SetTicks(100300);
    ASSERT_TRUE(game.RunOnce(code));
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 2);
    // Messages go before frames: a waiting message is handled and no frame runs.
    clock_control::SetTicks(100400);
    platform::PostMessage(WM_ACTIVATEAPP, 0, 0);
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 2);
    EXPECT_EQ(game.m_bActive, 0);
    // Inactive: no frames at all.
    ASSERT_TRUE(game.RunOnce(code));
    EXPECT_EQ(game.FrameCount(), 2);
    platform::PostQuitMessage(7);
    EXPECT_FALSE(game.RunOnce(code));
    EXPECT_EQ(code, 7);
    platform::SendMessage(UM_SETGAME, 0, 0);
}

TEST_F(GameLoop, FadeOutAndInTakeEightFramesEach) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    CGame& game = *this->game;
    game.m_nGameState = GS_PLAY;
    game.StartFade(1, GS_MAINMENU);
    EXPECT_EQ(game.m_nGameState, GS_FADE);
    std::vector<int> levels;
    while (game.m_nGameState == GS_FADE) {
        levels.push_back(game.m_fade.level);
        game.UpdateFrame();
    }
    EXPECT_EQ(levels, (std::vector<int>{0, 4, 8, 12, 16, 20, 24, 28}));
    EXPECT_EQ(game.m_nGameState, GS_MAINMENU);
    EXPECT_EQ(game.m_fade.phase, 0);
    game.StartFade(0, GS_CREDITS);
    levels.clear();
    while (game.m_nGameState == GS_FADE) {
        levels.push_back(game.m_fade.level);
        game.UpdateFrame();
    }
    EXPECT_EQ(levels, (std::vector<int>{31, 27, 23, 19, 15, 11, 7, 3}));
    EXPECT_EQ(game.m_nGameState, GS_CREDITS);
    EXPECT_EQ(game.m_fade.phase, 2);
}

TEST_F(GameLoop, SplashPictureTakesSixtyOneFramesAndAClickShowsItAtOnce) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    CGame& game = *this->game;
    ASSERT_STRNE(game.m_szSplash[0], "");
    // First picture: one splash frame, then 8 + 41 + 12 fade frames.
    game.UpdateFrame();
    ASSERT_EQ(game.m_nGameState, GS_FADE);
    EXPECT_EQ(game.m_fade.kind, 2);
    EXPECT_EQ(FramesIn(GS_FADE), 61);
    EXPECT_EQ(game.m_nGameState, GS_SPLASH);
    EXPECT_EQ(game.m_nSplashCounter, 1);
    // Second picture: a click after three fade-in frames shows it undarkened.
    game.UpdateFrame();
    ASSERT_EQ(game.m_nGameState, GS_FADE);
    for (int i = 0; i < 3; ++i) game.UpdateFrame();
    EXPECT_GT(game.m_fade.level, 0);
    game.OnLButtonDown();
    EXPECT_EQ(game.m_fade.level, 0);
    game.UpdateFrame();
    CSurface* back = game.Graph()->GetSurface(SURF_BUFFER);
    CSurface* snap = game.Graph()->GetSurface(SURF_TEMP);
    const SRect& src = game.m_fade.source;
    int x0 = (640 - src.Width()) / 2, y0 = (480 - src.Height()) / 2;
    int same = 0, total = 0;
    for (int y = 0; y < src.Height(); y += 7)
        for (int x = 0; x < src.Width(); x += 7) {
            uint16_t s = snap->At(src.left + x, src.top + y);
            if (s == KEY565) continue;
            ++total;
            same += back->At(x0 + x, y0 + y) == s;
        }
    EXPECT_EQ(same, total);
    EXPECT_EQ(FramesIn(GS_FADE), 41 + 12);
}

TEST_F(GameLoop, AllSplashPicturesNullReachTheMenuAfterFiveFrames) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    CGame& game = *this->game;
    for (auto& s : game.m_szSplash) strcpy(s, "null");
    strcpy(game.m_szSplash[2], "");
    for (int i = 0; i < 4; ++i) {
        game.UpdateFrame();
        EXPECT_EQ(game.m_nGameState, GS_SPLASH);
    }
    game.UpdateFrame();
    EXPECT_EQ(game.m_nGameState, GS_MAINMENU);
    SPoint p = platform::GetCursorPos();
    EXPECT_EQ(p.x, 320);
    EXPECT_EQ(p.y, 195);
    // The menu's first frame is faded in.
    game.UpdateFrame();
    EXPECT_EQ(game.m_nGameState, GS_FADE);
    EXPECT_EQ(game.m_fade.kind, 0);
    EXPECT_EQ(FramesIn(GS_FADE), 8);
    EXPECT_EQ(game.m_nGameState, GS_MAINMENU);
}

TEST_F(GameLoop, MissingSplashPictureIsPassedOver) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    CGame& game = *this->game;
    strcpy(game.m_szSplash[0], "ui/no_such_picture.bmp");
    game.UpdateFrame();
    EXPECT_EQ(game.m_nGameState, GS_SPLASH);
    EXPECT_EQ(game.m_nSplashCounter, 1);
}

TEST_F(GameLoop, QuitSignalEndsTheLoopAsAClosedWindowDoes) {
    ASSERT_NO_FATAL_FAILURE(StartGame(false));
    ASSERT_TRUE(platform::CreateMainWindow(true, &CGame::WindowProc));
    platform::SendMessage(UM_SETGAME, reinterpret_cast<uintptr_t>(game.get()), 0);
    InstallQuitSignals();
    std::raise(SIGTERM);
    int code = -1, passes = 0;
    while (game->RunOnce(code) && passes < 100) ++passes;
    EXPECT_LT(passes, 100);
    EXPECT_EQ(code, 0);  // WM_CLOSE, WM_DESTROY, then the quit message
    EXPECT_FALSE(platform::HasMainWindow());
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    platform::SendMessage(UM_SETGAME, 0, 0);
}
