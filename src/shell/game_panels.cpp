// CGame: the panels it owns (creation, layouts, deletion), the frames of the
// panel modes, the clicks of the menus and of the save and dialog panels, and
// the message line.
#include "media/graph.h"
#include "media/show.h"
#include "media/sound.h"
#include "shell/game.h"
#include "shell/game_modes.h"
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
    // A layout whose archive entry cannot be read (reported by ReadGameIni)
    // fails like a missing one instead of giving an empty panel.
    auto readable = [this](const char* name) { return m_setUnreadableIni.count(name) == 0; };
    if (!m_pMenuPanel || !readable("menu.ini") || !m_pMenuPanel->Load("menu.ini", m_szIniPack)) return 0;
    if (!m_pMainMenuPanel || !readable("mainmenu.ini") || !m_pMainMenuPanel->Load("mainmenu.ini", m_szIniPack))
        return 0;
    if (!m_pDlgPanel || !readable("dlg.ini") || !m_pDlgPanel->Load("dlg.ini", m_szIniPack)) return 0;
    if (!m_pSavePanel || !readable("savepanel.ini") || !m_pSavePanel->Load("savepanel.ini", m_szIniPack)) return 0;
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

CPanel* CGame::ModePanel() {
    const SGameMode* mode = FindGameMode(m_nGameState);
    return mode && mode->panel ? mode->panel(*this) : nullptr;
}

void CGame::FramePanelMode() {
    m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_TEMP, kScreen, BLT_WAIT);
    // The dialogue box and the packs draw themselves; the others are panels.
    if (CPanel* panel = ModePanel()) {
        panel->UpdateHover();
        panel->Draw();
    }
}

void CGame::OnMainMenuClick() {
    if (!m_pMainMenuPanel) return;
    switch (m_pMainMenuPanel->GetClickedButton()) {
        case CMainMenuPanel::BTN_START:
            if (!RunScript("main.gsp", 1)) ChangeMap("main.map", -1, -1, 5, 1);
            break;
        case CMainMenuPanel::BTN_LOAD: OpenSavePanel(1, GS_MAINMENU); break;
        case CMainMenuPanel::BTN_ABOUT: ShowCredits(); break;
        case CMainMenuPanel::BTN_EXIT: StartFade(1, GS_QUIT); break;
        default: break;
    }
}

void CGame::OnGameMenuClick() {
    if (!m_pMenuPanel) return;
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
            m_pGraph->FreeBitmapCache(BMP_CACHE_MAP);
            m_pGraph->FreeBitmapCache(BMP_CACHE_GAME);
            break;
        default: break;
    }
}

void CGame::OnDialogClick() {
    if (!m_pDlgPanel) return;
    if (m_pDlgPanel->OnClick() == 0) {
        if (m_nGameState == GS_INFO) m_nOpenScreen = 0;
        m_nGameState = GS_PLAY;
        m_bWorldClickArmed = 0;
    }
}

void CGame::OnSavePanelClick() {
    if (!m_pSavePanel) return;
    const int n = m_pSavePanel->GetClickedButton();
    if (n < 0) return;
    if (n >= 1) SaveGame(n);
    m_nGameState = GS_PLAY;
    m_bWorldClickArmed = 0;
}

void CGame::OnLoadPanelClick() {
    if (!m_pSavePanel) return;
    const int n = m_pSavePanel->GetClickedButton();
    if (n == 0) {
        m_nGameState = m_nResumeState;
        m_bWorldClickArmed = 0;
    } else if (n >= 1 && LoadSlot(n)) {
        m_pGraph->FreeBitmapCache(BMP_CACHE_MAP);
        DeleteTutorial(m_pTutorialPanel);
    }
}

void CGame::ShowMessage(const char* text) {
    if (m_pGraph) MessageLineShow(m_pGraph->MessageLine(), text);
}

void CGame::DrawMessageLine() {
    if (m_pGraph) MessageLineDraw(m_pGraph->MessageLine(), *m_pGraph);
}
