#include "composer.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "dsp.h"

namespace audiogen {

namespace {

constexpr int kRest = INT_MIN;
constexpr int kTie = INT_MAX;

int FloorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
int Mod(int a, int b) { return a - FloorDiv(a, b) * b; }

bool ParseScale(const std::string& name, std::vector<int>& out) {
  static const std::map<std::string, std::vector<int>> kScales = {
      {"major", {0, 2, 4, 5, 7, 9, 11}},      {"minor", {0, 2, 3, 5, 7, 8, 10}},
      {"dorian", {0, 2, 3, 5, 7, 9, 10}},     {"phrygian", {0, 1, 3, 5, 7, 8, 10}},
      {"mixolydian", {0, 2, 4, 5, 7, 9, 10}}, {"lydian", {0, 2, 4, 6, 7, 9, 11}},
      {"harmonic", {0, 2, 3, 5, 7, 8, 11}}};
  auto it = kScales.find(name);
  if (it == kScales.end()) return false;
  out = it->second;
  return true;
}

bool ParseKey(const std::string& name, int& pc) {
  static const char* kNames[12] = {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"};
  for (int i = 0; i < 12; ++i) {
    if (name == kNames[i]) {
      pc = i;
      return true;
    }
  }
  return false;
}

// Pattern tokens: integers are chord tones (0 root, 1 third, 2 fifth, 3 root an octave up,
// negatives below), "." a rest, "-" holds the previous note on.
bool ParsePattern(const std::vector<std::string>& words, std::vector<int>& out) {
  out.clear();
  for (const std::string& w : words) {
    if (w == ".") {
      out.push_back(kRest);
    } else if (w == "-") {
      out.push_back(kTie);
    } else {
      double v = 0;
      if (!ParseNumber(w, v) || v != std::floor(v) || std::fabs(v) > 24) return false;
      out.push_back(static_cast<int>(v));
    }
  }
  return !out.empty();
}

// Drum steps: "x" full, "o" soft, "." rest.
bool ParseHits(const std::vector<std::string>& words, std::vector<double>& out) {
  out.clear();
  for (const std::string& w : words) {
    for (char c : w) {
      if (c == 'x') out.push_back(1.0);
      else if (c == 'o') out.push_back(0.55);
      else if (c == '.') out.push_back(0.0);
      else return false;
    }
  }
  return !out.empty();
}

bool ParsePartType(const std::string& s, PartType& t) {
  if (s == "melody") t = PartType::kMelody;
  else if (s == "arp") t = PartType::kArp;
  else if (s == "pad") t = PartType::kPad;
  else if (s == "bass") t = PartType::kBass;
  else if (s == "drums") t = PartType::kDrums;
  else if (s == "drone") t = PartType::kDrone;
  else return false;
  return true;
}

struct SectionSpan {
  const Section* section;
  std::string name;
  int position;       // 1-based position in the form
  int occurrence;     // how many times this section name came before
  double startBeat;
};

bool Plays(const Part& p, int position) {
  return p.play.empty() || std::find(p.play.begin(), p.play.end(), position) != p.play.end();
}

// Rhythm cells (in beats) for one bar, from sparse to busy.
const std::vector<std::vector<double>>& Cells(int meter, int level) {
  static const std::vector<std::vector<double>> k4[3] = {
      {{4}, {3, 1}, {2, 2}},
      {{2, 1, 1}, {1, 1, 2}, {1.5, 0.5, 2}, {3, 0.5, 0.5}, {2, 2}},
      {{1, 1, 1, 1}, {0.5, 0.5, 1, 2}, {1, 0.5, 0.5, 1, 1}, {1.5, 0.5, 1, 1}, {1, 1, 0.5, 0.5, 1}}};
  static const std::vector<std::vector<double>> k3[3] = {
      {{3}, {2, 1}},
      {{1, 1, 1}, {1.5, 0.5, 1}, {2, 0.5, 0.5}},
      {{1, 0.5, 0.5, 1}, {0.5, 0.5, 1, 1}, {1, 1, 0.5, 0.5}}};
  static const std::vector<std::vector<double>> k2[3] = {
      {{2}, {1.5, 0.5}}, {{1, 1}, {1.5, 0.5}}, {{0.5, 0.5, 1}, {1, 0.5, 0.5}}};
  level = std::clamp(level, 0, 2);
  if (meter == 3) return k3[level];
  if (meter == 2) return k2[level];
  return k4[level];
}

int PickLevel(Rng& rng, double density) {
  double ws = (1 - density) * (1 - density), wm = 2 * density * (1 - density) + 0.15,
         wd = density * density;
  double r = rng.Uniform() * (ws + wm + wd);
  if (r < ws) return 0;
  if (r < ws + wm) return 1;
  return 2;
}

struct MelodyNote {
  double beat, length;  // within the section
  int index;            // scale index relative to the tonic of the part's octave
  double velocity;
};

bool IsChordTone(const MusicRecipe& m, const std::vector<int>& tones, int index) {
  int pc = Mod(ScaleSemitone(m.scale, index), 12);
  for (int t : tones)
    if (Mod(t, 12) == pc) return true;
  return false;
}

// One melody for a section: rhythm per bar from cells (the second half of the section
// echoes the first half's rhythm), pitches walking by steps with chord tones on strong
// beats, an arch contour, and long chord-tone notes closing each phrase.
std::vector<MelodyNote> MakeMelody(const MusicRecipe& m, const Part& p, const Section& s, Rng& rng) {
  std::vector<MelodyNote> out;
  const int bars = s.Bars();
  std::vector<std::vector<double>> rhythm(bars);
  const int half = std::max(1, bars / 2);
  for (int b = 0; b < bars; ++b) {
    bool phraseEnd = (b % half) == half - 1 || b == bars - 1;
    if (b >= half && b - half < half && !phraseEnd) {
      rhythm[b] = rhythm[b - half];
      continue;
    }
    int level = phraseEnd ? 0 : PickLevel(rng, p.density);
    const auto& cells = Cells(m.meter, level);
    rhythm[b] = cells[rng.Below(static_cast<int>(cells.size()))];
    if (phraseEnd && rhythm[b].size() > 1 && rng.Chance(0.5)) rhythm[b] = {static_cast<double>(m.meter)};
  }
  int cur = 2 + rng.Below(3);
  const int lo = -p.range / 3, hi = p.range;
  std::vector<std::vector<int>> pitches(bars);  // chosen scale indices per bar
  for (int b = 0; b < bars; ++b) {
    const Chord& chord = s.chords[std::min<size_t>(b / s.barsPerChord, s.chords.size() - 1)];
    std::vector<int> tones = ChordSemitones(m.scale, chord);
    double pos = 0;
    bool phraseEnd = (b % half) == half - 1 || b == bars - 1;
    for (size_t k = 0; k < rhythm[b].size(); ++k) {
      const double len = rhythm[b][k];
      const bool last = phraseEnd && k + 1 == rhythm[b].size();
      const bool strong = pos == 0 || (m.meter == 4 && pos == 2) || last;
      double progress = (b + pos / m.meter) / bars;
      double target = lo + (hi - lo) * (0.35 + 0.45 * std::sin(kPi * progress));
      // The answering phrase echoes the opening one where the rhythm repeats, bent onto
      // the chord where the harmony differs: that repetition is what makes it a tune.
      const bool echo = b >= half && b - half < half && !phraseEnd && rhythm[b] == rhythm[b - half] &&
                        k < pitches[b - half].size() && pitches[b - half][k] != INT_MIN;
      if (echo) {
        int e = pitches[b - half][k];
        if (strong && !IsChordTone(m, tones, e)) {
          for (int d : {1, -1, 2, -2})
            if (IsChordTone(m, tones, e + d)) {
              e += d;
              break;
            }
        }
        cur = std::clamp(e, lo, hi);
        pitches[b].push_back(cur);
        double vel = (pos == 0 ? 1.0 : 0.82) * rng.Range(0.9, 1.0);
        out.push_back({b * static_cast<double>(m.meter) + pos, len, cur, vel});
        pos += len;
        continue;
      }
      if (!strong && !last && rng.Chance(p.rest)) {
        pitches[b].push_back(INT_MIN);
        pos += len;
        continue;
      }
      if (strong) {
        int best = cur, bestScore = INT_MAX;
        for (int c = cur - 4; c <= cur + 4; ++c) {
          if (c < lo || c > hi || !IsChordTone(m, tones, c)) continue;
          // Prefer near chord tones towards the contour, but not the same note again.
          int score = std::abs(c - cur) * 3 + static_cast<int>(std::fabs(c - target) * 2) + rng.Below(5);
          if (c == cur) score += last ? 4 : 7;
          if (last && Mod(ScaleSemitone(m.scale, c), 12) == Mod(tones[0], 12)) score -= 3;
          if (score < bestScore) {
            bestScore = score;
            best = c;
          }
        }
        cur = best;
      } else {
        int dir = (target > cur) ? 1 : -1;
        if (rng.Chance(0.3)) dir = -dir;
        int size = rng.Chance(0.8) ? 1 : 2;
        if (cur + dir * size < lo || cur + dir * size > hi) dir = -dir;  // turn at the range's edge
        cur = std::clamp(cur + dir * size, lo, hi);
      }
      double vel = (pos == 0 ? 1.0 : 0.82) * rng.Range(0.9, 1.0);
      out.push_back({b * static_cast<double>(m.meter) + pos, len, cur, vel});
      pitches[b].push_back(cur);
      pos += len;
    }
  }
  return out;
}

}  // namespace

int ScaleSemitone(const std::vector<int>& scale, int index) {
  int n = static_cast<int>(scale.size());
  return scale[Mod(index, n)] + 12 * FloorDiv(index, n);
}

std::vector<int> ChordSemitones(const std::vector<int>& scale, const Chord& c) {
  std::vector<int> t;
  int root = ScaleSemitone(scale, c.degree);
  t.push_back(root);
  if (c.sus) t.push_back(ScaleSemitone(scale, c.degree + 3));
  else if (c.major) t.push_back(root + 4);
  else t.push_back(ScaleSemitone(scale, c.degree + 2));
  t.push_back(ScaleSemitone(scale, c.degree + 4));
  if (c.seventh) t.push_back(ScaleSemitone(scale, c.degree + 6));
  return t;
}

int ChordTone(const std::vector<int>& tones, int token) {
  int n = static_cast<int>(tones.size());
  return tones[Mod(token, n)] + 12 * FloorDiv(token, n);
}

bool ParseChord(const std::string& token, Chord& c) {
  static const char* kNumerals[7] = {"vii", "vi", "v", "iv", "iii", "ii", "i"};
  static const int kDegrees[7] = {6, 5, 4, 3, 2, 1, 0};
  std::string lower;
  for (char ch : token) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  c = Chord{};
  for (int i = 0; i < 7; ++i) {
    std::string num = kNumerals[i];
    if (lower.compare(0, num.size(), num) != 0) continue;
    // "iv" must not be read as "i" followed by "v": longest numerals are tried first.
    c.degree = kDegrees[i];
    std::string rest = lower.substr(num.size());
    while (!rest.empty()) {
      if (rest.compare(0, 3, "sus") == 0) {
        c.sus = true;
        rest.erase(0, 3);
      } else if (rest[0] == '7') {
        c.seventh = true;
        rest.erase(0, 1);
      } else if (rest[0] == '^') {
        c.major = true;
        rest.erase(0, 1);
      } else {
        return false;
      }
    }
    return true;
  }
  return false;
}

double MusicRecipe::TotalBeats() const {
  double beats = 0;
  for (const std::string& f : form) {
    auto it = sections.find(f);
    if (it != sections.end()) beats += it->second.Bars() * meter;
  }
  return beats;
}

bool ReadMusicRecipe(const Recipe& recipe, MusicRecipe& out, std::string& error) {
  out = MusicRecipe{};
  const std::string& src = recipe.source;
  for (const RecipeSection& s : recipe.Sections()) {
    SectionReader r(s, src);
    const std::string at = src + ":" + std::to_string(s.line) + ": ";
    if (s.kind.empty()) {
      out.tempo = r.Number("tempo", 80);
      out.meter = r.Int("meter", 4);
      std::string key = r.Text("key", "D");
      std::string scale = r.Text("scale", "dorian");
      out.seed = static_cast<uint64_t>(r.Int("seed", 1));
      out.reverb = r.Number("reverb", 1);
      out.room = r.Number("room", 0.84);
      out.damp = r.Number("damp", 0.35);
      out.rmsDb = r.Number("rms_db", -20);
      out.quality = r.Number("quality", 0.3);
      out.form = r.Words("form");
      if (!ParseKey(key, out.tonic)) {
        error = at + "unknown key '" + key + "'";
        return false;
      }
      if (!ParseScale(scale, out.scale)) {
        error = at + "unknown scale '" + scale + "'";
        return false;
      }
      if (out.tempo < 30 || out.tempo > 240 || out.meter < 2 || out.meter > 6 || out.room < 0 ||
          out.room > 0.97 || out.quality < -0.1 || out.quality > 1 || out.rmsDb > -6 || out.rmsDb < -40) {
        error = at + "tempo, meter, room, quality or rms_db out of range";
        return false;
      }
    } else if (s.kind == "section") {
      Section sec;
      for (const std::string& w : r.Words("chords")) {
        Chord c;
        if (!ParseChord(w, c)) {
          error = at + "bad chord '" + w + "'";
          return false;
        }
        sec.chords.push_back(c);
      }
      sec.barsPerChord = r.Int("bars_per_chord", 1);
      if (sec.chords.empty() || sec.barsPerChord < 1 || sec.barsPerChord > 8 || s.name.empty()) {
        error = at + "a section needs a name, chords and 1..8 bars per chord";
        return false;
      }
      if (out.sections.count(s.name)) {
        error = at + "section '" + s.name + "' defined twice";
        return false;
      }
      out.sections[s.name] = sec;
    } else if (s.kind == "part") {
      Part p;
      p.name = s.name;
      if (!ParsePartType(r.Text("type", ""), p.type)) {
        error = at + "part needs type melody, arp, pad, bass, drums or drone";
        return false;
      }
      p.instrument = r.Text("instrument", "");
      p.octave = r.Int("octave", 4);
      p.gain = DbToGain(r.Number("db", -6));
      p.pan = r.Number("pan", 0);
      p.send = r.Number("send", 0.3);
      for (double v : r.Numbers("play")) p.play.push_back(static_cast<int>(v));
      p.density = r.Number("density", 0.4);
      p.rest = r.Number("rest", 0.1);
      p.vary = r.Number("vary", 0.15);
      p.range = r.Int("range", 9);
      p.step = r.Number("step", 1);
      p.attack = r.Number("attack", -1);
      p.release = r.Number("release", -1);
      p.follow = r.Int("follow", 1) != 0;
      p.humanize = r.Number("humanize", 0.006);
      p.seed = static_cast<uint64_t>(r.Int("seed", static_cast<int>(out.parts.size()) + 1));
      if (r.Has("pattern") && !ParsePattern(r.Words("pattern"), p.pattern)) {
        error = at + "bad pattern";
        return false;
      }
      static const char* kDrums[] = {"kick", "frame", "tom", "shaker", "hat", "click", "snare"};
      for (const char* d : kDrums) {
        if (!r.Has(d)) continue;
        DrumLine line;
        line.instrument = d;
        if (!ParseHits(r.Words(d), line.hits)) {
          error = at + "bad drum line '" + d + "'";
          return false;
        }
        p.drums.push_back(line);
      }
      if (p.octave < 1 || p.octave > 7 || std::fabs(p.pan) > 1 || p.send < 0 || p.send > 2 ||
          p.density < 0 || p.density > 1 || p.step < 0.125 || p.step > 16 || p.range < 2 || p.range > 21 ||
          p.humanize < 0 || p.humanize > 0.05 || p.attack > 10 || p.release > 10 || p.rest < 0 || p.rest > 1) {
        error = at + "part value out of range";
        return false;
      }
      if ((p.type == PartType::kArp || p.type == PartType::kBass) && p.pattern.empty()) {
        error = at + "arp and bass parts need a pattern";
        return false;
      }
      if (p.type == PartType::kDrums && p.drums.empty()) {
        error = at + "drums part needs at least one drum line";
        return false;
      }
      if (p.type != PartType::kDrums && p.instrument.empty()) {
        error = at + "part needs an instrument";
        return false;
      }
      out.parts.push_back(p);
    } else {
      error = at + "unknown section kind [" + s.kind + "]";
      return false;
    }
    if (!r.Finish(error)) return false;
  }
  if (out.form.empty()) {
    error = src + ": no form";
    return false;
  }
  for (const std::string& f : out.form) {
    if (!out.sections.count(f)) {
      error = src + ": form names unknown section '" + f + "'";
      return false;
    }
  }
  if (out.parts.empty()) {
    error = src + ": no parts";
    return false;
  }
  return true;
}

std::vector<Note> Compose(const MusicRecipe& m) {
  std::vector<Note> notes;
  const double spb = m.BeatSeconds();
  std::vector<SectionSpan> spans;
  std::map<std::string, int> seen;
  double beat = 0;
  for (size_t i = 0; i < m.form.size(); ++i) {
    const Section& s = m.sections.at(m.form[i]);
    spans.push_back({&s, m.form[i], static_cast<int>(i) + 1, seen[m.form[i]]++, beat});
    beat += s.Bars() * m.meter;
  }

  for (size_t pi = 0; pi < m.parts.size(); ++pi) {
    const Part& p = m.parts[pi];
    Rng rng(m.seed * 1000003ull + p.seed * 7919ull);
    const int base = 12 * (p.octave + 1) + m.tonic;  // MIDI of the tonic in the part's octave
    auto emit = [&](double startBeat, double lengthBeats, double midi, double vel, const std::string& inst) {
      Note n;
      n.start = startBeat * spb + (p.humanize > 0 ? rng.Bipolar() * p.humanize : 0);
      n.length = lengthBeats * spb;
      n.midi = midi;
      n.velocity = vel;
      n.part = static_cast<int>(pi);
      n.instrument = inst;
      notes.push_back(n);
    };
    std::map<std::string, std::vector<MelodyNote>> melodies;

    for (const SectionSpan& span : spans) {
      if (!Plays(p, span.position)) continue;
      const Section& s = *span.section;
      const double barBeats = m.meter;
      switch (p.type) {
        case PartType::kMelody: {
          auto it = melodies.find(span.name);
          if (it == melodies.end()) it = melodies.emplace(span.name, MakeMelody(m, p, s, rng)).first;
          for (const MelodyNote& mn : it->second) {
            int index = mn.index;
            // Later returns of a section vary a few passing notes.
            if (span.occurrence > 0 && mn.beat != std::floor(mn.beat / barBeats) * barBeats &&
                rng.Chance(p.vary))
              index += rng.Chance(0.5) ? 1 : -1;
            emit(span.startBeat + mn.beat, mn.length, base + ScaleSemitone(m.scale, index), mn.velocity,
                 p.instrument);
          }
          break;
        }
        case PartType::kPad:
        case PartType::kDrone: {
          for (size_t c = 0; c < s.chords.size(); ++c) {
            double start = span.startBeat + c * s.barsPerChord * barBeats;
            double len = s.barsPerChord * barBeats;
            std::vector<int> tones;
            if (p.type == PartType::kDrone) {
              Chord root;
              if (p.follow) root.degree = s.chords[c].degree;
              int r0 = ScaleSemitone(m.scale, root.degree);
              tones = {r0, r0 + 7};
            } else {
              // Voice each chord tone in the octave around the part's centre, so the
              // pad moves by small steps from chord to chord.
              for (int t : ChordSemitones(m.scale, s.chords[c])) {
                int pc = Mod(t, 12);
                int v = pc <= 7 ? pc : pc - 12;
                tones.push_back(v);
              }
              std::sort(tones.begin(), tones.end());
            }
            for (int t : tones) emit(start, len, base + t, 0.8, p.instrument);
          }
          break;
        }
        case PartType::kArp:
        case PartType::kBass: {
          const int steps = static_cast<int>(std::round(s.Bars() * barBeats / p.step));
          int lastIdx = -1;
          for (int k = 0; k < steps; ++k) {
            double pos = k * p.step;
            int chordIdx = std::min<int>(static_cast<int>(pos / (s.barsPerChord * barBeats)),
                                         static_cast<int>(s.chords.size()) - 1);
            // The pattern restarts with every chord.
            double inChord = pos - chordIdx * s.barsPerChord * barBeats;
            int tok = p.pattern[static_cast<size_t>(std::round(inChord / p.step)) % p.pattern.size()];
            if (tok == kRest) {
              lastIdx = -1;
              continue;
            }
            if (tok == kTie) {
              if (lastIdx >= 0) notes[lastIdx].length += p.step * spb;
              continue;
            }
            // The chord in root position with its root inside the part's octave (moved
            // down an octave for roots above the fifth, to stay near the tonic).
            const Chord& chord = s.chords[chordIdx];
            const int rootSemi = ScaleSemitone(m.scale, chord.degree);
            int rootPc = Mod(rootSemi, 12);
            if (rootPc > 7) rootPc -= 12;
            std::vector<int> rooted;
            for (int t : ChordSemitones(m.scale, chord)) rooted.push_back(t - rootSemi + rootPc);
            int midi = base + ChordTone(rooted, tok);
            double vel = (std::fmod(pos, barBeats) == 0 ? 1.0 : 0.8) * rng.Range(0.88, 1.0);
            emit(span.startBeat + pos, p.step, midi, vel, p.instrument);
            lastIdx = static_cast<int>(notes.size()) - 1;
          }
          break;
        }
        case PartType::kDrums: {
          for (const DrumLine& line : p.drums) {
            const int steps = static_cast<int>(std::round(s.Bars() * barBeats / p.step));
            for (int k = 0; k < steps; ++k) {
              double v = line.hits[static_cast<size_t>(k) % line.hits.size()];
              if (v <= 0) continue;
              emit(span.startBeat + k * p.step, p.step, 0, v * rng.Range(0.85, 1.0), line.instrument);
            }
          }
          break;
        }
      }
    }
  }
  return notes;
}

}  // namespace audiogen
