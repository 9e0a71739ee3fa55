// The database files: every shipped database reads and writes back byte for
// byte, and a file holding more records than a database may (junk appended to
// it) is refused before it costs memory.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "common/bytes.h"
#include "items/database.h"
#include "items/database_file.h"

using namespace testbytes;

namespace {

std::string EngineLog() {
    const Bytes b = LoadFile("GameEngine.log");
    return std::string(b.begin(), b.end());
}

template <class T>
void ExpectRoundTrip(const std::string& path, uint32_t magic) {
    SCOPED_TRACE(path);
    const Bytes bytes = LoadFile(path);
    ASSERT_GT(bytes.size(), 8u);
    CByteReader in(bytes, path);
    std::vector<T> records;
    ASSERT_TRUE(ReadDatabaseRecords(in, magic, kDbDataOffset, records)) << in.Error();
    EXPECT_TRUE(in.AtEnd());  // no partial record in a compiled database
    EXPECT_EQ(Get32(bytes, 4), int32_t(records.size()));
    EXPECT_EQ(DatabaseBytes(magic, records), bytes);
}

}  // namespace

TEST(DatabaseFile, ShippedDatabasesRoundTripByteForByte) {
    ExpectRoundTrip<SItemInfo>(std::string(ASHEN_GAME_DIR) + "/data/items.itm", kItemDbMagic);
    ExpectRoundTrip<SSkillInfo>(std::string(ASHEN_GAME_DIR) + "/data/skill.skl", kSkillDbMagic);
}

TEST(DatabaseFile, RecordCountsAreCapped) {
    // Exactly the most records a database may hold, with a partial one after.
    Bytes full(8 + kDbMaxRecords * sizeof(SSkillInfo) + 100, 0);
    Set32(full, 0, kSkillDbMagic);
    TCDataBase<SSkillInfo> skills;
    ASSERT_TRUE(skills.LoadBuffer(full.data(), full.size(), 8, kSkillDbMagic));
    EXPECT_EQ(skills.Count(), int32_t(kDbMaxRecords));
    // One record more is refused, and nothing is appended.
    full.resize(8 + (kDbMaxRecords + 1) * sizeof(SSkillInfo));
    CByteReader in(full, "data\\skill.skl");
    std::vector<SSkillInfo> records;
    EXPECT_FALSE(ReadDatabaseRecords(in, kSkillDbMagic, 8, records));
    EXPECT_TRUE(records.empty());
    EXPECT_EQ(in.Error(), "data\\skill.skl: 10001 records, more than the 10000 a database may hold at byte 8");
    EXPECT_FALSE(skills.LoadBuffer(full.data(), full.size(), 8, kSkillDbMagic));
    EXPECT_EQ(skills.Count(), int32_t(kDbMaxRecords));
    // A negative data offset is refused, one past the end gives no records.
    CByteReader neg(full, "n");
    EXPECT_FALSE(ReadDatabaseRecords(neg, kSkillDbMagic, -1, records));
}

TEST(DatabaseFile, JunkAppendedToTheItemsIsRefusedUnread) {
    // Three good items, then 300 MB of junk (a sparse file: no disk is used).
    Bytes b(8 + 3 * sizeof(SItemInfo), 0);
    Set32(b, 0, kItemDbMagic);
    Set32(b, 4, 3);
    std::memcpy(b.data() + 8, "Herb", 4);
    SaveFile("data/items.itm", b);
    TCDataBase<SItemInfo> items;
    ASSERT_TRUE(items.Load("data\\items.itm", 8, kItemDbMagic));
    EXPECT_EQ(items.Count(), 3);
    {
        FILE* f = std::fopen("data/items.itm", "r+b");
        ASSERT_NE(f, nullptr);
        std::fseek(f, 300L << 20, SEEK_SET);
        std::fputc('J', f);
        std::fclose(f);
    }
    std::remove("GameEngine.log");
    TCDataBase<SItemInfo> junk;
    EXPECT_FALSE(junk.Load("data\\items.itm", 8, kItemDbMagic));
    EXPECT_EQ(junk.Count(), 0);
    const std::string log = EngineLog();
    EXPECT_NE(log.find("database data/items.itm: 314572801 bytes, more than the 2720279 this file may hold, refused!"),
              std::string::npos)
        << log;
    // Junk within the cap is read as the records it looks like (the format
    // cannot tell), but a wrong magic is refused with a line naming the file.
    Bytes wrong = b;
    Set32(wrong, 0, kSkillDbMagic);
    SaveFile("data/wrong.itm", wrong);
    std::remove("GameEngine.log");
    EXPECT_FALSE(junk.Load("data\\wrong.itm", 8, kItemDbMagic));
    EXPECT_NE(EngineLog().find("database data\\wrong.itm: wrong magic at byte 0, refused!"), std::string::npos)
        << EngineLog();
}
