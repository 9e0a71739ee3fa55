// CGame: the panels it owns (creation, layouts, deletion), the frames of the
// panel modes, the clicks of the menus and of the save and dialog panels, and
// the message line.
#include "media/graph.h"
#include "media/show.h"
#include "media/sound.h"
#include "shell/game.h"
#include "base/log.h"
#include "ui/button.h"
#include "ui/dlg_panel.h"
#include "ui/menu_panels.h"
#include "ui/message_line.h"
#include "ui/save_panel.h"

// The game's other panels are optional here: they are deleted through their own
// headers once those exist.
#if __has_include("ui/tutorial_panel.h")
#include "ui/tutorial_panel.h"
#define ASHEN_HAVE_TUTORIAL_PANEL 1
#endif
#if __has_include("ui/player_panel.h")
#include "ui/player_panel.h"
#define ASHEN_HAVE_PLAYER_PANEL 1
#endif
#if __has_include("ui/pack_panel.h")
#include "ui/pack_panel.h"
#define ASHEN_HAVE_PACK_PANEL 1
#endif

namespace {
constexpr SRect kScreen{0, 0, SCREEN_W, SCREEN_H};

template <class T>
void DeleteOwned(T*& p) {
    delete p;
    p = nullptr;
}
}  // namespace

void CGame::CreatePanels() {
    m_pMenuPanel = new CMenuPanel();
    m_pMainMenuPanel = new CMainMenuPanel();
    m_pDlgPanel = new CDlgPanel();
    m_pSavePanel = new CSavePanel();
}

static void DeleteTutorial(CTutorialPanel*& panel) {
#ifdef ASHEN_HAVE_TUTORIAL_PANEL
    DeleteOwned(panel);
#else
    panel = nullptr;  // nothing can have made one
#endif
}

void CGame::DeletePanels() {
    DeleteOwned(m_pMenuPanel);
    DeleteOwned(m_pMainMenuPanel);
    DeleteOwned(m_pDlgPanel);
    DeleteOwned(m_pSavePanel);
    DeleteTutorial(m_pTutorialPanel);
#ifdef ASHEN_HAVE_PLAYER_PANEL
    DeleteOwned(m_pPlayerPanel);
#endif
#ifdef ASHEN_HAVE_PACK_PANEL
    DeleteOwned(m_pPackPanel[0]);
    DeleteOwned(m_pPackPanel[1]);
#endif
}

// The hover sound passes to the button class, which owns it from now on.
void CGame::PublishButtonGlobals(CSound* hoverSound) {
    if (g_pButtonOverSound != hoverSound) delete g_pButtonOverSound;
    g_pButtonOverSound = hoverSound;
}

int CGame::LoadPanels() {
    if (!m_pMenuPanel || !m_pMenuPanel->Load("menu.ini", m_szIniPack)) return 0;
    if (!m_pMainMenuPanel || !m_pMainMenuPanel->Load("mainmenu.ini", m_szIniPack)) return 0;
    if (!m_pDlgPanel || !m_pDlgPanel->Load("dlg.ini", m_szIniPack)) return 0;
    if (!m_pSavePanel || !m_pSavePanel->Load("savepanel.ini", m_szIniPack)) return 0;
    return 1;
}

bool CGame::FrameMainMenu() {
    if (!m_bMusicStarted) {
        if (m_pShow && m_szStartMusic[0] && m_pShow->Open(m_hWnd, m_szStartMusic)) m_pShow->Play(m_hWnd, 1);
        m_bMusicStarted = 1;
    }
    if (m_pMainMenuPanel) {
        m_pMainMenuPanel->UpdateHover();
        m_pMainMenuPanel->DrawFrame();
    }
    if (m_fade.phase != 2) {
        StartFade(0, GS_MAINMENU);
        return false;
    }
    return true;
}

void CGame::FramePanelMode() {
    m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_TEMP, kScreen, BLT_WAIT);
    CPanel* panel = nullptr;
    switch (m_nGameState) {
        case GS_GAMEMENU: panel = m_pMenuPanel; break;
        case GS_SAVE:
        case GS_LOAD: panel = m_pSavePanel; break;
        case GS_INFO:
        case GS_HELP: panel = m_pDlgPanel; break;
        default: break;  // the dialogue box and the packs draw themselves
    }
    if (panel) {
        panel->UpdateHover();
        panel->Draw();
    }
}

bool CGame::OnPanelClick() {
    switch (m_nGameState) {
        case GS_MAINMENU: {
            if (!m_pMainMenuPanel) return true;
            switch (m_pMainMenuPanel->GetClickedButton()) {
                case CMainMenuPanel::BTN_START:
                    if (!RunScript("main.gsp", 1)) ChangeMap("main.map", -1, -1, 5, 1);
                    break;
                case CMainMenuPanel::BTN_LOAD: OpenSavePanel(1, GS_MAINMENU); break;
                case CMainMenuPanel::BTN_ABOUT: ShowCredits(); break;
                case CMainMenuPanel::BTN_EXIT: StartFade(1, GS_QUIT); break;
                default: break;
            }
            return true;
        }
        case GS_GAMEMENU: {
            if (!m_pMenuPanel) return true;
            switch (m_pMenuPanel->GetClickedButton()) {
                case CMenuPanel::BTN_BACK:
                    m_nGameState = GS_PLAY;
                    m_bWorldClickArmed = 0;
                    break;
                case CMenuPanel::BTN_SAVE: OpenSavePanel(0, GS_PLAY); break;
                case CMenuPanel::BTN_LOAD: OpenSavePanel(1, GS_PLAY); break;
                case CMenuPanel::BTN_HELP: ShowHelp(); break;
                case CMenuPanel::BTN_EXIT:
                    m_bMusicStarted = 0;
                    StartFade(1, GS_MAINMENU);
                    DeleteTutorial(m_pTutorialPanel);
                    m_pGraph->FreeBitmapCache(0);
                    m_pGraph->FreeBitmapCache(1);
                    break;
                default: break;
            }
            return true;
        }
        case GS_INFO:
        case GS_HELP: {
            if (!m_pDlgPanel) return true;
            if (m_pDlgPanel->OnClick() == 0) {
                if (m_nGameState == GS_INFO) m_nOpenScreen = 0;
                m_nGameState = GS_PLAY;
                m_bWorldClickArmed = 0;
            }
            return true;
        }
        case GS_SAVE: {
            if (!m_pSavePanel) return true;
            const int n = m_pSavePanel->GetClickedButton();
            if (n < 0) return true;
            if (n >= 1) SaveGame(n);
            m_nGameState = GS_PLAY;
            m_bWorldClickArmed = 0;
            return true;
        }
        case GS_LOAD: {
            if (!m_pSavePanel) return true;
            const int n = m_pSavePanel->GetClickedButton();
            if (n == 0) {
                m_nGameState = m_nResumeState;
                m_bWorldClickArmed = 0;
            } else if (n >= 1 && LoadSlot(n)) {
                m_pGraph->FreeBitmapCache(0);
                DeleteTutorial(m_pTutorialPanel);
            }
            return true;
        }
        default: return false;
    }
}

void CGame::ShowMessage(const char* text) {
    if (m_pGraph) MessageLineShow(m_pGraph->MessageLine(), text);
}

void CGame::DrawMessageLine() {
    if (m_pGraph) MessageLineDraw(m_pGraph->MessageLine(), *m_pGraph);
}
