// Sound effects over SDL_mixer. One process-wide sound state; each CSound holds at
// most one buffer (a mixer chunk): loading replaces it, Play plays it once.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

class CLog;

bool InitSound();
void ReleaseSound();
void SetSoundEnabled(bool enabled);
bool IsSoundEnabled();

class CSound {
public:
    CSound();
    virtual ~CSound();
    // Reads the file with the canonical 44-byte header (media/wav_file.h): RIFF
    // size R at offset 4, format at 20, samples from 44; the buffer is R bytes of
    // which the first R - 800 are filled from offset 44. An R above the effect
    // cap is refused with a log line before anything is allocated. True without
    // loading when sound is off.
    bool LoadWav(const char* path);
    // Plays the buffer from its start unless it is already playing; -1 loops.
    void Play(int loop);
    bool IsPlaying() const;
    // The PCM bytes of the current buffer (for tests).
    const std::vector<uint8_t>& Buffer() const { return m_buffer; }

private:
    std::unique_ptr<CLog> m_pLog;
    std::vector<uint8_t> m_buffer;  // R bytes, converted into the chunk
    struct Chunk;
    std::unique_ptr<Chunk> m_pChunk;
    int m_nChannel = -1;
};
