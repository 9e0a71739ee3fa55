// The main menu's frame: the kept picture is exactly what drawing the panel anew
// gives, it is composed again only when the hover state changes, and the hover
// sound keeps playing once per entry.
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "media/graph.h"
#include "media/window.h"
#include "base/clock.h"
#include "shell/game.h"
#include "ui/button.h"
#include "ui/menu_panels.h"

TEST(MainMenuFrame, KeptPictureEqualsAFreshDrawAndFollowsTheHover) {
    char old[1024];
    ASSERT_NE(getcwd(old, sizeof(old)), nullptr);
    ASSERT_EQ(chdir(ASHEN_GAME_DIR), 0);
    platform::SOptions o;
    o.headless = true;
    ASSERT_TRUE(platform::Init(o));
    clock_control::SetVirtualTicks(true);
    {
        CGame game;
        ASSERT_EQ(game.Init(1), 1);
        ASSERT_TRUE(platform::CreateMainWindow(true, &CGame::WindowProc));
        game.m_nSplashCounter = 5;
        game.m_nGameState = GS_MAINMENU;
        game.m_fade.phase = 2;
        CMainMenuPanel* menu = game.m_pMainMenuPanel;
        ASSERT_NE(menu, nullptr);
        ASSERT_GE(menu->Buttons().size(), 2u);
        CSurface* back = game.Graph()->GetSurface(SURF_BUFFER);
        const SRect start = menu->Buttons()[0].Rect();
        const SRect load = menu->Buttons()[1].Rect();
        ASSERT_GT(start.Width(), 0);
        const SPoint outside{5, 5};
        const SPoint onStart{start.left + 3, start.top + 3};
        const SPoint onLoad{load.left + 3, load.top + 3};
        const SPoint points[] = {outside, outside, onStart, onStart, onStart, onLoad, outside, onStart};
        const int composesWanted[] = {1, 1, 2, 2, 2, 3, 4, 5};
        const int64_t soundsWanted[] = {0, 0, 1, 1, 1, 2, 2, 3};
        const int64_t sounds0 = ButtonHoverSoundCount();
        int frame = 0;
        for (const SPoint& p : points) {
            platform::InjectMouseMove(p.x, p.y);
            // Whatever the back buffer held before, the frame is the full menu.
            std::fill(back->pixels.begin(), back->pixels.end(), uint16_t(0x1234 + frame));
            game.UpdateFrame();
            ASSERT_EQ(game.m_nGameState, GS_MAINMENU);
            const std::vector<uint16_t> kept = back->pixels;
            EXPECT_EQ(menu->ComposeCount(), composesWanted[frame]) << frame;
            // The sound plays when there is one (earlier tests may have switched
            // sound off); the entry flag that arms it moves either way.
            if (g_pButtonOverSound) EXPECT_EQ(ButtonHoverSoundCount() - sounds0, soundsWanted[frame]) << frame;
            EXPECT_EQ(menu->Buttons()[0].Sounded(), p.x == onStart.x && p.y == onStart.y ? 1 : 0) << frame;
            EXPECT_EQ(menu->Buttons()[1].Sounded(), p.x == onLoad.x && p.y == onLoad.y ? 1 : 0) << frame;
            // Drawn anew over other garbage: the same picture.
            std::fill(back->pixels.begin(), back->pixels.end(), uint16_t(0x4321));
            for (CButton& b : menu->Buttons()) b.UpdateHover(p);
            const int64_t before = ButtonHoverSoundCount();
            menu->Draw();
            EXPECT_EQ(ButtonHoverSoundCount(), before);  // already sounded for this entry
            EXPECT_TRUE(back->pixels == kept) << frame;
            ++frame;
        }
        // The hovered start button shows its hover picture: the picture differs
        // from the one without hover inside the button.
        platform::InjectMouseMove(onStart.x, onStart.y);
        game.UpdateFrame();
        const std::vector<uint16_t> hovered = back->pixels;
        int differ = 0;
        platform::InjectMouseMove(outside.x, outside.y);
        game.UpdateFrame();
        for (int32_t y = start.top; y < start.bottom; ++y)
            for (int32_t x = start.left; x < start.right; ++x)
                differ += hovered[size_t(y) * SCREEN_W + size_t(x)] != back->At(x, y);
        EXPECT_GT(differ, 0);
    }
    platform::Shutdown();
    clock_control::Reset();
    ASSERT_EQ(chdir(old), 0);
}
