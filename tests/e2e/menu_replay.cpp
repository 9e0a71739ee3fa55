// The real binary, headless, driven by the replays replays/menus.txt (the
// splash pictures into the main menu, the credits and back, the load panel left
// by Esc and by its close button, and quit) and replays/game_menu.txt (the game
// menu's choices in play). The same replay runs with several frame limits so the
// dumped mode can be checked at each step.
#include <gtest/gtest.h>
#include <png.h>

#include <cstring>
#include <vector>

#include "e2e_util.h"

using namespace e2e;

namespace {

struct SShot {
    std::vector<uint8_t> rgb;
    bool ok = false;
    const uint8_t* At(int x, int y) const { return &rgb[(size_t(y) * 640 + size_t(x)) * 3]; }
};

SShot ReadPng(const fs::path& path) {
    SShot s;
    png_image img;
    std::memset(&img, 0, sizeof img);
    img.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&img, path.c_str())) return s;
    img.format = PNG_FORMAT_RGB;
    s.rgb.resize(PNG_IMAGE_SIZE(img));
    s.ok = png_image_finish_read(&img, nullptr, s.rgb.data(), 0, nullptr) && img.width == 640 && img.height == 480;
    return s;
}

// Share of pixels that differ clearly between two shots inside a rectangle.
double Difference(const SShot& a, const SShot& b, int l, int t, int r, int bt) {
    long differ = 0, total = 0;
    for (int y = t; y < bt; ++y)
        for (int x = l; x < r; ++x) {
            const uint8_t* p = a.At(x, y);
            const uint8_t* q = b.At(x, y);
            differ += std::abs(p[0] - q[0]) + std::abs(p[1] - q[1]) + std::abs(p[2] - q[2]) > 30;
            ++total;
        }
    return total ? double(differ) / double(total) : 0;
}

long ModeAfter(const fs::path& dir, int frames, const std::string& extra = "") {
    fs::path state = dir / ("state_" + std::to_string(frames) + ".json");
    Result r = e2e::RunGame(dir, "action=play --headless --uncapped --clock 1299011409 --frames " + std::to_string(frames) +
                            " --replay '" + Replay("menus.txt").string() + "' --dump-state '" + state.string() +
                            "' " + extra,
                   "ASHEN_LAUNCHER_NOEXEC=1");
    return StateInt(ReadState(state), "mode");
}

}  // namespace

TEST(MenuReplay, CreditsLoadPanelAndQuitByMouse) {
    fs::path dir = CopyGame("menu");
    // A saved game in slot 2 and a foreign file in slot 3.
    std::string slot(400, '\0');
    std::memcpy(&slot[0], "vnsv", 4);
    std::memcpy(&slot[4], "2026/11/22-28:5:9", 17);
    std::memcpy(&slot[34 + 24], "Ashvale", 7);
    WriteFile(dir / "saves" / "2.sav", slot);
    WriteFile(dir / "saves" / "3.sav", "NOPE" + slot.substr(4));

    EXPECT_EQ(ModeAfter(dir, 329), 2);  // GS_MAINMENU
    const std::string shots = "--shot 324:'" + (dir / "menu.png").string() + "' --shot 328:'" +
                              (dir / "menu_hover.png").string() + "' --shot 365:'" + (dir / "credits.png").string() +
                              "' --shot 404:'" + (dir / "load.png").string() + "'";
    EXPECT_EQ(ModeAfter(dir, 365), 8);         // GS_CREDITS
    EXPECT_EQ(ModeAfter(dir, 399), 2);         // back in the main menu
    EXPECT_EQ(ModeAfter(dir, 405, shots), 7);  // GS_LOAD
    EXPECT_EQ(ModeAfter(dir, 412), 2);         // Esc: back where it was opened
    EXPECT_EQ(ModeAfter(dir, 418), 7);
    EXPECT_EQ(ModeAfter(dir, 425), 2);         // the close button
    EXPECT_EQ(ModeAfter(dir, 427), 16);        // F9: GS_BOSSKEY
    fs::remove_all(dir / "screenshot");
    fs::create_directories(dir / "screenshot");
    // Quit fades out and ends the program before the frame limit.
    fs::path state = dir / "state_quit.json";
    Result r = e2e::RunGame(dir,
                   "action=play --headless --uncapped --clock 1299011409 --frames 600 --replay '" +
                       Replay("menus.txt").string() + "' --dump-state '" + state.string() + "'",
                   "ASHEN_LAUNCHER_NOEXEC=1");
    EXPECT_EQ(StateInt(ReadState(state), "mode"), 14) << r.err;  // GS_QUIT
    long frames = -1;
    if (std::sscanf(r.out.c_str(), "frames=%ld", &frames) == 1) {
        EXPECT_LT(frames, 600);
    }

    // F11 wrote one JPEG that an independent decoder reads: 640 x 480, 3 components.
    std::vector<fs::path> jpegs;
    for (auto& e : fs::directory_iterator(dir / "screenshot"))
        if (e.path().extension() == ".jpg") jpegs.push_back(e.path());
    ASSERT_EQ(jpegs.size(), 1u);
    const std::string name = jpegs[0].filename().string();
    EXPECT_EQ(name.rfind("2011312830", 0), 0u) << name;  // 2011-03-01 20:30 UTC: hour 28
    std::string info;
    if (FILE* p = popen(("djpeg -verbose -verbose '" + jpegs[0].string() + "' 2>&1 >/dev/null").c_str(), "r")) {
        char buf[4096];
        size_t n;
        while ((n = fread(buf, 1, sizeof buf, p)) > 0) info.append(buf, n);
        pclose(p);
    }
    EXPECT_NE(info.find("width=640, height=480, components=3"), std::string::npos) << info;

    const SShot menu = ReadPng(dir / "menu.png"), credits = ReadPng(dir / "credits.png"),
                load = ReadPng(dir / "load.png"), hover = ReadPng(dir / "menu_hover.png");
    ASSERT_TRUE(menu.ok && credits.ok && load.ok && hover.ok);
    // The credits page is another picture than the menu.
    EXPECT_GT(Difference(menu, credits, 0, 0, 640, 480), 0.3);
    // The load panel stands in the middle over the menu; the menu's corners stay.
    EXPECT_GT(Difference(menu, load, 140, 120, 500, 400), 0.3);
    EXPECT_LT(Difference(menu, load, 0, 0, 100, 40), 0.01);
    // The cursor rests on the credits button: its hover picture is shown.
    EXPECT_GT(Difference(menu, hover, 222, 336, 418, 376), 0.05);
    EXPECT_LT(Difference(menu, hover, 222, 230, 418, 268), 0.01);
    fs::remove_all(dir);
}

// In play (warped onto the first map): the game menu's choices and Esc in each
// of the panels it opens, then back to the main menu.
TEST(MenuReplay, GameMenuChoicesByMouseAndEsc) {
    fs::path dir = CopyGame("gamemenu");
    const std::pair<int, long> steps[] = {{33, 5}, {38, 15}, {42, 3}, {47, 5}, {52, 6}, {57, 3},
                                          {62, 5}, {67, 7},  {72, 3}, {77, 5}, {82, 3}, {87, 5}, {95, 1}, {115, 2}};
    for (const auto& [frames, mode] : steps) {
        fs::path state = dir / "state.json";
        std::string extra = "--warp main.map --frames " + std::to_string(frames);
        if (frames == 38) extra += " --shot 37:'" + (dir / "help.png").string() + "'";
        RunGame(dir, "action=play --headless --uncapped --clock 1299011409 --replay '" +
                         Replay("game_menu.txt").string() + "' --dump-state '" + state.string() + "' " + extra,
                "ASHEN_LAUNCHER_NOEXEC=1");
        const nlohmann::json json = ReadState(state);
        EXPECT_EQ(StateInt(json, "mode"), mode) << "after " << frames << " frames";
        // Leaving the game clears the music flag; the main menu starts its music again.
        if (mode == 1 || mode == 2) {
            EXPECT_EQ(StateInt(json, "music_started"), mode == 2 ? 1 : 0);
        }
        fs::remove(state);
    }
    // The help screen's title is drawn in green over the dialog panel.
    const SShot help = ReadPng(dir / "help.png");
    ASSERT_TRUE(help.ok);
    long green = 0;
    for (int y = 60; y < 95; ++y)
        for (int x = 260; x < 380; ++x) {
            const uint8_t* p = help.At(x, y);
            green += p[1] > 200 && p[0] < 80 && p[2] < 80;
        }
    EXPECT_GT(green, 10);
    fs::remove_all(dir);
}
