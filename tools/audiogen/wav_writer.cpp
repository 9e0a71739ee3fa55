#include "wav_writer.h"

#include <cmath>
#include <cstdio>

namespace audiogen {

namespace {
void Put32(std::vector<uint8_t>& b, uint32_t v) {
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<uint8_t>(v >> (8 * i)));
}
void Put16(std::vector<uint8_t>& b, uint16_t v) {
  b.push_back(static_cast<uint8_t>(v));
  b.push_back(static_cast<uint8_t>(v >> 8));
}
void PutTag(std::vector<uint8_t>& b, const char* tag) {
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<uint8_t>(tag[i]));
}
}  // namespace

std::vector<int16_t> ToPcm16(const std::vector<double>& samples) {
  std::vector<int16_t> out(samples.size());
  for (size_t i = 0; i < samples.size(); ++i) {
    double v = std::lround(samples[i] * 32767.0);
    if (v > 32767) v = 32767;
    if (v < -32768) v = -32768;
    out[i] = static_cast<int16_t>(v);
  }
  return out;
}

std::vector<uint8_t> BuildWav(const std::vector<int16_t>& samples, int channels, int rate) {
  const uint32_t dataBytes = static_cast<uint32_t>(samples.size() * 2);
  std::vector<uint8_t> b;
  b.reserve(44 + dataBytes);
  PutTag(b, "RIFF");
  Put32(b, 36 + dataBytes);
  PutTag(b, "WAVE");
  PutTag(b, "fmt ");
  Put32(b, 16);
  Put16(b, 1);  // PCM
  Put16(b, static_cast<uint16_t>(channels));
  Put32(b, static_cast<uint32_t>(rate));
  Put32(b, static_cast<uint32_t>(rate * channels * 2));
  Put16(b, static_cast<uint16_t>(channels * 2));
  Put16(b, 16);
  PutTag(b, "data");
  Put32(b, dataBytes);
  for (int16_t s : samples) Put16(b, static_cast<uint16_t>(s));
  return b;
}

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes, std::string& error) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) {
    error = "cannot write " + path;
    return false;
  }
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  ok = (std::fclose(f) == 0) && ok;
  if (!ok) error = "short write on " + path;
  return ok;
}

}  // namespace audiogen
