#include "base/state_json.h"

std::string StateText(const char* bytes, size_t maxBytes) {
    std::string out;
    if (!bytes) return out;
    for (size_t i = 0; i < maxBytes && bytes[i]; ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x80) {
            out += char(b);
        } else {
            out += char(0xC0 | (b >> 6));
            out += char(0x80 | (b & 0x3F));
        }
    }
    return out;
}
