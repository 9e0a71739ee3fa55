// Checks the generated sound effects and music: every name the data refers to exists,
// WAV headers are what the effect loader expects (it plays all but the last 764 bytes
// of the samples and refuses files with a RIFF size below 800), music decodes, lasts
// 60-120 s and loops without a click, and the generator is deterministic.
#include <SDL.h>
#include <SDL_mixer.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::string kStage = std::string(ASHEN_GAME_DIR) + "/../stage/loose";
const std::string kTool = std::string(ASHEN_BIN_DIR) + "/audiogen";
const std::string kSource = ASHEN_SOURCE_DIR;

std::vector<uint8_t> ReadAll(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
}

uint32_t Le32(const std::vector<uint8_t>& b, size_t o) {
  return b[o] | (b[o + 1] << 8) | (b[o + 2] << 16) | (static_cast<uint32_t>(b[o + 3]) << 24);
}
uint16_t Le16(const std::vector<uint8_t>& b, size_t o) { return static_cast<uint16_t>(b[o] | (b[o + 1] << 8)); }
bool Tag(const std::vector<uint8_t>& b, size_t o, const char* t) { return std::equal(t, t + 4, b.begin() + o); }

// File names with the given extension named in the asset table (the contract between
// generators and data), collected from every line of the section that starts with heading.
std::set<std::string> AssetNames(const std::string& heading, const std::string& ext) {
  std::ifstream f(kSource + "/content/ASSETS.md");
  std::set<std::string> names;
  std::string line;
  bool in = false;
  while (std::getline(f, line)) {
    if (line.rfind("## ", 0) == 0) in = line.rfind(heading, 0) == 0;
    if (!in) continue;
    std::string word;
    for (char c : line + " ") {
      if (std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.') {
        word += c;
      } else {
        if (word.size() > ext.size() && word.compare(word.size() - ext.size(), ext.size(), ext) == 0)
          names.insert(word);
        word.clear();
      }
    }
  }
  return names;
}

int RunTool(const std::string& args) {
  std::string cmd = "\"" + kTool + "\" " + args + " >/dev/null 2>&1";
  return std::system(cmd.c_str());
}

fs::path TempDir(const std::string& name) {
  fs::path p = fs::current_path() / ("ashen_audio_" + name + "_" + std::to_string(::getpid()));
  fs::remove_all(p);
  fs::create_directories(p);
  return p;
}

}  // namespace

TEST(AudioAssets, EveryNamedSoundAndPieceIsGenerated) {
  std::set<std::string> wavs = AssetNames("## sound/", ".wav");
  std::set<std::string> skillWavs = AssetNames("## skill pack", ".wav");
  std::set<std::string> oggs = AssetNames("## music/", ".ogg");
  // The table must have been read at all, or the test would pass on nothing.
  ASSERT_GE(wavs.size(), 21u);
  ASSERT_EQ(skillWavs.size(), 9u);
  ASSERT_GE(oggs.size(), 9u);
  wavs.insert(skillWavs.begin(), skillWavs.end());
  for (const std::string& w : wavs) EXPECT_TRUE(fs::exists(kStage + "/sound/" + w)) << w;
  for (const std::string& o : oggs) EXPECT_TRUE(fs::exists(kStage + "/music/" + o)) << o;
  // Every recipe exists for a reason: no effect that nothing plays.
  for (const auto& e : fs::directory_iterator(kSource + "/content/audio/sfx"))
    EXPECT_TRUE(wavs.count(e.path().stem().string() + ".wav")) << "unused recipe " << e.path();
}

TEST(AudioAssets, EffectsHaveCanonicalHeadersAndSilentTails) {
  std::map<std::vector<uint8_t>, std::string> seen;
  int files = 0;
  for (const auto& e : fs::directory_iterator(kStage + "/sound")) {
    if (e.path().extension() != ".wav") continue;
    ++files;
    const std::string name = e.path().filename().string();
    std::vector<uint8_t> b = ReadAll(e.path().string());
    ASSERT_GE(b.size(), 44u + 800u) << name;
    EXPECT_TRUE(Tag(b, 0, "RIFF") && Tag(b, 8, "WAVE") && Tag(b, 12, "fmt ") && Tag(b, 36, "data")) << name;
    const uint32_t riff = Le32(b, 4);
    EXPECT_EQ(riff, b.size() - 8) << name;
    EXPECT_GE(riff, 800u) << name;
    EXPECT_EQ(Le32(b, 16), 16u) << name;
    EXPECT_EQ(Le16(b, 20), 1) << name;  // PCM
    const uint16_t channels = Le16(b, 22), bits = Le16(b, 34), align = Le16(b, 32);
    const uint32_t rate = Le32(b, 24);
    EXPECT_EQ(channels, 1) << name;
    EXPECT_TRUE(rate == 22050 || rate == 44100) << name;
    EXPECT_EQ(bits, 16) << name;
    EXPECT_EQ(align, channels * 2) << name;
    EXPECT_EQ(Le32(b, 28), rate * align) << name;
    EXPECT_EQ(Le32(b, 40), b.size() - 44) << name;
    ASSERT_EQ((b.size() - 44) % 2, 0u) << name;

    // The tail the loader never plays must be silence, at least 800 bytes of it.
    size_t zeros = 0;
    while (zeros < b.size() - 44 && b[b.size() - 1 - zeros] == 0) ++zeros;
    EXPECT_GE(zeros, 800u) << name;

    // What is played (offset 44 up to R - 800 bytes) is clearly audible, its loudest
    // 50 ms within a few dB of the other effects, and it never clips.
    const size_t played = riff - 800;
    std::vector<double> samples;
    int peak = 0;
    for (size_t o = 44; o + 1 < 44 + played; o += 2) {
      int s = static_cast<int16_t>(Le16(b, o));
      peak = std::max(peak, std::abs(s));
      samples.push_back(s / 32768.0);
    }
    const size_t win = rate / 20;
    ASSERT_GT(samples.size(), win) << name;
    double e = 0, best = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
      e += samples[i] * samples[i];
      if (i >= win) e -= samples[i - win] * samples[i - win];
      best = std::max(best, e);
    }
    const double loudDb = 10 * std::log10(std::max(best, 1e-12) / win);
    const bool button = name.rfind("button_", 0) == 0;  // the menu's ticks stay soft
    EXPECT_GT(loudDb, button ? -24.0 : -16.0) << name;
    EXPECT_LT(loudDb, -8.0) << name;
    EXPECT_LT(20 * std::log10(std::max(peak, 1) / 32768.0), -1.0) << name;
    // Effects are short: a long one would keep the single effect channel busy.
    EXPECT_LT((b.size() - 44) / 2.0 / rate, 3.0) << name;

    auto [it, fresh] = seen.emplace(b, name);
    EXPECT_TRUE(fresh) << name << " is byte-identical to " << it->second;
  }
  EXPECT_GE(files, 30);
}

class MusicDecode : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    ASSERT_EQ(SDL_Init(SDL_INIT_AUDIO), 0) << SDL_GetError();
    ASSERT_NE(Mix_Init(MIX_INIT_OGG) & MIX_INIT_OGG, 0) << Mix_GetError();
    ASSERT_EQ(Mix_OpenAudio(44100, AUDIO_S16SYS, 2, 2048), 0) << Mix_GetError();
  }
  void TearDown() override {
    Mix_CloseAudio();
    Mix_Quit();
    SDL_Quit();
  }
};

TEST_F(MusicDecode, PiecesPlayLastOneToTwoMinutesAndLoopWithoutClicks) {
  int pieces = 0;
  for (const auto& e : fs::directory_iterator(kStage + "/music")) {
    if (e.path().extension() != ".ogg") continue;
    ++pieces;
    const std::string path = e.path().string();
    const std::string name = e.path().filename().string();

    // The media player opens music with Mix_LoadMUS.
    Mix_Music* mus = Mix_LoadMUS(path.c_str());
    ASSERT_NE(mus, nullptr) << name << ": " << Mix_GetError();
    EXPECT_EQ(Mix_GetMusicType(mus), MUS_OGG) << name;
    const double duration = Mix_MusicDuration(mus);
    EXPECT_GE(duration, 60.0) << name;
    EXPECT_LE(duration, 120.0) << name;
    Mix_FreeMusic(mus);

    // Fully decoded (to the device format, 16-bit stereo), for level and seam checks.
    Mix_Chunk* chunk = Mix_LoadWAV(path.c_str());
    ASSERT_NE(chunk, nullptr) << name << ": " << Mix_GetError();
    const int16_t* s = reinterpret_cast<const int16_t*>(chunk->abuf);
    const size_t frames = chunk->alen / 4;
    EXPECT_NEAR(frames / 44100.0, duration, 0.05) << name;
    ASSERT_GT(frames, 44100u);

    double sum = 0;
    int peak = 0;
    for (size_t i = 0; i < frames; ++i) {
      for (int c = 0; c < 2; ++c) {
        int v = s[2 * i + c];
        sum += static_cast<double>(v) * v;
        peak = std::max(peak, std::abs(v));
      }
    }
    const double rmsDb = 20 * std::log10(std::sqrt(sum / (2.0 * frames)) / 32768.0);
    EXPECT_GT(rmsDb, -30.0) << name << " is nearly silent";
    EXPECT_LT(rmsDb, -12.0) << name << " is too loud for background music";
    EXPECT_LT(peak, 32700) << name << " clips";

    // Quiet stretches longer than two seconds would sound like the music stopped.
    size_t quietRun = 0, longestQuiet = 0;
    for (size_t i = 0; i < frames; ++i) {
      bool quiet = std::abs(s[2 * i]) < 40 && std::abs(s[2 * i + 1]) < 40;
      quietRun = quiet ? quietRun + 1 : 0;
      longestQuiet = std::max(longestQuiet, quietRun);
    }
    EXPECT_LT(longestQuiet, 2u * 44100u) << name;

    // The wrap from the last frame to the first continues the waveform: the first frame
    // strays from the straight-line continuation of the last two no more than any frame of
    // the closing stretch strays from its own (plus a floor of -48 dBFS, inaudible).
    for (int c = 0; c < 2; ++c) {
      auto at = [&](size_t i) { return static_cast<int>(s[2 * i + c]); };
      int worst = 0;
      for (size_t i = frames - 2048; i + 1 < frames; ++i)
        worst = std::max(worst, std::abs(at(i + 1) - (2 * at(i) - at(i - 1))));
      const int seam = std::abs(at(0) - (2 * at(frames - 1) - at(frames - 2)));
      EXPECT_LE(seam, worst * 3 / 2 + 128) << name << " channel " << c << " clicks at the loop point";
    }
    // And the start is not a fade-in from silence, nor the end a fade-out to it: a loop
    // that faded would dip audibly on every repeat.
    auto windowRms = [&](size_t from) {
      double w = 0;
      for (size_t i = from; i < from + 4410; ++i) w += static_cast<double>(s[2 * i]) * s[2 * i];
      return std::sqrt(w / 4410);
    };
    const double overall = std::sqrt(sum / (2.0 * frames));
    EXPECT_GT(windowRms(0), overall * 0.1) << name << " fades in";
    EXPECT_GT(windowRms(frames - 4410), overall * 0.1) << name << " fades out";
    Mix_FreeChunk(chunk);
  }
  EXPECT_GE(pieces, 9);
}

TEST(AudioTool, SameRecipesGiveTheSameBytes) {
  fs::path a = TempDir("det_a"), b = TempDir("det_b");
  ASSERT_EQ(RunTool("sfx \"" + kSource + "/content/audio/sfx\" \"" + a.string() + "\""), 0);
  ASSERT_EQ(RunTool("sfx \"" + kSource + "/content/audio/sfx\" \"" + b.string() + "\""), 0);
  const std::string piece = kSource + "/content/audio/music/forest.mus";
  ASSERT_EQ(RunTool("music \"" + piece + "\" \"" + (a / "forest.ogg").string() + "\""), 0);
  ASSERT_EQ(RunTool("music \"" + piece + "\" \"" + (b / "forest.ogg").string() + "\""), 0);
  int compared = 0;
  for (const auto& e : fs::directory_iterator(a)) {
    const std::string n = e.path().filename().string();
    std::vector<uint8_t> x = ReadAll(e.path().string());
    EXPECT_FALSE(x.empty()) << n;
    EXPECT_TRUE(x == ReadAll((b / n).string())) << n << " differs between two runs";
    // The build's staged copy came from the same recipes.
    const std::string staged = kStage + (n.size() > 4 && n.substr(n.size() - 4) == ".ogg" ? "/music/" : "/sound/") + n;
    EXPECT_TRUE(x == ReadAll(staged)) << n << " differs from the staged file";
    ++compared;
  }
  EXPECT_EQ(compared, 31);
  fs::remove_all(a);
  fs::remove_all(b);
}

TEST(AudioTool, BadRecipesFailWithoutWritingOutput) {
  fs::path dir = TempDir("bad");
  auto write = [&](const std::string& name, const std::string& text) {
    std::ofstream(dir / name) << text;
    return (dir / name).string();
  };
  const std::string out = (dir / "out.ogg").string();
  // A piece whose form lasts 4 bars at 120 bpm (8 s) is refused: pieces run 60-120 s.
  std::string shortPiece = write("short.mus",
                                 "tempo = 120\nform = A\n[section A]\nchords = i iv\nbars_per_chord = 2\n"
                                 "[part p]\ntype = pad\ninstrument = pad\n");
  EXPECT_NE(RunTool("music \"" + shortPiece + "\" \"" + out + "\""), 0);
  EXPECT_FALSE(fs::exists(out));
  // Typos in keys, unknown instruments and unknown sections of the form are errors.
  const std::string body = "tempo = 60\nform = A A A A\n[section A]\nchords = i VII VI VII\n"
                           "bars_per_chord = 1\n";
  std::string typo = write("typo.mus", body + "[part p]\ntype = pad\ninstrument = pad\ndesnity = 0.3\n");
  EXPECT_NE(RunTool("music \"" + typo + "\" \"" + out + "\""), 0);
  std::string inst = write("inst.mus", body + "[part p]\ntype = pad\ninstrument = kazoo\n");
  EXPECT_NE(RunTool("music \"" + inst + "\" \"" + out + "\""), 0);
  std::string form = write("form.mus", "tempo = 60\nform = A B\n[section A]\nchords = i\n[part p]\ntype = pad\n"
                                       "instrument = pad\n");
  EXPECT_NE(RunTool("music \"" + form + "\" \"" + out + "\""), 0);
  EXPECT_FALSE(fs::exists(out));
  // The same body with a valid part renders (so the failures above are the faults named).
  std::string good = write("good.mus", body + "[part p]\ntype = pad\ninstrument = pad\n");
  EXPECT_EQ(RunTool("music \"" + good + "\" \"" + out + "\""), 0);
  EXPECT_TRUE(fs::exists(out));

  // Effects: one bad recipe stops the run.
  fs::path sfx = dir / "sfx";
  fs::create_directories(sfx);
  std::ofstream(sfx / "a.sfx") << "[layer]\nwave = sine\nfreq = 440\ndecay = 0.1\n";
  std::ofstream(sfx / "b.sfx") << "[layer]\nwave = organ\n";
  EXPECT_NE(RunTool("sfx \"" + sfx.string() + "\" \"" + (dir / "wav").string() + "\""), 0);
  std::ofstream(sfx / "b.sfx") << "reverb = 0.2\n";  // no layer at all
  EXPECT_NE(RunTool("sfx \"" + sfx.string() + "\" \"" + (dir / "wav").string() + "\""), 0);
  fs::remove(sfx / "b.sfx");
  EXPECT_EQ(RunTool("sfx \"" + sfx.string() + "\" \"" + (dir / "wav").string() + "\""), 0);
  EXPECT_TRUE(fs::exists(dir / "wav" / "a.wav"));
  fs::remove_all(dir);
}
