// CGame: the automation harness inside the loop: replayed input, --shot pictures,
// the --frames limit, --warp and the JSON state dump.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include <nlohmann/json.hpp>

#include "characters/role.h"
#include "media/graph.h"
#include "media/window.h"
#include "shell/game.h"
#include "shell/game_modes.h"
#include "shell/harness.h"
#include "ui/message_line.h"
#include "ui/panel.h"
#include "world/map.h"

struct CGame::SReplayState {
    std::vector<SReplayEvent> events;
    size_t next = 0;
    int64_t injectedFrame = -1;          // frame whose events are already queued
    std::vector<uint16_t> lastPresented;  // kept only when shots are wanted
    bool keepFrames = false;
};

void CGame::HarnessStart() {
    if (!m_pReplay) m_pReplay = new SReplayState();
    SReplayState& r = *m_pReplay;
    // The replay file was read and checked before the game started (main).
    r.events = m_harness.replay;
    std::stable_sort(r.events.begin(), r.events.end(),
                     [](const SReplayEvent& a, const SReplayEvent& b) { return a.frame < b.frame; });
    if (!m_harness.shots.empty()) {
        r.keepFrames = true;
        r.lastPresented.assign(size_t(SCREEN_W) * SCREEN_H, 0);
        platform::SetFrameObserver([this](const uint16_t* pixels) {
            memcpy(m_pReplay->lastPresented.data(), pixels, m_pReplay->lastPresented.size() * 2);
        });
    }
    if (!m_harness.warpMap.empty()) {
        // Skip the splash pictures and the menu: a new game on that map.
        m_nSplashCounter = SPLASH_COUNT;
        platform::ShowCursor(true);
        ChangeMap(m_harness.warpMap.c_str(), m_harness.warpX, m_harness.warpY, 5, 1);
    }
}

bool CGame::HarnessInjectInput() {
    SReplayState& r = *m_pReplay;
    if (r.injectedFrame == m_nFrameCount) return false;
    r.injectedFrame = m_nFrameCount;
    bool any = false;
    while (r.next < r.events.size() && r.events[r.next].frame <= m_nFrameCount) {
        const SReplayEvent& e = r.events[r.next++];
        any = true;
        switch (e.kind) {
            case SReplayEvent::MOVE: platform::InjectMouseMove(e.x, e.y); break;
            case SReplayEvent::LDOWN: platform::InjectButton(0, true, e.x, e.y); break;
            case SReplayEvent::LUP: platform::InjectButton(0, false, e.x, e.y); break;
            case SReplayEvent::RDOWN: platform::InjectButton(1, true, e.x, e.y); break;
            case SReplayEvent::RUP: platform::InjectButton(1, false, e.x, e.y); break;
            case SReplayEvent::KEY: platform::InjectKey(e.x); break;
            case SReplayEvent::QUIT: platform::InjectQuit(); break;
        }
    }
    return any;
}

void CGame::HarnessAfterFrame() {
    int64_t frame = m_nFrameCount++;
    SReplayState& r = *m_pReplay;
    if (r.keepFrames) {
        for (const auto& shot : m_harness.shots)
            if (shot.first == frame && !WritePng565(shot.second.c_str(), r.lastPresented.data(), SCREEN_W, SCREEN_H))
                SetHarnessError("cannot write the shot " + shot.second);
    }
    if (m_harness.frames >= 0 && m_nFrameCount == m_harness.frames) platform::PostMessage(WM_CLOSE, 0, 0);
}

void CGame::HarnessStop() {
    platform::SetFrameObserver(nullptr);
    delete m_pReplay;
    m_pReplay = nullptr;
}

void CGame::WriteState(StateJson& out) const {
    out["mode"] = m_nGameState;
    out["mode_name"] = GameModeName(m_nGameState);
    out["frame"] = m_nFrameCount;
    out["resume_mode"] = m_nResumeState;
    out["music_started"] = m_bMusicStarted;
    out["kill_count"] = e_killCount;
    out["rain"] = e_brain;
    char label[32];
    if (PositionLabel(label, sizeof label)) out["position_label"] = label;
}

std::string CGame::DumpStateJson() {
    StateJson state = StateJson::object();
    WriteState(state);
    if (m_pMap) m_pMap->WriteState(state);
    if (m_pRole)
        m_pRole->WriteState(state["hero"]);
    else
        state["hero"] = nullptr;
    state["camera"] = {{"x", m_ptCamera.x}, {"y", m_ptCamera.y}};
    if (CPanel* panel = ModePanel()) panel->WriteState(state["panel"]);
    if (m_pGraph) MessageLineWriteState(m_pGraph->MessageLine(), state["message"]);
    return state.dump() + "\n";
}
