// The effect synthesiser: layers of oscillators with envelopes, pitch slides, vibrato,
// arpeggios, filters and repeats, summed, given a little room and normalised.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recipe.h"

namespace audiogen {

enum class Wave { kSine, kSquare, kSaw, kTriangle, kNoise, kCrackle, kPluck };

struct SfxLayer {
  Wave wave = Wave::kSine;
  double at = 0;                        // start (s)
  double attack = 0.002, hold = 0, decay = 0.2, curve = 2, punch = 0;
  double freq = 440, freqEnd = 0, slideTime = 0;
  double vibDepth = 0, vibRate = 0, vibDelay = 0;  // semitones, Hz, s
  double duty = 0.5, dutyEnd = -1;
  double fmRatio = 0, fmIndex = 0, fmIndexEnd = -1;
  double lp = 0, lpEnd = 0, bp = 0, bpEnd = 0, hp = 0, q = 0.707;
  double gain = 1;
  double drive = 0;
  double amRate = 0, amDepth = 0;
  double density = 200;       // crackle pops per second
  double bright = 0.5, sustain = 0.996;  // pluck
  int repeat = 1;
  double every = 0.1, repeatPitch = 1, repeatGain = 1, jitter = 0, pitchJitter = 0;
  std::vector<double> arp;    // semitone offsets
  double arpStep = 0.08;

  double Length() const { return attack + hold + decay; }
};

struct SfxRecipe {
  int rate = 44100;
  double reverb = 0, room = 0.7, damp = 0.4;
  double peakDb = -3;       // peak level, or the ceiling when a loudness is asked for
  double loudnessDb = 0;    // < 0: loudest 50 ms of the effect brought to this RMS level
  double tail = 0.05;
  uint64_t seed = 1;
  std::vector<SfxLayer> layers;
};

// Reads a recipe; false with a message for unknown keys, bad values or no layers.
bool ReadSfxRecipe(const Recipe& recipe, SfxRecipe& out, std::string& error);

// Renders to samples in [-1, 1] (no trailing silence).
// Loudest 50 ms window of a signal as RMS (a short-term loudness).
double ShortTermRms(const std::vector<double>& s, int rate);

std::vector<double> RenderSfx(const SfxRecipe& recipe);

// The effect file: normalised audio, a short fade, then `silenceBytes` of zero samples.
std::vector<uint8_t> SfxToWav(const SfxRecipe& recipe, int silenceBytes);

}  // namespace audiogen
