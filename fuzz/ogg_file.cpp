// Ogg page walker of the music player on damaged files, fed as bytes: the
// length it gives is a run of whole pages inside the data, and walking that run
// alone gives the same length.
#include <cstddef>
#include <cstdint>
#include <string>

#include "media/ogg_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string error;
    const size_t n = OggStreamLength(data, size, &error);
    if (n > size) __builtin_trap();
    if (n == 0) {
        if (error.empty()) __builtin_trap();
        return 0;
    }
    if (!IsOggStream(data, n) || OggStreamLength(data, n) != n) __builtin_trap();
    return 0;
}
