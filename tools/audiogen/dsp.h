// Small signal-processing pieces shared by the effect synthesiser and the composer.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace audiogen {

constexpr double kPi = 3.14159265358979323846;

// Seeded generator (splitmix64): identical sequences on every platform, so the same
// recipe always renders the same samples.
class Rng {
 public:
  explicit Rng(uint64_t seed = 1) : s_(seed) {}
  uint64_t Next() {
    uint64_t z = (s_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  double Uniform() { return static_cast<double>(Next() >> 11) * (1.0 / 9007199254740992.0); }
  double Range(double lo, double hi) { return lo + (hi - lo) * Uniform(); }
  double Bipolar() { return Uniform() * 2.0 - 1.0; }
  int Below(int n) { return n <= 0 ? 0 : static_cast<int>(Next() % static_cast<uint64_t>(n)); }
  bool Chance(double p) { return Uniform() < p; }

 private:
  uint64_t s_;
};

// Zero-delay-feedback state-variable filter: low, band and high outputs at once,
// stable under fast cutoff sweeps.
class Svf {
 public:
  void Set(double cutoff, double q, double rate) {
    double fc = std::fmin(std::fmax(cutoff, 10.0), rate * 0.45);
    double g = std::tan(kPi * fc / rate);
    k_ = 1.0 / std::fmax(q, 0.05);
    a1_ = 1.0 / (1.0 + g * (g + k_));
    a2_ = g * a1_;
    a3_ = g * a2_;
  }
  void Run(double x) {
    double v3 = x - ic2_;
    double v1 = a1_ * ic1_ + a2_ * v3;
    double v2 = ic2_ + a2_ * ic1_ + a3_ * v3;
    ic1_ = 2 * v1 - ic1_;
    ic2_ = 2 * v2 - ic2_;
    low = v2;
    band = v1;
    high = x - k_ * v1 - v2;
  }
  double low = 0, band = 0, high = 0;
  double k() const { return k_; }

 private:
  double k_ = 1, a1_ = 0, a2_ = 0, a3_ = 0, ic1_ = 0, ic2_ = 0;
};

// One-pole low-pass for smoothing and gentle tone control.
struct OnePole {
  double a = 0, y = 0;
  void Set(double cutoff, double rate) { a = 1.0 - std::exp(-2.0 * kPi * cutoff / rate); }
  double Run(double x) { return y += a * (x - y); }
};

// Band-limited step correction for the naive saw and pulse waves.
inline double PolyBlep(double t, double dt) {
  if (dt <= 0) return 0;
  if (t < dt) {
    t /= dt;
    return t + t - t * t - 1.0;
  }
  if (t > 1.0 - dt) {
    t = (t - 1.0) / dt;
    return t * t + t + t + 1.0;
  }
  return 0;
}

// A single-cycle table read with linear interpolation; built from harmonic amplitudes.
class Wavetable {
 public:
  static constexpr int kSize = 4096;
  void Build(const std::vector<double>& harmonics) {
    table_.assign(kSize + 1, 0.0);
    for (int i = 0; i < kSize; ++i) {
      double v = 0;
      for (size_t h = 0; h < harmonics.size(); ++h)
        v += harmonics[h] * std::sin(2 * kPi * static_cast<double>(h + 1) * i / kSize);
      table_[i] = v;
    }
    double peak = 1e-9;
    for (double v : table_) peak = std::fmax(peak, std::fabs(v));
    for (double& v : table_) v /= peak;
    table_[kSize] = table_[0];
  }
  // phase in [0, 1)
  double Read(double phase) const {
    double p = phase * kSize;
    int i = static_cast<int>(p);
    if (i >= kSize) i = kSize - 1;
    double f = p - i;
    return table_[i] + (table_[i + 1] - table_[i]) * f;
  }

 private:
  std::vector<double> table_;
};

// Comb-and-allpass room reverb (parallel damped combs into serial allpasses), one
// channel; a stereo image comes from two instances with slightly different lengths.
class Reverb {
 public:
  void Init(double rate, double room, double damp, int spread) {
    static const int kCombs[8] = {1116, 1188, 1277, 1356, 1422, 1491, 1557, 1617};
    static const int kAllpasses[4] = {556, 441, 341, 225};
    double scale = rate / 44100.0;
    combs_.clear();
    allpasses_.clear();
    for (int c : kCombs) combs_.push_back(Line(static_cast<int>((c + spread) * scale)));
    for (int a : kAllpasses) allpasses_.push_back(Line(static_cast<int>((a + spread) * scale)));
    feedback_ = room;
    damp_ = damp;
  }
  double Run(double x) {
    double in = x * 0.015;
    double out = 0;
    for (Line& c : combs_) {
      double y = c.buf[c.pos];
      c.store = y * (1 - damp_) + c.store * damp_;
      c.buf[c.pos] = in + c.store * feedback_;
      if (++c.pos >= c.buf.size()) c.pos = 0;
      out += y;
    }
    for (Line& a : allpasses_) {
      double b = a.buf[a.pos];
      a.buf[a.pos] = out + b * 0.5;
      if (++a.pos >= a.buf.size()) a.pos = 0;
      out = b - out;
    }
    return out;
  }

 private:
  struct Line {
    explicit Line(int n) : buf(n > 1 ? n : 1, 0.0) {}
    std::vector<double> buf;
    size_t pos = 0;
    double store = 0;
  };
  std::vector<Line> combs_, allpasses_;
  double feedback_ = 0.8, damp_ = 0.3;
};

inline double DbToGain(double db) { return std::pow(10.0, db / 20.0); }
inline double MidiToHz(double midi) { return 440.0 * std::pow(2.0, (midi - 69.0) / 12.0); }

}  // namespace audiogen
