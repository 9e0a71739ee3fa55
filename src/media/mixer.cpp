#include "media/mixer.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <vector>

namespace mixer {
namespace {

int g_users = 0;
int g_channelCount = 0;        // channels the mixer has allocated
std::vector<int> g_freeChannels;
int g_nextChannel = 0;

}  // namespace

bool Acquire() {
    if (g_users > 0) {
        ++g_users;
        return true;
    }
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return false;
    if (Mix_OpenAudio(44100, MIX_DEFAULT_FORMAT, 2, 1024) != 0) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return false;
    }
    g_channelCount = Mix_AllocateChannels(-1);
    g_users = 1;
    return true;
}

void Release() {
    if (g_users <= 0) return;
    if (--g_users > 0) return;
    Mix_HaltChannel(-1);
    Mix_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    g_channelCount = 0;
}

bool IsOpen() { return g_users > 0; }

bool OutputFormat(int* rate, uint16_t* format, int* channels) {
    if (g_users <= 0) return false;
    Uint16 f = 0;
    if (Mix_QuerySpec(rate, &f, channels) == 0) return false;
    *format = f;
    return true;
}

int AllocateChannel() {
    if (!g_freeChannels.empty()) {
        const int ch = g_freeChannels.back();
        g_freeChannels.pop_back();
        return ch;
    }
    return g_nextChannel++;
}

bool PrepareChannel(int channel) {
    if (g_users <= 0 || channel < 0) return false;
    if (channel < g_channelCount) return true;
    // Grow in steps so that many sounds do not reallocate one by one.
    int want = g_channelCount < 8 ? 8 : g_channelCount;
    while (want <= channel) want *= 2;
    g_channelCount = Mix_AllocateChannels(want);
    return channel < g_channelCount;
}

void FreeChannel(int channel) {
    if (channel < 0) return;
    if (g_users > 0 && channel < g_channelCount) Mix_HaltChannel(channel);
    g_freeChannels.push_back(channel);
}

}  // namespace mixer
