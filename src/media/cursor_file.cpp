#include "media/cursor_file.h"

#include <cstring>

#include "base/byte_reader.h"

uint32_t SAniCursor::TotalJiffies() const {
    uint32_t t = 0;
    for (uint32_t j : jiffies) t += j;
    return t;
}

uint32_t SAniCursor::ImageAt(uint32_t ms) const {
    if (sequence.empty()) return 0;
    uint32_t total = TotalJiffies();
    if (total == 0) return sequence[0];
    uint32_t j = (ms * 60 / 1000) % total;
    for (size_t i = 0; i < sequence.size(); ++i) {
        if (j < jiffies[i]) return sequence[i];
        j -= jiffies[i];
    }
    return sequence.back();
}

namespace {

bool Refuse(std::string& error, const char* why) {
    error = why;
    return false;
}

// The DIB of one icon or cursor image: header, palette, colour rows, AND mask.
bool ReadImageBits(CByteReader& bmp, bool isCursor, uint16_t hotX, uint16_t hotY, SCursorImage& out,
                   std::string& error) {
    const uint32_t bytes = uint32_t(bmp.Size());
    CByteReader h = bmp;
    const uint32_t headerSize = h.ReadU32();
    const int32_t w = h.ReadI32(), h2 = h.ReadI32();
    h.Skip(2);
    const uint16_t bits = h.ReadU16();
    const uint32_t compression = h.ReadU32();
    h.Skip(12);
    const uint32_t colours = h.ReadU32();
    if (!h.Ok() || headerSize < 40 || headerSize > bytes || w <= 0 || w > 256 || h2 <= 0 || h2 > 512 || (h2 & 1))
        return Refuse(error, "bad image header");
    if (compression != 0) return Refuse(error, "compressed cursor images are not supported");
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return Refuse(error, "bad bit depth");
    const int32_t height = h2 / 2;
    const size_t paletteCount = bits <= 8 ? (colours ? colours : (1u << bits)) : 0;
    if (paletteCount > 256) return Refuse(error, "bad palette");
    const size_t xorStride = ((size_t(w) * bits + 31) / 32) * 4;
    const size_t andStride = ((size_t(w) + 31) / 32) * 4;
    const size_t xorBytes = xorStride * size_t(height), andBytes = andStride * size_t(height);
    const size_t need = headerSize + paletteCount * 4 + xorBytes + andBytes;
    // 32-bit images may leave the AND mask out.
    if (need > bytes && !(bits == 32 && need - andBytes <= bytes)) return Refuse(error, "image data truncated");
    const bool haveAnd = need <= bytes;

    bmp.Seek(headerSize);
    const uint8_t* palette = bmp.ReadSpan(paletteCount * 4, "palette");
    const uint8_t* xorBits = bmp.ReadSpan(xorBytes, "colour rows");
    const uint8_t* andBits = haveAnd ? bmp.ReadSpan(andBytes, "mask rows") : nullptr;
    if (!bmp.Ok()) return Refuse(error, "image data truncated");

    out.width = w;
    out.height = height;
    out.hotX = isCursor ? hotX : w / 2;
    out.hotY = isCursor ? hotY : height / 2;
    out.argb.assign(size_t(w) * size_t(height), 0);
    bool anyAlpha = false;
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* row = xorBits + xorStride * size_t(height - 1 - y);  // rows are stored bottom-up
        const uint8_t* mask = haveAnd ? andBits + andStride * size_t(height - 1 - y) : nullptr;
        for (int32_t x = 0; x < w; ++x) {
            uint32_t b = 0, g = 0, r = 0, a = 255;
            if (bits == 32) {
                b = row[x * 4];
                g = row[x * 4 + 1];
                r = row[x * 4 + 2];
                a = row[x * 4 + 3];
                anyAlpha = anyAlpha || a != 0;
            } else if (bits == 24) {
                b = row[x * 3];
                g = row[x * 3 + 1];
                r = row[x * 3 + 2];
            } else {
                const size_t bit = size_t(x) * bits;
                uint32_t idx = (row[bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
                if (idx >= paletteCount) idx = 0;
                b = palette[idx * 4];
                g = palette[idx * 4 + 1];
                r = palette[idx * 4 + 2];
            }
            if (bits != 32 && mask && ((mask[x / 8] >> (7 - x % 8)) & 1)) a = 0;
            out.argb[size_t(y) * size_t(w) + size_t(x)] = a << 24 | r << 16 | g << 8 | b;
        }
    }
    // A 32-bit image with an all-zero alpha channel uses its AND mask instead.
    if (bits == 32 && !anyAlpha && haveAnd) {
        for (int32_t y = 0; y < height; ++y) {
            const uint8_t* mask = andBits + andStride * size_t(height - 1 - y);
            for (int32_t x = 0; x < w; ++x) {
                uint32_t& p = out.argb[size_t(y) * size_t(w) + size_t(x)];
                if (!((mask[x / 8] >> (7 - x % 8)) & 1)) p |= 0xFF000000u;
            }
        }
    }
    return true;
}

}  // namespace

bool ParseCursorImage(const uint8_t* data, size_t size, SCursorImage& out, std::string& error) {
    CByteReader in(data, size, "cursor image");
    if (size < 6 + 16) return Refuse(error, "image too short");
    const uint16_t reserved = in.ReadU16(), type = in.ReadU16(), count = in.ReadU16();
    if (reserved != 0 || (type != 1 && type != 2) || count < 1) return Refuse(error, "not an icon or cursor");
    // The first directory entry: size, colours, hot spot (cursors), bytes, offset.
    in.Skip(4);
    const uint16_t hotX = in.ReadU16(), hotY = in.ReadU16();
    const uint32_t bytes = in.ReadU32(), offset = in.ReadU32();
    if (offset > size || bytes > size - offset || bytes < 40) return Refuse(error, "image entry outside the data");
    in.Seek(offset);
    CByteReader bmp = in.Sub(bytes, "image");
    return ReadImageBits(bmp, type == 2, hotX, hotY, out, error);
}

bool ParseAniCursor(const uint8_t* data, size_t size, SAniCursor& out, std::string& error) {
    out = SAniCursor{};
    CByteReader file(data, size, "cursor");
    if (size < 12 || !file.Expect("RIFF", 4)) return Refuse(error, "not a RIFF ACON file");
    const uint32_t riffSize = file.ReadU32();
    if (!file.Expect("ACON", 4)) return Refuse(error, "not a RIFF ACON file");
    // The RIFF size bounds the chunks; a file cut short ends them at its end.
    const size_t body = size - 12;
    CByteReader in = file.Sub(riffSize < 4 ? 0 : (size_t(riffSize) - 4 < body ? size_t(riffSize) - 4 : body));
    uint32_t steps = 0, frames = 0, rate = 0;
    bool haveHeader = false;
    std::vector<uint32_t> rates, seq;
    while (in.Remaining() >= 8) {
        const uint8_t* id = in.ReadSpan(4, "chunk id");
        const uint32_t len = in.ReadU32("chunk size");
        if (len > in.Remaining()) return Refuse(error, "chunk runs past the end of the file");
        CByteReader chunk = in.Sub(len, "chunk");
        // Chunks are padded to an even length (the pad may be missing at the end).
        if ((len & 1) && in.Remaining() > 0) in.Skip(1);
        if (std::memcmp(id, "anih", 4) == 0) {
            if (len < 36) return Refuse(error, "short anih chunk");
            chunk.Skip(4);
            frames = chunk.ReadU32();
            steps = chunk.ReadU32();
            chunk.Skip(16);
            rate = chunk.ReadU32();
            haveHeader = true;
            if (frames == 0 || frames > 1024 || steps == 0 || steps > 4096) return Refuse(error, "bad frame counts");
        } else if (std::memcmp(id, "rate", 4) == 0 || std::memcmp(id, "seq ", 4) == 0) {
            std::vector<uint32_t>& v = id[0] == 'r' ? rates : seq;
            while (chunk.Remaining() >= 4) v.push_back(chunk.ReadU32());
        } else if (std::memcmp(id, "LIST", 4) == 0 && len >= 4 && chunk.Expect("fram", 4)) {
            while (chunk.Remaining() >= 8) {
                const uint8_t* iid = chunk.ReadSpan(4, "frame id");
                const uint32_t ilen = chunk.ReadU32("frame size");
                if (ilen > chunk.Remaining()) return Refuse(error, "frame runs past its list");
                CByteReader image = chunk.Sub(ilen, "frame");
                if ((ilen & 1) && chunk.Remaining() > 0) chunk.Skip(1);
                if (std::memcmp(iid, "icon", 4) == 0) {
                    SCursorImage img;
                    if (!ParseCursorImage(image.ReadSpan(ilen), ilen, img, error)) return false;
                    out.images.push_back(std::move(img));
                }
            }
        }
    }
    if (!haveHeader) return Refuse(error, "no anih chunk");
    if (out.images.size() != frames) return Refuse(error, "frame count does not match the frames found");
    for (uint32_t i = 0; i < steps; ++i) {
        const uint32_t img = i < seq.size() ? seq[i] : (seq.empty() ? i % frames : 0);
        if (img >= frames) return Refuse(error, "sequence names a missing frame");
        out.sequence.push_back(img);
        const uint32_t j = i < rates.size() ? rates[i] : rate;
        out.jiffies.push_back(j ? j : 1);
    }
    return true;
}

bool LoadAniCursor(const std::string& hostPath, SAniCursor& out, std::string& error) {
    std::vector<uint8_t> bytes;
    if (ReadFileBytes(hostPath, kAniCursorMaxBytes, bytes, &error) != EFileRead::Ok) return false;
    if (ParseAniCursor(bytes.data(), bytes.size(), out, error)) return true;
    error = hostPath + ": " + error;
    return false;
}
