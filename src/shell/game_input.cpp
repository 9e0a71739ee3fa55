// CGame: keys and left clicks. What Esc and a click do in each mode is a column
// of the mode table (game_modes.cpp); the panels' own clicks are in
// game_panels.cpp and the world's in game_world_input.cpp.
#include "characters/role.h"
#include "media/graph.h"
#include "media/show.h"
#include "media/window.h"
#include "base/debug.h"
#include "shell/game.h"
#include "shell/game_modes.h"

int CGame::OnKeyDown(int key) {
    if (m_nGameState == GS_FADE) return 1;
    const SGameMode* mode = FindGameMode(m_nGameState);
    if (key == VK_ESCAPE) {
        if (mode && mode->escape) mode->escape(*this);
        return 1;
    }
    if (key == VK_F11) {
        DebugOut("Start to screen shot\n");
        ScreenShot();
        return 1;
    }
    if (key == VK_F9) {
        if (m_nGameState == GS_BOSSKEY) {
            m_nGameState = m_nResumeState;
        } else {
            DebugOut("Press F9\n");
            ShowBossKey();
        }
        return 1;
    }
    if (mode && mode->heroKeys) {
        // Skills, bag items (1..9), F7 drops and F8 level-ups take effect with
        // the skill, item and combat code.
        if (key >= VK_F1 && key <= VK_F4) OpenScreen(key - 111);
        if (key == VK_F6 && m_pRole) {
            m_pRole->m_nMoney += 10000;
            PlayWav("sell.wav");
            return 1;
        }
    }
    return 1;
}

void CGame::OnLButtonUp() { m_bWorldClickArmed = 1; }

void CGame::OnLButtonDown() {
    const SGameMode* mode = FindGameMode(m_nGameState);
    if (mode && mode->click) mode->click(*this);
}

int CGame::OpenScreen(int id) {
    if (m_nGameState == GS_PACK) {
        if (id < 6) return 0;
    } else if (id < 6 && m_nHeldItemId != 0) {
        return 0;
    }
    if (id == m_nOpenScreen && id < 5) {
        PlayWav("button_click.wav");
        m_nGameState = GS_PLAY;
        m_nOpenScreen = 0;
        return 1;
    }
    if (id >= 1 && id <= 5) {
        PlayWav("button_click.wav");
        m_nOpenScreen = id;
    }
    if (id == -2) return 0;
    if (id == 5) OpenGameMenu();
    return 1;
}

int CGame::OpenGameMenu() {
    ComposeSnapshot();
    m_nGameState = GS_GAMEMENU;
    return 1;
}
