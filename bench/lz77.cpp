// LZ77 block decoding beside zlib's inflate on the same game-like data
// (24-bit sprites on magenta, a dithered 640x480 picture, INI/script text),
// both in 49152-byte chunks as the archive stores them; and opening a 10 MB
// pack and reading every entry.
#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zlib.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <fstream>
#include <string>
#include <vector>

#include "resources/bmp.h"
#include "resources/lz77.h"
#include "resources/vrn_file.h"
#include "resources/vrn_writer.h"

namespace {

using Bytes = std::vector<uint8_t>;

uint32_t g_seed = 12345;
uint32_t Rand() { return g_seed = g_seed * 1664525u + 1013904223u; }

Bytes Sprite(int w, int h, int variant) {
    std::vector<uint32_t> px(size_t(w) * size_t(h), 0xFF00FF);
    const double cx = w / 2.0, cy = h / 2.0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double dx = (x - cx) / (w * 0.3), dy = (y - cy) / (h * 0.45);
            double d = dx * dx + dy * dy;
            if (d > 1.0) continue;
            int shade = int(60 + 120 * (1.0 - d)) + int(Rand() % 6);
            int r = std::min(255, shade + 30 + variant * 7), g = shade / 2 + variant * 5, b = shade / 3;
            px[size_t(y) * size_t(w) + size_t(x)] = uint32_t(r) << 16 | uint32_t(g & 255) << 8 | uint32_t(b);
        }
    return BmpEncode24(px.data(), w, h);
}

Bytes Picture(int w, int h) {
    std::vector<uint32_t> px(size_t(w) * size_t(h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int n = int(Rand() % 4);
            int r = (x * 200 / w + n) & 255, g = (y * 180 / h + n) & 255, b = int(90 + 40 * std::sin(x * 0.05) + n) & 255;
            if (((x / 40) + (y / 40)) % 5 == 0) r = g = b = 30 + n;
            px[size_t(y) * size_t(w) + size_t(x)] = uint32_t(r) << 16 | uint32_t(g) << 8 | uint32_t(b);
        }
    return BmpEncode24(px.data(), w, h);
}

Bytes Text(size_t n) {
    std::string s;
    int i = 0;
    while (s.size() < n) {
        s += "[Button" + std::to_string(i) + "]\r\nx=" + std::to_string(Rand() % 640) + "\r\ny=" +
             std::to_string(Rand() % 480) + "\r\npic=ui/mm_start.bmp\r\ntip=Start a new game in Ashvale\r\n";
        s += "Talk(\"Maren\", \"The wolves came down again last night.\")\r\nAddMission(" + std::to_string(i % 7) + ")\r\n";
        ++i;
    }
    s.resize(n);
    return Bytes(s.begin(), s.end());
}

// The data set: 60 sprites 64x64, 4 pictures 640x480, 200 KB of text.
struct SData {
    Bytes raw;
    std::vector<std::pair<Bytes, uint32_t>> lzChunks;  // stream, output length
    std::vector<std::pair<Bytes, uint32_t>> zChunks;
    size_t lzSize = 0, zSize = 0;
};

const SData& Data() {
    static SData d = [] {
        SData s;
        for (int i = 0; i < 60; ++i) {
            Bytes b = Sprite(64, 64, i % 9);
            s.raw.insert(s.raw.end(), b.begin(), b.end());
        }
        for (int i = 0; i < 4; ++i) {
            Bytes b = Picture(640, 480);
            s.raw.insert(s.raw.end(), b.begin(), b.end());
        }
        Bytes t = Text(200000);
        s.raw.insert(s.raw.end(), t.begin(), t.end());
        CCompressLZ77 codec;
        Bytes tmp(49152 + 8);
        for (size_t pos = 0; pos < s.raw.size(); pos += 49152) {
            const uint32_t n = uint32_t(std::min<size_t>(49152, s.raw.size() - pos));
            std::fill(tmp.begin(), tmp.end(), 0);
            int32_t len = codec.Compress(s.raw.data() + pos, int32_t(n), tmp.data());
            if (len <= 0) {
                std::fprintf(stderr, "chunk does not compress\n");
                std::abort();
            }
            s.lzChunks.emplace_back(Bytes(tmp.begin(), tmp.begin() + len), n);
            s.lzSize += size_t(len);
            uLongf zl = compressBound(n);
            Bytes z(zl);
            compress2(z.data(), &zl, s.raw.data() + pos, n, Z_DEFAULT_COMPRESSION);
            z.resize(zl);
            s.zSize += zl;
            s.zChunks.emplace_back(std::move(z), n);
        }
        return s;
    }();
    return d;
}

void BM_Lz77Decompress(benchmark::State& state) {
    const SData& d = Data();
    CCompressLZ77 codec;
    Bytes out(65536);
    for (auto _ : state) {
        for (const auto& [z, n] : d.lzChunks) {
            codec.DecompressBounded(out.data(), int32_t(n), z.data(), z.size());
            benchmark::DoNotOptimize(out.data());
        }
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(d.raw.size()));
    state.counters["ratio"] = double(d.lzSize) / double(d.raw.size());
}
BENCHMARK(BM_Lz77Decompress)->Unit(benchmark::kMillisecond);

void BM_ZlibInflate(benchmark::State& state) {
    const SData& d = Data();
    Bytes out(65536);
    for (auto _ : state) {
        for (const auto& [z, n] : d.zChunks) {
            uLongf len = n;
            uncompress(out.data(), &len, z.data(), z.size());
            benchmark::DoNotOptimize(out.data());
        }
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(d.raw.size()));
    state.counters["ratio"] = double(d.zSize) / double(d.raw.size());
}
BENCHMARK(BM_ZlibInflate)->Unit(benchmark::kMillisecond);

void BM_Lz77Compress(benchmark::State& state) {
    const SData& d = Data();
    CCompressLZ77 codec;
    Bytes out(49152 + 8);
    for (auto _ : state)
        for (size_t pos = 0; pos < d.raw.size(); pos += 49152)
            benchmark::DoNotOptimize(codec.Compress(d.raw.data() + pos,
                                                    int32_t(std::min<size_t>(49152, d.raw.size() - pos)), out.data()));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(d.raw.size()));
}
BENCHMARK(BM_Lz77Compress)->Unit(benchmark::kMillisecond)->Iterations(2);

// A 10 MB pack of pictures and text; open it and read every entry.
void BM_ArchiveOpenReadAll(benchmark::State& state) {
    static std::string path = [] {
        std::vector<SVrnInput> in;
        size_t total = 0;
        for (int i = 0; total < 10u << 20; ++i) {
            SVrnInput e;
            char name[64];
            if (i % 10 == 9) {
                std::snprintf(name, sizeof name, "screens\\pic%03d.bmp", i);
                e.data = Picture(640, 480);
            } else {
                std::snprintf(name, sizeof name, "role\\%02d\\frame%03d.bmp", i % 12, i);
                e.data = Sprite(96, 96, i % 9);
            }
            e.path = name;
            total += e.data.size();
            in.push_back(std::move(e));
        }
        Bytes img;
        BuildVrnArchive(in, VRN_COMPRESS_AUTO, &img, nullptr);
        static std::string p = "/tmp/ashen_bench_pack_" + std::to_string(getpid()) + ".vrn";
        std::atexit([] { std::remove(p.c_str()); });
        std::ofstream(p, std::ios::binary).write(reinterpret_cast<const char*>(img.data()), std::streamsize(img.size()));
        std::fprintf(stderr, "pack: %zu entries, %zu bytes raw, %zu bytes packed\n", in.size(), total, img.size());
        return p;
    }();
    std::vector<std::string> names;
    {
        CVRN_File v;
        v.Open(path.c_str());
        std::function<void(const SVrnNode&)> walk = [&](const SVrnNode& n) {
            for (const auto& [p, c] : n.children) {
                if (c->IsDir())
                    walk(*c);
                else
                    names.push_back(p.substr(5));
            }
        };
        walk(*v.Root());
    }
    Bytes buf;
    int64_t bytes = 0;
    for (auto _ : state) {
        CVRN_File v;
        v.Open(path.c_str());
        for (const std::string& n : names) {
            v.FindEntry(n.c_str());
            buf.resize(size_t(v.GetSize()));
            v.Read(buf.data(), 0);
            bytes += v.GetSize();
        }
    }
    state.SetBytesProcessed(bytes);
    state.counters["entries"] = double(names.size());
}
BENCHMARK(BM_ArchiveOpenReadAll)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
