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
#include <string>
#include <vector>

#include "media/mixer.h"
#include "media/ogg_file.h"
#include "media/window.h"
#include "base/byte_reader.h"
#include "base/log.h"
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

// Reads a music file into memory for the decoder: at most kMusicMaxBytes, and an
// Ogg stream only up to its last whole page, so that the decoder never searches
// a damaged tail on the game thread. An Ogg file is read in growing parts until
// its pages end, so a long tail after them is not even read. False when the file
// cannot be read; a damaged or oversized file also leaves a line in the engine
// log.
bool ReadMusic(const char* path, std::vector<uint8_t>& out) {
    const std::string host = HostPath(path);
    uint64_t fileSize = 0;
    std::string error;
    size_t want = size_t(1) << 20;
    for (;;) {
        if (ReadFilePart(host, 0, want, out, &error, &fileSize) != EFileRead::Ok) return false;
        if (!IsOggStream(out.data(), out.size())) {
            if (fileSize <= out.size()) return true;
            if (fileSize > kMusicMaxBytes) {
                CLog("GameEngine.log", false).Write("music %s: %llu bytes, more than the %zu a piece may take", path,
                                                    static_cast<unsigned long long>(fileSize), kMusicMaxBytes);
                return false;
            }
            want = size_t(fileSize);
            continue;
        }
        const size_t length = OggStreamLength(out.data(), out.size(), &error);
        if (length == 0) {
            CLog("GameEngine.log", false).Write("music %s: %s", path, error.c_str());
            return false;
        }
        // Pages may go on past the part read: read more while the walk stopped
        // within one page of its end.
        if (out.size() < fileSize && length + kOggMaxPageBytes > out.size()) {
            if (want >= kMusicMaxBytes) {
                CLog("GameEngine.log", false).Write("music %s: longer than the %zu bytes a piece may take", path,
                                                    kMusicMaxBytes);
                return false;
            }
            want = want * 4 < kMusicMaxBytes ? want * 4 : kMusicMaxBytes;
            continue;
        }
        if (fileSize > length) {
            CLog("GameEngine.log", false).Write("music %s: %llu bytes after the last Ogg page ignored", path,
                                                static_cast<unsigned long long>(fileSize - length));
            out.resize(length);
            out.shrink_to_fit();
        }
        return true;
    }
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
    std::vector<uint8_t> bytes;  // the file the music plays from
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
    if (!ReadMusic(path ? path : "", m_pImpl->bytes) || !mixer::Acquire()) {
        SetError(m_szError, "RenderFile Failed!");
        ReleaseAll();
        return false;
    }
    m_pImpl->mixerHeld = true;
    Mix_HookMusicFinished(OnMusicFinished);
    SDL_RWops* rw = SDL_RWFromConstMem(m_pImpl->bytes.data(), int(m_pImpl->bytes.size()));
    m_pImpl->music = rw ? Mix_LoadMUS_RW(rw, 1) : nullptr;
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
    std::vector<uint8_t>().swap(m_pImpl->bytes);
    if (m_pImpl->mixerHeld) {
        m_pImpl->mixerHeld = false;
        mixer::Release();
    }
    if (m_bLoaded) DiscardPendingEvents();
    m_bLoaded = 0;
    m_bLoop = 0;
    m_nState = 0;
}
