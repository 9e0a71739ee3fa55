// The real binary on damaged data and careless command lines: every failure is
// said once, with the name of what failed, and the harness stops with a
// message and an exit code instead of running on without a word.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/log.h"
#include "e2e_util.h"

using namespace e2e;

namespace {

size_t Count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + what.size())) ++n;
    return n;
}

// The messages of an engine log, without their time stamps, each with its count.
std::map<std::string, int> LogMessages(const std::string& log) {
    std::map<std::string, int> out;
    size_t start = 0;
    while (start < log.size()) {
        size_t end = log.find('\n', start);
        if (end == std::string::npos) end = log.size();
        const std::string line = log.substr(start, end - start);
        const size_t arrow = line.find("----->");
        if (arrow != std::string::npos) ++out[line.substr(arrow + 6)];
        start = end + 1;
    }
    return out;
}

// Replaces a linked file of a game copy by the given bytes.
void Replace(const fs::path& file, const std::string& bytes) {
    fs::remove(file);
    WriteFile(file, bytes);
}

const char* const kWarp = "action=play --headless --uncapped --warp main.map ";

// Shell commands that wait (at most 30 seconds) until the game in dir has started
// up and runs its loop: its engine log has the mouse line of Init.
std::string WaitForStart(const fs::path& dir) {
    return "for i in $(seq 150); do grep -qa 'Mouse...OK' '" + (dir / "GameEngine.log").string() +
           "' 2>/dev/null && break; sleep 0.2; done; sleep 0.3; ";
}

}  // namespace

TEST(Hostile, DamagedHeroFileEndsTheGameWithTheRoleMessage) {
    const std::string hero = ReadFile(fs::path(ASHEN_GAME_DIR) / "data/role.pmg");
    ASSERT_GT(hero.size(), 2532u);
    std::string wrongMagic = hero;
    wrongMagic.replace(0, 4, "XXXX");
    std::string zeroCounts = hero.substr(0, 2532);
    zeroCounts.replace(24, 8, std::string(8, '\0'));  // frame and action counts
    const std::pair<const char*, std::string> variants[] = {
        {"magic", wrongMagic}, {"truncated", hero.substr(0, 3000)}, {"zero", zeroCounts}};
    for (const auto& [name, bytes] : variants) {
        const fs::path dir = CopyGame(std::string("hero_") + name);
        Replace(dir / "data/role.pmg", bytes);
        const Result r = RunGame(dir, std::string(kWarp) + "--frames 40");
        EXPECT_NE(r.err.find("Initializing role failed!"), std::string::npos) << name << ": " << r.err;
        EXPECT_NE(ReadFile(dir / "GameEngine.log").find("data\\role.pmg is missing or damaged"), std::string::npos);
        EXPECT_EQ(r.exitCode, 1) << name;  // the game ended before its 40 frames
        EXPECT_NE(r.err.find("the game ended after"), std::string::npos) << r.err;
        fs::remove_all(dir);
    }
}

TEST(Hostile, MissingOrBrokenFontIsSaidOnStderrAndInTheLog) {
    for (const char* variant : {"missing", "broken"}) {
        const fs::path dir = CopyGame(std::string("font_") + variant);
        fs::remove(dir / "data/seguibk.ttf");
        if (std::string(variant) == "broken") WriteFile(dir / "data/seguibk.ttf", "this is not a font");
        const Result r = RunGame(dir, "action=play --headless --uncapped --frames 20");
        EXPECT_EQ(r.exitCode, 0) << r.err;
        EXPECT_EQ(Count(r.err, "cannot open the font data/seguibk.ttf"), 1u) << variant << ": " << r.err;
        EXPECT_EQ(Count(ReadFile(dir / "GameEngine.log"), "Open font data/seguibk.ttf failed!"), 1u);
        fs::remove_all(dir);
    }
}

TEST(Hostile, ScreenshotFolderIsMadeWhenMissingAndAFailureIsSaid) {
    const fs::path dir = CopyGame("shot_folder");
    const std::string args = std::string(kWarp) + "--frames 40 --replay '" + Replay("screenshot.txt").string() + "'";
    fs::remove_all(dir / "screenshot");
    Result r = RunGame(dir, args);
    EXPECT_EQ(r.exitCode, 0) << r.err;
    ASSERT_TRUE(fs::is_directory(dir / "screenshot"));
    int jpegs = 0;
    for (const auto& e : fs::directory_iterator(dir / "screenshot")) jpegs += e.path().extension() == ".jpg";
    EXPECT_EQ(jpegs, 1);

    // A plain file in the folder's place: the shot is lost, but not in silence.
    fs::remove_all(dir / "screenshot");
    WriteFile(dir / "screenshot", "a file");
    r = RunGame(dir, args);
    EXPECT_NE(r.err.find("screenshot failed: " + (dir / "screenshot").string() + " is not a folder"),
              std::string::npos)
        << r.err;
    EXPECT_NE(ReadFile(dir / "GameEngine.log").find("Screenshot failed:"), std::string::npos);
    fs::remove_all(dir);
}

TEST(Hostile, AnEngineLogThatCannotBeWrittenIsSaid) {
    const fs::path dir = CopyGame("no_log");
    fs::create_directories(dir / "GameEngine.log");  // not even root can write a file there
    const Result r = RunGame(dir, "action=play --headless --uncapped --frames 10");
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.err.find("cannot write the engine log GameEngine.log"), std::string::npos) << r.err;
    fs::remove_all(dir);
}

TEST(Hostile, UnreadableIniEntriesAreNamedOnce) {
    const std::string archive = ReadFile(fs::path(ASHEN_GAME_DIR) / "data/ini.vrn");
    ASSERT_GT(archive.size(), 12u);
    const auto* b = reinterpret_cast<const uint8_t*>(archive.data());
    const uint32_t dataBase = uint32_t(b[4]) | uint32_t(b[5]) << 8 | uint32_t(b[6]) << 16 | uint32_t(b[7]) << 24;
    ASSERT_LT(dataBase, archive.size());

    // The directory is intact but no entry can be read: start-up stops on game.ini.
    fs::path dir = CopyGame("ini_empty");
    Replace(dir / "data/ini.vrn", archive.substr(0, dataBase));
    Result r = RunGame(dir, "action=play --headless --uncapped --frames 20");
    EXPECT_EQ(Count(r.err, "data\\ini.vrn: the entry game.ini cannot be read"), 1u) << r.err;
    EXPECT_EQ(Count(r.err, "the entry menu.ini cannot be read"), 1u);
    EXPECT_NE(r.err.find("Load game.ini failed!"), std::string::npos);
    EXPECT_EQ(r.err.find("无法打开文件"), std::string::npos) << r.err;
    EXPECT_EQ(r.exitCode, 1);
    fs::remove_all(dir);

    // Only the last stored entry is cut short: it alone is named, once.
    dir = CopyGame("ini_cut");
    Replace(dir / "data/ini.vrn", archive.substr(0, archive.size() - 8));
    r = RunGame(dir, "action=play --headless --uncapped --frames 20");
    EXPECT_EQ(Count(r.err, "cannot be read (damaged archive)"), 1u) << r.err;
    fs::remove_all(dir);
}

TEST(Hostile, MissingPicturePackIsReportedOncePerPackAndPicture) {
    for (const char* pack : {"ui", "tiles", "role"}) {
        const fs::path dir = CopyGame(std::string("pack_") + pack);
        fs::remove(dir / "data" / (std::string(pack) + ".vrn"));
        const Result r = RunGame(dir, std::string(kWarp) + "--frames 80");
        EXPECT_EQ(Count(r.err, std::string("无法打开文件data\\") + pack + ".vrn"), 1u) << pack << ": " << r.err;
        int pictures = 0;
        for (const auto& [message, count] : LogMessages(ReadFile(dir / "GameEngine.log"))) {
            if (message.rfind("can not find", 0) != 0) continue;
            ++pictures;
            EXPECT_EQ(count, 1) << pack << ": " << message;
        }
        EXPECT_GT(pictures, 0) << pack;
        fs::remove_all(dir);
    }
}

TEST(HarnessErrors, BadFlagsFilesAndCellsStopTheRunWithAMessage) {
    const fs::path dir = CopyGame("harness_errors");
    WriteFile(dir / "bad.txt", "# one bad line\n5 jump 1 2\n");
    ASSERT_EQ(mkfifo((dir / "fifo").c_str(), 0600), 0);
    const std::pair<std::string, std::string> cases[] = {
        {"--frame 30", "unknown flag --frame"},
        {"--frames=30", "write --frames 30"},
        {"--frames 0", "--frames needs"},
        {"--frames 99999999999999999999", "--frames needs"},
        {"--replay bad.txt", "bad.txt: replay line 2: unknown event 'jump'"},
        {"--replay /dev/zero", "/dev/zero is not a regular file"},
        {"--replay fifo", "fifo is not a regular file"},
        {"--replay missing.txt", "cannot read"},
        {"--shot 5:nowhere/x.png", "--shot: cannot write"},
        {"--dump-state saves", "--dump-state: "},
        {"--warp main.map:60:3", "the cell is outside the 50 x 50 map"},
        {"--warp main.map:3:50", "the cell is outside the 50 x 50 map"},
    };
    for (const auto& [flags, message] : cases) {
        // A FIFO nobody writes to must not hang the game: timeout guards the test.
        const Result r = RunGame(dir, "action=play --headless --uncapped --frames 10 " + flags, "timeout 30");
        EXPECT_EQ(r.exitCode, 2) << flags << ": " << r.err;
        EXPECT_NE(r.err.find(message), std::string::npos) << flags << ": " << r.err;
        EXPECT_EQ(r.out.find("frames="), std::string::npos) << flags;  // the game never started
    }
    // A run that ends before its frames (the replay quits) is not a complete run.
    Result r = RunGame(dir, "action=play --headless --uncapped --frames 50 --replay '" + Replay("quit.txt").string() + "'");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("the game ended after"), std::string::npos) << r.err;
    // A shot of a frame the run never reached.
    r = RunGame(dir, "action=play --headless --uncapped --frames 10 --shot 20:late.png");
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_NE(r.err.find("the shot of frame 20"), std::string::npos) << r.err;
    // The same run reaching its frame is complete.
    r = RunGame(dir, "action=play --headless --uncapped --frames 21 --shot 20:late.png");
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(fs::exists(dir / "late.png"));
    fs::remove_all(dir);
}

TEST(NoDisplay, WithoutADisplayTheGameFailsWithAMessage) {
    const fs::path dir = CopyGame("no_display");
    const Result r = RunGame(dir, "action=play --uncapped --frames 5",
                             "env -u DISPLAY -u WAYLAND_DISPLAY -u SDL_VIDEODRIVER timeout 30");
    EXPECT_NE(r.exitCode, 0);
    EXPECT_NE(r.err.find("no display to open the window on"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("--headless"), std::string::npos);
    fs::remove_all(dir);
}

TEST(GameFolder, GameAndLauncherStartedFromElsewhereFindTheirFolder) {
    const fs::path dir = CopyGame("elsewhere");
    const fs::path here = fs::current_path() / "elsewhere_cwd";
    fs::create_directories(here);
    // The game by its full path, from another folder: its files are found and
    // the harness paths stay relative to where it was started.
    std::string cmd = "cd '" + here.string() + "' && ASHEN_LAUNCHER_NOEXEC=1 '" + (dir / "ashen-oath").string() +
                      "' action=play --headless --uncapped --frames 5 --dump-state s.json >out.txt 2>err.txt";
    int status = std::system(cmd.c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << ReadFile(here / "err.txt");
    EXPECT_EQ(StateInt(ReadState(here / "s.json"), "frame"), 5);
    EXPECT_NE(ReadFile(dir / "GameEngine.log").find("Init DDraw succeed!"), std::string::npos);
    EXPECT_FALSE(fs::exists(here / "GameEngine.log"));

    // The launcher found through PATH starts the game in its folder; the game
    // (a plain run, ended by SIGTERM) starts the launcher again at its end.
    fs::remove(dir / "GameEngine.log");
    const fs::path log = here / "launcher.log";
    cmd = "cd '" + here.string() + "' && (PATH='" + dir.string() + "':\"$PATH\" ASHEN_LAUNCHER_LOG='" + log.string() +
          "' SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=dummy launcher >out.txt 2>err.txt & pid=$!; " + WaitForStart(dir) +
          "kill -TERM $pid; wait $pid)";
    status = std::system(cmd.c_str());
    (void)status;
    const std::string calls = WaitForLauncherLog(log);
    EXPECT_EQ(calls.rfind("launcher []\n", 0), 0u) << calls;
    EXPECT_NE(calls.find("launcher [time=end]\n"), std::string::npos) << calls << ReadFile(here / "err.txt");
    EXPECT_NE(ReadFile(dir / "GameEngine.log").find("Init DDraw succeed!"), std::string::npos);
    fs::remove_all(dir);
    fs::remove_all(here);
}

TEST(QuitSignal, TermAndIntEndThePlainGameThroughItsQuitPath) {
    for (const char* sig : {"TERM", "INT"}) {
        const fs::path dir = CopyGame(std::string("signal_") + sig);
        const fs::path log = dir / "launcher.log";
        // A background job of a script starts with SIGINT ignored; the game
        // still ends on it. A guard kills it for good after 20 seconds.
        const std::string cmd = "cd '" + dir.string() + "' && (ASHEN_LAUNCHER_LOG='" + log.string() +
                                "' ./ashen-oath action=play --headless --dump-state s.json >out.txt 2>err.txt & "
                                "pid=$!; " + WaitForStart(dir) + "kill -" + sig + " $pid; "
                                "(sleep 20; kill -9 $pid) >/dev/null 2>&1 </dev/null & guard=$!; "
                                "wait $pid; echo $? >rc.txt; kill $guard 2>/dev/null)";
        std::system(cmd.c_str());
        EXPECT_EQ(ReadFile(dir / "rc.txt"), "1\n") << sig << ": " << ReadFile(dir / "err.txt");
        EXPECT_GT(StateInt(ReadState(dir / "s.json"), "frame"), 0) << sig;
        EXPECT_EQ(WaitForLauncherLog(log), "launcher [time=end]\n") << sig;
        fs::remove_all(dir);
    }
}

TEST(CrashLog, SanitisedBuildLetsTheSanitizerReport) {
    if (!CrashLogSanitized()) GTEST_SKIP() << "a normal build writes the crash log (Boot.KilledBySignal...)";
    const fs::path dir = CopyGame("asan_crash");
    const std::string cmd = "cd '" + dir.string() +
                            "' && (./ashen-oath action=play --headless & pid=$!; sleep 2; kill -SEGV $pid; wait $pid) "
                            ">out.txt 2>err.txt";
    std::system(cmd.c_str());
    EXPECT_NE(ReadFile(dir / "err.txt").find("AddressSanitizer"), std::string::npos) << ReadFile(dir / "err.txt");
    EXPECT_FALSE(fs::exists(dir / "exceptionLog.log"));
    fs::remove_all(dir);
}

TEST(PositionLabel, ShowsTheCellUnderTheHerosPictureCentre) {
    const fs::path dir = CopyGame("label");
    // The hero's centre is half its 80-pixel picture above its feet: one cell up
    // the diagonal, except where the count is cut toward zero.
    const std::pair<const char*, const char*> cases[] = {
        {"main.map", "(24,24)"}, {"main.map:25:25", "(24,24)"}, {"main.map:10:3", "(9,2)"}, {"main.map:0:0", "(0,0)"}};
    for (const auto& [warp, label] : cases) {
        const Result r = RunGame(dir, std::string("action=play --headless --uncapped --frames 30 --warp ") + warp +
                                          " --dump-state s.json");
        const nlohmann::json state = ReadState(dir / "s.json");
        ASSERT_TRUE(state.is_object()) << r.err;
        EXPECT_EQ(state.value("position_label", ""), label) << warp;
    }
    fs::remove_all(dir);
}
