// The instruments of the composer: plucked strings (Karplus-Strong), wavetable winds,
// pads and voices, an FM bell, a bass and a few soft drums. Each renders one note.
#pragma once

#include <string>
#include <vector>

#include "dsp.h"

namespace audiogen {

struct NoteRequest {
  std::string instrument;
  double hz = 440;      // 0 for drums
  double length = 0.5;  // seconds the note is held
  double attack = -1, release = -1;  // overrides, seconds (<0: instrument default)
};

class Instruments {
 public:
  explicit Instruments(int rate);

  bool Known(const std::string& name) const;
  // Mono samples of one note at unit level, including its natural ring-out.
  void Render(const NoteRequest& n, Rng& rng, std::vector<float>& out) const;

 private:
  void Pluck(const NoteRequest& n, double brightness, double t60, double ring, Rng& rng,
             std::vector<float>& out) const;
  void Sustained(const NoteRequest& n, const Wavetable& table, int voices, double detuneCents,
                 double attack, double release, double vibrato, double cutoff, double breath, Rng& rng,
                 std::vector<float>& out) const;
  void Bell(const NoteRequest& n, std::vector<float>& out) const;
  void Drum(const std::string& kind, Rng& rng, std::vector<float>& out) const;

  int rate_;
  Wavetable flute_, saw_, choir_, organ_, bass_, reed_;
};

}  // namespace audiogen
