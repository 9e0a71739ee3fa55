// The block codec of the game-data archive: LZ77 over one block of at most
// 64 KiB, coded as a bit stream (most significant bit first) of literals
// (0 + 8 bits) and matches (1 + gamma-coded length + absolute offset in
// ceil(log2 W) bits, W being the bytes produced so far in the block).
#pragma once
#include <cstddef>
#include <cstdint>

class CCompress {
public:
    virtual ~CCompress() = default;
    // Codes src into dst; dst must hold srcLen + 8 bytes. Returns the coded size,
    // 0 when the result would not be shorter than the source (or the source is
    // empty), -1 when the source is longer than 65536 bytes.
    virtual int32_t Compress(const uint8_t* src, int32_t srcLen, uint8_t* dst) = 0;
    // Produces exactly outLen bytes into dst from the stream src. 1 on success
    // (at once for outLen < 1), 0 when outLen is over 65536 or the stream asks
    // for output that does not exist yet or would run past outLen.
    virtual int32_t Decompress(uint8_t* dst, int32_t outLen, const uint8_t* src) = 0;
};

class CCompressLZ77 : public CCompress {
public:
    static constexpr int32_t kMaxBlock = 65536;

    CCompressLZ77();
    ~CCompressLZ77() override;
    CCompressLZ77(const CCompressLZ77&) = delete;
    CCompressLZ77& operator=(const CCompressLZ77&) = delete;

    int32_t Compress(const uint8_t* src, int32_t srcLen, uint8_t* dst) override;
    // Trusts the stream length (reads only the bytes the tokens need).
    int32_t Decompress(uint8_t* dst, int32_t outLen, const uint8_t* src) override;
    // As Decompress, but the stream is srcLen bytes long: 0 when decoding would
    // need bits beyond it. Used for everything read from files.
    int32_t DecompressBounded(uint8_t* dst, int32_t outLen, const uint8_t* src, size_t srcLen);

    // Bits needed for an offset once w bytes were produced: ceil(log2 w).
    static int OffsetBits(uint32_t w);

private:
    struct SPairNode {
        uint16_t first;
        uint16_t last;
        uint16_t next;
    };

    void IndexPair(int32_t i);
    bool FindMatch(int32_t p, int32_t n, int32_t* length, int32_t* offset) const;
    void PutBits(uint32_t value, int count);

    const uint8_t* m_pWindow = nullptr;
    int32_t m_nWindow = 0;
    uint16_t m_pairHeads[65536];
    SPairNode* m_pNodes = nullptr;  // 65536 nodes, node 0 unused
    uint32_t m_nNextNode = 1;
    uint8_t* m_pOut = nullptr;
    uint32_t m_nBytePos = 0;
    uint32_t m_nBitPos = 0;
};
