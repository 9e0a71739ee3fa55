// The music and video player: KGDShow is the interface, KGDShowInstance plays
// audio files through SDL_mixer music. The end of a piece arrives as the window
// message UM_GRAPHNOTIFY; HandleEvents restarts looping pieces.
#pragma once
#include <cstdint>

// Called by the message pump on the game thread: posts UM_GRAPHNOTIFY when a
// piece has ended since the last call (the mixer reports the end on its own
// thread, which only raises a flag).
void PollMediaEvents();

class KGDShow {
public:
    virtual ~KGDShow() = default;
    virtual bool Open(void* window, const char* path) = 0;
    virtual bool Pause() = 0;
    virtual bool Resume() = 0;
    virtual bool Stop() = 0;
    virtual bool IsPlaying() = 0;
    virtual bool Close() = 0;
    virtual bool Play(void* owner, int loop) = 0;
    virtual const char* GetErrorText() = 0;
    virtual bool HandleEvents() = 0;
    virtual void ReleaseAll() = 0;
};

class KGDShowInstance : public KGDShow {
public:
    KGDShowInstance();
    ~KGDShowInstance() override;
    bool Open(void* window, const char* path) override;
    bool Pause() override;
    bool Resume() override;
    bool Stop() override;
    bool IsPlaying() override;
    bool Close() override;
    bool Play(void* owner, int loop) override;
    const char* GetErrorText() override;
    bool HandleEvents() override;
    void ReleaseAll() override;

    int GetState() const { return m_nState; }  // 0 none, 1 running, 2 stopped, 3 paused
    bool IsLoaded() const { return m_bLoaded != 0; }
    bool GetLoop() const { return m_bLoop != 0; }

private:
    struct Impl;
    Impl* m_pImpl = nullptr;
    char m_szError[1024] = {0};
    int m_bAudioOnly = 0;
    int m_bLoaded = 0;
    int m_bLoop = 0;
    int m_nState = 0;
    double m_dSavedPosition = 0;
};
