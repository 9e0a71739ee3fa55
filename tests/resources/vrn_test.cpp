#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "common/bytes.h"
#include "res_test_util.h"
#include "resources/lz77.h"
#include "resources/vrn_file.h"
#include "resources/vrn_writer.h"
#include "base/gbk.h"

namespace {

using testbytes::Bytes;
using testbytes::Set32;

void Put32(Bytes& b, uint32_t v) { testbytes::Append32(b, v); }
void Record(Bytes& b, uint32_t size, uint32_t full, uint32_t off, uint8_t kind, uint8_t comp, const std::string& name) {
    Put32(b, size);
    Put32(b, full);
    Put32(b, off);
    b.push_back(kind);
    b.push_back(comp);
    b.push_back(0);
    b.push_back(0);
    Put32(b, uint32_t(name.size()));
    Put32(b, 0);
    b.insert(b.end(), name.begin(), name.end());
    b.push_back(0);
}

Bytes ReadAll(CVRN_File& v) {
    Bytes out(size_t(std::max(v.GetSize(), 0)), 0);
    EXPECT_TRUE(v.Read(out.data(), 0) || out.empty());
    return out;
}

TEST(Vrn, SmallArchiveFromBytes) {
    restest::ScratchDir dir;
    Bytes a{0x56, 0x52, 0x4E, 0x31, 0x2A, 0, 0, 0, 1, 0, 0, 0};
    Record(a, 3, 3, 0, 0, 0, "a.txt");
    a.push_back('x'), a.push_back('y'), a.push_back('z');
    ASSERT_EQ(a.size(), 45u);
    restest::WriteBytes("small.vrn", a);

    // The writer produces exactly these bytes for the same entry.
    Bytes built;
    ASSERT_TRUE(BuildVrnArchive({{"a.txt", {'x', 'y', 'z'}}}, VRN_COMPRESS_AUTO, &built, nullptr));
    EXPECT_EQ(built, a);

    CVRN_File v;
    EXPECT_EQ(v.GetSize(), -1);
    EXPECT_FALSE(v.FindEntry("a.txt"));  // nothing open
    char buf[4] = {0};
    EXPECT_FALSE(v.Read(buf, 0));
    ASSERT_TRUE(v.Open("small.vrn"));
    EXPECT_EQ(v.GetSize(), -1);
    ASSERT_TRUE(v.FindEntry("a.txt"));
    EXPECT_EQ(v.GetSize(), 3);
    EXPECT_TRUE(v.Read(buf, 0));
    EXPECT_STREQ(buf, "xyz");
    // A failed lookup keeps the previous entry.
    EXPECT_FALSE(v.FindEntry("A.TXT"));
    EXPECT_FALSE(v.FindEntry("root\\a.txt"));
    EXPECT_EQ(v.GetSize(), 3);
    EXPECT_EQ(v.Current()->path, "root\\a.txt");
    // Buffers smaller than the entry are refused.
    EXPECT_FALSE(v.Read(buf, 2));
    v.Close();
    EXPECT_FALSE(v.FindEntry("a.txt"));
    EXPECT_EQ(v.GetSize(), -1);

    // Zero root records: opens, finds nothing.
    Bytes empty{0x56, 0x52, 0x4E, 0x31, 12, 0, 0, 0, 0, 0, 0, 0};
    ASSERT_TRUE(v.OpenMemory(empty.data(), empty.size(), "empty"));
    EXPECT_FALSE(v.FindEntry("a.txt"));
    EXPECT_FALSE(v.FindEntry(""));
    EXPECT_TRUE(restest::Boxes().empty());
}

TEST(Vrn, BreadthFirstTreeAndLookups) {
    // root: b (dir), a.ini (file), e (empty dir); b: c (dir), x.bmp; c: y.bmp; e: nothing;
    // and a folder named root holding x, to show "root\" is always prepended.
    Bytes img{'V', 'R', 'N', '1', 0, 0, 0, 0, 4, 0, 0, 0};
    Record(img, 2, 0, 0, 1, 0, "b");
    Record(img, 1, 1, 0, 0, 0, "a.ini");
    Record(img, 0, 0, 0, 1, 0, "e");
    Record(img, 1, 0, 0, 1, 0, "root");
    Record(img, 1, 0, 0, 1, 0, "c");        // children of b
    Record(img, 1, 1, 1, 2, 0, "x.bmp");    // kind 2: any value but 1 is a file
    Record(img, 1, 1, 2, 0, 0, "x");        // child of root\root
    Record(img, 1, 1, 3, 0, 0, "y.bmp");    // child of b\c
    Set32(img, 4, uint32_t(img.size()));
    img.insert(img.end(), {'A', 'X', 'R', 'Y'});

    CVRN_File v;
    ASSERT_TRUE(v.OpenMemory(img.data(), img.size(), "tree"));
    auto read1 = [&](const char* p) {
        if (!v.FindEntry(p)) return std::string("-");
        Bytes b = ReadAll(v);
        return std::string(b.begin(), b.end());
    };
    EXPECT_EQ(read1("a.ini"), "A");
    EXPECT_EQ(read1("b\\x.bmp"), "X");
    EXPECT_EQ(read1("b\\c\\y.bmp"), "Y");
    EXPECT_EQ(read1("root\\x"), "R");
    EXPECT_EQ(read1("b/x.bmp"), "-");  // forward slashes are not separators
    EXPECT_EQ(read1("c\\y.bmp"), "-");
    EXPECT_EQ(read1("B\\x.bmp"), "-");
    EXPECT_TRUE(v.FindEntry("e"));      // a folder is found like a file
    EXPECT_TRUE(v.Current()->IsDir());
    EXPECT_TRUE(v.Current()->children.empty());
    EXPECT_TRUE(v.FindEntry("b\\c"));
    EXPECT_EQ(v.Root()->children.size(), 4u);

    // A name is a C string: a zero inside its N bytes ends it.
    Bytes z{'V', 'R', 'N', '1', 0, 0, 0, 0, 1, 0, 0, 0};
    Record(z, 1, 1, 0, 0, 0, std::string("a.x\0y", 5));
    Set32(z, 4, uint32_t(z.size()));
    z.push_back('Q');
    ASSERT_TRUE(v.OpenMemory(z.data(), z.size(), "zero"));
    EXPECT_EQ(read1("a.x"), "Q");
}

TEST(Vrn, ChunkBoundariesAndDeterminism) {
    restest::ScratchDir dir;
    std::vector<SVrnInput> in;
    in.push_back({"p\\exact.bmp", restest::SpriteLikeBytes(49152, 1)});
    in.push_back({"p\\plus1.bmp", restest::SpriteLikeBytes(49153, 2)});
    in.push_back({"big.bmp", restest::SpriteLikeBytes(200000, 5)});
    in.push_back({"empty.txt", {}});
    Bytes noise(70000);
    std::mt19937 rng(7);
    for (auto& x : noise) x = uint8_t(rng());
    in.push_back({"noise.bin", noise});
    // Compressible first chunk, incompressible second: stored whole.
    Bytes mixed(49152, 'a');
    mixed.insert(mixed.end(), noise.begin(), noise.begin() + 30000);
    in.push_back({"mixed.bin", mixed});

    Bytes image, again;
    ASSERT_TRUE(BuildVrnArchive(in, VRN_COMPRESS_AUTO, &image, nullptr));
    std::reverse(in.begin(), in.end());
    ASSERT_TRUE(BuildVrnArchive(in, VRN_COMPRESS_AUTO, &again, nullptr));
    EXPECT_EQ(image, again);  // input order does not matter

    CVRN_File v;
    ASSERT_TRUE(v.OpenMemory(image.data(), image.size(), "mem"));
    for (const SVrnInput& e : in) {
        ASSERT_TRUE(v.FindEntry(e.path.c_str())) << e.path;
        EXPECT_EQ(ReadAll(v), e.data) << e.path;
    }
    auto node = [&](const char* p) {
        EXPECT_TRUE(v.FindEntry(p));
        return v.Current();
    };
    EXPECT_EQ(node("p\\exact.bmp")->compressed, 1);
    // The last chunk (1 byte) cannot get smaller, so the whole entry is stored.
    EXPECT_EQ(node("p\\plus1.bmp")->compressed, 0);
    EXPECT_EQ(node("noise.bin")->compressed, 0);
    EXPECT_EQ(node("mixed.bin")->compressed, 0);
    EXPECT_EQ(node("empty.txt")->compressed, 0);

    // Chunk layout: one chunk for 49152 bytes, two for 49153 (the second makes 1 byte).
    auto chunks = [&](const char* p) {
        const SVrnNode* n = node(p);
        const uint8_t* s = image.data() + v.DataBase() + n->offset;
        std::vector<uint32_t> lens;
        for (uint32_t pos = 0; pos < n->size;) {
            uint32_t l = s[pos] | s[pos + 1] << 8;
            lens.push_back(l);
            pos += 2 + l;
        }
        return lens;
    };
    EXPECT_EQ(chunks("p\\exact.bmp").size(), 1u);

    // A hand-built entry of 49153 bytes in two chunks, the second making one
    // byte (a literal: 0 bit + 8 bits).
    const Bytes src = restest::SpriteLikeBytes(49153, 2);
    CCompressLZ77 c;
    Bytes z(49152 + 8, 0);
    const int32_t l0 = c.Compress(src.data(), 49152, z.data());
    ASSERT_GT(l0, 0);
    Bytes stored{uint8_t(l0), uint8_t(l0 >> 8)};
    stored.insert(stored.end(), z.begin(), z.begin() + l0);
    const uint8_t lastByte = src[49152];
    stored.insert(stored.end(), {2, 0, uint8_t(lastByte >> 1), uint8_t((lastByte & 1) << 7)});
    Bytes two{'V', 'R', 'N', '1', 0, 0, 0, 0, 1, 0, 0, 0};
    Record(two, uint32_t(stored.size()), 49153, 0, 0, 1, "two.bmp");
    Set32(two, 4, uint32_t(two.size()));
    two.insert(two.end(), stored.begin(), stored.end());
    CVRN_File t;
    ASSERT_TRUE(t.OpenMemory(two.data(), two.size(), "two"));
    ASSERT_TRUE(t.FindEntry("two.bmp"));
    EXPECT_EQ(ReadAll(t), src);
    // The same with the full size one byte short: the chunks no longer add up.
    Set32(two, 12 + 4, 49152);
    ASSERT_TRUE(t.OpenMemory(two.data(), two.size(), "two"));
    ASSERT_TRUE(t.FindEntry("two.bmp"));
    Bytes small(49152, 0);
    EXPECT_FALSE(t.Read(small.data(), 0));

    // The file reader reads the same archive from disk.
    restest::WriteBytes("pack.vrn", image);
    CVRN_File f;
    ASSERT_TRUE(f.Open("pack.vrn"));
    ASSERT_TRUE(f.FindEntry("big.bmp"));
    EXPECT_EQ(ReadAll(f), restest::SpriteLikeBytes(200000, 5));

    // Writer refusals.
    std::string err;
    EXPECT_FALSE(BuildVrnArchive({{"a\\\\b", {1}}}, VRN_COMPRESS_AUTO, &image, &err));
    EXPECT_FALSE(BuildVrnArchive({{"a", {1}}, {"a\\b", {2}}}, VRN_COMPRESS_AUTO, &image, &err));
    EXPECT_FALSE(BuildVrnArchive({{"a\\b", {1}}, {"a", {2}}}, VRN_COMPRESS_AUTO, &image, &err));
    EXPECT_FALSE(BuildVrnArchive({{"a", {1}}, {"a", {2}}}, VRN_COMPRESS_AUTO, &image, &err));
    EXPECT_FALSE(err.empty());
}

TEST(Vrn, MessagesAndDamagedArchives) {
    restest::ScratchDir dir;
    CVRN_File v;
    EXPECT_FALSE(v.Open("data\\nothing.vrn"));
    restest::WriteText("bad.vrn", "VRN2xxxxxxxxxxxxxxxx");
    EXPECT_FALSE(v.Open("bad.vrn"));
    ASSERT_EQ(restest::Boxes().size(), 2u);
    EXPECT_EQ(restest::Boxes()[0], Utf8ToGbk("无法打开文件data\\nothing.vrn"));
    EXPECT_EQ(restest::Boxes()[1], Utf8ToGbk("bad.vrn不是合法的Varnis游戏数据包文件，打开失败。"));

    Bytes good;
    std::vector<SVrnInput> in{{"d\\a.bmp", restest::SpriteLikeBytes(60000, 4)}, {"b.txt", {'h', 'i'}}};
    ASSERT_TRUE(BuildVrnArchive(in, VRN_COMPRESS_AUTO, &good, nullptr));
    restest::WriteBytes("good.vrn", good);
    ASSERT_TRUE(v.Open("good.vrn"));
    ASSERT_TRUE(v.FindEntry("b.txt"));

    // A failed open keeps the old tree.
    restest::Boxes().clear();
    EXPECT_FALSE(v.Open("bad.vrn"));
    EXPECT_TRUE(v.IsOpen());
    EXPECT_TRUE(v.FindEntry("d\\a.bmp"));

    // Truncated directories, at every cut inside it, never open.
    const size_t dirEnd = good[4] | good[5] << 8;
    CVRN_File m;
    restest::Boxes().clear();
    for (size_t cut = 0; cut < dirEnd; ++cut) {
        Bytes t(good.begin(), good.begin() + long(cut));
        EXPECT_FALSE(m.OpenMemory(t.data(), t.size(), "cut")) << cut;
    }
    EXPECT_EQ(restest::Boxes().size(), dirEnd);
    // A root count that the file cannot hold; a name length beyond the file.
    Bytes lie = good;
    Set32(lie, 8, 0xFFFFFFFF);
    EXPECT_FALSE(m.OpenMemory(lie.data(), lie.size(), "lie"));
    lie = good;
    Set32(lie, 12 + 16, 0x7FFFFFFF);
    EXPECT_FALSE(m.OpenMemory(lie.data(), lie.size(), "lie"));

    // Entries beyond the end of the file: the short-read line, false, buffer untouched.
    ASSERT_TRUE(m.OpenMemory(good.data(), good.size() - 1, "short"));
    ASSERT_TRUE(m.FindEntry("d\\a.bmp"));
    Bytes buf(60000, 0xAB);
    EXPECT_FALSE(m.Read(buf.data(), 0));
    ASSERT_TRUE(m.FindEntry("b.txt"));
    EXPECT_TRUE(m.Read(buf.data(), 0));  // lies before the cut
    std::string log = restest::ReadText("GameEngine.log");
    EXPECT_EQ(restest::CountLines(log, "cvrn:read error.read size do not equal real size."), 1);

    // Damaged chunk streams: a chunk length past the stored data, a stream that
    // ends early, and a full size larger than the chunks produce.
    ASSERT_TRUE(m.OpenMemory(good.data(), good.size(), "good"));
    ASSERT_TRUE(m.FindEntry("d\\a.bmp"));
    const SVrnNode* n = m.Current();
    const uint32_t aStored = n->size;  // n dies with the next open
    ASSERT_EQ(n->compressed, 1);
    const size_t at = m.DataBase() + n->offset;
    Bytes bad = good;
    bad[at] = 0xFF, bad[at + 1] = 0xFF;
    ASSERT_TRUE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    ASSERT_TRUE(m.FindEntry("d\\a.bmp"));
    EXPECT_FALSE(m.Read(buf.data(), 0));
    bad = good;
    const uint32_t l0 = good[at] | good[at + 1] << 8;
    bad[at] = uint8_t(l0 / 4), bad[at + 1] = uint8_t((l0 / 4) >> 8);  // stream cut short
    ASSERT_TRUE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    ASSERT_TRUE(m.FindEntry("d\\a.bmp"));
    EXPECT_FALSE(m.Read(buf.data(), 0));
    // Full size beyond what the chunks hold (the root's records are b.txt and
    // d, sorted; d's child a.bmp is the third record).
    bad = good;
    const size_t rec3 = 12 + (24 + 6) + (24 + 2);
    Set32(bad, rec3 + 4, 60000 + 49152);
    ASSERT_TRUE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    ASSERT_TRUE(m.FindEntry("d\\a.bmp"));
    ASSERT_EQ(m.GetSize(), 60000 + 49152);
    Bytes bigger(size_t(m.GetSize()), 0);
    EXPECT_FALSE(m.Read(bigger.data(), 0));
    log = restest::ReadText("GameEngine.log");
    EXPECT_EQ(restest::CountLines(log, "damaged compressed data"), 3);
    // Sizes no read could fill make the directory damaged: a stored entry
    // whose sizes differ, chunks too few for the full size, a huge entry.
    bad = good;
    Set32(bad, 12 + 4, 1000);  // b.txt full size
    EXPECT_FALSE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    bad = good;
    Set32(bad, rec3 + 4, (aStored / 2) * 49152 + 1);
    EXPECT_FALSE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    Set32(bad, rec3 + 4, (aStored / 2) * 49152);
    EXPECT_TRUE(m.OpenMemory(bad.data(), bad.size(), "bad"));
    bad = good;
    Set32(bad, 12 + 4, 0x7FFFFFFF);
    Set32(bad, 12 + 0, 0x7FFFFFFF);
    EXPECT_FALSE(m.OpenMemory(bad.data(), bad.size(), "bad"));
}

}  // namespace
