// The harness's flags and replay files, and the PNG frame dump.
#include <gtest/gtest.h>
#include <unistd.h>
#include <png.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "shell/harness.h"

namespace {

bool Parse(std::vector<std::string> args, SHarnessOptions& o, std::string& err) {
    std::vector<char*> argv;
    static std::string prog = "ashen-oath";
    argv.push_back(prog.data());
    for (auto& a : args) argv.push_back(a.data());
    return ParseHarnessOptions(int(argv.size()), argv.data(), o, err);
}

}  // namespace

TEST(Harness, FlagsAreParsedAndBadValuesRefused) {
    SHarnessOptions o;
    std::string err;
    ASSERT_TRUE(Parse({"action=play", "--headless", "--uncapped", "--frames", "120", "--shot", "7:a.png", "--shot",
                       "90:shots/b:c.png", "--clock", "1299011409", "--dump-state", "s.json", "--warp",
                       "main.map:10:12", "--scale", "2"},
                      o, err))
        << err;
    EXPECT_TRUE(o.headless);
    EXPECT_TRUE(o.uncapped);
    EXPECT_EQ(o.frames, 120);
    ASSERT_EQ(o.shots.size(), 2u);
    EXPECT_EQ(o.shots[0].first, 7);
    EXPECT_EQ(o.shots[1].second, "shots/b:c.png");  // only the first colon splits
    EXPECT_EQ(o.clock, 1299011409);
    EXPECT_EQ(o.warpMap, "main.map");
    EXPECT_EQ(o.warpX, 10);
    EXPECT_EQ(o.warpY, 12);
    EXPECT_EQ(o.scale, 2);

    SHarnessOptions plain;
    ASSERT_TRUE(Parse({"--warp", "greywood.map"}, plain, err));
    EXPECT_EQ(plain.warpX, -1);
    EXPECT_EQ(plain.warpY, -1);

    for (auto bad : std::vector<std::vector<std::string>>{
             {"--frames"}, {"--frames", "-3"}, {"--frames", "12x"}, {"--shot", "abc"}, {"--shot", "5:"},
             {"--warp", "main.map:1"}, {"--warp", ":1:2"}, {"--scale", "0"}, {"--clock", "soon"}}) {
        SHarnessOptions x;
        std::string e;
        EXPECT_FALSE(Parse(bad, x, e)) << bad[0];
        EXPECT_FALSE(e.empty());
    }
}

TEST(Harness, ReplayLinesCommentsAndErrors) {
    std::vector<SReplayEvent> ev;
    std::string err;
    ASSERT_TRUE(ParseReplay("# a comment\n"
                            "10 move 320 200\n"
                            "\n"
                            "11 ldown 320 200   # press\n"
                            "15 lup 320 200\n"
                            "20 key 27\n"
                            "21 rdown 1 2\n"
                            "22 rup 1 2\n"
                            "30 quit\n",
                            ev, err))
        << err;
    ASSERT_EQ(ev.size(), 7u);
    EXPECT_EQ(ev[0].kind, SReplayEvent::MOVE);
    EXPECT_EQ(ev[1].frame, 11);
    EXPECT_EQ(ev[1].kind, SReplayEvent::LDOWN);
    EXPECT_EQ(ev[3].kind, SReplayEvent::KEY);
    EXPECT_EQ(ev[3].x, 27);
    EXPECT_EQ(ev[6].kind, SReplayEvent::QUIT);

    for (const char* bad : {"x move 1 2\n", "5 jump 1 2\n", "5 move 1\n", "5 key\n", "5 quit now\n",
                            "5 move 640 10\n", "5 ldown -1 4\n"}) {
        std::vector<SReplayEvent> e;
        std::string m;
        EXPECT_FALSE(ParseReplay(std::string("1 move 2 3\n") + bad, e, m)) << bad;
        EXPECT_NE(m.find("line 2"), std::string::npos) << m;
    }
}

TEST(Harness, PngDumpRoundTripsPureColours) {
    std::vector<uint16_t> px(640 * 480, 0);
    px[0] = 0xF800;              // red
    px[1] = 0x07E0;              // green
    px[640 * 479 + 639] = 0xFFFF;  // white
    std::string path = (std::filesystem::current_path() / ("ashen_png_test.png_" + std::to_string(getpid()))).string();
    ASSERT_TRUE(WritePng565(path.c_str(), px.data(), 640, 480));
    png_image img;
    memset(&img, 0, sizeof(img));
    img.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_file(&img, path.c_str()));
    img.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> rgb(PNG_IMAGE_SIZE(img));
    ASSERT_TRUE(png_image_finish_read(&img, nullptr, rgb.data(), 0, nullptr));
    EXPECT_EQ(img.width, 640u);
    EXPECT_EQ(img.height, 480u);
    EXPECT_EQ(rgb[0], 255);
    EXPECT_EQ(rgb[1], 0);
    EXPECT_EQ(rgb[4], 255);  // green of pixel 1
    size_t last = (size_t(640) * 479 + 639) * 3;
    EXPECT_EQ(rgb[last], 255);
    EXPECT_EQ(rgb[last + 2], 255);
    EXPECT_EQ(rgb[3 * 2], 0);
    std::remove(path.c_str());
}
