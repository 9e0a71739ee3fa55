#include <gtest/gtest.h>

#include <cstdlib>

#include "resources/res_test_util.h"
#include "base/gbk.h"

namespace {

// textc turns authored UTF-8/LF text into the GBK/CR LF the game reads, keeps
// other files byte for byte, and refuses text GBK cannot hold.
TEST(Textc, ConvertsTextKeepsBinaryRefusesUnmappable) {
    restest::ScratchDir dir;
    const std::string textc = std::string(ASHEN_BIN_DIR) + "/textc";
    const std::string chinese = "和平";
    restest::WriteText("src/game.ini", "[MDfile]\nini=data\\ini.vrn\n");
    restest::WriteText("src/sub/talk.gsp", "\xEF\xBB\xBFTalk(\"" + chinese + "\")\r\nEnd\n");
    const std::vector<uint8_t> binary{'B', 'M', 0, 1, '\n', 0xFF, 0xFE, '\n'};
    restest::WriteBytes("src/pic.bmp", binary);
    ASSERT_EQ(std::system((textc + " src out").c_str()), 0);
    EXPECT_EQ(restest::ReadText("out/game.ini"), "[MDfile]\r\nini=data\\ini.vrn\r\n");
    // BOM dropped, CR LF kept single, the Chinese text as GBK bytes.
    EXPECT_EQ(restest::ReadText("out/sub/talk.gsp"), "Talk(\"\xBA\xCD\xC6\xBD\")\r\nEnd\r\n");
    EXPECT_EQ(Utf8ToGbk(chinese), "\xBA\xCD\xC6\xBD");
    EXPECT_EQ(restest::ReadBytes("out/pic.bmp"), binary);

    // Unchanged outputs are not rewritten (their time stays).
    auto before = std::filesystem::last_write_time("out/game.ini");
    std::filesystem::last_write_time("out/game.ini", before - std::chrono::hours(1));
    before = std::filesystem::last_write_time("out/game.ini");
    ASSERT_EQ(std::system((textc + " src out").c_str()), 0);
    EXPECT_EQ(std::filesystem::last_write_time("out/game.ini"), before);

    // An emoji has no GBK form: refused, naming the file and line.
    restest::WriteText("bad/x.ini", "[a]\nname=ok\nicon=\xF0\x9F\x94\xA5\n");
    EXPECT_NE(std::system((textc + " bad badout 2> err.txt").c_str()), 0);
    EXPECT_NE(restest::ReadText("err.txt").find("x.ini:3"), std::string::npos) << restest::ReadText("err.txt");
    EXPECT_FALSE(std::filesystem::exists("badout/x.ini"));
}

}  // namespace
