#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "media/graph.h"
#include "ui/save_panel.h"
#include "ui_test_util.h"

namespace {

// A slot file as the game writes it: magic, 30-byte time, 92-byte map header
// (display name at byte 24), then some body bytes.
void WriteSlot(const char* path, const char* magic, const std::string& time, const std::string& display,
               size_t total = 400) {
    std::vector<uint8_t> f(total, 0);
    std::memcpy(f.data(), magic, 4);
    std::memcpy(f.data() + 4, time.data(), std::min<size_t>(time.size(), 30));
    std::memcpy(f.data() + 34 + 4, "main.map", 8);
    std::memcpy(f.data() + 34 + 24, display.data(), std::min<size_t>(display.size(), 68));
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(f.data()), std::streamsize(total));
}

}  // namespace

TEST(SavePanel, CaptionsFromSlotFiles) {
    std::remove("ui_test_missing.sav");
    EXPECT_EQ(SaveSlotCaption("ui_test_missing.sav"), "No Saved Data");
    EXPECT_FALSE(IsSaveFile("ui_test_missing.sav"));

    WriteSlot("ui_test_1.sav", "vnsv", "2026/11/22-28:0:5", "Ashvale");
    EXPECT_EQ(SaveSlotCaption("ui_test_1.sav"), "Ashvale(2026/11/22-28:0:5)");
    EXPECT_TRUE(IsSaveFile("ui_test_1.sav"));

    // Another magic: not a saved game.
    WriteSlot("ui_test_3.sav", "vnsx", "2026/11/22-28:0:5", "Ashvale");
    EXPECT_EQ(SaveSlotCaption("ui_test_3.sav"), "No Saved Data");
    EXPECT_FALSE(IsSaveFile("ui_test_3.sav"));

    // Cut short inside the map header: no caption from half a header.
    WriteSlot("ui_test_4.sav", "vnsv", "2026/1/1-8:0:0", "Ashvale", 100);
    EXPECT_EQ(SaveSlotCaption("ui_test_4.sav"), "No Saved Data");
    EXPECT_TRUE(IsSaveFile("ui_test_4.sav"));

    // Fields without a terminator stay inside their field; the caption is cut
    // to 49 bytes without splitting a two-byte character.
    std::string longName(40, 'N');
    longName += "\xB0\xA1\xB0\xA1";
    WriteSlot("ui_test_5.sav", "vnsv", std::string(30, '7'), longName);
    const std::string cut = SaveSlotCaption("ui_test_5.sav");
    EXPECT_LE(cut.size(), 49u);
    EXPECT_EQ(cut.substr(0, 40), std::string(40, 'N'));
    EXPECT_EQ(cut, longName + "(" + std::string(4, '7'));
    std::string odd(42, 'M');
    odd += "\xB0\xA1\xB0\xA1\xB0\xA1\xB0\xA1";
    WriteSlot("ui_test_6.sav", "vnsv", "t", odd);
    EXPECT_EQ(SaveSlotCaption("ui_test_6.sav"), std::string(42, 'M') + "\xB0\xA1\xB0\xA1\xB0\xA1");
}

TEST(SavePanel, SaveTimeHourPlusEight) {
    SSystemTime t;
    t.year = 2026;
    t.month = 3;
    t.day = 9;
    t.hour = 20;
    t.minute = 4;
    t.second = 0;
    EXPECT_EQ(FormatSaveTime(t), "2026/3/9-28:4:0");
    t.hour = 0;
    EXPECT_EQ(FormatSaveTime(t), "2026/3/9-8:4:0");
}

TEST(SavePanel, LayoutAndCentredCaptions) {
    CTestDisplay display;
    std::ofstream("ui_test_savepanel.ini", std::ios::binary)
        << "[panel]\r\nbgpic=ui/nothing.bmp\r\nx=120\r\ny=50\r\nw=400\r\nh=380\r\n"
           "[exitButton]\r\ntype=1\r\ntext=ui/small.bmp\r\nx=360\r\ny=12\r\n"
           "[Button0]\r\ny=76\r\n[Button1]\r\ny=124\r\n[Button2]\r\ny=172\r\n"
           "[Button3]\r\ny=220\r\n[Button4]\r\ny=268\r\n[Button5]\r\ny=316\r\n"
           "[titleLabel]\r\nlines=1\r\nx=200\r\ny=18\r\nlineChars=40\r\n";
    CSavePanel panel;
    ASSERT_TRUE(panel.Load("ui_test_savepanel.ini", nullptr));
    ASSERT_EQ(panel.Buttons().size(), 7u);
    EXPECT_EQ(panel.Width(), 400);
    EXPECT_EQ(panel.Height(), 380);
    EXPECT_EQ(panel.Buttons()[1].X(), 120);
    EXPECT_EQ(panel.Buttons()[6].Y(), 366);
    EXPECT_EQ(panel.Buttons()[2].Type(), 0);

    std::string captions[6] = {"No Saved Data", "Ashvale(2026/11/22-28:0:5)", "No Saved Data",
                               "No Saved Data", "No Saved Data", "x"};
    panel.SetTexts(captions, "<3Load Game/>");
    for (int n = 1; n <= 6; ++n) {
        const CButton& b = panel.Buttons()[size_t(n)];
        const SPoint size = display.graph->MeasureText(captions[n - 1].c_str(), 18);
        EXPECT_EQ(b.Text(), captions[n - 1]);
        EXPECT_EQ(b.X(), 120 + (400 - size.x) / 2) << n;
        EXPECT_EQ(b.Rect().Width(), size.x);
        EXPECT_EQ(b.Rect().Height(), size.y);
        EXPECT_EQ(b.Y(), 50 + 76 + 48 * (n - 1));  // y unchanged
    }
    EXPECT_LT(panel.Buttons()[2].X(), panel.Buttons()[1].X());  // the longer caption starts further left
    ASSERT_EQ(panel.Labels().size(), 1u);
    EXPECT_EQ(panel.Labels()[0].lines, std::vector<std::string>{"<3Load Game/>"});
    EXPECT_EQ(panel.Labels()[0].centred, 1);
    // A click on slot 2's caption answers 2.
    const SRect r = panel.Buttons()[2].Rect();
    EXPECT_EQ(panel.GetClickedButtonAt(SPoint{r.left + 1, r.top + 1}), 2);
}
