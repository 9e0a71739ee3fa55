#include "music.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "dsp.h"
#include "instruments.h"

namespace audiogen {

bool RenderMusic(const MusicRecipe& m, StereoBuffer& out, std::string& error) {
  const int rate = out.rate;
  const double seconds = m.TotalBeats() * m.BeatSeconds();
  const size_t len = static_cast<size_t>(std::llround(seconds * rate));
  if (len < static_cast<size_t>(rate)) {
    error = "piece shorter than a second";
    return false;
  }
  Instruments inst(rate);
  for (const Part& p : m.parts) {
    if (!p.instrument.empty() && !inst.Known(p.instrument)) {
      error = "unknown instrument '" + p.instrument + "' in part '" + p.name + "'";
      return false;
    }
  }
  std::vector<Note> notes = Compose(m);

  std::vector<float> dryL(len, 0.f), dryR(len, 0.f), sendL(len, 0.f), sendR(len, 0.f);
  std::vector<float> samples;
  Rng rng(m.seed * 31 + 7);
  for (const Note& n : notes) {
    const Part& p = m.parts[n.part];
    NoteRequest req;
    req.instrument = n.instrument;
    req.hz = n.midi > 0 ? MidiToHz(n.midi) : 0;
    req.length = n.length;
    req.attack = p.attack;
    req.release = p.release;
    inst.Render(req, rng, samples);
    const double g = p.gain * n.velocity;
    const double angle = (p.pan + 1.0) * kPi / 4.0;
    const float gl = static_cast<float>(g * std::cos(angle)), gr = static_cast<float>(g * std::sin(angle));
    const float sl = static_cast<float>(gl * p.send), sr = static_cast<float>(gr * p.send);
    long long start = std::llround(n.start * rate) % static_cast<long long>(len);
    if (start < 0) start += static_cast<long long>(len);
    size_t pos = static_cast<size_t>(start);
    for (float s : samples) {
      dryL[pos] += s * gl;
      dryR[pos] += s * gr;
      sendL[pos] += s * sl;
      sendR[pos] += s * sr;
      if (++pos == len) pos = 0;
    }
  }

  // Reverb: warmed up on the last seconds of the loop, so the pass that is kept starts
  // with the tail of the end and the seam is as smooth as any other instant.
  Reverb rl, rr;
  rl.Init(rate, m.room, m.damp, 0);
  rr.Init(rate, m.room, m.damp, 23);
  OnePole hl, hr;  // keep rumble out of the wet signal
  hl.Set(90, rate);
  hr.Set(90, rate);
  out.left.assign(len, 0.f);
  out.right.assign(len, 0.f);
  const size_t warm = std::min(len, static_cast<size_t>(12 * rate));
  for (size_t k = 0; k < warm + len; ++k) {
    size_t i = k < warm ? len - warm + k : k - warm;
    double wl = rl.Run(sendL[i]), wr = rr.Run(sendR[i]);
    wl -= hl.Run(wl);
    wr -= hr.Run(wr);
    if (k >= warm) {
      out.left[i] = static_cast<float>(dryL[i] + m.reverb * wl);
      out.right[i] = static_cast<float>(dryR[i] + m.reverb * wr);
    }
  }

  // Level to the target loudness, then a static soft knee so peaks stay below full scale
  // (a memoryless curve keeps the loop seamless).
  double sum = 0;
  for (size_t i = 0; i < len; ++i) sum += out.left[i] * out.left[i] + out.right[i] * out.right[i];
  const double rms = std::sqrt(sum / (2.0 * len));
  if (rms < 1e-7) {
    error = "piece is silent";
    return false;
  }
  const double g = DbToGain(m.rmsDb) / rms;
  auto shape = [g](float x) {
    double v = x * g;
    double a = std::fabs(v);
    if (a > 0.7) a = 0.7 + 0.28 * std::tanh((a - 0.7) / 0.28);
    return static_cast<float>(v < 0 ? -a : a);
  };
  for (size_t i = 0; i < len; ++i) {
    out.left[i] = shape(out.left[i]);
    out.right[i] = shape(out.right[i]);
  }
  return true;
}

}  // namespace audiogen
