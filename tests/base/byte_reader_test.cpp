// The bounded byte reader and the capped file read: little-endian values, the
// sticky first failure with its offset, counts that cannot fit, sub-readers, and
// files refused by size or kind before anything is read.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "common/bytes.h"

using namespace testbytes;

namespace {

#pragma pack(push, 1)
struct SPair {
    uint16_t a;
    int32_t b;
};
#pragma pack(pop)

}  // namespace

TEST(ByteReader, LittleEndianValuesTextsAndRecords) {
    Bytes b;
    Append8(b, 0xFE);
    Append16(b, 0xBEEF);
    Append32(b, 0x80000001u);
    AppendField(b, "abc", 6);        // terminated inside its field
    AppendText(b, "WXYZ");           // a field of 4 with no terminator
    AppendRecord(b, SPair{7, -2});
    CByteReader in(b, "t.bin");
    EXPECT_EQ(in.Size(), b.size());
    EXPECT_EQ(in.ReadU8(), 0xFE);
    EXPECT_EQ(in.ReadU16(), 0xBEEF);
    EXPECT_EQ(in.Offset(), 3u);
    EXPECT_EQ(in.ReadI32(), int32_t(0x80000001u));
    EXPECT_EQ(in.ReadText(6), "abc");
    EXPECT_EQ(in.Offset(), 13u);  // the whole field is consumed
    EXPECT_EQ(in.ReadText(4), "WXYZ");  // an unterminated text stops at its field
    SPair p{};
    ASSERT_TRUE(in.ReadRecord(p));
    const uint16_t a = p.a;  // packed fields are compared through copies
    const int32_t bValue = p.b;
    EXPECT_EQ(a, 7);
    EXPECT_EQ(bValue, -2);
    EXPECT_TRUE(in.AtEnd());
    EXPECT_TRUE(in.ExpectEnd());
    EXPECT_TRUE(in.Ok());
    EXPECT_EQ(in.Error(), "");
    // Seek back and skip.
    ASSERT_TRUE(in.Seek(1));
    ASSERT_TRUE(in.Skip(2));
    EXPECT_EQ(in.ReadU32(), 0x80000001u);
    EXPECT_EQ(in.Remaining(), b.size() - 7);
}

TEST(ByteReader, TheFirstFailureSticksWithItsOffset) {
    Bytes b = {1, 2, 3, 4, 5};
    CByteReader in(b, "data\\x.bin");
    EXPECT_EQ(in.ReadU16("width"), 0x0201);
    EXPECT_EQ(in.ReadU32("height"), 0u);  // 4 bytes needed, 3 left
    EXPECT_FALSE(in.Ok());
    EXPECT_EQ(in.Error(), "data\\x.bin: height runs past the end (4 bytes needed, 3 left) at byte 2");
    EXPECT_EQ(in.Reason(), "height runs past the end (4 bytes needed, 3 left)");
    EXPECT_EQ(in.ErrorOffset(), 2u);
    // Later reads return nothing, do not move and keep the first error.
    EXPECT_EQ(in.ReadU8("depth"), 0);
    EXPECT_EQ(in.Offset(), 2u);
    EXPECT_EQ(in.Remaining(), 0u);
    EXPECT_EQ(in.ReadText(1), "");
    EXPECT_EQ(in.ReadSpan(1), nullptr);
    EXPECT_FALSE(in.Seek(0));
    EXPECT_FALSE(in.Fail("another"));
    EXPECT_EQ(in.Error(), "data\\x.bin: height runs past the end (4 bytes needed, 3 left) at byte 2");

    // A caller's own failure, at the current offset or at a given one.
    CByteReader c(b, "c.bin");
    c.Skip(3);
    EXPECT_FALSE(c.Fail("cell (%d,%d) picX %d is off the sheet", 1, 2, INT_MAX));
    EXPECT_EQ(c.Error(), "c.bin: cell (1,2) picX 2147483647 is off the sheet at byte 3");
    CByteReader d(b);
    EXPECT_FALSE(d.FailAt(4, "late"));
    EXPECT_EQ(d.Error(), "data: late at byte 4");

    // Magic, seeks past the end, trailing bytes.
    CByteReader m(b, "m");
    EXPECT_FALSE(m.Expect("\x01\x02\x09", 3, "magic"));
    EXPECT_EQ(m.Error(), "m: wrong magic at byte 0");
    CByteReader s(b, "s");
    EXPECT_FALSE(s.Seek(6, "data offset"));
    EXPECT_EQ(s.Error(), "s: data offset 6 lies past the end (5 bytes) at byte 0");
    CByteReader e(b, "e");
    e.Skip(4);
    EXPECT_FALSE(e.ExpectEnd("records"));
    EXPECT_EQ(e.Error(), "e: 1 bytes after the records at byte 4");
}

TEST(ByteReader, CountsThatCannotFitAreRefusedWithoutOverflow) {
    Bytes b(100, 0);
    CByteReader in(b, "n");
    in.Skip(4);
    EXPECT_TRUE(in.CheckCount(24, 4));
    EXPECT_TRUE(in.CheckCount(0, 4));
    EXPECT_TRUE(in.CheckCount(1000, 0));
    EXPECT_FALSE(in.CheckCount(25, 4, "cells"));
    EXPECT_EQ(in.Error(), "n: 25 cells of 4 bytes do not fit in the 96 bytes left at byte 4");
    // Counts whose byte size would overflow 64 bits.
    CByteReader big(b);
    EXPECT_FALSE(big.CheckCount(UINT64_MAX, 16));
    CByteReader big2(b);
    EXPECT_FALSE(big2.CheckCount(uint64_t(1) << 62, 8));
    // ReadRecords allocates only after the check.
    CByteReader r(b);
    std::vector<SPair> pairs;
    EXPECT_FALSE(r.ReadRecords(pairs, uint64_t(1) << 40));
    EXPECT_TRUE(pairs.empty());
    CByteReader ok(b);
    ASSERT_TRUE(ok.ReadRecords(pairs, 16));
    EXPECT_EQ(pairs.size(), 16u);
    EXPECT_EQ(ok.Remaining(), 4u);
}

TEST(ByteReader, SubReadersCountFromTheOuterImage) {
    Bytes b;
    AppendText(b, "HEAD");
    Append32(b, 6);
    AppendText(b, "abcdef");
    Append8(b, 9);
    CByteReader in(b, "riff");
    in.Skip(4);
    const uint32_t len = in.ReadU32();
    CByteReader chunk = in.Sub(len, "chunk");
    EXPECT_EQ(in.Offset(), 14u);  // skipped over the chunk
    EXPECT_EQ(in.ReadU8(), 9);
    EXPECT_EQ(chunk.Offset(), 8u);
    EXPECT_EQ(chunk.ReadText(4), "abcd");
    EXPECT_EQ(chunk.ReadU32("tail"), 0u);  // only 2 bytes left in the chunk
    EXPECT_EQ(chunk.Error(), "riff: tail runs past the end (4 bytes needed, 2 left) at byte 12");
    EXPECT_TRUE(in.Ok());  // the outer reader goes on
    EXPECT_FALSE(in.Absorb(chunk));
    EXPECT_EQ(in.Error(), chunk.Error());
    // A sub-reader longer than what is left fails both.
    CByteReader again(b, "riff");
    CByteReader tooLong = again.Sub(100, "chunk");
    EXPECT_FALSE(again.Ok());
    EXPECT_FALSE(tooLong.Ok());
    EXPECT_EQ(tooLong.Remaining(), 0u);
    // An empty image reads nothing but fails cleanly.
    CByteReader empty(nullptr, 10);
    EXPECT_EQ(empty.Size(), 0u);
    EXPECT_NE(empty.ReadSpan(0), nullptr);
    EXPECT_EQ(empty.ReadU8(), 0);
    EXPECT_FALSE(empty.Ok());
}

TEST(FileBytes, CapsKindsAndParts) {
    namespace fs = std::filesystem;
    Bytes ten = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    SaveFile("ten.bin", ten);
    Bytes out;
    std::string error;
    EXPECT_EQ(ReadFileBytes("ten.bin", 10, out, &error), EFileRead::Ok);
    EXPECT_EQ(out, ten);
    // One byte over the cap: refused and nothing read.
    EXPECT_EQ(ReadFileBytes("ten.bin", 9, out, &error), EFileRead::TooLarge);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(error, "ten.bin: 10 bytes, more than the 9 this file may hold");
    EXPECT_EQ(ReadFileBytes("missing.bin", 100, out, &error), EFileRead::Missing);
    EXPECT_NE(error.find("missing.bin: cannot be opened"), std::string::npos) << error;
    // A folder and a FIFO are not regular files; the FIFO must not block.
    fs::create_directories("folder");
    EXPECT_EQ(ReadFileBytes("folder", 100, out, &error), EFileRead::Failed);
    EXPECT_EQ(error, "folder: not a regular file");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(ReadFileBytes("pipe", 100, out, &error), EFileRead::Failed);
    EXPECT_EQ(ReadFileBytes("/dev/zero", 100, out, &error), EFileRead::Failed);

    // Parts: from an offset, at most a size, none past the end.
    uint64_t size = 0;
    EXPECT_EQ(ReadFilePart("ten.bin", 3, 4, out, &error, &size), EFileRead::Ok);
    EXPECT_EQ(out, (Bytes{3, 4, 5, 6}));
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(ReadFilePart("ten.bin", 8, 100, out), EFileRead::Ok);
    EXPECT_EQ(out, (Bytes{8, 9}));
    EXPECT_EQ(ReadFilePart("ten.bin", 12, 4, out), EFileRead::Ok);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(ReadFilePart("pipe", 0, 4, out), EFileRead::Failed);

    // A large sparse file is refused by its size without being read.
    {
        FILE* f = std::fopen("huge.bin", "wb");
        ASSERT_NE(f, nullptr);
        ASSERT_EQ(ftruncate(fileno(f), off_t(300) << 20), 0);
        std::fclose(f);
    }
    EXPECT_EQ(ReadFileBytes("huge.bin", 1 << 20, out, &error), EFileRead::TooLarge);
    EXPECT_EQ(error, "huge.bin: 314572800 bytes, more than the 1048576 this file may hold");
    EXPECT_EQ(ReadFilePart("huge.bin", 100, 16, out, nullptr, &size), EFileRead::Ok);
    EXPECT_EQ(out, Bytes(16, 0));
    EXPECT_EQ(size, uint64_t(300) << 20);
}
