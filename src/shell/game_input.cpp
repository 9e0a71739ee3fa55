// CGame: keys and left clicks by mode. The panels' own clicks are in
// game_panels.cpp and the world's in game_world_input.cpp.
#include "characters/role.h"
#include "media/graph.h"
#include "media/show.h"
#include "media/window.h"
#include "base/debug.h"
#include "shell/game.h"

int CGame::OnKeyDown(int key) {
    if (m_nGameState == GS_FADE) return 1;
    if (key == VK_ESCAPE) {
        switch (m_nGameState) {
            case GS_PLAY: OpenGameMenu(); break;
            case GS_GAMEMENU:
            case GS_LOAD:
            case GS_BOSSKEY: m_nGameState = m_nResumeState; break;
            case GS_SAVE:
            case GS_HELP: m_nGameState = GS_PLAY; break;
            case GS_INFO:
                m_nGameState = GS_PLAY;
                m_nOpenScreen = 0;
                break;
            case GS_PACK:
                m_bTrading = 0;
                m_bHandEmpty = 1;
                m_nGameState = GS_PLAY;
                break;
            default: break;
        }
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
    if (m_nGameState == GS_PLAY || m_nGameState == GS_INFO || m_nGameState == GS_PACK) {
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
    switch (m_nGameState) {
        case GS_FADE:
            // A click while a splash picture fades in shows it at once.
            if (m_fade.kind == 2 && m_fade.level > 0 && !m_fade.rising) m_fade.level = 0;
            return;
        case GS_DEAD:
        case GS_RESULT:
            m_bMusicStarted = 0;
            StartFade(1, GS_MAINMENU);
            m_pGraph->FreeBitmapCache(0);
            m_pGraph->FreeBitmapCache(1);
            return;
        case GS_CREDITS:
            m_bMusicStarted = 0;
            StartFade(1, GS_MAINMENU);
            return;
        case GS_BOSSKEY:
            m_nGameState = m_nResumeState;
            return;
        default:
            OnPanelClick();
            return;
    }
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
