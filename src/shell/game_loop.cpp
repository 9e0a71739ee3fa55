// CGame: the 40 ms message loop, the window procedure, UpdateFrame (the current
// mode's step from the mode table, then the message line and the present),
// starting fades and splash pictures, the effect sound and outlined text.
#include <cstring>

#include "media/graph.h"
#include "media/show.h"
#include "media/sound.h"
#include "media/window.h"
#include "resources/picture_ref.h"
#include "base/clock.h"
#include "base/debug.h"
#include "base/frame_pacing.h"
#include "shell/game.h"
#include "shell/game_modes.h"
#include "shell/harness.h"

namespace {
CGame* g_pWindowGame = nullptr;  // the game pointer handed over by UM_SETGAME
const SRect kScreen{0, 0, SCREEN_W, SCREEN_H};
constexpr uint32_t kInactiveWaitMs = 100;
}  // namespace

intptr_t CGame::WindowProc(uint32_t message, uintptr_t wParam, intptr_t lParam) {
    CGame* game = g_pWindowGame;
    switch (message) {
        case WM_DESTROY:
            platform::PostQuitMessage(0);
            break;
        case WM_ACTIVATEAPP:
            if (game) game->m_bActive = int32_t(wParam);
            break;
        case WM_KEYDOWN:
            return game ? game->OnKeyDown(int(wParam)) : 0;
        case WM_LBUTTONDOWN:
            if (game) game->OnLButtonDown();
            break;
        case WM_LBUTTONUP:
            if (game) game->OnLButtonUp();
            break;
        case WM_RBUTTONDOWN:
            if (game) game->OnRButtonDown();
            break;
        case UM_GRAPHNOTIFY:
            DebugOut("UM_GRAPHNOTIFY!\n");
            if (game && game->m_pShow) game->m_pShow->HandleEvents();
            break;
        case UM_SETGAME:
            g_pWindowGame = reinterpret_cast<CGame*>(wParam);
            break;
        default:
            break;
    }
    return platform::DefWindowProc(message, wParam, lParam);
}

int CGame::Run() {
    platform::SendMessage(UM_SETGAME, reinterpret_cast<uintptr_t>(this), 0);
    HarnessStart();
    int quitCode = 0;
    while (RunOnce(quitCode)) {
    }
    HarnessStop();
    return quitCode;
}

bool CGame::RunOnce(int& quitCode) {
    if (TakeQuitSignal()) platform::PostMessage(WM_CLOSE, 0, 0);  // SIGTERM, SIGINT: as a closed window
    PollMediaEvents();
    SMsg msg;
    if (platform::PeekMessage(msg)) {
        if (!platform::GetMessage(msg)) {  // WM_QUIT
            quitCode = int(msg.wParam);
            return false;
        }
        platform::DispatchMessage(msg);
        return true;
    }
    if (!m_bActive) {
        // Inactive: no frames; wait for the next message (bounded, so that a
        // music end or a signal is looked at now and then).
        platform::WaitMessage(kInactiveWaitMs);
        return true;
    }
    if (m_harness.uncapped) clock_control::AdvanceTicks(41);
    uint32_t now = GetTickCount();
    // Signed 32-bit comparison: exactly 40 ms after the last frame is not yet.
    const SFrameWake wake = NextFrameWake(m_nLastFrameTick, now);
    if (wake.due) {
        if (m_pReplay && HarnessInjectInput()) {
            if (m_harness.uncapped) clock_control::AdvanceTicks(uint32_t(-41));
            return true;  // the frame's input goes through the queue first
        }
        UpdateFrame();
        m_nLastFrameTick = now;
        if (m_pReplay) HarnessAfterFrame();
        else ++m_nFrameCount;
    } else if (!m_harness.uncapped) {
        // Sleep until the frame is due, or until a message arrives first.
        platform::WaitMessage(wake.waitMs);
    }
    return true;
}

void CGame::UpdateFrame() {
    // The mode's own step (game_modes.cpp); a step that started a fade or left
    // its mode ends the frame without presenting.
    const SGameMode* mode = FindGameMode(m_nGameState);
    const bool present = mode ? mode->frame(*this) : true;
    if (!present || !platform::HasMainWindow()) return;
    if (m_pGraph->MessageLine().framesLeft > 0) DrawMessageLine();
    m_pGraph->Present();
}

void CGame::StartFade(int direction, int target) {
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_BUFFER, kScreen, BLT_WAIT);
    m_fade.source = kScreen;
    m_nResumeState = target;
    m_fade.kind = direction ? FADE_OUT : FADE_IN;
    m_nGameState = GS_FADE;
    if (m_fade.kind == FADE_OUT) {
        m_fade.level = 0;
        m_fade.rising = 1;
    } else {
        m_fade.level = FADE_BLACK;
        m_fade.rising = 0;
    }
}

void CGame::ShowSplash(const char* name, int target) {
    int pack = PACK_UI;
    std::string file;
    int32_t w = 0, h = 0;
    bool loaded = SplitPictureRef(name, pack, file) && m_pGraph->GetBitmapSize(pack, file.c_str(), &w, &h) &&
                  m_pGraph->LoadBitmapToSurface(pack, file.c_str(), SURF_TEMP, 0, 0, BMP_CACHE_MAP);
    if (loaded) {
        m_fade.source = SRect{0, 0, w, h};
        m_fade.level = FADE_BLACK;
        m_fade.rising = 0;
        m_fade.kind = FADE_SPLASH;
        m_nResumeState = target;
        m_nGameState = GS_FADE;
    } else {
        // A picture that cannot be loaded is passed over like "null".
        ++m_nSplashCounter;
        m_nGameState = target;
    }
}

int CGame::PlayWav(const char* fileName) {
    if (!fileName || !fileName[0]) return 0;
    std::string path = std::string("sound\\") + fileName;
    m_pSound->LoadWav(path.c_str());
    m_pSound->Play(0);
    return 1;
}

void CGame::DrawOutlinedText(int surf, const char* text, int32_t x, int32_t y, COLORREF outline, COLORREF color,
                             bool diagonalOutline) {
    static const int kDiagonal[4][2] = {{-1, 1}, {1, 1}, {-1, -1}, {1, -1}};
    static const int kCross[4][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    const int (*offsets)[2] = diagonalOutline ? kDiagonal : kCross;
    for (int i = 0; i < 4; ++i)
        m_pGraph->DrawText(text, x + offsets[i][0], y + offsets[i][1], surf, TA_CENTER_TOP, outline);
    m_pGraph->DrawText(text, x, y, surf, TA_CENTER_TOP, color);
}

void CGame::ComposeSnapshot() {
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_GROUND, m_rcCamera, BLT_WAIT);
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_ROLE, m_rcCamera, BLT_WAIT_SRCKEY);
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_OBJECT, m_rcCamera, BLT_WAIT_SRCKEY);
    DrawRain(1);
}
