// Ogg page walking: the run of whole pages at the start of a music file, the
// Vorbis start it must have, and where damage or junk ends it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/bytes.h"
#include "media/ogg_file.h"

using namespace testbytes;

namespace {

// One page: header, segment table for a body of n bytes, the body.
Bytes Page(uint8_t type, const Bytes& body) {
    Bytes p;
    AppendText(p, "OggS");
    Append8(p, 0);
    Append8(p, type);
    p.insert(p.end(), 8 + 4 + 4 + 4, 0);  // granule, serial, sequence, CRC
    size_t n = body.size();
    Bytes table;
    while (n >= 255) {
        table.push_back(255);
        n -= 255;
    }
    table.push_back(uint8_t(n));
    Append8(p, uint8_t(table.size()));
    AppendBytes(p, table);
    AppendBytes(p, body);
    return p;
}

Bytes VorbisStart() {
    Bytes body = {1, 'v', 'o', 'r', 'b', 'i', 's'};
    body.resize(30, 0);
    return Page(2, body);
}

}  // namespace

TEST(OggFile, WholePagesFromAVorbisStart) {
    const Bytes shipped = LoadFile(std::string(ASHEN_GAME_DIR) + "/music/forest.ogg");
    ASSERT_GT(shipped.size(), 1000u);
    EXPECT_TRUE(IsOggStream(shipped.data(), shipped.size()));
    EXPECT_EQ(OggStreamLength(shipped.data(), shipped.size()), shipped.size());
    // Junk after the last page is not part of the stream; a page cut short ends
    // the stream at the page before it.
    Bytes junk = shipped;
    junk.insert(junk.end(), 5000, 0xA5);
    EXPECT_EQ(OggStreamLength(junk.data(), junk.size()), shipped.size());
    Bytes cut(shipped.begin(), shipped.end() - 3);
    const size_t cutLength = OggStreamLength(cut.data(), cut.size());
    EXPECT_GT(cutLength, 0u);
    EXPECT_LT(cutLength, cut.size());
    EXPECT_EQ(cutLength, OggStreamLength(shipped.data(), cutLength));

    Bytes built = VorbisStart();
    const size_t first = built.size();
    AppendBytes(built, Page(0, Bytes(600, 7)));  // a body over 255 bytes: three segments
    const size_t second = built.size();
    AppendBytes(built, Page(4, Bytes(10, 1)));
    EXPECT_EQ(OggStreamLength(built.data(), built.size()), built.size());
    EXPECT_EQ(OggStreamLength(built.data(), second + 20), second);
    // A version other than 0, or an unknown header type, ends the run.
    Bytes version = built;
    version[second + 4] = 1;
    EXPECT_EQ(OggStreamLength(version.data(), version.size()), second);
    Bytes type = built;
    type[first + 5] = 8;
    EXPECT_EQ(OggStreamLength(type.data(), type.size()), first);
}

TEST(OggFile, StreamsThatDoNotStartVorbisAreRefused) {
    std::string error;
    Bytes notBos = Page(0, Bytes{1, 'v', 'o', 'r', 'b', 'i', 's', 0});
    EXPECT_EQ(OggStreamLength(notBos.data(), notBos.size(), &error), 0u);
    EXPECT_EQ(error, "the first Ogg page does not start a Vorbis stream");
    Bytes opus = Page(2, Bytes{'O', 'p', 'u', 's', 'H', 'e', 'a', 'd'});
    EXPECT_EQ(OggStreamLength(opus.data(), opus.size(), &error), 0u);
    Bytes shortBody = Page(2, Bytes{1, 'v', 'o'});
    EXPECT_EQ(OggStreamLength(shortBody.data(), shortBody.size(), &error), 0u);
    Bytes start = VorbisStart();
    EXPECT_EQ(OggStreamLength(start.data(), start.size() - 1, &error), 0u);
    EXPECT_EQ(error, "no whole Ogg page at the start");
    EXPECT_EQ(OggStreamLength(start.data(), 10, &error), 0u);
    EXPECT_FALSE(IsOggStream(start.data(), 3));
    Bytes riff = {'R', 'I', 'F', 'F', 0, 0, 0, 0};
    EXPECT_FALSE(IsOggStream(riff.data(), riff.size()));
}
