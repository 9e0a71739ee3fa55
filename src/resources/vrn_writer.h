// Builds game-data archives ("VRN1") from a list of (path, bytes) entries.
// Output is deterministic: entries are sorted bytewise within their folder,
// directories are written breadth-first, reserved bytes and name terminators
// are zero. An entry is LZ77-compressed only when every 49152-byte chunk
// gets smaller; otherwise it is stored as is.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

struct SVrnInput {
    std::string path;  // inside the archive, backslash-separated, no "root\"
    std::vector<uint8_t> data;
};

enum EVrnCompression { VRN_COMPRESS_AUTO, VRN_COMPRESS_NEVER };

// Builds the archive image. False (with a reason) on an empty path component,
// a name clash between a file and a folder, or a size over 4 GiB.
bool BuildVrnArchive(const std::vector<SVrnInput>& entries, EVrnCompression mode, std::vector<uint8_t>* out,
                     std::string* error);

// Compresses one entry into chunk form (16-bit length + LZ77 block per 49152
// bytes). False when some chunk does not get smaller (or the entry is empty).
bool CompressVrnEntry(const std::vector<uint8_t>& data, std::vector<uint8_t>* out);
