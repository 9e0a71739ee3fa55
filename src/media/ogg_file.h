// Ogg pages of music files, walked without decoding: each page is "OggS",
// version 0, a header-type byte, granule, serial, sequence and CRC words, a
// segment count and table, then the body. The music player hands the decoder
// only the pages that are really there, so a damaged file's tail (junk after
// the last page) is never scanned by it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// The largest music file the player reads into memory.
constexpr size_t kMusicMaxBytes = 32u << 20;
// The largest Ogg page: the header, 255 segment sizes, 255 segments of 255 bytes.
constexpr size_t kOggMaxPageBytes = 27 + 255 + 255 * 255;

// True when data begins with an Ogg page.
bool IsOggStream(const uint8_t* data, size_t size);
// The length of the run of whole, well-formed pages at the start of data, or 0
// (with a reason in error) when the first page is not the start of a Vorbis
// stream (a BOS page whose body begins with the Vorbis identification header).
size_t OggStreamLength(const uint8_t* data, size_t size, std::string* error = nullptr);
