// Animated cursor files: frames, hot spots, timing, and damaged files.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/bytes.h"
#include "media/cursor_file.h"

namespace {

using testbytes::Append16;
using testbytes::Append32;

// A 4 x 2 cursor: 24-bit colours with an AND mask, or 32-bit with alpha.
std::vector<uint8_t> MakeCursor(int bits, uint16_t hotX, uint16_t hotY, uint8_t red) {
    const int w = 4, h = 2;
    std::vector<uint8_t> img;
    Append32(img, 40);
    Append32(img, w);
    Append32(img, h * 2);
    Append16(img, 1);
    Append16(img, uint16_t(bits));
    for (int i = 0; i < 6; ++i) Append32(img, 0);
    for (int y = 0; y < h; ++y) {  // bottom-up: the first stored row is the lowest
        for (int x = 0; x < w; ++x) {
            img.push_back(uint8_t(10 * x));  // blue
            img.push_back(uint8_t(y));       // green
            img.push_back(red);
            if (bits == 32) img.push_back(x == 0 ? 0 : 255);
        }
        // 4 pixels of 3 or 4 bytes: already a multiple of 4 bytes per row.
    }
    // AND mask rows (4 bytes each): the last pixel of every row is transparent.
    for (int y = 0; y < h; ++y) {
        img.push_back(0x10);
        img.insert(img.end(), 3, 0);
    }
    std::vector<uint8_t> cur;
    Append16(cur, 0);
    Append16(cur, 2);
    Append16(cur, 1);
    cur.push_back(w);
    cur.push_back(h);
    cur.push_back(0);
    cur.push_back(0);
    Append16(cur, hotX);
    Append16(cur, hotY);
    Append32(cur, uint32_t(img.size()));
    Append32(cur, 22);
    cur.insert(cur.end(), img.begin(), img.end());
    return cur;
}

void Chunk(std::vector<uint8_t>& v, const char* id, const std::vector<uint8_t>& body) {
    v.insert(v.end(), id, id + 4);
    Append32(v, uint32_t(body.size()));
    v.insert(v.end(), body.begin(), body.end());
    if (body.size() & 1) v.push_back(0);
}

std::vector<uint8_t> MakeAni(uint32_t frames, uint32_t steps, const std::vector<uint32_t>& seq,
                             const std::vector<uint32_t>& rate, const std::vector<std::vector<uint8_t>>& images) {
    std::vector<uint8_t> anih;
    for (uint32_t x : {36u, frames, steps, 0u, 0u, 0u, 0u, 6u, 1u}) Append32(anih, x);
    std::vector<uint8_t> body = {'A', 'C', 'O', 'N'};
    Chunk(body, "anih", anih);
    if (!rate.empty()) {
        std::vector<uint8_t> r;
        for (uint32_t x : rate) Append32(r, x);
        Chunk(body, "rate", r);
    }
    if (!seq.empty()) {
        std::vector<uint8_t> s;
        for (uint32_t x : seq) Append32(s, x);
        Chunk(body, "seq ", s);
    }
    std::vector<uint8_t> list = {'f', 'r', 'a', 'm'};
    for (auto& i : images) Chunk(list, "icon", i);
    Chunk(body, "LIST", list);
    std::vector<uint8_t> file = {'R', 'I', 'F', 'F'};
    Append32(file, uint32_t(body.size()));
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

}  // namespace

TEST(AniCursor, FramesHotSpotsMasksAndTiming) {
    auto file = MakeAni(2, 3, {0, 1, 0}, {6, 12, 3}, {MakeCursor(24, 1, 0, 200), MakeCursor(32, 3, 1, 90)});
    SAniCursor ani;
    std::string err;
    ASSERT_TRUE(ParseAniCursor(file.data(), file.size(), ani, err)) << err;
    ASSERT_EQ(ani.images.size(), 2u);
    const SCursorImage& a = ani.images[0];
    EXPECT_EQ(a.width, 4);
    EXPECT_EQ(a.height, 2);
    EXPECT_EQ(a.hotX, 1);
    EXPECT_EQ(a.hotY, 0);
    // Top row first: the stored second row (green 1) is the top row.
    EXPECT_EQ(a.argb[0], 0xFFC80100u);
    EXPECT_EQ(a.argb[3] >> 24, 0u);          // AND mask bit: transparent
    EXPECT_EQ(a.argb[4 + 2], 0xFFC80014u);   // bottom row, x = 2
    const SCursorImage& b = ani.images[1];
    EXPECT_EQ(b.hotX, 3);
    EXPECT_EQ(b.argb[0] >> 24, 0u);          // its own alpha
    EXPECT_EQ(b.argb[1] >> 24, 255u);
    // Steps: image 0 for 6 jiffies (100 ms), image 1 for 12 (200 ms), image 0 for 3.
    EXPECT_EQ(ani.TotalJiffies(), 21u);
    EXPECT_EQ(ani.ImageAt(0), 0u);
    EXPECT_EQ(ani.ImageAt(99), 0u);
    EXPECT_EQ(ani.ImageAt(101), 1u);
    EXPECT_EQ(ani.ImageAt(299), 1u);
    EXPECT_EQ(ani.ImageAt(310), 0u);
    EXPECT_EQ(ani.ImageAt(350 + 101), 1u);  // wraps after 350 ms
}

TEST(AniCursor, DefaultsWithoutRateOrSequence) {
    auto file = MakeAni(2, 2, {}, {}, {MakeCursor(24, 0, 0, 1), MakeCursor(24, 0, 0, 2)});
    SAniCursor ani;
    std::string err;
    ASSERT_TRUE(ParseAniCursor(file.data(), file.size(), ani, err)) << err;
    EXPECT_EQ(ani.sequence, (std::vector<uint32_t>{0, 1}));
    EXPECT_EQ(ani.jiffies, (std::vector<uint32_t>{6, 6}));
}

TEST(AniCursor, DamagedFilesAreRefused) {
    auto good = MakeAni(1, 1, {}, {}, {MakeCursor(24, 0, 0, 1)});
    SAniCursor ani;
    std::string err;
    // Every truncation either parses a complete file or is refused; none crashes.
    for (size_t n = 0; n < good.size(); ++n) ParseAniCursor(good.data(), n, ani, err);
    EXPECT_FALSE(ParseAniCursor(good.data(), good.size() - 10, ani, err));
    auto wrongCount = MakeAni(2, 1, {}, {}, {MakeCursor(24, 0, 0, 1)});
    EXPECT_FALSE(ParseAniCursor(wrongCount.data(), wrongCount.size(), ani, err));
    EXPECT_NE(err.find("frame count"), std::string::npos);
    auto badSeq = MakeAni(1, 2, {0, 5}, {}, {MakeCursor(24, 0, 0, 1)});
    EXPECT_FALSE(ParseAniCursor(badSeq.data(), badSeq.size(), ani, err));
    auto notRiff = good;
    memcpy(notRiff.data() + 8, "AVI ", 4);
    EXPECT_FALSE(ParseAniCursor(notRiff.data(), notRiff.size(), ani, err));
    // An image whose entry points past its data.
    auto cur = MakeCursor(24, 0, 0, 1);
    cur[18] = 0xFF;
    SCursorImage img;
    EXPECT_FALSE(ParseCursorImage(cur.data(), cur.size(), img, err));
}

TEST(AniCursor, FilesAreReadWithACap) {
    SAniCursor ani;
    std::string err;
    // The game's own cursor.
    ASSERT_TRUE(LoadAniCursor(std::string(ASHEN_GAME_DIR) + "/data/cursor.ani", ani, err)) << err;
    EXPECT_FALSE(ani.images.empty());
    // A file written here, then the same file grown past the cap.
    testbytes::SaveFile("c.ani", MakeAni(1, 1, {}, {}, {MakeCursor(24, 0, 0, 1)}));
    ASSERT_TRUE(LoadAniCursor("c.ani", ani, err)) << err;
    {
        FILE* f = std::fopen("c.ani", "r+b");
        ASSERT_NE(f, nullptr);
        std::fseek(f, long(kAniCursorMaxBytes), SEEK_SET);
        std::fputc(0, f);
        std::fclose(f);
    }
    EXPECT_FALSE(LoadAniCursor("c.ani", ani, err));
    EXPECT_EQ(err, "c.ani: 4194305 bytes, more than the 4194304 this file may hold");
    EXPECT_FALSE(LoadAniCursor("none.ani", ani, err));
    // A damaged file names itself in the reason.
    auto bad = MakeAni(2, 1, {}, {}, {MakeCursor(24, 0, 0, 1)});
    testbytes::SaveFile("bad.ani", bad);
    EXPECT_FALSE(LoadAniCursor("bad.ani", ani, err));
    EXPECT_EQ(err, "bad.ani: frame count does not match the frames found");
}
