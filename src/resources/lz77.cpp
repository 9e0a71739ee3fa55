// LZ77 block codec of the game-data archive.
#include "resources/lz77.h"

#include <cstring>

namespace {

inline int FloorLog2(uint32_t x) { return 31 - __builtin_clz(x); }

// Reads the stream most significant bit first through a 64-bit window. In
// bounded mode, bytes past the end read as zero and the caller checks the
// number of bits consumed at the end; in trusting mode it reads only the
// bytes that the bits asked for need.
template <bool Bounded>
struct SBitReader {
    const uint8_t* src;
    size_t len;
    size_t pos = 0;       // next byte to load
    uint64_t buf = 0;     // loaded bits, left aligned
    int count = 0;        // loaded bits
    uint64_t consumed = 0;

    void Refill(int need) {
        if constexpr (Bounded) {
            if (count > 56) return;
            if (pos + 8 <= len) {
                uint64_t v;
                std::memcpy(&v, src + pos, 8);
                v = __builtin_bswap64(v);
                buf |= v >> count;
                pos += size_t(63 - count) >> 3;
                count |= 56;
                return;
            }
            while (count <= 56) {
                uint64_t b = pos < len ? src[pos] : 0;
                buf |= b << (56 - count);
                ++pos;
                count += 8;
            }
        } else {
            while (count < need) {
                buf |= uint64_t(src[pos++]) << (56 - count);
                count += 8;
            }
        }
    }
    // n from 0 to 32.
    uint32_t Get(int n) {
        if (n == 0) return 0;
        if (count < n) Refill(n);
        uint32_t v = uint32_t(buf >> (64 - n));
        buf <<= n;
        count -= n;
        consumed += uint64_t(n);
        return v;
    }
    uint32_t Bit() { return Get(1); }
};

template <bool Bounded>
int32_t DecodeBlock(uint8_t* dst, int32_t outLen, const uint8_t* src, size_t srcLen) {
    if (outLen > CCompressLZ77::kMaxBlock) return 0;
    if (outLen < 1) return 1;
    SBitReader<Bounded> in{src, srcLen};
    const uint32_t m = uint32_t(outLen);
    uint32_t w = 0;
    while (w < m) {
        if (in.Bit() == 0) {
            dst[w++] = uint8_t(in.Get(8));
            continue;
        }
        int q = 0;
        while (in.Bit() != 0) {
            if (++q > 16) return 0;  // no length of a 64 KiB block needs this
        }
        uint32_t length = q == 0 ? 2 : (1u << q) + in.Get(q) + 1;
        uint32_t offset = in.Get(CCompressLZ77::OffsetBits(w));
        if (w == 0 || offset >= w || length > m - w) return 0;
        if (offset + length <= w) {
            std::memcpy(dst + w, dst + offset, length);
        } else {
            // Overlapping copy: runs forward, repeating the period w - offset.
            uint8_t* d = dst + w;
            const uint8_t* s = dst + offset;
            for (uint32_t k = 0; k < length; ++k) d[k] = s[k];
        }
        w += length;
    }
    if constexpr (Bounded) {
        if (in.consumed > uint64_t(srcLen) * 8) return 0;
    }
    return 1;
}

}  // namespace

CCompressLZ77::CCompressLZ77() : m_pNodes(new SPairNode[65536]) { std::memset(m_pairHeads, 0, sizeof m_pairHeads); }

CCompressLZ77::~CCompressLZ77() { delete[] m_pNodes; }

int CCompressLZ77::OffsetBits(uint32_t w) { return w <= 1 ? 0 : 32 - __builtin_clz(w - 1); }

void CCompressLZ77::PutBits(uint32_t value, int count) {
    for (int i = count - 1; i >= 0; --i) {
        if (m_nBitPos == 0) m_pOut[m_nBytePos] = 0;
        if ((value >> i) & 1u) m_pOut[m_nBytePos] |= uint8_t(0x80u >> m_nBitPos);
        if (++m_nBitPos == 8) {
            m_nBitPos = 0;
            ++m_nBytePos;
        }
    }
}

// Pair chains: each node holds a position where a byte pair starts; a run of
// one repeated byte stays one node whose last position follows the run.
void CCompressLZ77::IndexPair(int32_t i) {
    const uint8_t a = m_pWindow[i], b = m_pWindow[i + 1];
    const uint32_t pair = uint32_t(a) << 8 | b;
    uint16_t head = m_pairHeads[pair];
    if (a == b && head != 0 && m_pNodes[head].last == uint16_t(i - 1)) {
        m_pNodes[head].last = uint16_t(i);
        return;
    }
    uint16_t node = uint16_t(m_nNextNode++);
    m_pNodes[node].first = uint16_t(i);
    m_pNodes[node].last = a == b ? uint16_t(i) : 0;
    m_pNodes[node].next = head;
    m_pairHeads[pair] = node;
}

// Longest match at p over the whole chain of the pair at p; ties keep the
// newest node. Skipping candidates that cannot beat the best (their byte at
// the best length differs, or their limit is too small) keeps the result
// identical to a full comparison of every node.
bool CCompressLZ77::FindMatch(int32_t p, int32_t n, int32_t* length, int32_t* offset) const {
    if (p >= n - 1) return false;
    const uint8_t* s = m_pWindow;
    uint16_t node = m_pairHeads[uint32_t(s[p]) << 8 | s[p + 1]];
    if (node == 0) return false;
    int32_t best = 2, bestOff = m_pNodes[node].first;
    const int32_t tail = n - p;
    for (; node != 0; node = m_pNodes[node].next) {
        const int32_t o = m_pNodes[node].first;
        int32_t limit = m_nWindow - o;
        if (limit > tail) limit = tail;
        if (limit <= best) continue;
        if (s[p + best] != s[o + best]) continue;
        int32_t len = 2;
        while (len < limit && s[p + len] == s[o + len]) ++len;
        if (len > best) {
            best = len;
            bestOff = o;
            if (best == tail) break;  // nothing later can be longer
        }
    }
    *length = best;
    *offset = bestOff;
    return true;
}

int32_t CCompressLZ77::Compress(const uint8_t* src, int32_t srcLen, uint8_t* dst) {
    if (srcLen > kMaxBlock) return -1;
    if (srcLen <= 0) return 0;
    m_pWindow = src;
    m_nWindow = 0;
    m_pOut = dst;
    m_nBytePos = 0;
    m_nBitPos = 0;
    m_nNextNode = 1;
    std::memset(m_pairHeads, 0, sizeof m_pairHeads);
    const int32_t n = srcLen;
    int32_t p = 0;
    while (p < n) {
        if (m_nBytePos >= uint32_t(n)) return 0;
        int32_t len = 0, off = 0;
        if (FindMatch(p, n, &len, &off)) {
            PutBits(1, 1);
            const uint32_t x = uint32_t(len - 1);
            const int q = FloorLog2(x);
            if (q == 0) {
                PutBits(0, 1);
            } else {
                PutBits((1u << q) - 1, q);
                PutBits(0, 1);
                PutBits(x - (1u << q), q);
            }
            PutBits(uint32_t(off), OffsetBits(uint32_t(m_nWindow)));
            for (int32_t k = 0; k < len; ++k) {
                ++m_nWindow;
                if (m_nWindow > 1) IndexPair(m_nWindow - 2);
            }
            p += len;
        } else {
            PutBits(0, 1);
            PutBits(src[p], 8);
            ++m_nWindow;
            if (m_nWindow > 1) IndexPair(m_nWindow - 2);
            ++p;
        }
    }
    uint32_t size = m_nBytePos + (m_nBitPos != 0 ? 1 : 0);
    return size < uint32_t(n) ? int32_t(size) : 0;
}

int32_t CCompressLZ77::Decompress(uint8_t* dst, int32_t outLen, const uint8_t* src) {
    m_pWindow = dst;
    m_nWindow = 0;
    return DecodeBlock<false>(dst, outLen, src, 0);
}

int32_t CCompressLZ77::DecompressBounded(uint8_t* dst, int32_t outLen, const uint8_t* src, size_t srcLen) {
    m_pWindow = dst;
    m_nWindow = 0;
    return DecodeBlock<true>(dst, outLen, src, srcLen);
}
