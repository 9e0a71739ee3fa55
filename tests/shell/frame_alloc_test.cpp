// The playing loop allocates nothing per frame: menus and the map, standing and
// running, counted through the global allocation operators of this test program.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "../common/game_fixture.h"
#include "characters/role.h"
#include "media/window.h"
#include "shell/game.h"

namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
}  // namespace

// The replacements pair malloc with free, which GCC cannot see through.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(size_t n) {
    if (g_counting) {
        ++g_allocations;
        if (getenv("ASHEN_ALLOC_TRAP")) __builtin_trap();
    }
    if (void* p = std::malloc(n ? n : 1)) return p;
    throw std::bad_alloc();
}
void* operator new[](size_t n) { return operator new(n); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }

namespace {

long CountFrames(CGame& game, int frames) {
    g_allocations = 0;
    g_counting = true;
    for (int i = 0; i < frames; ++i) game.UpdateFrame();
    g_counting = false;
    return g_allocations;
}

}  // namespace

using FrameAllocations = CGameTest;

TEST_F(FrameAllocations, MenuAndMapFramesAllocateNothing) {
    ASSERT_NO_FATAL_FAILURE(StartGame());
    ASSERT_TRUE(platform::CreateMainWindow(true, &CGame::WindowProc));
    // The main menu, after its fade-in; the first frames fill the caches.
    ToMainMenu();
    Frames(30);
    ASSERT_EQ(game->m_nGameState, GS_MAINMENU);
    EXPECT_EQ(CountFrames(*game, 50), 0);

    // A new game on the first map.
    PlayOn("main.map");
    ASSERT_EQ(game->m_nGameState, GS_PLAY);
    Frames(20);
    EXPECT_EQ(CountFrames(*game, 50), 0) << "standing";
    // Holding the left button: the hero runs toward the point every frame.
    // The first run meets new position texts (each is rendered once and
    // cached); the same run again must not allocate at all.
    ASSERT_NE(game->m_pRole, nullptr);
    const int32_t x0 = game->m_pRole->m_x, y0 = game->m_pRole->m_y, d0 = game->m_pRole->m_nDir;
    for (int pass = 0; pass < 2; ++pass) {
        game->m_pRole->SetPosition(x0, y0, d0);
        game->m_pRole->Stand();
        game->m_bWorldClickArmed = 1;
        platform::InjectButton(0, true, 560, 420);
        long n = CountFrames(*game, 50);
        if (pass == 1) {
            EXPECT_EQ(n, 0) << "running";
        }
        platform::InjectButton(0, false, 560, 420);
    }
    EXPECT_NE(game->m_pRole->m_x, x0);  // it did run
}
