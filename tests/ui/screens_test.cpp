#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

#include "base/clock.h"
#include "ui/screenshot.h"
#include "ui/text_page.h"
#include "ui_test_util.h"

namespace {

std::string RunCommand(const std::string& cmd) {
    std::string out;
    if (FILE* p = popen(cmd.c_str(), "r")) {
        char buf[4096];
        size_t n;
        while ((n = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
        pclose(p);
    }
    return out;
}

}  // namespace

TEST(Credits, TextCentredByContentLines) {
    EXPECT_EQ(CenteredTextTop(20, 11), 130);
    EXPECT_EQ(CenteredTextTop(21, 3), 208);  // (480 - 63) / 2, truncated
    EXPECT_EQ(CenteredTextTop(25, 30), -135);

    CRecordingSink sink;
    const std::string text = BackslashesToLineFeeds("ASHEN OATH\\\\Thanks");
    EXPECT_EQ(text, "ASHEN OATH\n\nThanks");
    const int32_t lines = DrawTextPage(text, SRect{0, CenteredTextTop(20, 3), 640, 480}, 20, 0, sink);
    EXPECT_EQ(lines, 3);
    ASSERT_EQ(sink.runs.size(), 2u);
    EXPECT_EQ(sink.runs[0].text, "ASHEN OATH");
    EXPECT_EQ(sink.runs[0].x, 320);
    EXPECT_EQ(sink.runs[0].y, 210);
    EXPECT_TRUE(sink.runs[0].centred);
    EXPECT_EQ(sink.runs[1].y, 250);

    // A line wider than the page breaks at the last blank that fits (64 bytes
    // are 640 pixels with the test sink).
    sink.runs.clear();
    const std::string wide = std::string(60, 'a') + " " + std::string(10, 'b') + " cc";
    EXPECT_EQ(DrawTextPage(wide, SRect{0, 0, 640, 480}, 20, 0, sink), 2);
    ASSERT_EQ(sink.runs.size(), 2u);
    EXPECT_EQ(sink.runs[0].text, std::string(60, 'a'));
    EXPECT_EQ(sink.runs[1].text, std::string(10, 'b') + " cc");

    // The second byte of a GBK character may be 0x5C; it is not a line break.
    EXPECT_EQ(BackslashesToLineFeeds("\xD5\x5C\\x"), "\xD5\x5C\nx");
}

TEST(ScreenShot, FileNameFromTheClock) {
    // 2 January 2012, 09:05:03 UTC, 7 ms later.
    clock_control::SetVirtualTicks(true);
    clock_control::SetCalendarStart(1325495103);
    clock_control::AdvanceTicks(7);
    SSystemTime t;
    GetSystemTime(t);
    clock_control::Reset();
    EXPECT_EQ(ScreenShotFileName("/games/ashen", t), "/games/ashen/screenshot/20121217537.jpg");
    EXPECT_EQ(ScreenShotFileName("/games/ashen/", t), "/games/ashen/screenshot/20121217537.jpg");
    t.hour = 23;  // the hour is not reduced
    EXPECT_EQ(ScreenShotFileName("", t), "screenshot/20121231537.jpg");
}

TEST(ScreenShot, PixelShiftsAsGiven) {
    CSurface s;
    s.Create(3, 1, false);
    s.At(0, 0) = 0xF800;  // red
    s.At(1, 0) = 0x07E0;  // green: its top bits show in the red byte
    s.At(2, 0) = 0x001F;  // blue
    std::vector<uint8_t> bgr;
    SurfaceToBgr(s, bgr);
    const std::vector<uint8_t> expected = {0x00, 0x00, 0xF8, 0x00, 0xFC, 0x07, 0xF8, 0x03, 0x00};
    EXPECT_EQ(bgr, expected);
}

TEST(ScreenShot, JpegReadByAnIndependentDecoder) {
    CSurface s;
    s.Create(640, 480, false);
    for (int32_t y = 0; y < 480; ++y)
        for (int32_t x = 0; x < 640; ++x) s.At(x, y) = x < 320 ? RgbTo565(255, 0, 0) : RgbTo565(0, 0, 255);
    std::vector<uint8_t> bgr;
    SurfaceToBgr(s, bgr);
    mkdir("ui_test_shots", 0755);
    const char* path = "ui_test_shots/shot.jpg";
    ASSERT_TRUE(WriteJpegBgr(path, bgr.data(), 640, 480, 75));
    EXPECT_FALSE(WriteJpegBgr("ui_test_no_such_dir/shot.jpg", bgr.data(), 640, 480, 75));

    // djpeg reports the frame: baseline (SOF0), 640 x 480, 3 components, luma 2x2.
    const std::string info = RunCommand(std::string("djpeg -verbose -verbose ") + path + " 2>&1 >/dev/null");
    EXPECT_NE(info.find("JFIF"), std::string::npos) << info;
    EXPECT_NE(info.find("Start Of Frame 0xc0: width=640, height=480, components=3"), std::string::npos) << info;
    EXPECT_NE(info.find("Component 1: 2hx2v"), std::string::npos) << info;
    EXPECT_NE(info.find("Component 2: 1hx1v"), std::string::npos) << info;

    // ImageMagick estimates the quality from the tables.
    const std::string verbose = RunCommand(std::string("identify -verbose ") + path);
    EXPECT_NE(verbose.find("Quality: 75"), std::string::npos);
    EXPECT_NE(verbose.find("2x2,1x1,1x1"), std::string::npos);

    // Colours survive in the right order: red on the left, blue on the right.
    const std::string ppm = RunCommand(std::string("djpeg -pnm ") + path);
    const size_t header = ppm.find("255\n");
    ASSERT_NE(header, std::string::npos);
    const auto* px = reinterpret_cast<const uint8_t*>(ppm.data() + header + 4);
    ASSERT_GE(ppm.size(), header + 4 + size_t(640 * 480 * 3));
    const uint8_t* left = px + (240 * 640 + 100) * 3;
    const uint8_t* right = px + (240 * 640 + 540) * 3;
    EXPECT_GT(left[0], 200);
    EXPECT_LT(left[2], 60);
    EXPECT_LT(right[0], 60);
    EXPECT_GT(right[2], 200);
}
