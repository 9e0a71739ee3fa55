// Sound effects: one mixer chunk per CSound, each CSound on its own mixer channel
// so that several effects sound together.
#include "media/sound.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <cstdio>
#include <cstring>

#include "media/mixer.h"
#include "base/debug.h"
#include "base/log.h"
#include "base/paths.h"

namespace {

bool g_initialised = false;
bool g_enabled = false;

// Largest buffer we agree to make; a header claiming more is refused like a
// format the device cannot take.
constexpr uint32_t kMaxBufferBytes = 64u << 20;
// The tail of every buffer that is never filled from the file.
constexpr uint32_t kUnfilledTail = 800;

uint16_t Le16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }
uint32_t Le32(const uint8_t* p) { return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24); }

// The PCM format description at offset 20, as SDL names it.
struct SWaveFormat {
    SDL_AudioFormat format = 0;
    int channels = 0;
    int rate = 0;
    int blockAlign = 0;
};

bool ParseFormat(const uint8_t* fmt, SWaveFormat& out) {
    const uint16_t tag = Le16(fmt);
    const uint16_t channels = Le16(fmt + 2);
    const uint32_t rate = Le32(fmt + 4);
    const uint16_t blockAlign = Le16(fmt + 12);
    const uint16_t bits = Le16(fmt + 14);
    if (tag != 1) return false;  // PCM only
    if (channels < 1 || channels > 8) return false;
    if (rate < 100 || rate > 200000) return false;
    switch (bits) {
        case 8: out.format = AUDIO_U8; break;
        case 16: out.format = AUDIO_S16LSB; break;
        case 32: out.format = AUDIO_S32LSB; break;
        default: return false;
    }
    if (blockAlign != channels * bits / 8) return false;
    out.channels = channels;
    out.rate = int(rate);
    out.blockAlign = blockAlign;
    return true;
}

}  // namespace

bool InitSound() {
    if (g_initialised || g_enabled) return true;
    if (!mixer::Acquire()) {
        g_enabled = false;
        return false;
    }
    g_enabled = true;
    g_initialised = true;
    return true;
}

void ReleaseSound() {
    if (!g_initialised) return;
    g_initialised = false;
    mixer::Release();
}

void SetSoundEnabled(bool enabled) { g_enabled = enabled; }
bool IsSoundEnabled() { return g_enabled; }

struct CSound::Chunk {
    Mix_Chunk chunk{};
    std::vector<uint8_t> pcm;  // in the mixer's format
};

CSound::CSound() : m_pLog(std::make_unique<CLog>("GameEngine.log", false)) {}

CSound::~CSound() {
    if (m_nChannel >= 0) mixer::FreeChannel(m_nChannel);  // halts it when the mixer is open
    m_nChannel = -1;
    m_pChunk.reset();
}

bool CSound::LoadWav(const char* path) {
    if (!g_enabled) return true;
    if (!path) path = "";
    FILE* f = fopen(HostPath(path).c_str(), "rb");
    if (!f) {
        m_pLog->Write("[sound]error on opening file %s", path);
        return false;
    }
    uint8_t head[44] = {0};
    const size_t headRead = fread(head, 1, sizeof(head), f);
    const uint32_t riffSize = headRead >= 8 ? Le32(head + 4) : 0;

    // Drop the current buffer (a sound still playing stops here).
    if (m_nChannel >= 0 && mixer::IsOpen()) Mix_HaltChannel(m_nChannel);
    m_pChunk.reset();
    m_buffer.clear();

    SWaveFormat fmt;
    int rate = 0, channels = 0;
    uint16_t mixFormat = 0;
    if (headRead < 36 || !ParseFormat(head + 20, fmt) || riffSize < 4 || riffSize > kMaxBufferBytes ||
        !mixer::OutputFormat(&rate, &mixFormat, &channels)) {
        fclose(f);
        m_pLog->Write("error on create sound buffer");
        return false;
    }
    // The fill covers R - 800 bytes; a smaller buffer cannot be filled.
    if (riffSize < kUnfilledTail) {
        fclose(f);
        return false;
    }
    // R bytes, of which the first R - 800 come from the file after the header;
    // whatever the file lacks stays silent.
    const uint32_t fill = riffSize - kUnfilledTail;
    std::vector<uint8_t> buffer(riffSize, fmt.format == AUDIO_U8 ? 0x80 : 0);
    size_t got = 0;
    if (headRead == sizeof(head)) got = fread(buffer.data(), 1, fill, f);
    fclose(f);
    (void)got;

    // Whole sample frames only, converted to the mixer's format.
    const size_t frameBytes = riffSize - riffSize % uint32_t(fmt.blockAlign);
    SDL_AudioCVT cvt;
    if (SDL_BuildAudioCVT(&cvt, fmt.format, uint8_t(fmt.channels), fmt.rate, mixFormat, uint8_t(channels), rate) <
        0) {
        m_pLog->Write("error on create sound buffer");
        return false;
    }
    auto chunk = std::make_unique<Chunk>();
    if (cvt.needed) {
        chunk->pcm.assign(frameBytes * size_t(cvt.len_mult), 0);
        memcpy(chunk->pcm.data(), buffer.data(), frameBytes);
        cvt.buf = chunk->pcm.data();
        cvt.len = int(frameBytes);
        if (SDL_ConvertAudio(&cvt) != 0) {
            m_pLog->Write("error on create sound buffer");
            return false;
        }
        chunk->pcm.resize(size_t(cvt.len_cvt));
    } else {
        chunk->pcm.assign(buffer.begin(), buffer.begin() + ptrdiff_t(frameBytes));
    }
    chunk->chunk.allocated = 0;
    chunk->chunk.abuf = chunk->pcm.data();
    chunk->chunk.alen = uint32_t(chunk->pcm.size());
    chunk->chunk.volume = MIX_MAX_VOLUME;
    m_pChunk = std::move(chunk);
    m_buffer = std::move(buffer);
    return true;
}

void CSound::Play(int loop) {
    if (!g_enabled || !m_pChunk || !mixer::IsOpen()) return;
    if (m_nChannel < 0) m_nChannel = mixer::AllocateChannel();
    if (!mixer::PrepareChannel(m_nChannel)) return;
    if (Mix_Playing(m_nChannel)) return;
    if (Mix_PlayChannel(m_nChannel, &m_pChunk->chunk, loop == -1 ? -1 : 0) < 0)
        DebugOut("Play sound failed: %s\n", Mix_GetError());
}

bool CSound::IsPlaying() const {
    if (m_nChannel < 0 || !mixer::IsOpen() || !mixer::PrepareChannel(m_nChannel)) return false;
    return Mix_Playing(m_nChannel) != 0;
}
