#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "media/sound.h"
#include "ui/button.h"
#include "ui/dlg_panel.h"
#include "ui/menu_panels.h"
#include "ui/panel.h"
#include "ui_test_util.h"

namespace {

void WriteFile(const char* path, const std::string& text) {
    std::ofstream f(path, std::ios::binary);
    f << text;
}

// Restores the shared hover sound after a test.
struct SHoverSoundScope {
    CSound sound;
    SHoverSoundScope() { g_pButtonOverSound = &sound; }
    ~SHoverSoundScope() { g_pButtonOverSound = nullptr; }
};

}  // namespace

TEST(Button, HoverSoundOncePerEntry) {
    SHoverSoundScope scope;
    CButton b("caption", 10, 10, 0, 1);
    b.Move(10, 10, 50, 20);
    const int64_t start = ButtonHoverSoundCount();

    b.UpdateHover(SPoint{20, 15});
    b.Draw();
    b.Draw();
    b.UpdateHover(SPoint{59, 29});  // still inside (right and bottom excluded)
    b.Draw();
    EXPECT_EQ(ButtonHoverSoundCount() - start, 1);
    EXPECT_EQ(b.Sounded(), 1);

    EXPECT_FALSE(b.UpdateHover(SPoint{60, 15}));  // the right edge is outside
    b.Draw();
    EXPECT_EQ(b.Sounded(), 0);
    b.UpdateHover(SPoint{10, 10});
    b.Draw();
    EXPECT_EQ(ButtonHoverSoundCount() - start, 2);

    // A button made without the hover sound stays silent.
    CButton quiet("q", 0, 0, 0, 0);
    quiet.Move(0, 0, 10, 10);
    quiet.UpdateHover(SPoint{1, 1});
    quiet.Draw();
    EXPECT_EQ(ButtonHoverSoundCount() - start, 2);

    // Without a loaded hover sound nothing plays, but the entry still counts.
    g_pButtonOverSound = nullptr;
    CButton silent("s", 0, 0, 0, 1);
    silent.Move(0, 0, 10, 10);
    silent.UpdateHover(SPoint{1, 1});
    silent.Draw();
    EXPECT_EQ(silent.Sounded(), 1);
    EXPECT_EQ(ButtonHoverSoundCount() - start, 2);
}

TEST(Button, MoveKeepsCoordinatesGivenAsMinusOne) {
    CButton b("x", 30, 40, 0, 1);
    b.Move(-1, 90, 10, 5);
    EXPECT_EQ(b.X(), 30);
    EXPECT_EQ(b.Y(), 90);
    EXPECT_EQ(b.Rect().right, 40);
    EXPECT_EQ(b.Rect().bottom, 95);
    b.Move(70, -1, 2, 2);
    EXPECT_EQ(b.X(), 70);
    EXPECT_EQ(b.Y(), 90);
    b.SetText("other");  // the rect is not recomputed
    EXPECT_EQ(b.Rect().right, 72);
    EXPECT_EQ(b.Text(), "other");
}

TEST(Panel, OverlappingButtonsHighestNumberWins) {
    CPanel panel;
    for (int i = 0; i < 3; ++i) panel.Buttons().emplace_back("b", 0, 0, 0, 1);
    panel.Buttons()[0].Move(0, 0, 100, 100);
    panel.Buttons()[1].Move(50, 50, 100, 100);
    panel.Buttons()[2].Move(300, 300, 10, 10);
    EXPECT_EQ(panel.GetClickedButtonAt(SPoint{60, 60}), 1);
    EXPECT_EQ(panel.GetClickedButtonAt(SPoint{10, 10}), 0);
    EXPECT_EQ(panel.GetClickedButtonAt(SPoint{200, 200}), -1);
    EXPECT_EQ(panel.GetClickedButtonAt(SPoint{310, 305}), -1);  // right edge excluded
    panel.UpdateHoverAt(SPoint{60, 60});
    EXPECT_EQ(panel.Buttons()[0].Hover(), 1);
    EXPECT_EQ(panel.Buttons()[1].Hover(), 1);
    EXPECT_EQ(panel.Buttons()[2].Hover(), 0);
}

TEST(Panel, PictureReferences) {
    int pack = 7;
    std::string name;
    EXPECT_TRUE(ParsePictureRef("ui/mm_start.bmp", &pack, &name));
    EXPECT_EQ(pack, 1);
    EXPECT_EQ(name, "mm_start.bmp");
    EXPECT_TRUE(ParsePictureRef("items\\herb.bmp", &pack, &name));
    EXPECT_EQ(pack, 3);
    EXPECT_EQ(name, "herb.bmp");
    // "/" is looked for first, so a backslash before it belongs to the kind.
    pack = 7;
    EXPECT_TRUE(ParsePictureRef("tiles\\1/x.bmp", &pack, &name));
    EXPECT_EQ(pack, 7);
    EXPECT_EQ(name, "x.bmp");
    EXPECT_FALSE(ParsePictureRef("NULL", &pack, &name));
    EXPECT_FALSE(ParsePictureRef("bosskey.bmp", &pack, &name));
    EXPECT_FALSE(ParsePictureRef("", &pack, &name));
}

TEST(Panel, PictureButtonsTakeTheirRectFromThePicture) {
    CTestDisplay display;
    // Type 1 with a picture: the picture's size; with "NULL" or a missing picture: empty.
    CButton pic("ui/btn.bmp", 20, 30, 1, 1);
    EXPECT_EQ(pic.Rect().left, 20);
    EXPECT_EQ(pic.Rect().right, 220);
    EXPECT_EQ(pic.Rect().bottom, 74);
    CButton none("NULL", 20, 30, 1, 1);
    EXPECT_EQ(none.Rect().Width(), 0);
    CButton missing("ui/nothing.bmp", 20, 30, 1, 1);
    EXPECT_EQ(missing.Rect().Width(), 0);
    // Backslash form works as "/".
    CButton back("ui\\small.bmp", 0, 0, 1, 1);
    EXPECT_EQ(back.Rect().Width(), 28);

    // Type 2 reacts only with a hover picture named; without one it never
    // reacts but still draws its normal picture.
    CButton withHover("ui/btn.bmp", 0, 0, 2, 1, "ui/btn_h.bmp");
    EXPECT_EQ(withHover.Rect().Width(), 200);
    CButton noHover("ui/btn.bmp", 0, 0, 2, 1);
    EXPECT_EQ(noHover.Text1(), "NULL");
    EXPECT_FALSE(noHover.UpdateHover(SPoint{5, 5}));
    display.graph->FillRect(SURF_BUFFER, nullptr, 0);
    noHover.Draw();
    EXPECT_EQ(display.graph->GetSurface(SURF_BUFFER)->At(5, 5), RgbTo565(40, 80, 120));

    // Hover pictures: type 2 shows text1, type 1 brightens its picture.
    withHover.UpdateHover(SPoint{5, 5});
    withHover.Draw();
    EXPECT_EQ(display.graph->GetSurface(SURF_BUFFER)->At(5, 5), RgbTo565(200, 200, 40));
    pic.UpdateHover(SPoint{25, 35});
    pic.Draw();
    const uint16_t normal = RgbTo565(40, 80, 120);
    const uint16_t lit = uint16_t(((((normal >> 11) & 31) + 7) << 11) | ((((normal >> 5) & 63) + 14) << 5) |
                                  ((normal & 31) + 7));
    EXPECT_EQ(display.graph->GetSurface(SURF_BUFFER)->At(25, 35), lit);

    // Type 0: the caption's measured extent.
    CButton text("Load Game", 5, 6, 0, 1);
    EXPECT_GT(text.Rect().Width(), 20);
    EXPECT_GT(text.Rect().Height(), 10);
}

TEST(Panel, LayoutFilesAndDialogScrolling) {
    CTestDisplay display;
    WriteFile("ui_test_mainmenu.ini",
              "[panel]\r\nbgpic=ui/nothing.bmp\r\n"
              "[startButton]\r\ntype=2\r\ntext=ui/btn.bmp\r\ntext1=ui/btn_h.bmp\r\nx=220\r\ny=226\r\n"
              "[loadButton]\r\ntype=2\r\ntext=ui/btn.bmp\r\ntext1=ui/btn_h.bmp\r\nx=220\r\ny=280\r\n"
              "[aboutButton]\r\ntype=1\r\ntext=ui/btn.bmp\r\nx=220\r\ny=334\r\n"
              "[exitButton]\r\ntype=0\r\ntext=Quit\r\nx=220\r\ny=388\r\n");
    CMainMenuPanel menu;
    ASSERT_TRUE(menu.Load("ui_test_mainmenu.ini", nullptr));
    ASSERT_EQ(menu.Buttons().size(), 4u);
    // At the origin: positions are screen positions.
    EXPECT_EQ(menu.Buttons()[1].Rect().top, 280);
    EXPECT_EQ(menu.GetClickedButtonAt(SPoint{300, 300}), 1);
    EXPECT_EQ(menu.GetClickedButtonAt(SPoint{300, 327}), -1);  // between buttons
    EXPECT_EQ(menu.Buttons()[3].Type(), 0);
    EXPECT_FALSE(menu.Load("ui_test_missing.ini", nullptr));

    WriteFile("ui_test_dlg.ini",
              "[panel]\r\nbgpic=NULL\r\nx=80\r\ny=50\r\n"
              "[exitButton]\r\ntype=1\r\ntext=ui/small.bmp\r\nx=440\r\ny=12\r\n"
              "[upButton]\r\ntype=1\r\ntext=ui/small.bmp\r\nx=440\r\ny=60\r\n"
              "[downButton]\r\ntype=1\r\ntext=ui/small.bmp\r\nx=440\r\ny=330\r\n"
              "[titleLabel]\r\nlines=1\r\nx=240\r\ny=16\r\nlineChars=40\r\n"
              "[textLabel]\r\nlines=3\r\nx=32\r\ny=60\r\nlineChars=4\r\n");
    CDlgPanel dlg;
    ASSERT_TRUE(dlg.Load("ui_test_dlg.ini", nullptr));
    ASSERT_EQ(dlg.Labels().size(), 2u);
    EXPECT_EQ(dlg.Labels()[0].x, 320);
    EXPECT_EQ(dlg.Labels()[0].centred, 1);
    EXPECT_EQ(dlg.Labels()[1].centred, 0);
    EXPECT_EQ(dlg.Labels()[1].y, 110);
    const SPoint up{525, 115}, down{525, 385}, close{525, 65};
    dlg.SetText({"<3Help/>"}, {"aaaabbbbccccddddeeee"});
    dlg.Draw();
    EXPECT_EQ(dlg.Labels()[1].atEnd, 0);
    EXPECT_EQ(dlg.OnClickAt(up), 1);  // up at the top does nothing
    EXPECT_EQ(dlg.Labels()[1].firstLine, 0);
    dlg.OnClickAt(down);
    dlg.Draw();
    dlg.OnClickAt(down);
    dlg.Draw();
    EXPECT_EQ(dlg.Labels()[1].firstLine, 2);
    EXPECT_EQ(dlg.Labels()[1].atEnd, 1);
    EXPECT_EQ(dlg.OnClickAt(down), 2);  // at the end: no further
    EXPECT_EQ(dlg.Labels()[1].firstLine, 2);
    dlg.OnClickAt(up);
    EXPECT_EQ(dlg.Labels()[1].firstLine, 1);
    EXPECT_EQ(dlg.Labels()[1].atEnd, 0);
    EXPECT_EQ(dlg.OnClickAt(close), 0);
    // New text starts from the top again.
    dlg.SetText({"t"}, {"x"});
    EXPECT_EQ(dlg.Labels()[1].firstLine, 0);
}

TEST(Panel, TooltipDrawnInsideTheScreen) {
    CTestDisplay display;
    CGraph& g = *display.graph;
    CPanel panel;
    const uint16_t grey = RgbTo565(200, 200, 200);
    g.FillRect(SURF_BUFFER, nullptr, grey);
    panel.DrawTooltip(620, 470, "Iron Sword", 23, 2);
    const int32_t width = g.MeasureText("aaaaaaaaaaaaaaaaaaaaaaa", 18).x;
    const SFontMetrics m = g.GetFontMetrics(18);
    ASSERT_GT(width, 0);
    const STooltipPlacement p = PlaceTooltip(620, 470, width, m.height + m.externalLeading, 2);
    EXPECT_LT(p.box.right, 640);
    EXPECT_LE(p.box.bottom, 480);
    const CSurface& s = *g.GetSurface(SURF_BUFFER);
    EXPECT_EQ(s.At(p.box.left, p.box.bottom - 1) >> 11, (grey >> 11) / 2);
    EXPECT_EQ(s.At(p.box.left - 1, p.box.top), grey);
    EXPECT_EQ(s.At(639, 479), grey);
    // White text lies inside the box.
    int white = 0;
    for (int32_t y = p.box.top; y < p.box.bottom; ++y)
        for (int32_t x = p.box.left; x < p.box.right; ++x) white += s.At(x, y) == 0xFFFF;
    EXPECT_GT(white, 10);
}
