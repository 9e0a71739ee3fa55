#include "sfx_synth.h"

#include <algorithm>
#include <cmath>

#include "dsp.h"
#include "wav_writer.h"

namespace audiogen {

namespace {

bool ParseWave(const std::string& name, Wave& w) {
  static const struct {
    const char* name;
    Wave wave;
  } kWaves[] = {{"sine", Wave::kSine},   {"square", Wave::kSquare},   {"saw", Wave::kSaw},
                {"triangle", Wave::kTriangle}, {"noise", Wave::kNoise}, {"crackle", Wave::kCrackle},
                {"pluck", Wave::kPluck}};
  for (const auto& k : kWaves) {
    if (name == k.name) {
      w = k.wave;
      return true;
    }
  }
  return false;
}

// Exponential sweep from a to b (b <= 0 means no sweep) over time span.
double Sweep(double a, double b, double t, double span) {
  if (b <= 0 || a <= 0 || span <= 0) return a;
  double x = std::fmin(t / span, 1.0);
  return a * std::pow(b / a, x);
}

double Lerp(double a, double b, double x) { return a + (b - a) * x; }

double Envelope(const SfxLayer& l, double t) {
  if (t < 0) return 0;
  if (t < l.attack) return t / l.attack;
  t -= l.attack;
  if (t < l.hold) return 1.0 + l.punch * (1.0 - t / l.hold);
  t -= l.hold;
  if (t < l.decay) return std::pow(1.0 - t / l.decay, l.curve);
  return 0;
}

// Renders one instance of a layer into out starting at sample `start`.
void RenderLayer(const SfxLayer& l, double freqScale, double gain, int rate, Rng& rng,
                 std::vector<double>& out, size_t start) {
  const double len = l.Length();
  const size_t n = static_cast<size_t>(len * rate) + 1;
  if (out.size() < start + n) out.resize(start + n, 0.0);
  const double dt = 1.0 / rate;
  const double slide = l.slideTime > 0 ? l.slideTime : len;
  double phase = 0, modPhase = 0;
  double held = rng.Bipolar();
  double pop = 0;
  Svf filter, high;
  const bool useBp = l.bp > 0, useLp = l.lp > 0, useHp = l.hp > 0;
  if (useHp) high.Set(l.hp, 0.707, rate);

  // Karplus-Strong string for "pluck": a noise burst circulating through a damped loop.
  std::vector<double> string;
  size_t spos = 0;
  if (l.wave == Wave::kPluck) {
    size_t period = static_cast<size_t>(std::max(2.0, rate / (l.freq * freqScale)));
    string.resize(period);
    double prev = 0;
    for (double& s : string) {
      double r = rng.Bipolar();
      prev = prev + (r - prev) * (0.2 + 0.8 * l.bright);
      s = prev;
    }
  }

  for (size_t i = 0; i < n; ++i) {
    const double t = i * dt;
    double f = Sweep(l.freq * freqScale, l.freqEnd > 0 ? l.freqEnd * freqScale : 0, t, slide);
    if (!l.arp.empty()) {
      size_t idx = std::min(static_cast<size_t>(t / l.arpStep), l.arp.size() - 1);
      f *= std::pow(2.0, l.arp[idx] / 12.0);
    }
    if (l.vibDepth > 0 && t >= l.vibDelay)
      f *= std::pow(2.0, l.vibDepth / 12.0 * std::sin(2 * kPi * l.vibRate * (t - l.vibDelay)));
    const double inc = f * dt;
    phase += inc;
    bool wrapped = false;
    if (phase >= 1.0) {
      phase -= std::floor(phase);
      wrapped = true;
    }
    double v = 0;
    switch (l.wave) {
      case Wave::kSine: {
        double idx = l.fmIndex;
        if (l.fmIndexEnd >= 0) idx = Lerp(l.fmIndex, l.fmIndexEnd, std::fmin(t / len, 1.0));
        double mod = 0;
        if (l.fmRatio > 0) {
          modPhase += inc * l.fmRatio;
          modPhase -= std::floor(modPhase);
          mod = idx * std::sin(2 * kPi * modPhase);
        }
        v = std::sin(2 * kPi * phase + mod);
        break;
      }
      case Wave::kSquare: {
        double duty = l.dutyEnd >= 0 ? Lerp(l.duty, l.dutyEnd, std::fmin(t / len, 1.0)) : l.duty;
        duty = std::clamp(duty, 0.05, 0.95);
        v = (phase < duty ? 1.0 : -1.0) + PolyBlep(phase, inc);
        double p2 = phase + 1.0 - duty;
        v -= PolyBlep(p2 - std::floor(p2), inc);
        break;
      }
      case Wave::kSaw:
        v = 2.0 * phase - 1.0 - PolyBlep(phase, inc);
        break;
      case Wave::kTriangle:
        v = 4.0 * std::fabs(phase - 0.5) - 1.0;
        break;
      case Wave::kNoise:
        if (l.freq <= 0 || wrapped) held = rng.Bipolar();
        v = held;
        break;
      case Wave::kCrackle:
        if (rng.Chance(l.density * dt)) {
          double a = rng.Uniform();
          pop = (a * a * a) * (rng.Chance(0.5) ? 1 : -1);
        }
        v = pop * rng.Bipolar();
        pop *= 0.993;
        break;
      case Wave::kPluck: {
        size_t next = spos + 1 == string.size() ? 0 : spos + 1;
        double y = string[spos];
        double avg = 0.5 * (y + string[next]);
        string[spos] = l.sustain * (l.bright * y + (1 - l.bright) * avg);
        spos = next;
        v = y;
        break;
      }
    }
    if (l.amDepth > 0) v *= 1.0 - l.amDepth * 0.5 * (1.0 - std::cos(2 * kPi * l.amRate * t));
    if (l.drive > 0) v = std::tanh(v * l.drive) / std::tanh(l.drive);
    if (useBp) {
      filter.Set(Sweep(l.bp, l.bpEnd, t, len), l.q, rate);
      filter.Run(v);
      v = filter.band * filter.k();
    } else if (useLp) {
      filter.Set(Sweep(l.lp, l.lpEnd, t, len), l.q, rate);
      filter.Run(v);
      v = filter.low;
    }
    if (useHp) {
      high.Run(v);
      v = high.high;
    }
    out[start + i] += v * Envelope(l, t) * gain;
  }
}

}  // namespace

bool ReadSfxRecipe(const Recipe& recipe, SfxRecipe& out, std::string& error) {
  out = SfxRecipe{};
  for (const RecipeSection& s : recipe.Sections()) {
    SectionReader r(s, recipe.source);
    if (s.kind.empty()) {
      out.rate = r.Int("rate", 44100);
      out.reverb = r.Number("reverb", 0);
      out.room = r.Number("room", 0.7);
      out.damp = r.Number("damp", 0.4);
      out.peakDb = r.Number("peak_db", -3);
      out.loudnessDb = r.Number("loudness_db", 0);
      out.tail = r.Number("tail", 0.05);
      out.seed = static_cast<uint64_t>(r.Int("seed", 1));
      if (out.rate < 8000 || out.rate > 96000) {
        error = recipe.source + ": rate out of range";
        return false;
      }
      if (out.peakDb > -0.5 || out.peakDb < -30 || out.loudnessDb > 0 || out.loudnessDb < -40) {
        error = recipe.source + ": peak_db or loudness_db out of range";
        return false;
      }
      if (out.room < 0 || out.room > 0.98 || out.reverb < 0 || out.reverb > 2 || out.tail < 0 ||
          out.tail > 4) {
        error = recipe.source + ": reverb settings out of range";
        return false;
      }
    } else if (s.kind == "layer") {
      SfxLayer l;
      std::string w = r.Text("wave", "sine");
      if (!ParseWave(w, l.wave)) {
        error = recipe.source + ":" + std::to_string(s.line) + ": unknown wave '" + w + "'";
        return false;
      }
      l.at = r.Number("at", 0);
      l.attack = std::max(0.001, r.Number("attack", 0.002));
      l.hold = r.Number("hold", 0);
      l.decay = r.Number("decay", 0.2);
      l.curve = r.Number("curve", 2);
      l.punch = r.Number("punch", 0);
      // Noise is white unless a rate for its held steps is given.
      l.freq = r.Number("freq", l.wave == Wave::kNoise ? 0 : 440);
      l.freqEnd = r.Number("freq_end", 0);
      l.slideTime = r.Number("slide_time", 0);
      l.vibDepth = r.Number("vib_depth", 0);
      l.vibRate = r.Number("vib_rate", 6);
      l.vibDelay = r.Number("vib_delay", 0);
      l.duty = r.Number("duty", 0.5);
      l.dutyEnd = r.Number("duty_end", -1);
      l.fmRatio = r.Number("fm_ratio", 0);
      l.fmIndex = r.Number("fm_index", 0);
      l.fmIndexEnd = r.Number("fm_index_end", -1);
      l.lp = r.Number("lp", 0);
      l.lpEnd = r.Number("lp_end", 0);
      l.bp = r.Number("bp", 0);
      l.bpEnd = r.Number("bp_end", 0);
      l.hp = r.Number("hp", 0);
      l.q = r.Number("q", 0.707);
      l.gain = r.Has("db") ? DbToGain(r.Number("db", 0)) : r.Number("gain", 1);
      l.drive = r.Number("drive", 0);
      l.amRate = r.Number("am_rate", 0);
      l.amDepth = r.Number("am_depth", 0);
      l.density = r.Number("density", 200);
      l.bright = r.Number("bright", 0.5);
      l.sustain = r.Number("sustain", 0.996);
      l.repeat = r.Int("repeat", 1);
      l.every = r.Number("every", 0.1);
      l.repeatPitch = r.Number("repeat_pitch", 1);
      l.repeatGain = r.Number("repeat_gain", 1);
      l.jitter = r.Number("jitter", 0);
      l.pitchJitter = r.Number("pitch_jitter", 0);
      l.arp = r.Numbers("arp");
      l.arpStep = r.Number("arp_step", 0.08);
      const char* bad = nullptr;
      if (l.at < 0 || l.at > 10) bad = "at";
      else if (l.hold < 0 || l.decay < 0.001 || l.Length() > 10) bad = "envelope";
      else if (l.freq < 0 || l.freq > 20000 || l.freqEnd < 0 || l.freqEnd > 20000) bad = "freq";
      else if (l.wave == Wave::kPluck && l.freq < 20) bad = "freq";
      else if (l.repeat < 1 || l.repeat > 200 || l.every <= 0 || l.every > 2 ||
               l.at + (l.repeat - 1) * l.every * (1 + l.jitter) > 20 || l.jitter < 0)
        bad = "repeat";
      else if (l.arpStep <= 0) bad = "arp_step";
      else if (l.sustain <= 0 || l.sustain > 1 || l.bright < 0 || l.bright > 1) bad = "pluck";
      else if (l.q <= 0 || l.curve <= 0 || l.density < 0) bad = "q/curve/density";
      if (bad) {
        error = recipe.source + ":" + std::to_string(s.line) + ": layer value out of range: " + bad;
        return false;
      }
      out.layers.push_back(l);
    } else {
      error = recipe.source + ":" + std::to_string(s.line) + ": unknown section [" + s.kind + "]";
      return false;
    }
    if (!r.Finish(error)) return false;
  }
  if (out.layers.empty()) {
    error = recipe.source + ": no [layer]";
    return false;
  }
  return true;
}

std::vector<double> RenderSfx(const SfxRecipe& recipe) {
  Rng rng(recipe.seed * 7919 + 13);
  std::vector<double> dry;
  for (const SfxLayer& l : recipe.layers) {
    double g = l.gain, scale = 1;
    for (int k = 0; k < l.repeat; ++k) {
      double at = l.at + k * l.every + (l.jitter > 0 ? rng.Uniform() * l.jitter * l.every : 0);
      double fs = scale * (l.pitchJitter > 0 ? std::pow(2.0, rng.Bipolar() * l.pitchJitter / 12) : 1);
      RenderLayer(l, fs, g, recipe.rate, rng, dry, static_cast<size_t>(at * recipe.rate));
      g *= l.repeatGain;
      scale *= l.repeatPitch;
    }
  }
  dry.resize(dry.size() + static_cast<size_t>(recipe.tail * recipe.rate), 0.0);
  if (recipe.reverb > 0) {
    Reverb rv;
    rv.Init(recipe.rate, recipe.room, recipe.damp, 0);
    OnePole dc;  // take the rumble out of the wet signal
    dc.Set(60, recipe.rate);
    for (double& s : dry) {
      double w = rv.Run(s);
      w -= dc.Run(w);
      s += w * recipe.reverb;
    }
  }
  // Remove any DC offset so the ending fade lands on silence.
  double mean = 0;
  for (double s : dry) mean += s;
  mean /= std::max<size_t>(1, dry.size());
  double peak = 1e-9;
  for (double& s : dry) {
    s -= mean;
    peak = std::fmax(peak, std::fabs(s));
  }
  const double ceiling = DbToGain(recipe.peakDb);
  if (recipe.loudnessDb < 0) {
    // Loudness levelling: effects of very different shapes (a sharp crack, a dense
    // shower of coins) come out equally loud. Transients pushed over the ceiling are
    // rounded off by a soft knee, at most 6 dB of it.
    double g = DbToGain(recipe.loudnessDb) / std::fmax(ShortTermRms(dry, recipe.rate), 1e-9);
    g = std::fmin(g, 2.0 * ceiling / peak);
    const double knee = 0.6 * ceiling, room = ceiling - knee;
    for (double& s : dry) {
      double a = std::fabs(s * g);
      if (a > knee) a = knee + room * std::tanh((a - knee) / room);
      s = s < 0 ? -a : a;
    }
  } else {
    const double g = ceiling / peak;
    for (double& s : dry) s *= g;
  }
  // A short fade in and a longer fade out keep both ends free of clicks.
  size_t fadeIn = std::min<size_t>(dry.size(), recipe.rate / 2000 + 1);
  for (size_t i = 0; i < fadeIn; ++i) dry[i] *= static_cast<double>(i) / fadeIn;
  size_t fadeOut = std::min<size_t>(dry.size(), recipe.rate / 50);
  for (size_t i = 0; i < fadeOut; ++i) dry[dry.size() - 1 - i] *= static_cast<double>(i) / fadeOut;
  return dry;
}

double ShortTermRms(const std::vector<double>& s, int rate) {
  const size_t win = static_cast<size_t>(rate / 20);
  if (s.empty()) return 0;
  if (s.size() <= win) {
    double e = 0;
    for (double v : s) e += v * v;
    return std::sqrt(e / s.size());
  }
  double e = 0, best = 0;
  for (size_t i = 0; i < s.size(); ++i) {
    e += s[i] * s[i];
    if (i >= win) e -= s[i - win] * s[i - win];
    if (i + 1 >= win) best = std::fmax(best, e);
  }
  return std::sqrt(std::fmax(best, 0.0) / win);
}

std::vector<uint8_t> SfxToWav(const SfxRecipe& recipe, int silenceBytes) {
  std::vector<double> s = RenderSfx(recipe);
  s.resize(s.size() + static_cast<size_t>((silenceBytes + 1) / 2), 0.0);
  return BuildWav(ToPcm16(s), 1, recipe.rate);
}

}  // namespace audiogen
