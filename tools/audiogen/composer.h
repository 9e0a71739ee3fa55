// The composer: turns a music recipe (key, mode, tempo, sections of chords, parts with
// their instruments and patterns) into a list of timed notes.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "recipe.h"

namespace audiogen {

struct Chord {
  int degree = 0;        // 0..6 in the scale
  bool seventh = false;
  bool sus = false;      // fourth instead of third
  bool major = false;    // third raised to a major third
};

struct Section {
  std::vector<Chord> chords;
  int barsPerChord = 1;
  int Bars() const { return static_cast<int>(chords.size()) * barsPerChord; }
};

enum class PartType { kMelody, kArp, kPad, kBass, kDrums, kDrone };

struct DrumLine {
  std::string instrument;
  std::vector<double> hits;  // velocity per step, 0 for a rest
};

struct Part {
  std::string name;
  PartType type = PartType::kMelody;
  std::string instrument;
  int octave = 4;
  double gain = 1, pan = 0, send = 0.3;
  std::vector<int> play;      // 1-based form positions; empty = all
  // melody
  double density = 0.4, rest = 0.1, vary = 0.15;
  int range = 9;              // scale steps around the centre
  // arp, bass, drone: chord-tone tokens; INT32_MIN = rest, INT32_MAX = tie
  std::vector<int> pattern;
  double step = 1;            // beats per pattern token
  double attack = -1, release = -1;  // pad/drone overrides (s)
  bool follow = true;         // drone follows the chords (else stays on the tonic)
  std::vector<DrumLine> drums;
  double humanize = 0.006;    // seconds of timing jitter
  uint64_t seed = 0;
};

struct MusicRecipe {
  double tempo = 80;
  int meter = 4;
  int tonic = 2;              // pitch class of the key
  std::vector<int> scale;     // semitone steps from the tonic, 7 entries
  uint64_t seed = 1;
  double reverb = 1, room = 0.84, damp = 0.35;
  double rmsDb = -20;
  double quality = 0.3;
  std::vector<std::string> form;
  std::map<std::string, Section> sections;
  std::vector<Part> parts;

  double BeatSeconds() const { return 60.0 / tempo; }
  double TotalBeats() const;
};

struct Note {
  double start = 0;   // seconds
  double length = 0;  // seconds
  double midi = 60;
  double velocity = 1;
  int part = 0;       // index into MusicRecipe::parts
  std::string instrument;
};

bool ReadMusicRecipe(const Recipe& recipe, MusicRecipe& out, std::string& error);

// All notes of one pass through the form, deterministic for the recipe's seed.
std::vector<Note> Compose(const MusicRecipe& m);

// Chord tones in semitones above the tonic, ascending from the chord's root; the pitch
// of a scale index (any integer, wrapping by octaves) in semitones from the tonic.
std::vector<int> ChordSemitones(const std::vector<int>& scale, const Chord& c);
int ChordTone(const std::vector<int>& tones, int token);
int ScaleSemitone(const std::vector<int>& scale, int index);
bool ParseChord(const std::string& token, Chord& c);

}  // namespace audiogen
