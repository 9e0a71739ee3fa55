// The archive tool: packs read back by an independent reader written from the
// format alone (vrn_reader.py), and the list, cat, unpack, ini and codec commands.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "resources/res_test_util.h"

namespace {
using Bytes = std::vector<uint8_t>;
}  // namespace

// The archive read back by a reader written from the format alone, in Python.
TEST(Vrn, IndependentReaderAgreesWithPack) {
    restest::ScratchDir dir;
    const std::string vrn = std::string(ASHEN_BIN_DIR) + "/vrn";
    std::filesystem::create_directories("src/ui/deep");
    restest::WriteBytes("src/ui/splash.bmp", restest::SpriteLikeBytes(100000, 11));
    restest::WriteBytes("src/ui/deep/tiny.bmp", restest::SpriteLikeBytes(50, 12));
    restest::WriteText("src/game.ini", "[MDfile]\r\nui=data\\ui.vrn\r\n");
    restest::WriteBytes("src/empty", {});
    std::mt19937 rng(5);
    Bytes noise(3000);
    for (auto& x : noise) x = uint8_t(rng());
    restest::WriteBytes("src/noise.bin", noise);
    ASSERT_EQ(std::system((vrn + " pack src a.vrn").c_str()), 0);
    ASSERT_EQ(std::system((vrn + " pack src b.vrn").c_str()), 0);
    EXPECT_EQ(restest::ReadBytes("a.vrn"), restest::ReadBytes("b.vrn"));
    const std::string py = std::string("python3 ") + ASHEN_SOURCE_DIR + "/tests/tools/vrn/vrn_reader.py a.vrn src";
    EXPECT_EQ(std::system(py.c_str()), 0);

    // list, cat, unpack and the codec commands.
    ASSERT_EQ(std::system((vrn + " list a.vrn > list.txt").c_str()), 0);
    EXPECT_EQ(restest::ReadText("list.txt"), "empty\ngame.ini\nnoise.bin\nui\\deep\\tiny.bmp\nui\\splash.bmp\n");
    ASSERT_EQ(std::system((vrn + " cat a.vrn 'ui\\splash.bmp' > cat.bin").c_str()), 0);
    EXPECT_EQ(restest::ReadBytes("cat.bin"), restest::SpriteLikeBytes(100000, 11));
    EXPECT_NE(std::system((vrn + " cat a.vrn ui/splash.bmp 2>/dev/null").c_str()), 0);
    ASSERT_EQ(std::system((vrn + " unpack a.vrn out").c_str()), 0);
    EXPECT_EQ(restest::ReadBytes("out/ui/deep/tiny.bmp"), restest::SpriteLikeBytes(50, 12));
    EXPECT_EQ(restest::ReadBytes("out/noise.bin"), noise);
    EXPECT_TRUE(std::filesystem::exists("out/empty"));
    ASSERT_EQ(std::system((vrn + " ini game.ini MDfile ui --archive a.vrn > ini.txt").c_str()), 0);
    EXPECT_EQ(restest::ReadText("ini.txt"), "data\\ui.vrn");

    restest::WriteText("abc", "abcabcabc");
    ASSERT_EQ(std::system((vrn + " lz77 compress abc abc.z").c_str()), 0);
    EXPECT_EQ(restest::ReadBytes("abc.z"), (Bytes{0x30, 0x98, 0x8C, 0x78, 0x63}));
    ASSERT_EQ(std::system((vrn + " lz77 decompress abc.z abc.out 9").c_str()), 0);
    EXPECT_EQ(restest::ReadText("abc.out"), "abcabcabc");
    EXPECT_EQ(WEXITSTATUS(std::system((vrn + " lz77 compress src/noise.bin n.z 2>/dev/null").c_str())), 3);
    restest::WriteBytes("huge", Bytes(65537, 1));
    EXPECT_EQ(WEXITSTATUS(std::system((vrn + " lz77 compress huge h.z 2>/dev/null").c_str())), 4);
}
