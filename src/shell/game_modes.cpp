// The mode table and the small per-mode steps that have no other home: the
// splash sequence, the fade step, the credits and result pages, the frozen
// snapshot screens, the loading messages, and the clicks and Esc keys that only
// switch modes. The larger frames (play, main menu, panels) and the menus' clicks
// live with their subsystems and are reached from their rows.
#include "shell/game_modes.h"

#include <cstring>

#include "base/debug.h"
#include "media/graph.h"
#include "media/show.h"
#include "media/window.h"
#include "shell/game.h"
#include "ui/dlg_panel.h"
#include "ui/menu_panels.h"
#include "ui/save_panel.h"

namespace {

constexpr SRect kScreen{0, 0, SCREEN_W, SCREEN_H};

// ---- frames ----

bool FrameSplash(CGame& g) {
    bool present = true;
    if (g.m_nSplashCounter < SPLASH_COUNT) {
        const char* name = g.m_szSplash[g.m_nSplashCounter];
        if (!name[0] || std::strcmp(name, "null") == 0) {
            ++g.m_nSplashCounter;
        } else {
            DebugOut("bgindex=%d,pic path=%s\n", g.m_nSplashCounter, name);
            g.ShowSplash(name, GS_SPLASH);
            if (g.m_nGameState == GS_FADE) present = false;
        }
    }
    if (g.m_nSplashCounter >= SPLASH_COUNT) {
        platform::ShowCursor(true);
        platform::SetCursorPos(320, 195);
        g.m_nGameState = GS_MAINMENU;
    }
    return present;
}

bool FrameFade(CGame& g) {
    SFade& f = g.m_fade;
    g.m_pGraph->BltFast(SURF_BUFFER, (SCREEN_W - f.source.Width()) / 2, (SCREEN_H - f.source.Height()) / 2, SURF_TEMP,
                        f.source, BLT_WAIT_SRCKEY);
    if (f.level > 0) g.m_pGraph->DarkenRect(SURF_BUFFER, 0, 0, SCREEN_W, SCREEN_H, f.level);
    if (f.rising) f.level += FADE_STEP;
    if (f.level > 0 && !f.rising) f.level -= FADE_STEP;
    if (f.level >= FADE_BLACK && (f.kind == FADE_OUT || (f.kind == FADE_SPLASH && f.level >= FADE_SPLASH_END))) {
        ++g.m_nSplashCounter;
        f.phase = 0;
        g.m_nGameState = g.m_nResumeState;
    }
    if (f.level <= 0 && !f.rising) {
        if (f.kind == FADE_IN) {
            ++g.m_nSplashCounter;
            f.phase = FADE_STEADY;
            g.m_nGameState = g.m_nResumeState;
        }
        if (f.kind == FADE_SPLASH) f.level = FADE_SPLASH_HOLD;
        f.rising = 1;
    }
    return true;
}

// The credits and result pages: the ground layer's top-left screen, with the
// page's music started once, faded in on the first frame.
bool FramePage(CGame& g, const char* music) {
    if (!g.m_bMusicStarted) {
        if (music[0] && g.m_pShow->Open(g.m_hWnd, music)) g.m_pShow->Play(g.m_hWnd, 1);
        g.m_bMusicStarted = 1;
    }
    g.m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_GROUND, kScreen, BLT_WAIT);
    if (g.m_fade.phase != FADE_STEADY) {
        g.StartFade(0, g.m_nGameState);
        return false;
    }
    return true;
}

// The death picture and the boss picture wait in the snapshot.
bool FrameSnapshot(CGame& g) {
    g.m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_TEMP, kScreen, BLT_WAIT);
    return true;
}

bool FrameQuit(CGame& g) {
    g.m_pShow->Stop();
    platform::PostMessage(WM_CLOSE, 0, 0);
    return true;
}

// The loading message is presented by this frame; the next frame loads.
bool FrameLoadingMessage(CGame& g, const char* text, int32_t next) {
    g.m_pGraph->FillRect(SURF_BUFFER, nullptr, 0);
    g.DrawOutlinedText(SURF_BUFFER, text, 320, 240, RGB(255, 255, 255), RGB(218, 62, 2), false);
    g.m_nGameState = next;
    return true;
}

// ---- clicks and Esc ----

// A click while a splash picture fades in shows it at once.
void ClickFade(CGame& g) {
    if (g.m_fade.kind == FADE_SPLASH && g.m_fade.level > 0 && !g.m_fade.rising) g.m_fade.level = 0;
}

void LeaveToMainMenu(CGame& g) {
    g.m_bMusicStarted = 0;
    g.StartFade(1, GS_MAINMENU);
}

// The death and result screens end the game: its pictures are dropped too.
void EndGameToMainMenu(CGame& g) {
    LeaveToMainMenu(g);
    g.m_pGraph->FreeBitmapCache(BMP_CACHE_MAP);
    g.m_pGraph->FreeBitmapCache(BMP_CACHE_GAME);
}

void Resume(CGame& g) { g.m_nGameState = g.m_nResumeState; }

void BackToPlay(CGame& g) { g.m_nGameState = GS_PLAY; }

void CloseInfoScreen(CGame& g) {
    g.m_nGameState = GS_PLAY;
    g.m_nOpenScreen = 0;
}

void ClosePacks(CGame& g) {
    g.m_bTrading = 0;
    g.m_bHandEmpty = 1;
    g.m_nGameState = GS_PLAY;
}

// ---- panels ----

CPanel* MainMenuPanel(CGame& g) { return g.m_pMainMenuPanel; }
CPanel* GameMenuPanel(CGame& g) { return g.m_pMenuPanel; }
CPanel* SavePanel(CGame& g) { return g.m_pSavePanel; }
CPanel* DialogPanel(CGame& g) { return g.m_pDlgPanel; }

bool FramePanel(CGame& g) {
    g.FramePanelMode();
    return true;
}

// One row per mode, in mode order. The dialogue box (GS_TALK) and the packs
// (GS_PACK) draw themselves over the snapshot once they exist.
const SGameMode kModes[] = {
    {GS_SPLASH, "GS_SPLASH", FrameSplash, nullptr, nullptr, nullptr, false},
    {GS_FADE, "GS_FADE", FrameFade, ClickFade, nullptr, nullptr, false},
    {GS_MAINMENU, "GS_MAINMENU", [](CGame& g) { return g.FrameMainMenu(); }, [](CGame& g) { g.OnMainMenuClick(); },
     nullptr, MainMenuPanel, false},
    {GS_PLAY, "GS_PLAY", [](CGame& g) { return g.PlayFrame(); }, nullptr, [](CGame& g) { g.OpenGameMenu(); }, nullptr,
     true},
    {GS_TALK, "GS_TALK", FramePanel, nullptr, nullptr, nullptr, false},
    {GS_GAMEMENU, "GS_GAMEMENU", FramePanel, [](CGame& g) { g.OnGameMenuClick(); }, Resume, GameMenuPanel, false},
    {GS_SAVE, "GS_SAVE", FramePanel, [](CGame& g) { g.OnSavePanelClick(); }, BackToPlay, SavePanel, false},
    {GS_LOAD, "GS_LOAD", FramePanel, [](CGame& g) { g.OnLoadPanelClick(); }, Resume, SavePanel, false},
    {GS_CREDITS, "GS_CREDITS", [](CGame& g) { return FramePage(g, g.m_szCreditMusic); }, LeaveToMainMenu, nullptr,
     nullptr, false},
    {GS_INFO, "GS_INFO", FramePanel, [](CGame& g) { g.OnDialogClick(); }, CloseInfoScreen, DialogPanel, true},
    {GS_PACK, "GS_PACK", FramePanel, nullptr, ClosePacks, nullptr, true},
    {GS_DEAD, "GS_DEAD", FrameSnapshot, EndGameToMainMenu, nullptr, nullptr, false},
    {GS_RESULT, "GS_RESULT", [](CGame& g) { return FramePage(g, g.m_szEndMusic); }, EndGameToMainMenu, nullptr,
     nullptr, false},
    {GS_QUIT, "GS_QUIT", FrameQuit, nullptr, nullptr, nullptr, false},
    {GS_HELP, "GS_HELP", FramePanel, [](CGame& g) { g.OnDialogClick(); }, BackToPlay, DialogPanel, false},
    {GS_BOSSKEY, "GS_BOSSKEY", FrameSnapshot, Resume, Resume, nullptr, false},
    {GS_MAPMSG, "GS_MAPMSG",
     [](CGame& g) { return FrameLoadingMessage(g, "Loading map, please wait...", GS_ENTERMAP); }, nullptr, nullptr,
     nullptr, false},
    {GS_ENTERMAP, "GS_ENTERMAP",
     [](CGame& g) {
         g.EnterMap();
         return false;
     },
     nullptr, nullptr, nullptr, false},
    {GS_LOADMSG, "GS_LOADMSG",
     [](CGame& g) { return FrameLoadingMessage(g, "Loading game, please wait...", GS_LOADGAME); }, nullptr, nullptr,
     nullptr, false},
    {GS_LOADGAME, "GS_LOADGAME", [](CGame& g) { return g.LoadGame() == 0; }, nullptr, nullptr, nullptr, false},
};

}  // namespace

const SGameMode* FindGameMode(int32_t mode) {
    for (const SGameMode& m : kModes)
        if (m.mode == mode) return &m;
    return nullptr;
}

const char* GameModeName(int32_t mode) {
    const SGameMode* m = FindGameMode(mode);
    return m ? m->name : "unknown";
}

const SGameMode* GameModes(int* count) {
    if (count) *count = int(sizeof kModes / sizeof kModes[0]);
    return kModes;
}
