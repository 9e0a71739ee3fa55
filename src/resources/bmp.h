// Windows BMP files decoded into 16-bit 5-6-5 pixels. Accepts the layouts a DIB
// copy does: core (OS/2 1.x) and info headers up to V5; 1, 4, 8 bits with a
// palette; 16 bits (5-5-5 or bit fields); 24; 32 (BGRX or bit fields); BI_RGB,
// BI_BITFIELDS, RLE4 and RLE8; bottom-up and top-down rows. Colours convert as
// r>>3, g>>2, b>>3, so magenta RGB(255,0,255) becomes exactly 0xF81F.
// Every header field is checked against the buffer; nothing is read outside it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

struct SBmpInfo {
    int32_t width = 0;
    int32_t height = 0;  // always positive here
    bool topDown = false;
    uint16_t bitCount = 0;
    uint32_t compression = 0;  // 0 RGB, 1 RLE8, 2 RLE4, 3 BITFIELDS, 6 ALPHABITFIELDS
    uint32_t pixelOffset = 0;
    uint32_t headerSize = 0;
};

// Reads and checks the headers (and that the pixel data lies inside the
// buffer for uncompressed layouts). False for anything not decodable.
bool BmpParse(const uint8_t* data, size_t size, SBmpInfo* info);

// Width and height as stored at bytes 18 and 22 of a valid file (height made
// positive). False when the file is not a decodable BMP.
bool BmpGetSize(const uint8_t* data, size_t size, int32_t* width, int32_t* height);

// Decodes the picture with its top-left corner at (x, y) of a 5-6-5 target of
// dstW x dstH pixels (pitch in pixels), clipped to it. Pixels that an RLE
// picture skips keep the target's value. False (target untouched) when the
// file is not decodable; false when an RLE stream is damaged (the rows decoded
// before the damage stay drawn).
bool BmpDecodeTo565(const uint8_t* data, size_t size, uint16_t* dst, int32_t dstW, int32_t dstH, int32_t pitch,
                    int32_t x, int32_t y);

// Writes a bottom-up 24-bit BI_RGB file from 0x00RRGGBB pixels (rows top first).
std::vector<uint8_t> BmpEncode24(const uint32_t* rgb, int32_t width, int32_t height);
