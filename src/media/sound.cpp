// Sound effects: one mixer chunk per CSound, each CSound on its own mixer channel
// so that several effects sound together.
#include "media/sound.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <cstdio>
#include <cstring>

#include "media/mixer.h"
#include "media/wav_file.h"
#include "base/byte_reader.h"
#include "base/debug.h"
#include "base/log.h"
#include "base/paths.h"

namespace {

bool g_initialised = false;
bool g_enabled = false;

// The SDL sample format of a PCM format the effect reader took.
SDL_AudioFormat SdlFormat(const SWavFormat& f) {
    return f.bits == 8 ? AUDIO_U8 : f.bits == 16 ? AUDIO_S16LSB : AUDIO_S32LSB;
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
    std::vector<uint8_t> bytes;
    if (ReadFilePart(HostPath(path), 0, kWavMaxReadBytes, bytes) != EFileRead::Ok) {
        m_pLog->Write("[sound]error on opening file %s", path);
        return false;
    }

    // Drop the current buffer (a sound still playing stops here).
    if (m_nChannel >= 0 && mixer::IsOpen()) Mix_HaltChannel(m_nChannel);
    m_pChunk.reset();
    m_buffer.clear();

    CByteReader in(bytes, path);
    SWavEffect effect;
    const EWavRead read = ReadWavEffect(in, effect);
    if (read == EWavRead::TooShort) return false;  // R - 800 bytes cannot be filled
    if (read == EWavRead::TooLarge) {
        m_pLog->Write("[sound]%s", in.Error().c_str());
        return false;
    }
    int rate = 0, channels = 0;
    uint16_t mixFormat = 0;
    if (read != EWavRead::Ok || !mixer::OutputFormat(&rate, &mixFormat, &channels)) {
        m_pLog->Write("error on create sound buffer");
        return false;
    }
    bytes.clear();
    bytes.shrink_to_fit();

    // Whole sample frames only, converted to the mixer's format.
    const SWavFormat& fmt = effect.format;
    const size_t frameBytes = effect.riffSize - effect.riffSize % uint32_t(fmt.blockAlign);
    SDL_AudioCVT cvt;
    if (SDL_BuildAudioCVT(&cvt, SdlFormat(fmt), uint8_t(fmt.channels), int(fmt.rate), mixFormat, uint8_t(channels),
                          rate) < 0) {
        m_pLog->Write("error on create sound buffer");
        return false;
    }
    auto chunk = std::make_unique<Chunk>();
    if (cvt.needed) {
        chunk->pcm.assign(frameBytes * size_t(cvt.len_mult), 0);
        memcpy(chunk->pcm.data(), effect.buffer.data(), frameBytes);
        cvt.buf = chunk->pcm.data();
        cvt.len = int(frameBytes);
        if (SDL_ConvertAudio(&cvt) != 0) {
            m_pLog->Write("error on create sound buffer");
            return false;
        }
        chunk->pcm.resize(size_t(cvt.len_cvt));
    } else {
        chunk->pcm.assign(effect.buffer.begin(), effect.buffer.begin() + ptrdiff_t(frameBytes));
    }
    chunk->chunk.allocated = 0;
    chunk->chunk.abuf = chunk->pcm.data();
    chunk->chunk.alen = uint32_t(chunk->pcm.size());
    chunk->chunk.volume = MIX_MAX_VOLUME;
    m_pChunk = std::move(chunk);
    m_buffer = std::move(effect.buffer);
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
