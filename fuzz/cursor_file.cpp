// Animated cursor reader on damaged files, fed as bytes: frames, sequence and
// timing of whatever parses, and the single-image reader on the same bytes.
#include <cstddef>
#include <cstdint>
#include <string>

#include "media/cursor_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SAniCursor ani;
    std::string error;
    if (ParseAniCursor(data, size, ani, error)) {
        if (ani.images.empty() || ani.sequence.size() != ani.jiffies.size()) __builtin_trap();
        for (const SCursorImage& img : ani.images)
            if (img.argb.size() != size_t(img.width) * size_t(img.height)) __builtin_trap();
        for (uint32_t ms : {0u, 17u, 1000u, 123456u})
            if (ani.ImageAt(ms) >= ani.images.size()) __builtin_trap();
    } else if (error.empty()) {
        __builtin_trap();
    }
    SCursorImage image;
    if (ParseCursorImage(data, size, image, error) && image.argb.size() != size_t(image.width) * size_t(image.height))
        __builtin_trap();
    return 0;
}
