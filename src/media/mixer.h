// The SDL_mixer device shared by the sound effects and the music player. Each
// user acquires it and releases it again; the device stays open while anyone
// holds it. Internal to media/.
#pragma once
#include <cstdint>

namespace mixer {

// Opens the audio subsystem and the mixer (44.1 kHz, 16-bit, stereo) on first use.
bool Acquire();
void Release();
bool IsOpen();
// The device format after opening: rate, SDL audio format, channels.
bool OutputFormat(int* rate, uint16_t* format, int* channels);

// Mixer channels: each sound object keeps a channel number of its own for its
// whole life. AllocateChannel hands out a number (the mixer need not be open);
// PrepareChannel makes the open mixer have that many channels.
int AllocateChannel();
void FreeChannel(int channel);
bool PrepareChannel(int channel);

}  // namespace mixer
