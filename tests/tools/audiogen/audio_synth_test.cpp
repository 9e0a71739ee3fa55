// Unit checks of the audio generator's building blocks: recipe reading, harmony,
// instrument tuning, WAV bytes, effect rendering and the seamless loop of a piece.
// The generator's sources are compiled into this test directly (it is a tool, not a
// library); the Vorbis writer is left out and covered through the tool's output.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tools/audiogen/composer.cpp"
#include "tools/audiogen/instruments.cpp"
#include "tools/audiogen/music.cpp"
#include "tools/audiogen/recipe.cpp"
#include "tools/audiogen/sfx_synth.cpp"
#include "tools/audiogen/wav_writer.cpp"

using namespace audiogen;

namespace {

// Fundamental of a steady stretch, from the best autocorrelation lag with a parabolic
// refinement (sub-sample accuracy).
double MeasureHz(const std::vector<float>& s, size_t from, size_t count, int rate, double guessHz) {
  const int lo = static_cast<int>(rate / (guessHz * 1.3)), hi = static_cast<int>(rate / (guessHz / 1.3)) + 2;
  std::vector<double> r(hi + 2, 0.0);
  for (int lag = lo - 1; lag <= hi + 1; ++lag)
    for (size_t i = from; i < from + count; ++i) r[lag] += static_cast<double>(s[i]) * s[i + lag];
  int best = lo;
  for (int lag = lo; lag <= hi; ++lag)
    if (r[lag] > r[best]) best = lag;
  double a = r[best - 1], b = r[best], c = r[best + 1];
  double shift = 0.5 * (a - c) / (a - 2 * b + c);
  return rate / (best + shift);
}

double Cents(double measured, double wanted) { return 1200 * std::log2(measured / wanted); }

bool ParseText(const std::string& text, Recipe& r, std::string& err) {
  r.source = "test";
  return r.Parse(text, err);
}

}  // namespace

TEST(AudioRecipe, ParsesSectionsAndRejectsMalformedLines) {
  Recipe r;
  std::string err;
  ASSERT_TRUE(ParseText("# top\nseed = 4   # trailing comment\n[layer]\nwave = noise\n[part lead voice]\n"
                        "type = melody\n",
                        r, err))
      << err;
  ASSERT_EQ(r.Sections().size(), 3u);
  EXPECT_EQ(r.Sections()[0].kind, "");
  EXPECT_EQ(r.Sections()[0].entries[0].value, "4");
  EXPECT_EQ(r.Sections()[1].kind, "layer");
  EXPECT_EQ(r.Sections()[2].kind, "part");
  EXPECT_EQ(r.Sections()[2].name, "lead voice");
  EXPECT_EQ(r.Sections()[2].line, 5);

  EXPECT_FALSE(ParseText("a = 1\na = 2\n", r, err));
  EXPECT_NE(err.find(":2:"), std::string::npos) << err;
  EXPECT_FALSE(ParseText("[layer\n", r, err));
  EXPECT_FALSE(ParseText("[]\n", r, err));
  EXPECT_FALSE(ParseText("just words\n", r, err));
  EXPECT_FALSE(ParseText(" = 3\n", r, err));

  // Typed reads: numbers must be whole numbers, unknown keys and bad values are reported.
  ASSERT_TRUE(ParseText("freq = 0.5x\nrepeat = 2.5\nlist = 1, 2 | 3\nextra = 1\n", r, err));
  SectionReader rd(r.Sections()[0], "test");
  EXPECT_EQ(rd.Numbers("list"), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(rd.Number("freq", 7), 7);
  EXPECT_FALSE(rd.Finish(err));
  EXPECT_NE(err.find("freq"), std::string::npos) << err;
  SectionReader rd2(r.Sections()[0], "test");
  rd2.Numbers("list");
  rd2.Text("freq", "");
  EXPECT_EQ(rd2.Int("repeat", 9), 9);
  std::string err2;
  EXPECT_FALSE(rd2.Finish(err2));
  SectionReader rd3(r.Sections()[0], "test");
  rd3.Text("freq", "");
  rd3.Text("repeat", "");
  rd3.Text("list", "");
  std::string err3;
  EXPECT_FALSE(rd3.Finish(err3));
  EXPECT_NE(err3.find("extra"), std::string::npos) << err3;
  double v = 0;
  EXPECT_FALSE(ParseNumber("nan", v));
  EXPECT_FALSE(ParseNumber("", v));
  EXPECT_TRUE(ParseNumber("-2.5e1", v));
  EXPECT_EQ(v, -25);
}

TEST(AudioHarmony, ChordsScalesAndTones) {
  Chord c;
  ASSERT_TRUE(ParseChord("iv", c));  // not "i" followed by "v"
  EXPECT_EQ(c.degree, 3);
  ASSERT_TRUE(ParseChord("VII", c));
  EXPECT_EQ(c.degree, 6);
  ASSERT_TRUE(ParseChord("vi", c));
  EXPECT_EQ(c.degree, 5);
  ASSERT_TRUE(ParseChord("V7^", c));
  EXPECT_TRUE(c.degree == 4 && c.seventh && c.major && !c.sus);
  ASSERT_TRUE(ParseChord("iisus", c));
  EXPECT_TRUE(c.degree == 1 && c.sus);
  EXPECT_FALSE(ParseChord("viii", c));
  EXPECT_FALSE(ParseChord("x", c));
  EXPECT_FALSE(ParseChord("Vb", c));

  const std::vector<int> major = {0, 2, 4, 5, 7, 9, 11}, dorian = {0, 2, 3, 5, 7, 9, 10},
                         minor = {0, 2, 3, 5, 7, 8, 10};
  EXPECT_EQ(ScaleSemitone(major, 7), 12);
  EXPECT_EQ(ScaleSemitone(major, -1), -1);
  EXPECT_EQ(ScaleSemitone(major, -8), -13);
  EXPECT_EQ(ScaleSemitone(major, 16), 28);

  ParseChord("i", c);
  EXPECT_EQ(ChordSemitones(dorian, c), (std::vector<int>{0, 3, 7}));
  ParseChord("IV", c);
  EXPECT_EQ(ChordSemitones(dorian, c), (std::vector<int>{5, 9, 12}));  // dorian's major IV
  ParseChord("V^", c);
  EXPECT_EQ(ChordSemitones(minor, c), (std::vector<int>{7, 11, 14}));  // raised leading tone
  ParseChord("ii7", c);
  EXPECT_EQ(ChordSemitones(major, c), (std::vector<int>{2, 5, 9, 12}));
  ParseChord("Isus", c);
  EXPECT_EQ(ChordSemitones(major, c), (std::vector<int>{0, 5, 7}));

  const std::vector<int> triad = {0, 4, 7};
  EXPECT_EQ(ChordTone(triad, 0), 0);
  EXPECT_EQ(ChordTone(triad, 3), 12);
  EXPECT_EQ(ChordTone(triad, 5), 19);
  EXPECT_EQ(ChordTone(triad, -1), -5);
  EXPECT_EQ(ChordTone(triad, -3), -12);
}

TEST(AudioInstruments, PitchedInstrumentsAreInTune) {
  const int rate = 44100;
  Instruments inst(rate);
  Rng rng(5);
  std::vector<float> out;
  // Karplus-Strong strings carry a fractional delay; without it high notes go sharp or
  // flat by tens of cents. Within 4 cents over the range the pieces use.
  struct Case {
    const char* name;
    double hz;
  } cases[] = {{"harp", 130.81}, {"harp", 440}, {"harp", 1318.5}, {"lute", 196}, {"lute", 987.77},
               {"pluckbass", 55}, {"flute", 880}, {"pad", 220}, {"bass", 73.42}, {"strings", 329.63}};
  for (const Case& c : cases) {
    NoteRequest n;
    n.instrument = c.name;
    n.hz = c.hz;
    n.length = 1.5;
    inst.Render(n, rng, out);
    ASSERT_GT(out.size(), static_cast<size_t>(rate * 0.9)) << c.name;
    // Skip the attack (and the vibrato of winds, which averages out over the window).
    double hz = MeasureHz(out, rate / 4, rate / 2, rate, c.hz);
    EXPECT_NEAR(Cents(hz, c.hz), 0.0, 4.0) << c.name << " at " << c.hz << " Hz measured " << hz;
    float peak = 0;
    for (float s : out) peak = std::max(peak, std::fabs(s));
    EXPECT_GT(peak, 0.05f) << c.name;
    EXPECT_LT(peak, 2.0f) << c.name;
    // Notes fade to nothing at their end, so summing them never leaves a step.
    EXPECT_LT(std::fabs(out.back()), 1e-3) << c.name;
  }
  EXPECT_TRUE(inst.Known("bell"));
  EXPECT_FALSE(inst.Known("kazoo"));
}

TEST(AudioWav, HeaderBytesAndSampleConversion) {
  std::vector<int16_t> pcm = ToPcm16({0.0, 1.5, -1.5, 0.5, -0.5, 1.0 / 32767 * 0.49});
  EXPECT_EQ(pcm, (std::vector<int16_t>{0, 32767, -32768, 16384, -16384, 0}));
  std::vector<uint8_t> b = BuildWav({1, -2, 258}, 1, 22050);
  ASSERT_EQ(b.size(), 50u);
  const uint8_t head[44] = {'R', 'I', 'F', 'F', 42, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ',
                            16,  0,   0,   0,   1,  0, 1, 0, 0x22, 0x56, 0, 0, 0x44, 0xAC, 0, 0,
                            2,   0,   16,  0,   'd', 'a', 't', 'a', 6, 0, 0, 0};
  EXPECT_TRUE(std::equal(head, head + 44, b.begin()));
  EXPECT_EQ(b[44], 1);
  EXPECT_EQ(b[46], 0xFE);
  EXPECT_EQ(b[47], 0xFF);
  EXPECT_EQ(b[48], 2);
  EXPECT_EQ(b[49], 1);
  std::vector<uint8_t> st = BuildWav({1, 2, 3, 4}, 2, 44100);
  EXPECT_EQ(st[22], 2);
  EXPECT_EQ(st[28] | (st[29] << 8) | (st[30] << 16), 44100 * 4);  // byte rate
  EXPECT_EQ(st[32], 4);                                          // block align
}

TEST(AudioSfx, RendersNormalisedEffectsWithSilentTails) {
  Recipe r;
  std::string err;
  ASSERT_TRUE(ParseText("peak_db = -6\nreverb = 0.3\nseed = 3\n"
                        "[layer]\nwave = sine\nfreq = 1000\nfreq_end = 500\ndecay = 0.2\nrepeat = 3\n"
                        "every = 0.05\njitter = 0.5\npitch_jitter = 2\n"
                        "[layer]\nwave = noise\nat = 0.1\nbp = 2000\nbp_end = 4000\ndecay = 0.1\n",
                        r, err));
  SfxRecipe s;
  ASSERT_TRUE(ReadSfxRecipe(r, s, err)) << err;
  ASSERT_EQ(s.layers.size(), 2u);
  EXPECT_EQ(s.layers[1].freq, 0);  // noise is white unless told otherwise
  std::vector<uint8_t> wav = SfxToWav(s, 2048);
  std::vector<uint8_t> again = SfxToWav(s, 2048);
  EXPECT_EQ(wav, again);
  ASSERT_GT(wav.size(), 44u + 2048u);
  for (size_t i = wav.size() - 2048; i < wav.size(); ++i) ASSERT_EQ(wav[i], 0) << i;
  int peak = 0;
  for (size_t o = 44; o + 1 < wav.size(); o += 2) peak = std::max(peak, std::abs(static_cast<int16_t>(wav[o] | (wav[o + 1] << 8))));
  EXPECT_NEAR(peak, 32767 * DbToGain(-6), 2);
  // The first sample starts from silence (no click as the effect begins).
  EXPECT_EQ(wav[44] | (wav[45] << 8), 0);
  // The jitter comes from the seed: another seed moves the repeats.
  s.seed = 4;
  EXPECT_NE(SfxToWav(s, 2048), wav);

  // Loudness levelling: a lone click and a long tone reach the same short-term level;
  // the click's peak is held under the ceiling by the soft knee.
  ASSERT_TRUE(ParseText("peak_db = -3\nloudness_db = -14\n[layer]\nwave = sine\nfreq = 300\nhold = 0.3\n"
                        "decay = 0.1\n",
                        r, err));
  ASSERT_TRUE(ReadSfxRecipe(r, s, err)) << err;
  std::vector<double> tone = RenderSfx(s);
  ASSERT_TRUE(ParseText("peak_db = -3\nloudness_db = -14\n[layer]\nwave = noise\nhp = 3000\ndecay = 0.004\n"
                        "[layer]\nwave = sine\nat = 0.2\nfreq = 200\ndecay = 0.3\ngain = 0.05\n",
                        r, err));
  ASSERT_TRUE(ReadSfxRecipe(r, s, err)) << err;
  std::vector<double> click = RenderSfx(s);
  EXPECT_NEAR(20 * std::log10(ShortTermRms(tone, 44100)), -14, 0.3);
  double clickPeak = 0;
  for (double v : click) clickPeak = std::max(clickPeak, std::fabs(v));
  EXPECT_LT(clickPeak, DbToGain(-3));
  EXPECT_GT(clickPeak, DbToGain(-3) * 0.6);  // pushed into the knee, not left quiet
  EXPECT_GT(20 * std::log10(ShortTermRms(click, 44100)), -24);
  std::vector<double> shortOne(100, 0.5);
  EXPECT_NEAR(ShortTermRms(shortOne, 44100), 0.5, 1e-9);  // shorter than the window

  // Values outside their ranges are refused with the line of the layer.
  const char* bad[] = {"[layer]\nwave = pluck\nfreq = 5\n",       "[layer]\ndecay = 0\n",
                       "loudness_db = 3\n[layer]\n",               "peak_db = 0\n[layer]\n",
                       "[layer]\nrepeat = 0\n",                    "[layer]\nwave = hum\n",
                       "room = 1.5\n[layer]\n",                    "[lyr]\n",
                       "[layer]\nfreq = 30000\n",                  "seed = 2\n",
                       "[layer]\nrepeat = 100\nevery = 1\n",      "[layer]\nevery = 1e6\n"};
  for (const char* text : bad) {
    ASSERT_TRUE(ParseText(text, r, err)) << text;
    EXPECT_FALSE(ReadSfxRecipe(r, s, err)) << text;
  }
}

TEST(AudioComposer, NotesFollowScaleChordsPatternsAndForm) {
  Recipe r;
  std::string err;
  ASSERT_TRUE(ParseText("tempo = 120\nmeter = 4\nkey = D\nscale = dorian\nseed = 5\nform = A B A\n"
                        "[section A]\nchords = i VII VI VII\nbars_per_chord = 2\n"
                        "[section B]\nchords = III iv\nbars_per_chord = 1\n"
                        "[part tune]\ntype = melody\ninstrument = flute\noctave = 5\ndensity = 0.6\nplay = 2 3\n"
                        "humanize = 0\n"
                        "[part arp]\ntype = arp\ninstrument = harp\noctave = 3\npattern = 0 1 2 - . 3\nstep = 0.5\n"
                        "humanize = 0\n"
                        "[part kit]\ntype = drums\nstep = 1\nkick = x . o .\nhumanize = 0\n",
                        r, err));
  MusicRecipe m;
  ASSERT_TRUE(ReadMusicRecipe(r, m, err)) << err;
  EXPECT_DOUBLE_EQ(m.TotalBeats(), (8 + 2 + 8) * 4);
  std::vector<Note> notes = Compose(m);
  const double spb = 0.5, sectionBStart = 32 * spb, sectionA2Start = 40 * spb, end = 72 * spb;
  const std::vector<int> dorian = {0, 2, 3, 5, 7, 9, 10};
  int melody = 0, arp = 0, kicks = 0, soft = 0, ties = 0;
  for (const Note& n : notes) {
    ASSERT_GE(n.start, 0);
    ASSERT_LT(n.start, end);
    if (n.part == 0) {
      ++melody;
      EXPECT_GE(n.start, sectionBStart) << "melody plays only at form positions 2 and 3";
      int pc = ((static_cast<int>(n.midi) - 2) % 12 + 12) % 12;  // relative to D
      EXPECT_NE(std::find(dorian.begin(), dorian.end(), pc), dorian.end()) << n.midi;
    } else if (n.part == 1) {
      ++arp;
      // Each arp note is a tone of the chord sounding at its time.
      double t = n.start;
      Chord c;
      if (t < sectionBStart) ParseChord(std::vector<std::string>{"i", "VII", "VI", "VII"}[static_cast<int>(t / 4)], c);
      else if (t < sectionA2Start) ParseChord(t < sectionBStart + 2 ? "III" : "iv", c);
      else ParseChord(std::vector<std::string>{"i", "VII", "VI", "VII"}[static_cast<int>((t - sectionA2Start) / 4)], c);
      bool found = false;
      for (int tone : ChordSemitones(dorian, c))
        if (((static_cast<int>(n.midi) - 2 - tone) % 12 + 12) % 12 == 0) found = true;
      EXPECT_TRUE(found) << "arp note " << n.midi << " at " << t;
      if (std::fabs(n.length - 2 * spb * 0.5) < 1e-9) ++ties;  // "2 -" holds two steps
      EXPECT_LE(n.midi, 12 * 4 + 2 + 19);
    } else {
      if (n.velocity > 0.8) ++kicks;
      else ++soft;
    }
  }
  // A pattern of 6 steps restarting with each chord: a 2-bar chord has 16 steps,
  // 0 1 2 - . 3 0 1 2 - . 3 0 1 2 - (11 notes); a 1-bar chord 0 1 2 - . 3 0 1 (6 notes).
  EXPECT_EQ(arp, 8 * 11 + 2 * 6);
  EXPECT_EQ(ties, 8 * 3 + 2 * 1);
  EXPECT_EQ(kicks, 18);
  EXPECT_EQ(soft, 18);
  EXPECT_GT(melody, 8);

  // The same recipe composes the same notes; another seed another tune.
  std::vector<Note> again = Compose(m);
  ASSERT_EQ(again.size(), notes.size());
  for (size_t i = 0; i < notes.size(); ++i) EXPECT_EQ(again[i].midi, notes[i].midi);
  m.seed = 6;
  std::vector<Note> other = Compose(m);
  bool differs = other.size() != notes.size();
  for (size_t i = 0; !differs && i < notes.size(); ++i) differs = other[i].midi != notes[i].midi;
  EXPECT_TRUE(differs);

  const char* bad[] = {"form = A\n[section A]\nchords = i\n[part p]\ntype = arp\ninstrument = harp\n",
                       "form = A\n[section A]\nchords = i\n[part p]\ntype = arp\ninstrument = harp\npattern = 0 x\n",
                       "form = A\n[section A]\nchords = q\n[part p]\ntype = pad\ninstrument = pad\n",
                       "key = H\nform = A\n[section A]\nchords = i\n[part p]\ntype = pad\ninstrument = pad\n",
                       "form = A\n[section A]\nchords = i\n[part p]\ntype = drums\n",
                       "form = A\n[section A]\nchords = i\n[section A]\nchords = v\n[part p]\ntype = pad\ninstrument = pad\n",
                       "form = A\n[section A]\nchords = i\n",
                       "form = A\n[section A]\nchords = i\n[part p]\ntype = arp\ninstrument = harp\npattern = 0\n"
                       "step = 0.001\n"};
  for (const char* text : bad) {
    ASSERT_TRUE(ParseText(text, r, err)) << text;
    EXPECT_FALSE(ReadMusicRecipe(r, m, err)) << text;
  }
}

TEST(AudioMusic, NotesRunningPastTheEndWrapIntoTheStart) {
  // One harp note near the end of each 4-beat bar at 60 bpm: the last one rings past
  // the loop's end, so the first second must hold its tail, joined without a step.
  Recipe r;
  std::string err;
  ASSERT_TRUE(ParseText("tempo = 60\nmeter = 4\nkey = A\nscale = minor\nreverb = 0\nform = A\n"
                        "[section A]\nchords = i i i i i i i i i i i i i i i i\n"
                        "[part p]\ntype = arp\ninstrument = harp\noctave = 4\npattern = . . . 0\nhumanize = 0\n",
                        r, err));
  MusicRecipe m;
  ASSERT_TRUE(ReadMusicRecipe(r, m, err)) << err;
  StereoBuffer buf;
  ASSERT_TRUE(RenderMusic(m, buf, err)) << err;
  const size_t len = buf.left.size();
  ASSERT_EQ(len, 64u * 44100u);
  auto rms = [&](double from, double to) {
    double s = 0;
    size_t a = static_cast<size_t>(from * 44100), b = static_cast<size_t>(to * 44100);
    for (size_t i = a; i < b; ++i) s += buf.left[i] * buf.left[i];
    return std::sqrt(s / (b - a));
  };
  // Nothing starts before 3 s, yet the opening rings: the tail of the note at 63 s.
  EXPECT_GT(rms(0.0, 0.5), 0.02 * rms(3.0, 4.0));
  // Just before each note, the previous one (rung 4 s earlier, cut after 2.8 s) is over.
  EXPECT_LT(rms(2.9, 2.99), 1e-4);
  double maxStep = 0;
  for (size_t i = 1; i < len; ++i) maxStep = std::max(maxStep, static_cast<double>(std::fabs(buf.left[i] - buf.left[i - 1])));
  EXPECT_LE(std::fabs(buf.left[0] - buf.left[len - 1]), maxStep);
  EXPECT_GT(std::fabs(buf.left[0]) + std::fabs(buf.left[1]), 0.0);
  // The mix is levelled to the recipe's loudness.
  double s = 0;
  for (size_t i = 0; i < len; ++i) s += buf.left[i] * buf.left[i] + buf.right[i] * buf.right[i];
  EXPECT_NEAR(20 * std::log10(std::sqrt(s / (2.0 * len))), m.rmsDb, 1.0);
}
