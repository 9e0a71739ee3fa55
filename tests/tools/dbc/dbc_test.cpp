// The table compiler: the game's tables compile into databases the engine
// reads, and rows that do not fit are refused naming the row.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "items/database.h"

// The compiled game databases: every record fits, ids are stable, the basic
// blow exists and every book teaches a skill of the same name.
TEST(Database, CompiledGameTables) {
    const std::string bin = ASHEN_BIN_DIR;
    auto dir = std::filesystem::current_path() / ("ashen_dbc_test_" + std::to_string(getpid()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    const std::string src = std::string(ASHEN_SOURCE_DIR) + "/content/tables";
    const std::string cmd = bin + "/dbc " + src + "/items.tsv " + src + "/skills.tsv " + dir.string();
    ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;

    TCDataBase<SItemInfo> items;
    TCDataBase<SSkillInfo> skills;
    ASSERT_TRUE(items.Load((dir / "data/items.itm").c_str(), 8, kItemDbMagic));
    ASSERT_TRUE(skills.Load((dir / "data/skill.skl").c_str(), 8, kSkillDbMagic));
    EXPECT_EQ(items.Count(), 26);
    EXPECT_EQ(skills.Count(), 9);
    EXPECT_STREQ(skills.Get(1).szName, "Strike");
    for (int i = 1; i <= skills.Count(); ++i) {
        SSkillInfo s = skills.Get(i);
        EXPECT_NE(s.cKey, 0) << s.szName;
        EXPECT_GE(s.nFrameCount, 1);
        EXPECT_LE(s.nFrameCount, 20);
        EXPECT_EQ(s.szName[50], 0);
        for (int f = 0; f < s.nFrameCount; ++f) EXPECT_NE(s.szFrames[f][0], 0) << s.szName << " frame " << f;
        EXPECT_GE(s.nMaxLevel, 1);
        for (int j = 1; j < i; ++j) EXPECT_NE(skills.Get(j).cKey, s.cKey) << "shared shortcut key";
    }
    int books = 0;
    for (int i = 1; i <= items.Count(); ++i) {
        SItemInfo it = items.Get(i);
        EXPECT_EQ(it.szName[51], 0);
        EXPECT_NE(it.szPicture[0], 0) << it.szName;
        if (it.nType == ITEM_BOOK) {
            ++books;
            EXPECT_GT(skills.FindByName(it.szName), 1) << it.szName;
        }
    }
    EXPECT_EQ(books, 5);
    EXPECT_EQ(items.FindByName("Healing Herb"), 1);

    // A name one byte too long is refused, naming the row; nothing is written.
    const auto bad = dir / "bad";
    std::filesystem::create_directories(bad);
    std::ifstream in(src + "/items.tsv");
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string longName(52, 'N');
    size_t at = text.find("Healing Herb");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::strlen("Healing Herb"), longName);
    std::ofstream(bad / "items.tsv") << text;
    const std::string badCmd = bin + "/dbc " + (bad / "items.tsv").string() + " " + src + "/skills.tsv " +
                               (bad / "out").string() + " 2> " + (bad / "err.txt").string();
    EXPECT_NE(std::system(badCmd.c_str()), 0);
    std::ifstream errIn(bad / "err.txt");
    std::string err((std::istreambuf_iterator<char>(errIn)), std::istreambuf_iterator<char>());
    EXPECT_NE(err.find(longName), std::string::npos) << err;
    EXPECT_NE(err.find("items.tsv:"), std::string::npos) << err;
    EXPECT_FALSE(std::filesystem::exists(bad / "out/data/items.itm"));
    std::filesystem::remove_all(dir);
}
