#include <gtest/gtest.h>

#include <cstring>

#include "ui/panel.h"
#include "ui/richtext.h"
#include "ui_test_util.h"

namespace {

SRichLayout Layout(int32_t wrap = 0) {
    SRichLayout l;
    l.x = 100;
    l.y = 50;
    l.lineHeight = 20;
    l.wrapBytes = wrap;
    l.defaultColor = RGB(1, 2, 3);
    return l;
}

std::string Walk(const char* text, int32_t wrap = 0) {
    CRecordingSink sink;
    CRichTextWriter w(sink, Layout(wrap));
    w.Paragraph(text, std::strlen(text));
    std::string all;
    for (const auto& r : sink.runs) all += r.text;
    return all;
}

}  // namespace

TEST(RichText, ColouredRunsAdvanceByMeasuredWidths) {
    CRecordingSink sink;
    CRichTextWriter w(sink, Layout());
    w.Paragraph(std::string("<2red/> and <4blue/>"));
    ASSERT_EQ(sink.runs.size(), 3u);
    EXPECT_EQ(sink.runs[0].text, "red");
    EXPECT_EQ(sink.runs[0].color, RGB(255, 0, 0));
    EXPECT_EQ(sink.runs[0].x, 100);
    EXPECT_EQ(sink.runs[1].text, " and ");
    EXPECT_EQ(sink.runs[1].color, RGB(1, 2, 3));
    EXPECT_EQ(sink.runs[1].x, 130);
    EXPECT_EQ(sink.runs[2].text, "blue");
    EXPECT_EQ(sink.runs[2].color, RGB(0, 0, 255));
    EXPECT_EQ(sink.runs[2].x, 180);
    for (const auto& r : sink.runs) EXPECT_EQ(r.y, 50);

    // No nesting: a new "<" switches colour, "/>" always returns to the default.
    CRecordingSink s2;
    CRichTextWriter w2(s2, Layout());
    w2.Paragraph(std::string("<3a<9b/>c"));
    ASSERT_EQ(s2.runs.size(), 3u);
    EXPECT_EQ(s2.runs[0].color, RGB(0, 255, 0));
    EXPECT_EQ(s2.runs[1].color, RGB(255, 255, 255));
    EXPECT_EQ(s2.runs[2].color, RGB(1, 2, 3));
    // "<" before something other than a digit keeps the colour; at the end it vanishes.
    CRecordingSink s3;
    CRichTextWriter w3(s3, Layout());
    w3.Paragraph(std::string("<5x<zy<"));
    ASSERT_EQ(s3.runs.size(), 2u);
    EXPECT_EQ(s3.runs[1].text, "y");
    EXPECT_EQ(s3.runs[1].color, RGB(255, 255, 0));
}

TEST(RichText, ColourTable) {
    const COLORREF expected[10] = {RGB(0, 0, 0),     RGB(0, 0, 0),     RGB(255, 0, 0),   RGB(0, 255, 0),
                                   RGB(0, 0, 255),   RGB(255, 255, 0), RGB(255, 0, 255), RGB(0, 255, 255),
                                   RGB(127, 127, 127), RGB(255, 255, 255)};
    for (int d = 0; d < 10; ++d) EXPECT_EQ(RichTextColor(d), expected[d]) << d;
}

TEST(RichText, CommaHidesTheNextByteAndSlashStays) {
    EXPECT_EQ(Walk("A, B"), "A,B");
    EXPECT_EQ(Walk("x,y"), "x,");
    EXPECT_EQ(Walk("1,2"), "1,");
    EXPECT_EQ(Walk("50/100"), "50/100");
    EXPECT_EQ(Walk("end,"), "end,");

    std::string gold = "Gold\\dSilver";
    ExpandCommaEscapes(gold);
    EXPECT_EQ(gold, "Gold, Silver");
    EXPECT_EQ(Walk(gold.c_str()), "Gold,Silver");
    std::string spaced = "Gold\\d Silver";
    ExpandCommaEscapes(spaced);
    EXPECT_EQ(Walk(spaced.c_str()), "Gold, Silver");
    char buf[] = "a\\d\\db\\";
    ExpandCommaEscapes(buf);
    EXPECT_STREQ(buf, "a, , b\\");
}

TEST(RichText, WrapKeepsTwoByteCharactersWhole) {
    // Nine ASCII bytes, then a GBK character (0xB0 0xA1) that would straddle a
    // 10-byte wrap: the line takes it whole and holds 11 bytes.
    const std::string text = std::string("abcdefghi") + "\xB0\xA1" + "jk";
    CRecordingSink sink;
    CRichTextWriter w(sink, Layout(10));
    w.Paragraph(text);
    ASSERT_EQ(sink.runs.size(), 2u);
    EXPECT_EQ(sink.runs[0].text, std::string("abcdefghi") + "\xB0\xA1");
    EXPECT_EQ(sink.runs[0].y, 50);
    EXPECT_EQ(sink.runs[1].text, "jk");
    EXPECT_EQ(sink.runs[1].x, 100);
    EXPECT_EQ(sink.runs[1].y, 70);
    EXPECT_EQ(w.CurrentLine(), 1);

    // A lead byte at the very end does not read past the text.
    CRecordingSink s2;
    CRichTextWriter w2(s2, Layout(4));
    w2.Paragraph("ab\xB0", 3);
    ASSERT_EQ(s2.runs.size(), 1u);
    EXPECT_EQ(s2.runs[0].text, "ab\xB0");
}

TEST(RichText, LineFeedsParagraphsAndCentring) {
    CRecordingSink sink;
    SRichLayout l = Layout(0);
    l.centred = true;
    CRichTextWriter w(sink, l);
    w.Paragraph(std::string("one\ntwo"));
    w.Paragraph(std::string(""));      // an empty paragraph makes no line
    w.Paragraph(std::string("three"));
    w.Paragraph(std::string("four\n"));  // ends on an empty line...
    w.Paragraph(std::string("five"));    // ...which the next paragraph uses
    EXPECT_EQ(sink.LineAt(50), "one");
    EXPECT_EQ(sink.LineAt(70), "two");
    EXPECT_EQ(sink.LineAt(90), "three");
    EXPECT_EQ(sink.LineAt(110), "four");
    EXPECT_EQ(sink.LineAt(130), "five");
    for (const auto& r : sink.runs) {
        EXPECT_TRUE(r.centred);
        EXPECT_EQ(r.x, 100);  // every line's first run sits on the centre
    }
}

TEST(RichText, LabelScrollsToTheEnd) {
    SLabel label;
    label.x = 10;
    label.y = 100;
    label.lineHeight = 20;
    label.linesShown = 3;
    label.lineChars = 4;
    label.lines = {"aaaabbbbcccc", "ddd\neee"};  // five screen lines
    CRecordingSink sink;
    DrawLabelText(label, sink);
    EXPECT_EQ(label.atEnd, 0);
    ASSERT_EQ(sink.runs.size(), 3u);
    EXPECT_EQ(sink.LineAt(100), "aaaa");
    EXPECT_EQ(sink.LineAt(140), "cccc");

    label.firstLine = 1;
    sink.runs.clear();
    DrawLabelText(label, sink);
    EXPECT_EQ(label.atEnd, 0);
    EXPECT_EQ(sink.LineAt(100), "bbbb");
    EXPECT_EQ(sink.LineAt(140), "ddd");

    label.firstLine = 2;
    sink.runs.clear();
    DrawLabelText(label, sink);
    EXPECT_EQ(label.atEnd, 1);
    ASSERT_EQ(sink.runs.size(), 3u);
    EXPECT_EQ(sink.LineAt(100), "cccc");
    EXPECT_EQ(sink.LineAt(120), "ddd");
    EXPECT_EQ(sink.LineAt(140), "eee");

    // A line filled to the wrap width and then a line feed leaves an empty line.
    label.lines = {"dddd\neee"};
    label.firstLine = 0;
    sink.runs.clear();
    DrawLabelText(label, sink);
    EXPECT_EQ(sink.LineAt(100), "dddd");
    EXPECT_EQ(sink.LineAt(120), "");
    EXPECT_EQ(sink.LineAt(140), "eee");

    // "\d" is expanded in the stored lines.
    label.lines = {"Gold\\dSilver"};
    label.firstLine = 0;
    label.lineChars = 0;
    sink.runs.clear();
    DrawLabelText(label, sink);
    EXPECT_EQ(label.lines[0], "Gold, Silver");
    EXPECT_EQ(sink.LineAt(100), "Gold,Silver");
}

TEST(RichText, TooltipPlacementAtTheEdges) {
    // Inside the screen: the box surrounds the text area by 3 pixels left and right.
    STooltipPlacement p = PlaceTooltip(100, 100, 150, 20, 3);
    EXPECT_EQ(p.left, 100);
    EXPECT_EQ(p.top, 100);
    EXPECT_EQ(p.box.left, 97);
    EXPECT_EQ(p.box.right, 253);
    EXPECT_EQ(p.box.bottom, 164);
    EXPECT_EQ(p.penX, 177);
    EXPECT_EQ(p.penY, 102);

    // At x = 620 the box is moved left so that it ends before x = 640.
    p = PlaceTooltip(620, 100, 150, 20, 3);
    EXPECT_EQ(p.left, 485);
    EXPECT_LT(p.box.right, 640);
    // The last x that stays, and the first that moves.
    EXPECT_EQ(PlaceTooltip(486, 0, 150, 20, 1).left, 486);
    EXPECT_EQ(PlaceTooltip(487, 0, 150, 20, 1).left, 485);
    // The left edge is at least 4.
    EXPECT_EQ(PlaceTooltip(-20, 0, 150, 20, 1).left, 4);

    // Bottom: 3 lines of 20 need 64 pixels with the margin.
    EXPECT_EQ(PlaceTooltip(0, 416, 150, 20, 3).top, 416);
    p = PlaceTooltip(0, 417, 150, 20, 3);
    EXPECT_EQ(p.top, 413);
    EXPECT_LE(p.box.bottom, 480);
}

TEST(RichText, LongRunsAreDrawnInPiecesThatJoin) {
    // 600 bytes without markup or wrap exceed the run buffer: the pieces follow
    // one another on the line and together give the text.
    std::string text;
    for (int i = 0; i < 300; ++i) text += (i % 2) ? "\xB0\xA1" : "x";
    CRecordingSink sink;
    CRichTextWriter w(sink, Layout());
    w.Paragraph(text);
    ASSERT_GT(sink.runs.size(), 1u);
    std::string joined;
    int32_t x = 100;
    for (const auto& r : sink.runs) {
        EXPECT_EQ(r.x, x);
        EXPECT_EQ(r.y, 50);
        x += int32_t(r.text.size()) * 10;
        joined += r.text;
        // No piece ends inside a two-byte character.
        size_t i = 0;
        while (i < r.text.size()) i += (uint8_t(r.text[i]) >= 0x80) ? 2 : 1;
        EXPECT_EQ(i, r.text.size());
    }
    EXPECT_EQ(joined, text);
}
