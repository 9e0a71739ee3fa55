// Renders a composed piece as a seamless loop and encodes it as Ogg Vorbis.
#pragma once

#include <string>
#include <vector>

#include "composer.h"

namespace audiogen {

struct StereoBuffer {
  std::vector<float> left, right;
  int rate = 44100;
};

// Mixes every note into a circular buffer exactly one pass long (tails that run past the
// end wrap into the beginning, the reverb runs twice round the loop), then levels the mix.
bool RenderMusic(const MusicRecipe& m, StereoBuffer& out, std::string& error);

// Ogg Vorbis stream bytes for the buffer (deterministic: fixed stream serial, no dates).
bool EncodeVorbis(const StereoBuffer& in, double quality, const std::string& title,
                  std::vector<uint8_t>& bytes, std::string& error);

}  // namespace audiogen
