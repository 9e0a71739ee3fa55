// audiogen: synthesises the game's sound effects and music from the recipes.
//
//   audiogen sfx <recipe dir> <out dir>                every <name>.sfx -> <out dir>/<name>.wav
//   audiogen music <recipe.mus> <out.ogg> [--wav f]    one looping piece (optionally also as WAV)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "music.h"
#include "recipe.h"
#include "sfx_synth.h"
#include "wav_writer.h"

namespace fs = std::filesystem;
using namespace audiogen;

namespace {

// Effects end with this much silence: the game's loader leaves the last part of every
// file unplayed and refuses very short files.
constexpr int kTrailingSilenceBytes = 2048;

int Fail(const std::string& msg) {
  std::fprintf(stderr, "audiogen: %s\n", msg.c_str());
  return 1;
}

int RunSfx(const std::string& dir, const std::string& outDir) {
  std::error_code ec;
  fs::create_directories(outDir, ec);
  std::vector<fs::path> files;
  for (const auto& e : fs::directory_iterator(dir, ec))
    if (e.path().extension() == ".sfx") files.push_back(e.path());
  if (ec) return Fail("cannot read " + dir);
  if (files.empty()) return Fail("no .sfx recipes in " + dir);
  std::sort(files.begin(), files.end());
  size_t bytes = 0;
  for (const fs::path& f : files) {
    Recipe recipe;
    SfxRecipe sfx;
    std::string error;
    if (!recipe.Load(f.string(), error) || !ReadSfxRecipe(recipe, sfx, error)) return Fail(error);
    std::vector<uint8_t> wav = SfxToWav(sfx, kTrailingSilenceBytes);
    if (!WriteFile((fs::path(outDir) / (f.stem().string() + ".wav")).string(), wav, error)) return Fail(error);
    bytes += wav.size();
  }
  std::printf("audiogen: %zu effects, %zu bytes\n", files.size(), bytes);
  return 0;
}

int RunMusic(const std::string& recipePath, const std::string& outPath, const std::string& wavPath) {
  auto t0 = std::chrono::steady_clock::now();
  Recipe recipe;
  MusicRecipe m;
  std::string error;
  if (!recipe.Load(recipePath, error) || !ReadMusicRecipe(recipe, m, error)) return Fail(error);
  const double seconds = m.TotalBeats() * m.BeatSeconds();
  if (seconds < 60 || seconds > 120)
    return Fail(recipePath + ": the form lasts " + std::to_string(seconds) + " s, outside 60..120 s");
  StereoBuffer buf;
  buf.rate = 44100;
  if (!RenderMusic(m, buf, error)) return Fail(recipePath + ": " + error);
  auto t1 = std::chrono::steady_clock::now();
  std::vector<uint8_t> ogg;
  std::string title = fs::path(recipePath).stem().string();
  if (!EncodeVorbis(buf, m.quality, title, ogg, error)) return Fail(recipePath + ": " + error);
  auto t2 = std::chrono::steady_clock::now();
  fs::path out(outPath);
  std::error_code ec;
  if (out.has_parent_path()) fs::create_directories(out.parent_path(), ec);
  if (!WriteFile(outPath, ogg, error)) return Fail(error);
  if (!wavPath.empty()) {
    std::vector<double> inter(buf.left.size() * 2);
    for (size_t i = 0; i < buf.left.size(); ++i) {
      inter[2 * i] = buf.left[i];
      inter[2 * i + 1] = buf.right[i];
    }
    if (!WriteFile(wavPath, BuildWav(ToPcm16(inter), 2, buf.rate), error)) return Fail(error);
  }
  auto ms = [](auto a, auto b) { return std::chrono::duration_cast<std::chrono::milliseconds>(b - a).count(); };
  std::printf("audiogen: %s %.1f s, %zu bytes (render %lld ms, encode %lld ms)\n", title.c_str(), seconds,
              ogg.size(), static_cast<long long>(ms(t0, t1)), static_cast<long long>(ms(t1, t2)));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc >= 4 && std::strcmp(argv[1], "sfx") == 0) return RunSfx(argv[2], argv[3]);
  if (argc >= 4 && std::strcmp(argv[1], "music") == 0) {
    std::string wav;
    for (int i = 4; i + 1 < argc; i += 2)
      if (std::strcmp(argv[i], "--wav") == 0) wav = argv[i + 1];
    return RunMusic(argv[2], argv[3], wav);
  }
  std::fprintf(stderr,
               "usage: audiogen sfx <recipe dir> <out dir>\n"
               "       audiogen music <recipe.mus> <out.ogg> [--wav <out.wav>]\n");
  return 2;
}
