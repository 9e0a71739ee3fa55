#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "res_test_util.h"
#include "resources/lz77.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Compress(const Bytes& src, int32_t* result = nullptr) {
    CCompressLZ77 c;
    Bytes out(src.size() + 8, 0);
    int32_t n = c.Compress(src.data(), int32_t(src.size()), out.data());
    if (result) *result = n;
    out.resize(n > 0 ? size_t(n) : 0);
    return out;
}

// A plain transcription of the coder's rules (full chain walk, every node
// extended, no shortcuts), to check the optimised coder byte for byte.
Bytes ReferenceCompress(const Bytes& s) {
    const int n = int(s.size());
    std::vector<int> head(65536, 0);
    struct Node { int first, last, next; };
    std::vector<Node> nodes(1);
    std::vector<bool> bits;
    auto put = [&](uint32_t v, int k) {
        for (int i = k - 1; i >= 0; --i) bits.push_back((v >> i) & 1);
    };
    auto obits = [](int w) { int k = 0; while ((1 << k) < w) ++k; return k; };
    int w = 0;
    auto index = [&](int i) {
        int pair = s[i] << 8 | s[i + 1];
        int h = head[pair];
        if (s[i] == s[i + 1] && h != 0 && nodes[h].last == i - 1) { nodes[h].last = i; return; }
        nodes.push_back({i, s[i] == s[i + 1] ? i : 0, h});
        head[pair] = int(nodes.size() - 1);
    };
    int p = 0;
    while (p < n) {
        if (int(bits.size() / 8) >= n) return {};
        int bestLen = 0, bestOff = 0;
        if (p < n - 1 && head[s[p] << 8 | s[p + 1]] != 0) {
            int node = head[s[p] << 8 | s[p + 1]];
            bestLen = 2;
            bestOff = nodes[node].first;
            for (; node; node = nodes[node].next) {
                int o = nodes[node].first;
                int limit = std::min(w - o, n - p);
                int len = 2;
                if (limit > 2)
                    while (len < limit && s[p + len] == s[o + len]) ++len;
                if (len > bestLen) { bestLen = len; bestOff = o; }
            }
        }
        if (bestLen) {
            put(1, 1);
            int x = bestLen - 1, q = 0;
            while ((2 << q) <= x) ++q;
            if (q == 0) put(0, 1);
            else { put((1u << q) - 1, q); put(0, 1); put(uint32_t(x - (1 << q)), q); }
            put(uint32_t(bestOff), obits(w));
            for (int k = 0; k < bestLen; ++k) { ++w; if (w > 1) index(w - 2); }
            p += bestLen;
        } else {
            put(0, 1);
            put(s[p], 8);
            ++w;
            if (w > 1) index(w - 2);
            ++p;
        }
    }
    Bytes out((bits.size() + 7) / 8, 0);
    for (size_t i = 0; i < bits.size(); ++i)
        if (bits[i]) out[i / 8] |= uint8_t(0x80 >> (i % 8));
    if (out.size() >= size_t(n)) return {};
    return out;
}

TEST(Lz77, KnownVectors) {
    const char* abc = "abcabcabc";
    EXPECT_EQ(Compress(Bytes(abc, abc + 9)), (Bytes{0x30, 0x98, 0x8C, 0x78, 0x63}));
    // Two literals, then matches of 2, 4 and 8 at offset 0 (offset widths 1, 2, 3 bits).
    EXPECT_EQ(Compress(Bytes(16, 'a')), (Bytes{0x30, 0x98, 0x66, 0x9D, 0x80}));

    int32_t r = 0;
    Compress(Bytes{42}, &r);
    EXPECT_EQ(r, 0);  // one byte cannot get shorter
    Compress(Bytes{}, &r);
    EXPECT_EQ(r, 0);
    Compress(Bytes{1, 2, 3, 4, 5, 6, 7, 8}, &r);
    EXPECT_EQ(r, 0);  // nothing repeats: nine bits a byte

    CCompressLZ77 c;
    Bytes big(65537, 7), out(65537 + 8);
    EXPECT_EQ(c.Compress(big.data(), 65537, out.data()), -1);
    int32_t n = c.Compress(big.data(), 65536, out.data());
    ASSERT_GT(n, 0);
    Bytes back(65536, 0);
    EXPECT_EQ(c.Decompress(back.data(), 65536, out.data()), 1);
    EXPECT_EQ(back, Bytes(65536, 7));
}

TEST(Lz77, DecompressLimits) {
    CCompressLZ77 c;
    Bytes dst(65537, 0xEE);
    Bytes stream(16, 0);
    EXPECT_EQ(c.Decompress(dst.data(), 65537, stream.data()), 0);
    EXPECT_EQ(dst, Bytes(65537, 0xEE));  // nothing written
    EXPECT_EQ(c.Decompress(dst.data(), 0, nullptr), 1);
    EXPECT_EQ(c.Decompress(dst.data(), -5, nullptr), 1);
    EXPECT_EQ(c.DecompressBounded(dst.data(), 0, nullptr, 0), 1);

    // A match before any output, an offset at W, a match past the end.
    Bytes matchFirst{0x80, 0x00};  // 1, length 2, no offset bits
    EXPECT_EQ(c.DecompressBounded(dst.data(), 4, matchFirst.data(), matchFirst.size()), 0);
    // literal 'a' (0 01100001), then match len 2 with 0 offset bits at W=1 -> "aaa"
    Bytes ok{0x30, 0xC0};
    EXPECT_EQ(c.DecompressBounded(dst.data(), 3, ok.data(), ok.size()), 1);
    EXPECT_EQ(0, std::memcmp(dst.data(), "aaa", 3));
    // Same stream asked for 2 bytes: the match would run past the output.
    EXPECT_EQ(c.DecompressBounded(dst.data(), 2, ok.data(), ok.size()), 0);
    // 0 'a' 0 'b' 0 'c', then a match of 2 whose 2-bit offset is 3 = W.
    Bytes badOff{0x30, 0x98, 0x8C, 0x76};
    EXPECT_EQ(c.DecompressBounded(dst.data(), 5, badOff.data(), badOff.size()), 0);
    // A stream cut short: the bounded decoder refuses, rather than reading on.
    Bytes abc = Compress(Bytes{'a', 'b', 'c', 'a', 'b', 'c', 'a', 'b', 'c'});
    EXPECT_EQ(c.DecompressBounded(dst.data(), 9, abc.data(), abc.size() - 1), 0);
    EXPECT_EQ(c.DecompressBounded(dst.data(), 9, abc.data(), abc.size()), 1);
    // A length code longer than any block allows.
    Bytes ones(8, 0xFF);
    EXPECT_EQ(c.DecompressBounded(dst.data(), 100, ones.data(), ones.size()), 0);
}

TEST(Lz77, MatchesReferenceCoderAndRoundTrips) {
    std::mt19937 rng(1234);
    std::vector<Bytes> inputs;
    inputs.push_back(restest::SpriteLikeBytes(49152, 3));
    inputs.push_back(restest::SpriteLikeBytes(65536, 9));
    std::string text;
    while (text.size() < 30000) text += "[FlashWindow1]\r\npic=ui/splash1.bmp\r\ntime=" + std::to_string(rng() % 5000) + "\r\n";
    inputs.emplace_back(text.begin(), text.end());
    for (int k = 0; k < 40; ++k) {
        // Small alphabets make long chains, runs and overlapping matches.
        Bytes b(1 + rng() % 3000);
        const uint32_t alphabet = 1 + rng() % 4;
        for (auto& x : b) x = uint8_t(rng() % alphabet);
        inputs.push_back(b);
    }
    Bytes noise(5000);
    for (auto& x : noise) x = uint8_t(rng());
    inputs.push_back(noise);

    for (const Bytes& in : inputs) {
        int32_t r = 0;
        Bytes z = Compress(in, &r);
        Bytes ref = ReferenceCompress(in);
        ASSERT_EQ(z, ref) << "size " << in.size();
        if (r == 0) continue;
        EXPECT_LT(size_t(r), in.size());
        CCompressLZ77 d;
        Bytes back(in.size(), 0);
        ASSERT_EQ(d.DecompressBounded(back.data(), int32_t(in.size()), z.data(), z.size()), 1);
        EXPECT_EQ(back, in);
        Bytes back2(in.size(), 0);
        ASSERT_EQ(d.Decompress(back2.data(), int32_t(in.size()), z.data()), 1);
        EXPECT_EQ(back2, in);
    }
    // One coder object serves many blocks: no state leaks between them.
    CCompressLZ77 c;
    Bytes out(inputs[0].size() + 8), again(inputs[0].size() + 8);
    int32_t a = c.Compress(inputs[0].data(), int32_t(inputs[0].size()), out.data());
    c.Compress(inputs[2].data(), int32_t(inputs[2].size()), again.data());
    int32_t b = c.Compress(inputs[0].data(), int32_t(inputs[0].size()), again.data());
    EXPECT_EQ(a, b);
    EXPECT_EQ(0, std::memcmp(out.data(), again.data(), size_t(a)));
}

TEST(Lz77, OffsetWidths) {
    EXPECT_EQ(CCompressLZ77::OffsetBits(1), 0);
    EXPECT_EQ(CCompressLZ77::OffsetBits(2), 1);
    EXPECT_EQ(CCompressLZ77::OffsetBits(3), 2);
    EXPECT_EQ(CCompressLZ77::OffsetBits(4), 2);
    EXPECT_EQ(CCompressLZ77::OffsetBits(5), 3);
    EXPECT_EQ(CCompressLZ77::OffsetBits(65536), 16);
    EXPECT_EQ(CCompressLZ77::OffsetBits(65535), 16);
}

}  // namespace
