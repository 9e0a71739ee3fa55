#include "instruments.h"

#include <algorithm>
#include <cmath>

namespace audiogen {

namespace {

std::vector<double> SawHarmonics(int n) {
  std::vector<double> h;
  for (int i = 1; i <= n; ++i) h.push_back(1.0 / i);
  return h;
}

}  // namespace

Instruments::Instruments(int rate) : rate_(rate) {
  flute_.Build({1, 0.22, 0.1, 0.04, 0.02});
  saw_.Build(SawHarmonics(14));
  choir_.Build({1, 0.55, 0.4, 0.22, 0.08, 0.05, 0.03});
  organ_.Build({1, 0.6, 0.25, 0.3, 0.0, 0.1, 0.0, 0.05});
  bass_.Build({1, 0.35, 0.12, 0.05});
  reed_.Build({1, 0.45, 0.55, 0.3, 0.3, 0.15, 0.1, 0.08, 0.05});
}

bool Instruments::Known(const std::string& name) const {
  static const char* kNames[] = {"harp",  "lute",   "pluckbass", "flute", "pad",   "choir", "strings",
                                 "organ", "drone",  "bell",      "bass",  "reed",  "kick",  "frame",
                                 "tom",   "shaker", "hat",       "click", "snare"};
  for (const char* k : kNames)
    if (name == k) return true;
  return false;
}

// Karplus-Strong string: a filtered noise burst circulating in a delay line whose length
// (with an allpass for the fractional part) sets the pitch; the loop loss sets the ring.
void Instruments::Pluck(const NoteRequest& n, double brightness, double t60, double ring, Rng& rng,
                        std::vector<float>& out) const {
  // The loop filter below weighs the previous sample by (0.5 - 0.15 * brightness): that
  // much of a sample of delay is in the filter, the rest in the line and the allpass.
  const double filterDelay = 0.5 - 0.15 * brightness;
  const double delay = rate_ / std::max(n.hz, 20.0);
  int len = static_cast<int>(std::floor(delay - filterDelay));
  double frac = delay - filterDelay - len;
  if (frac < 0.1) {
    len -= 1;
    frac += 1;
  }
  len = std::max(len, 2);
  const double c = (1 - frac) / (1 + frac);
  const double loss = std::pow(10.0, -3.0 * delay / (t60 * rate_));
  std::vector<double> line(len);
  OnePole tone;
  tone.Set(200 + 9000 * brightness * brightness, rate_);
  for (double& s : line) s = tone.Run(rng.Bipolar());
  double mean = 0;
  for (double s : line) mean += s;
  mean /= len;
  for (double& s : line) s -= mean;

  const size_t total = static_cast<size_t>(ring * rate_);
  out.assign(total, 0.f);
  const size_t releaseAt = static_cast<size_t>(std::max(n.length, 0.05) * rate_);
  const size_t releaseLen = static_cast<size_t>(0.08 * rate_);
  double prev = 0, apIn = 0, apOut = 0;
  size_t pos = 0;
  OnePole body;
  body.Set(3500 + 3000 * brightness, rate_);
  for (size_t i = 0; i < total; ++i) {
    double y = line[pos];
    double avg = 0.5 * (y + prev) * (1 - brightness * 0.3) + y * brightness * 0.3;
    prev = y;
    double ap = c * avg + apIn - c * apOut;
    apIn = avg;
    apOut = ap;
    line[pos] = ap * loss;
    if (++pos == static_cast<size_t>(len)) pos = 0;
    double v = body.Run(y);
    // Damping at the end of a held note (for the lute and bass; harps pass a long length).
    if (i > releaseAt) {
      size_t k = i - releaseAt;
      v *= k >= releaseLen ? 0.0 : 1.0 - static_cast<double>(k) / releaseLen;
    }
    if (i + 256 > total) v *= (total - i) / 256.0;  // never stop abruptly
    out[i] = static_cast<float>(v);
  }
}

void Instruments::Sustained(const NoteRequest& n, const Wavetable& table, int voices, double detuneCents,
                            double attack, double release, double vibrato, double cutoff, double breath,
                            Rng& rng, std::vector<float>& out) const {
  if (n.attack >= 0) attack = n.attack;
  if (n.release >= 0) release = n.release;
  attack = std::max(attack, 0.005);
  release = std::max(release, 0.02);
  const double hold = std::max(n.length, attack);
  const size_t total = static_cast<size_t>((hold + release) * rate_);
  out.assign(total, 0.f);
  std::vector<double> phases(voices), incs(voices);
  for (int v = 0; v < voices; ++v) {
    double cents = voices == 1 ? 0 : detuneCents * (2.0 * v / (voices - 1) - 1.0);
    incs[v] = n.hz * std::pow(2.0, cents / 1200.0) / rate_;
    phases[v] = rng.Uniform();
  }
  OnePole lp, lp2;
  lp.Set(cutoff, rate_);
  lp2.Set(cutoff * 1.5, rate_);
  Svf breathFilter;
  breathFilter.Set(std::min(n.hz * 2.0, rate_ * 0.4), 1.5, rate_);
  const double vibRate = 4.8 + rng.Uniform() * 0.8;
  const double norm = 1.0 / std::sqrt(static_cast<double>(voices));
  // Vibrato LFO as a rotating phasor (no per-sample sine); depths are a fraction of a
  // semitone, so 2^x is taken from its second-order expansion.
  const double rot = 2 * kPi * vibRate / rate_;
  const double rc = std::cos(rot), rs = std::sin(rot);
  double lfoS = 0, lfoC = 1;
  const size_t attackEnd = static_cast<size_t>(attack * rate_);
  const size_t holdEnd = static_cast<size_t>(hold * rate_);
  const double invRelease = 1.0 / release;
  for (size_t i = 0; i < total; ++i) {
    const double t = static_cast<double>(i) / rate_;
    double env;
    if (i < attackEnd) env = 0.5 - 0.5 * std::cos(kPi * t / attack);
    else if (i < holdEnd) env = 1.0;
    else env = std::max(0.0, 1.0 - (t - hold) * invRelease);
    double vib = 1.0;
    if (vibrato > 0) {
      double ns = lfoS * rc + lfoC * rs;
      lfoC = lfoC * rc - lfoS * rs;
      lfoS = ns;
      if ((i & 1023) == 0) {  // keep the phasor on the unit circle
        double mag = std::sqrt(lfoS * lfoS + lfoC * lfoC);
        lfoS /= mag;
        lfoC /= mag;
      }
      double depth = vibrato * std::min(1.0, std::max(0.0, (t - 0.2) / 0.4));
      double x = depth / 12.0 * lfoS * 0.69314718;
      vib = 1.0 + x + 0.5 * x * x;
    }
    double s = 0;
    for (int v = 0; v < voices; ++v) {
      phases[v] += incs[v] * vib;
      if (phases[v] >= 1.0) phases[v] -= 1.0;
      s += table.Read(phases[v]);
    }
    s *= norm;
    if (breath > 0) {
      breathFilter.Run(rng.Bipolar());
      double puff = t < attack * 1.5 ? 2.0 : 1.0;
      s += breath * puff * breathFilter.band;
    }
    s = lp2.Run(lp.Run(s));
    out[i] = static_cast<float>(s * env);
  }
}

// Two-operator FM with an inharmonic modulator: a soft bell or chime.
void Instruments::Bell(const NoteRequest& n, std::vector<float>& out) const {
  const double ring = 3.2;
  const size_t total = static_cast<size_t>(ring * rate_);
  out.assign(total, 0.f);
  double pc = 0, pm = 0, p2 = 0;
  const double ic = n.hz / rate_, im = n.hz * 3.5 / rate_, i2 = n.hz * 2.76 / rate_;
  const double kIndex = std::exp(-1.0 / (0.35 * rate_)), kBody = std::exp(-1.0 / (0.9 * rate_)),
               kHigh = std::exp(-1.0 / (0.4 * rate_));
  double index = 1.6, body = 1.0, high = 0.25;
  for (size_t i = 0; i < total; ++i) {
    const double t = static_cast<double>(i) / rate_;
    pc += ic;
    pm += im;
    p2 += i2;
    if (pc >= 1) pc -= 1;
    if (pm >= 1) pm -= 1;
    if (p2 >= 1) p2 -= 1;
    double v = std::sin(2 * kPi * pc + index * std::sin(2 * kPi * pm)) * body + std::sin(2 * kPi * p2) * high;
    index *= kIndex;
    body *= kBody;
    high *= kHigh;
    double a = std::min(1.0, t / 0.003);
    if (i + 512 > total) a *= (total - i) / 512.0;
    out[i] = static_cast<float>(v * a * 0.7);
  }
}

void Instruments::Drum(const std::string& kind, Rng& rng, std::vector<float>& out) const {
  double len = 0.5;
  if (kind == "tom") len = 1.4;
  else if (kind == "shaker" || kind == "hat" || kind == "click") len = 0.15;
  const size_t total = static_cast<size_t>(len * rate_);
  out.assign(total, 0.f);
  Svf f;
  double phase = 0;
  if (kind == "frame") f.Set(700, 1.0, rate_);
  else if (kind == "snare") f.Set(2600, 0.7, rate_);
  else if (kind == "shaker") f.Set(6500, 0.8, rate_);
  else if (kind == "hat") f.Set(8500, 0.8, rate_);
  else if (kind == "click") f.Set(2200, 3.0, rate_);
  else f.Set(400, 0.7, rate_);
  for (size_t i = 0; i < total; ++i) {
    const double t = static_cast<double>(i) / rate_;
    double v = 0;
    const double noise = rng.Bipolar();
    f.Run(noise);
    if (kind == "kick") {
      phase += (45 + 70 * std::exp(-t / 0.04)) / rate_;
      v = std::sin(2 * kPi * phase) * std::exp(-t / 0.22) + f.low * std::exp(-t / 0.004) * 0.4;
    } else if (kind == "frame") {
      phase += (88 + 40 * std::exp(-t / 0.02)) / rate_;
      v = 0.8 * std::sin(2 * kPi * phase) * std::exp(-t / 0.16) + 0.7 * f.band * std::exp(-t / 0.045);
    } else if (kind == "tom") {
      phase += (58 + 30 * std::exp(-t / 0.06)) / rate_;
      v = std::sin(2 * kPi * phase) * std::exp(-t / 0.45) + 0.3 * f.low * std::exp(-t / 0.08);
    } else if (kind == "snare") {
      phase += 185.0 / rate_;
      v = 0.8 * f.band * std::exp(-t / 0.1) + 0.3 * std::sin(2 * kPi * phase) * std::exp(-t / 0.04);
    } else if (kind == "shaker") {
      double a = std::min(1.0, t / 0.012);
      v = 0.6 * f.high * a * std::exp(-t / 0.045);
    } else if (kind == "hat") {
      v = 0.5 * f.high * std::exp(-t / 0.025);
    } else if (kind == "click") {
      phase += 1100.0 / rate_;
      v = 0.6 * std::sin(2 * kPi * phase) * std::exp(-t / 0.018) + 0.4 * f.band * std::exp(-t / 0.01);
    }
    double a = std::min(1.0, t / 0.001);
    if (i + 128 > total) a *= (total - i) / 128.0;
    out[i] = static_cast<float>(v * a);
  }
}

void Instruments::Render(const NoteRequest& n, Rng& rng, std::vector<float>& out) const {
  const std::string& k = n.instrument;
  if (k == "harp") {
    NoteRequest h = n;
    h.length = 10;  // strings ring freely
    Pluck(h, 0.55, 2.6, 2.8, rng, out);
  } else if (k == "lute") {
    Pluck(n, 0.35, 1.6, std::min(2.2, n.length + 0.3), rng, out);
  } else if (k == "pluckbass") {
    Pluck(n, 0.15, 1.8, std::min(2.5, n.length + 0.2), rng, out);
  } else if (k == "flute") {
    Sustained(n, flute_, 1, 0, 0.07, 0.14, 0.18, 4200, 0.05, rng, out);
  } else if (k == "pad") {
    Sustained(n, saw_, 3, 9, 1.2, 1.4, 0, 1300, 0, rng, out);
  } else if (k == "choir") {
    Sustained(n, choir_, 3, 12, 0.9, 1.2, 0.12, 2200, 0.01, rng, out);
  } else if (k == "strings") {
    Sustained(n, saw_, 2, 6, 0.18, 0.35, 0.16, 2600, 0, rng, out);
  } else if (k == "organ") {
    Sustained(n, organ_, 2, 3, 0.06, 0.3, 0, 3000, 0, rng, out);
  } else if (k == "drone") {
    Sustained(n, reed_, 3, 7, 2.0, 2.0, 0, 650, 0, rng, out);
  } else if (k == "reed") {
    Sustained(n, reed_, 1, 0, 0.06, 0.12, 0.14, 2400, 0.02, rng, out);
  } else if (k == "bass") {
    Sustained(n, bass_, 1, 0, 0.015, 0.12, 0, 900, 0, rng, out);
  } else if (k == "bell") {
    Bell(n, out);
  } else {
    Drum(k, rng, out);
  }
}

}  // namespace audiogen
