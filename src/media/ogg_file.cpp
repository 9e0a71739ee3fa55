// Ogg page walking for the music player.
#include "media/ogg_file.h"

#include <cstring>

#include "base/byte_reader.h"

namespace {

constexpr uint8_t kBeginOfStream = 2;
constexpr size_t kPageHeader = 27;

// Reads one page; false when the bytes there are not a whole, well-formed page.
// body receives the page's body.
bool ReadPage(CByteReader& in, uint8_t* type, const uint8_t** body, size_t* bodySize) {
    if (!in.Expect("OggS", 4, "capture pattern")) return false;
    if (in.ReadU8("version") != 0) return false;
    *type = in.ReadU8("header type");
    in.Skip(8 + 4 + 4 + 4, "granule, serial, sequence and CRC");
    const uint8_t segments = in.ReadU8("segment count");
    const uint8_t* table = in.ReadSpan(segments, "segment table");
    if (!table) return false;
    size_t n = 0;
    for (uint8_t k = 0; k < segments; ++k) n += table[k];
    *body = in.ReadSpan(n, "page body");
    *bodySize = n;
    return *body != nullptr && *type <= 7;
}

}  // namespace

bool IsOggStream(const uint8_t* data, size_t size) { return size >= 4 && std::memcmp(data, "OggS", 4) == 0; }

size_t OggStreamLength(const uint8_t* data, size_t size, std::string* error) {
    auto refuse = [error](const char* why) {
        if (error) *error = why;
        return size_t(0);
    };
    CByteReader in(data, size);
    uint8_t type = 0;
    const uint8_t* body = nullptr;
    size_t bodySize = 0;
    if (size < kPageHeader || !ReadPage(in, &type, &body, &bodySize)) return refuse("no whole Ogg page at the start");
    if (!(type & kBeginOfStream) || bodySize < 7 || std::memcmp(body, "\x01vorbis", 7) != 0)
        return refuse("the first Ogg page does not start a Vorbis stream");
    size_t end = in.Offset();
    // Further pages as long as they are whole and well formed.
    while (in.Remaining() >= kPageHeader) {
        if (!ReadPage(in, &type, &body, &bodySize) || !in.Ok()) break;
        end = in.Offset();
    }
    return end;
}
