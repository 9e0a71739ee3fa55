#include "characters/random.h"

#include "base/clock.h"

void CRandom::Seed(int32_t seed) {
    if (seed > 0) {
        m_nState = seed;
        return;
    }
    uint32_t t = uint32_t(GetCalendarSeconds());
    int32_t q = int32_t(t * t);  // 32-bit, wrapping
    if (q > 0) m_nState = q ^ 0x5EECE66D;
    else if (q < 0) m_nState = (q ^ int32_t(0xDEECE66D)) & 0x7FFFFFFF;
    else m_nState = 0x5EECE66D;
}

int32_t CRandom::Next() {
    int32_t hi = m_nState / 44488;
    int32_t lo = m_nState % 44488;
    int32_t s = 48271 * lo - 3399 * hi;
    if (s < 0) s += 2147483647;
    m_nState = s;
    return s;
}

int32_t CRandom::Range(int32_t n) { return int32_t(double(Next()) / 2147483647.0 * n); }
