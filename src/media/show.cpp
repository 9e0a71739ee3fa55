// The music player over SDL_mixer music (audio only). The mixer tells us that a
// piece has ended from its audio thread; that thread only counts the end, and the
// game thread turns the count into UM_GRAPHNOTIFY (PollMediaEvents) and handles it
// in HandleEvents.
#include "media/show.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <atomic>
#include <cstdio>
#include <cstring>

#include "media/mixer.h"
#include "media/window.h"
#include "base/paths.h"
#include "base/types.h"

namespace {

std::atomic<uint64_t> g_ended{0};          // pieces ended (audio thread)
std::atomic<bool> g_ignoreFinish{false};   // set while we halt or replace on purpose
uint64_t g_posted = 0;                     // ends already announced (game thread)
uint64_t g_consumed = 0;                   // ends already handled (game thread)
const KGDShowInstance* g_owner = nullptr;  // the player whose piece the mixer holds

void SDLCALL OnMusicFinished() {
    if (!g_ignoreFinish.load(std::memory_order_acquire)) g_ended.fetch_add(1, std::memory_order_acq_rel);
}

void DiscardPendingEvents() {
    const uint64_t e = g_ended.load(std::memory_order_acquire);
    g_consumed = e;
    if (g_posted < e) g_posted = e;
}

// Starts the piece from its beginning, once. A piece replaced or halted here is
// not an end the game should hear about.
bool StartMusic(Mix_Music* music) {
    g_ignoreFinish.store(true, std::memory_order_release);
    const int rc = Mix_PlayMusic(music, 1);
    g_ignoreFinish.store(false, std::memory_order_release);
    return rc == 0;
}

void HaltMusic() {
    g_ignoreFinish.store(true, std::memory_order_release);
    Mix_HaltMusic();
    g_ignoreFinish.store(false, std::memory_order_release);
}

}  // namespace

void PollMediaEvents() {
    const uint64_t e = g_ended.load(std::memory_order_acquire);
    if (e > g_posted) {
        g_posted = e;
        platform::PostMessage(UM_GRAPHNOTIFY, 0, 0);
    }
}

struct KGDShowInstance::Impl {
    Mix_Music* music = nullptr;
    bool mixerHeld = false;
};

KGDShowInstance::KGDShowInstance() : m_pImpl(new Impl) {}

KGDShowInstance::~KGDShowInstance() {
    ReleaseAll();
    delete m_pImpl;
}

static void SetError(char (&buf)[1024], const char* text) { snprintf(buf, sizeof(buf), "%s", text); }

bool KGDShowInstance::Open(void* window, const char* path) {
    (void)window;
    ReleaseAll();
    if (!mixer::Acquire()) {
        SetError(m_szError, "RenderFile Failed!");
        return false;
    }
    m_pImpl->mixerHeld = true;
    Mix_HookMusicFinished(OnMusicFinished);
    m_pImpl->music = Mix_LoadMUS(HostPath(path ? path : "").c_str());
    if (!m_pImpl->music) {
        SetError(m_szError, "RenderFile Failed!");
        ReleaseAll();
        return false;
    }
    m_bAudioOnly = 1;  // no video window here
    DiscardPendingEvents();
    m_bLoaded = 1;
    return true;
}

bool KGDShowInstance::Play(void* owner, int loop) {
    (void)owner;  // audio only: no video window to place
    if (!m_bLoaded) {
        SetError(m_szError, "Media haven't loaded!");
        return false;
    }
    if (!StartMusic(m_pImpl->music)) {
        SetError(m_szError, "Run Failed!");
        return false;
    }
    g_owner = this;
    m_bLoop = loop;
    m_nState = 1;
    return true;
}

bool KGDShowInstance::Pause() {
    if (!m_bLoaded) {
        SetError(m_szError, "No Media!");
        return false;
    }
    if (m_nState != 1) return false;
    Mix_PauseMusic();
    m_dSavedPosition = Mix_GetMusicPosition(m_pImpl->music);
    m_nState = 3;
    return true;
}

bool KGDShowInstance::Resume() {
    if (!m_bLoaded || m_nState != 3) {
        SetError(m_szError, "m_pMediaControl==null");
        return false;
    }
    // The mixer keeps the paused position, which is the saved one.
    Mix_ResumeMusic();
    m_nState = 1;
    return true;
}

bool KGDShowInstance::Stop() {
    if (!m_bLoaded) {
        SetError(m_szError, "No Media!");
        return false;
    }
    // Stopped means paused at the start: Play runs it again.
    if (g_owner == this) {
        Mix_PauseMusic();
        Mix_RewindMusic();
    }
    m_nState = 2;
    return true;
}

bool KGDShowInstance::IsPlaying() { return m_nState == 1; }

bool KGDShowInstance::Close() {
    if (!m_bLoaded) {
        SetError(m_szError, "No Media!");
        return false;
    }
    if (g_owner == this) HaltMusic();
    ReleaseAll();
    return true;
}

const char* KGDShowInstance::GetErrorText() { return m_szError; }

bool KGDShowInstance::HandleEvents() {
    if (!m_bLoaded) return false;
    while (g_consumed < g_ended.load(std::memory_order_acquire)) {
        ++g_consumed;
        if (g_owner != this) continue;
        // The piece has completed.
        if (!m_bLoop) {
            ReleaseAll();
            return true;
        }
        if (!StartMusic(m_pImpl->music)) return false;
    }
    return true;
}

void KGDShowInstance::ReleaseAll() {
    if (m_pImpl->music) {
        if (g_owner == this) {
            HaltMusic();
            g_owner = nullptr;
        }
        Mix_FreeMusic(m_pImpl->music);
        m_pImpl->music = nullptr;
    }
    if (m_pImpl->mixerHeld) {
        m_pImpl->mixerHeld = false;
        mixer::Release();
    }
    if (m_bLoaded) DiscardPendingEvents();
    m_bLoaded = 0;
    m_bLoop = 0;
    m_nState = 0;
}
