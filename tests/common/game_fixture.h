// One game object for the tests that need one. CGameTest starts SDL headless
// with a virtual tick count and a fixed calendar, and gives the test a game:
//   StartGame()  the real game on the built game data, working in a view of the
//                game folder inside the scratch folder (its files linked, its
//                logs, saves and screenshots the test's own), with Init done
//                (or not, for tests of the bare loop);
//   BareGame()   a game without data in a folder of its own under the test's
//                scratch folder, with the display's surfaces made and no map;
//                UseMap() then puts it in play on a map file the test wrote.
// The helpers move the game the way the player and the harness do (to the main
// menu, onto a map, frame by frame) instead of tests setting members one by one.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "base/clock.h"
#include "media/graph.h"
#include "media/window.h"
#include "shell/game.h"
#include "world/map.h"

class CGameTest : public ::testing::Test {
protected:
    static constexpr int64_t kCalendarStart = 1299011409;  // 2011-03-01 20:30:09 UTC
    static constexpr uint32_t kStartTicks = 100000;

    void SetUp() override {
        m_oldDir = std::filesystem::current_path();
        platform::SOptions o;
        o.headless = true;
        ASSERT_TRUE(platform::Init(o));
        clock_control::SetCalendarStart(kCalendarStart);
        clock_control::SetVirtualTicks(true);
        clock_control::SetTicks(kStartTicks);
    }

    void TearDown() override {
        game.reset();
        platform::Shutdown();
        clock_control::Reset();
        std::filesystem::current_path(m_oldDir);
    }

    // The real game in a scratch view of the built game folder; Init(1) must
    // succeed when init is set.
    void StartGame(bool init = true) {
        namespace fs = std::filesystem;
        const fs::path dir = TestFolder();
        for (const auto& e : fs::directory_iterator(ASHEN_GAME_DIR)) {
            const std::string name = e.path().filename().string();
            if (name == "saves" || name == "screenshot") {
                fs::create_directories(dir / name);
            } else if (name != "GameEngine.log" && name != "exceptionLog.log") {
                fs::create_symlink(e.path(), dir / name);
            }
        }
        game = std::make_unique<CGame>();
        if (init) {
            ASSERT_EQ(game->Init(1), 1);
        }
    }

    // A game without data, working in scratch/<test name>/, with the display's
    // eight surfaces at their sizes and the role layer cleared to the colour key.
    void BareGame() {
        TestFolder();
        game = std::make_unique<CGame>();
        static const int kSizes[SURF_COUNT][3] = {{640, 480, 0},   {640, 480, 0},   {3200, 1600, 0}, {3200, 1600, 1},
                                                  {3200, 1600, 1}, {640, 640, 1},   {2048, 1600, 1}, {640, 480, 1}};
        for (int i = 0; i < SURF_COUNT; ++i)
            game->m_pGraph->GetSurface(i)->Create(kSizes[i][0], kSizes[i][1], kSizes[i][2] != 0);
        game->m_pGraph->FillRect(SURF_ROLE, nullptr, KEY565);
    }

    // Puts a bare game in play on a map file: the exit and script registries from
    // texts ("" for none), the file loaded, its header taken as the game's.
    void UseMap(const char* path, const std::string& mapsIni = "", const std::string& scriptsIni = "") {
        game->m_pMap->SetRegistries(mapsIni, scriptsIni);
        ASSERT_TRUE(game->m_pMap->Load(path, nullptr)) << path;
        game->m_pMap->GetHeader(game->m_mapInfo.words);
        game->m_nGameState = GS_PLAY;
    }

    // The splash pictures are over: the main menu, as --warp and the fifth
    // picture leave it.
    void ToMainMenu() {
        game->m_nSplashCounter = SPLASH_COUNT;
        game->m_nGameState = GS_MAINMENU;
    }

    // A new game on a map of the game data (as the main menu's start button
    // without a script), run until play is steady; false when it never was.
    bool PlayOn(const char* map, int limit = 60) {
        game->ChangeMap(map, -1, -1, 5, 1);
        for (int i = 0; i < limit && !Steady(GS_PLAY); ++i) game->UpdateFrame();
        return Steady(GS_PLAY);
    }

    bool Steady(int mode) const { return game->m_nGameState == mode && game->m_fade.phase == FADE_STEADY; }

    void Frames(int n) {
        for (int i = 0; i < n; ++i) game->UpdateFrame();
    }

    // Runs frames while the mode stays `mode`; returns how many ran.
    int FramesIn(int mode, int limit = 1000) {
        int n = 0;
        while (game->m_nGameState == mode && n < limit) {
            game->UpdateFrame();
            ++n;
        }
        return n;
    }

    std::unique_ptr<CGame> game;

private:
    // scratch/<suite>.<test>/, empty, made the working directory.
    std::filesystem::path TestFolder() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        const std::filesystem::path dir = m_oldDir / (std::string(info->test_suite_name()) + "." + info->name());
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        std::filesystem::current_path(dir);
        return dir;
    }

    std::filesystem::path m_oldDir;
};
