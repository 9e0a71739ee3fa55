// The real binary, headless: the launcher hand-shake, start-up failures, the
// splash pictures into the main menu, the frame summary and a shot.
#include <gtest/gtest.h>
#include <png.h>

#include <cstring>
#include <vector>

#include "base/log.h"
#include "e2e_util.h"

using namespace e2e;

TEST(Boot, WithoutActionPlayTheLauncherIsStartedAndNoGameRuns) {
    fs::path dir = CopyGame("launch");
    fs::path log = dir / "launcher.log";
    // "ACTION=PLAY" is not the hand-shake (case-sensitive).
    Result r = RunGame(dir, "ACTION=PLAY --headless", "ASHEN_LAUNCHER_LOG='" + log.string() + "' ASHEN_LAUNCHER_NOEXEC=1");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_FALSE(fs::exists(dir / "GameEngine.log"));
    std::string calls = WaitForLauncherLog(log);
    EXPECT_EQ(calls.rfind("launcher []\n", 0), 0u) << calls;
    fs::remove_all(dir);
}

TEST(Boot, SplashPicturesLeadToTheMainMenuWithSummaryAndShot) {
    fs::path dir = CopyGame("boot");
    fs::path shot = dir / "menu.png", state = dir / "state.json", log = dir / "launcher.log";
    Result r = RunGame(dir,
                   "--headless --uncapped --frames 340 --clock 1299011409 action=play --dump-state '" +
                       state.string() + "' --shot 330:'" + shot.string() + "'",
                   "ASHEN_LAUNCHER_LOG='" + log.string() + "'");
    EXPECT_EQ(r.exitCode, 0) << r.err;  // a --frames run that ran all its frames
    // frames=N wall_ms=W cpu_ms=C peak_rss_kb=R
    long frames = -1, wall = -1, cpu = -1, rss = -1;
    ASSERT_EQ(sscanf(r.out.c_str(), "frames=%ld wall_ms=%ld cpu_ms=%ld peak_rss_kb=%ld", &frames, &wall, &cpu, &rss),
              4)
        << r.out;
    EXPECT_EQ(frames, 340);
    EXPECT_GT(rss, 0);
    const nlohmann::json json = ReadState(state);
    EXPECT_EQ(StateInt(json, "mode"), 2) << json.dump();  // GS_MAINMENU
    EXPECT_EQ(WaitForLauncherLog(log), "launcher [time=end]\n");
    std::string engineLog = ReadFile(dir / "GameEngine.log");
    EXPECT_EQ(engineLog.rfind("\t\t..::Game Log::..\r\n", 0), 0u);
    EXPECT_NE(engineLog.find("(2011/3/1  28:30:"), std::string::npos);
    EXPECT_NE(engineLog.find("Init DDraw succeed!"), std::string::npos);
    // The menu shot is a real picture, not black.
    png_image img;
    memset(&img, 0, sizeof(img));
    img.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_file(&img, shot.c_str()));
    img.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> rgb(PNG_IMAGE_SIZE(img));
    ASSERT_TRUE(png_image_finish_read(&img, nullptr, rgb.data(), 0, nullptr));
    long lit = 0;
    for (size_t i = 0; i < rgb.size(); i += 3) lit += (rgb[i] + rgb[i + 1] + rgb[i + 2]) > 60;
    EXPECT_GT(lit, 640 * 480 / 4);
    fs::remove_all(dir);
}

TEST(Boot, MissingLayoutFailsStartUpWithItsMessagesAndCallsTheLauncher) {
    fs::path dir = CopyGame("nodlg");
    // Rebuild the ini archive without dlg.ini.
    fs::path unpacked = dir / "ini_unpacked";
    std::string vrn = std::string(ASHEN_BIN_DIR) + "/vrn";
    ASSERT_EQ(std::system((vrn + " unpack '" + (dir / "data/ini.vrn").string() + "' '" + unpacked.string() + "'").c_str()),
              0);
    ASSERT_TRUE(fs::remove(unpacked / "dlg.ini"));
    fs::remove(dir / "data/ini.vrn");
    ASSERT_EQ(std::system((vrn + " pack '" + unpacked.string() + "' '" + (dir / "data/ini.vrn").string() + "'").c_str()),
              0);
    fs::path log = dir / "launcher.log";
    Result r = RunGame(dir, "action=play --headless --frames 5", "ASHEN_LAUNCHER_LOG='" + log.string() + "'");
    EXPECT_EQ(r.exitCode, 1);
    size_t a = r.err.find("Load ini files failed!");
    size_t b = r.err.find("Initialize application failed.");
    ASSERT_NE(a, std::string::npos) << r.err;
    ASSERT_NE(b, std::string::npos) << r.err;
    EXPECT_LT(a, b);
    EXPECT_EQ(WaitForLauncherLog(log), "launcher [time=end]\n");
    fs::remove_all(dir);
}

TEST(Boot, MissingBootstrapIniFailsOnGameIni) {
    fs::path dir = CopyGame("noboot");
    fs::remove(dir / "game.ini");
    Result r = RunGame(dir, "action=play --headless --frames 5");
    EXPECT_NE(r.err.find("Load game.ini failed!"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("Initialize application failed."), std::string::npos);
    fs::remove_all(dir);
}

TEST(Boot, KilledBySignalLeavesTheCrashLog) {
    if (CrashLogSanitized()) GTEST_SKIP() << "a sanitised build lets the sanitizer report crashes";
    fs::path dir = CopyGame("crash");
    // The game runs uncapped for long; it is killed by SIGSEGV from outside.
    std::string cmd = "cd '" + dir.string() +
                      "' && (./ashen-oath action=play --headless & pid=$!; sleep 2; kill -SEGV $pid; wait $pid) "
                      ">/dev/null 2>&1";
    int status = std::system(cmd.c_str());
    (void)status;
    std::string text = ReadFile(dir / "exceptionLog.log");
    EXPECT_NE(text.find(" : 0xC0000005\r\r\n"), std::string::npos) << text;
    fs::remove_all(dir);
}
