// The game's random number generator: Park-Miller "minimal standard" with the
// multiplier 48271 in Schrage's form. Every user makes a fresh generator at the
// moment of use; seeding with 0 or less takes the seed from the calendar clock,
// so rolls within the same second start from the same state.
#pragma once
#include <cstdint>

class CRandom {
public:
    explicit CRandom(int32_t seed = 0) { Seed(seed); }
    void Seed(int32_t seed);
    int32_t Next();
    // Next() / 2147483647.0 * n, truncated toward zero: 0 .. n.
    int32_t Range(int32_t n);
    int32_t State() const { return m_nState; }

private:
    int32_t m_nState = 1;
};
