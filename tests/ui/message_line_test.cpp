#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ui/message_line.h"
#include "ui_test_util.h"

TEST(MessageLine, MergeRules) {
    SMessageLine line;
    MessageLineShow(line, "Level Up!");
    EXPECT_STREQ(line.text, "Level Up!");
    EXPECT_EQ(line.framesLeft, 70);

    // A second message while the first shows: side by side, two blanks apart.
    line.framesLeft = 12;
    MessageLineShow(line, "My bag is full.");
    EXPECT_STREQ(line.text, "Level Up!  My bag is full.");
    EXPECT_EQ(line.framesLeft, 70);

    // The same message again shows once and restarts the timer.
    line.framesLeft = 3;
    MessageLineShow(line, "My bag is full.");
    EXPECT_STREQ(line.text, "My bag is full.");
    EXPECT_EQ(line.framesLeft, 70);

    // Once the line has run out, a new message replaces the old one.
    line.framesLeft = 0;
    MessageLineShow(line, "Game Data Saved.");
    EXPECT_STREQ(line.text, "Game Data Saved.");

    // Lengths adding up to 77 join; 78 replace.
    const std::string a(40, 'a');
    std::strcpy(line.text, a.c_str());
    line.framesLeft = 5;
    MessageLineShow(line, std::string(37, 'b').c_str());
    EXPECT_EQ(std::string(line.text), a + "  " + std::string(37, 'b'));
    std::strcpy(line.text, a.c_str());
    line.framesLeft = 5;
    MessageLineShow(line, std::string(38, 'c').c_str());
    EXPECT_EQ(std::string(line.text), std::string(38, 'c'));

    // "\d" becomes ", " before anything else.
    line.framesLeft = 0;
    MessageLineShow(line, "Gold\\dSilver");
    EXPECT_STREQ(line.text, "Gold, Silver");

    // An over-long message is cut to the line's 255 bytes.
    line.framesLeft = 0;
    MessageLineShow(line, std::string(400, 'x').c_str());
    EXPECT_EQ(std::strlen(line.text), 255u);
}

TEST(MessageLine, BoxArithmetic) {
    const SRect r = MessageLineBox(100, 20);
    EXPECT_EQ(r.left, 265);
    EXPECT_EQ(r.top, 172);
    EXPECT_EQ(r.right, 375);
    EXPECT_EQ(r.bottom, 197);
    // Odd extents halve toward zero.
    const SRect o = MessageLineBox(101, 21);
    EXPECT_EQ(o.left, 264);
    EXPECT_EQ(o.top, 172);
}

TEST(MessageLine, DrawnForSeventyFramesInAHalvedBox) {
    CTestDisplay display;
    CGraph& g = *display.graph;
    SMessageLine line;
    MessageLineShow(line, "Level Up!");
    const SPoint size = g.MeasureText(line.text, 18);
    ASSERT_GT(size.x, 0);
    const SRect box = MessageLineBox(size.x, size.y);
    const uint16_t grey = RgbTo565(200, 200, 200);
    int drawn = 0;
    for (int frame = 0; frame < 80; ++frame) {
        g.FillRect(SURF_BUFFER, nullptr, grey);
        const int32_t before = line.framesLeft;
        MessageLineDraw(line, g);
        const CSurface& s = *g.GetSurface(SURF_BUFFER);
        if (before > 0) {
            ++drawn;
            // Inside the box's corner the picture is halved toward black; outside it is not.
            const uint16_t p = s.At(box.left, box.top);
            EXPECT_EQ(p >> 11, (grey >> 11) / 2);
            EXPECT_EQ(s.At(box.right, box.bottom), grey);
            EXPECT_EQ(s.At(box.left - 1, box.top), grey);
        } else {
            EXPECT_EQ(s.At(box.left, box.top), grey);
        }
    }
    EXPECT_EQ(drawn, 70);
    EXPECT_EQ(line.framesLeft, 0);
}
