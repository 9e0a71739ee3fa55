#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "items/database.h"
#include "base/gbk.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes FileImage(uint32_t magic, size_t recordSize, int records, size_t extra) {
    Bytes b(8 + recordSize * size_t(records) + extra, 0);
    std::memcpy(b.data(), &magic, 4);
    for (int r = 0; r < records; ++r) {
        char name[16];
        std::snprintf(name, sizeof name, "rec%d", r + 1);
        std::memcpy(b.data() + 8 + recordSize * size_t(r), name, std::strlen(name));
    }
    return b;
}

void Write(const std::string& path, const Bytes& b) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
}

TEST(Database, CountsPlaceholderAndMagic) {
    TCDataBase<SItemInfo> items;
    EXPECT_EQ(items.Count(), 0);
    Bytes eight = FileImage(kItemDbMagic, 272, 0, 0);
    ASSERT_TRUE(items.LoadBuffer(eight.data(), eight.size(), 8, kItemDbMagic));
    EXPECT_EQ(items.Count(), 0);

    Bytes three = FileImage(kItemDbMagic, 272, 3, 100);
    TCDataBase<SItemInfo> db;
    ASSERT_TRUE(db.LoadBuffer(three.data(), three.size(), 8, kItemDbMagic));
    EXPECT_EQ(db.Count(), 3);  // the 100 trailing bytes are ignored
    EXPECT_STREQ(db.Get(1).szName, "rec1");
    EXPECT_STREQ(db.Get(3).szName, "rec3");
    SItemInfo zero;
    std::memset(&zero, 0, sizeof zero);
    SItemInfo p = db.Get(0);
    EXPECT_EQ(std::memcmp(&p, &zero, sizeof zero), 0);
    p = db.Get(4);  // beyond Count: the placeholder
    EXPECT_EQ(std::memcmp(&p, &zero, sizeof zero), 0);
    EXPECT_EQ(db.FindByName("rec2"), 2);
    EXPECT_EQ(db.FindByName("Rec2"), 0);
    EXPECT_EQ(db.FindByName("rec"), 0);

    // A second load appends.
    ASSERT_TRUE(db.LoadBuffer(three.data(), three.size(), 8, kItemDbMagic));
    EXPECT_EQ(db.Count(), 6);
    EXPECT_STREQ(db.Get(4).szName, "rec1");

    // Item magic in a skill file fails; so do files shorter than a magic.
    TCDataBase<SSkillInfo> skills;
    Bytes wrong = FileImage(kItemDbMagic, 516, 2, 0);
    EXPECT_FALSE(skills.LoadBuffer(wrong.data(), wrong.size(), 8, kSkillDbMagic));
    EXPECT_EQ(skills.Count(), 0);
    EXPECT_FALSE(skills.LoadBuffer(wrong.data(), 3, 8, kItemDbMagic));
    Bytes right = FileImage(kSkillDbMagic, 516, 2, 515);
    ASSERT_TRUE(skills.LoadBuffer(right.data(), right.size(), 8, kSkillDbMagic));
    EXPECT_EQ(skills.Count(), 2);
    // A data offset past the end reads nothing but is not an error.
    TCDataBase<SSkillInfo> far;
    EXPECT_TRUE(far.LoadBuffer(right.data(), right.size(), 1 << 20, kSkillDbMagic));
    EXPECT_EQ(far.Count(), 0);
}

TEST(Database, LoadsFromDiskWithGameNames) {
    auto old = std::filesystem::current_path();
    auto dir = std::filesystem::current_path() / ("ashen_db_test_" + std::to_string(getpid()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    std::filesystem::current_path(dir);
    Write("data/items.itm", FileImage(kItemDbMagic, 272, 2, 0));
    TCDataBase<SItemInfo> db;
    EXPECT_TRUE(db.Load("data\\items.itm", 8, 0x69746532));
    EXPECT_EQ(db.Count(), 2);
    EXPECT_FALSE(db.Load("data\\missing.itm", 8, 0x69746532));
    EXPECT_FALSE(db.Load("data\\items.itm", 8, 0x736B6C32));
    EXPECT_EQ(db.Count(), 2);
    std::filesystem::current_path(old);
    std::filesystem::remove_all(dir);
}

}  // namespace
