// Seeded hash noise: everything the generator paints is a pure function of its
// integer seeds, so two runs give the same bytes.
#pragma once
#include <cmath>
#include <cstdint>

namespace art {

inline uint32_t Hash(uint32_t x) {
    x ^= x >> 16; x *= 0x7feb352dU; x ^= x >> 15; x *= 0x846ca68bU; x ^= x >> 16;
    return x;
}
inline uint32_t Hash3(int32_t a, int32_t b, uint32_t seed) {
    return Hash(uint32_t(a) * 0x9E3779B1U ^ Hash(uint32_t(b) * 0x85EBCA77U ^ Hash(seed)));
}
inline float Rand01(int32_t a, int32_t b, uint32_t seed) {
    return (Hash3(a, b, seed) >> 8) * (1.0f / 16777216.0f);
}

// Small deterministic generator for placing things.
struct Rng {
    uint32_t s;
    explicit Rng(uint32_t seed) : s(Hash(seed + 0x1234567U)) {}
    uint32_t Next() { s = s * 1664525U + 1013904223U; return Hash(s); }
    float F() { return (Next() >> 8) * (1.0f / 16777216.0f); }
    float R(float a, float b) { return a + (b - a) * F(); }
    int I(int a, int b) { return a + int(Next() % uint32_t(b - a + 1)); }
};

inline int WrapI(int v, int p) { int m = v % p; return m < 0 ? m + p : m; }

// Value noise in [0, 1]; with periods px, py > 0 it repeats every px along x and py along y.
inline float VNoise(float x, float y, uint32_t seed, int px = 0, int py = 0) {
    float fx = std::floor(x), fy = std::floor(y);
    int ix = int(fx), iy = int(fy);
    float tx = x - fx, ty = y - fy;
    tx = tx * tx * (3 - 2 * tx); ty = ty * ty * (3 - 2 * ty);
    auto v = [&](int a, int b) {
        if (px > 0) a = WrapI(a, px);
        if (py > 0) b = WrapI(b, py);
        return Rand01(a, b, seed);
    };
    float a = v(ix, iy), b = v(ix + 1, iy), c = v(ix, iy + 1), d = v(ix + 1, iy + 1);
    return (a + (b - a) * tx) + ((c + (d - c) * tx) - (a + (b - a) * tx)) * ty;
}
inline float Fbm(float x, float y, uint32_t seed, int oct = 4, int px = 0, int py = 0) {
    float s = 0, amp = 0.5f, tot = 0;
    for (int i = 0; i < oct; ++i) {
        s += VNoise(x, y, seed + i * 101, px, py) * amp;
        tot += amp;
        x *= 2; y *= 2; px *= 2; py *= 2; amp *= 0.5f;
    }
    return s / tot;
}

// Noise that repeats on the isometric 64 x 32 cell lattice (periods (32, 16) and
// (32, -16)), so every tile of a type joins its neighbours whatever the variant.
// freq: noise cells per cell edge.
inline float IsoNoise(float x, float y, uint32_t seed, int freq, int oct = 3) {
    float a = x / 64.f + y / 32.f, b = x / 64.f - y / 32.f;
    return Fbm(a * freq, b * freq, seed, oct, freq, freq);
}
// A per-pixel random value that repeats on the same lattice.
inline float IsoGrain(int x, int y, uint32_t seed) {
    int k = (y >= 0) ? y / 16 : -((15 - y) / 16);
    int yy = y - 16 * k;
    int xx = WrapI(x - 32 * k, 64);
    return Rand01(xx, yy, seed);
}

}  // namespace art
