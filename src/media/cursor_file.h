// Animated cursor files (RIFF "ACON"): the "anih" header, optional "rate" and
// "seq " tables and a "fram" list of icon or cursor images. Parsed (through
// CByteReader) into 32-bit ARGB frames so that the window layer can make SDL
// colour cursors of them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct SCursorImage {
    int32_t width = 0, height = 0;
    int32_t hotX = 0, hotY = 0;
    std::vector<uint32_t> argb;  // width * height, top row first
};

struct SAniCursor {
    std::vector<SCursorImage> images;
    std::vector<uint32_t> sequence;     // image index per step
    std::vector<uint32_t> jiffies;      // duration per step, 1/60 s
    uint32_t TotalJiffies() const;
    // The image shown at a time in milliseconds since the animation started.
    uint32_t ImageAt(uint32_t ms) const;
};

// Parses an animated cursor; false with a reason for anything malformed. Every
// size and offset is checked against the data.
bool ParseAniCursor(const uint8_t* data, size_t size, SAniCursor& out, std::string& error);
// Parses one .cur or .ico image (its first entry).
bool ParseCursorImage(const uint8_t* data, size_t size, SCursorImage& out, std::string& error);

// The largest cursor file read: 1024 frames of 256 x 256 would be far more.
constexpr size_t kAniCursorMaxBytes = 4u << 20;
// Reads and parses an animated cursor file (host path); the error names the file.
bool LoadAniCursor(const std::string& hostPath, SAniCursor& out, std::string& error);
