// The harness's flags and replay files, and the PNG frame dump.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
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

TEST(Harness, UnknownFlagsMalformedAndOutOfRangeNumbersAreErrors) {
    // Words without a dash are left to the game ("action=play").
    SHarnessOptions ok;
    std::string err;
    EXPECT_TRUE(Parse({"action=play", "whatever=1", "--frames", "1"}, ok, err)) << err;
    struct SCase {
        std::vector<std::string> args;
        const char* message;  // part of the error
    } cases[] = {
        {{"--frame", "30"}, "unknown flag --frame"},
        {{"--frames=30"}, "write --frames 30"},
        {{"-h"}, "unknown flag -h"},
        {{"--frames", "0"}, "--frames"},
        {{"--frames", "99999999999999999999"}, "--frames"},
        {{"--frames", " 5"}, "--frames"},
        {{"--frames", "+5"}, "--frames"},
        {{"--clock", "-5"}, "--clock"},
        {{"--clock", "18446744073709551616"}, "--clock"},
        {{"--shot", "-1:a.png"}, "--shot"},
        {{"--warp", "main.map:-1:3"}, "outside the map"},
        {{"--warp", "main.map:3:4294967296"}, "outside the map"},
        {{"--scale", "9"}, "--scale"},
    };
    for (const SCase& c : cases) {
        SHarnessOptions o;
        std::string e;
        EXPECT_FALSE(Parse(c.args, o, e)) << c.args[0];
        EXPECT_NE(e.find(c.message), std::string::npos) << e;
    }
}

TEST(Harness, HarnessFilesAreBoundedRegularFilesAndWritablePaths) {
    namespace fs = std::filesystem;
    fs::create_directories("harness_files");
    std::string text, err;
    {
        std::FILE* f = std::fopen("harness_files/replay.txt", "wb");
        ASSERT_NE(f, nullptr);
        std::fputs("# nothing\n1 key 27\n", f);
        std::fclose(f);
    }
    EXPECT_TRUE(ReadBoundedFile("harness_files/replay.txt", 1000, text, err)) << err;
    EXPECT_EQ(text, "# nothing\n1 key 27\n");
    // Too large for the bound; a folder; a missing file.
    EXPECT_FALSE(ReadBoundedFile("harness_files/replay.txt", 10, text, err));
    EXPECT_NE(err.find("larger than 10 bytes"), std::string::npos) << err;
    EXPECT_FALSE(ReadBoundedFile("harness_files", 1000, text, err));
    EXPECT_NE(err.find("not a regular file"), std::string::npos) << err;
    EXPECT_FALSE(ReadBoundedFile("harness_files/none.txt", 1000, text, err));
    // A FIFO nobody writes to and an endless device are refused at once
    // instead of blocking or reading for ever.
    ASSERT_EQ(mkfifo("harness_files/fifo", 0600), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(ReadBoundedFile("harness_files/fifo", REPLAY_MAX_BYTES, text, err));
    EXPECT_NE(err.find("not a regular file"), std::string::npos) << err;
    EXPECT_FALSE(ReadBoundedFile("/dev/zero", REPLAY_MAX_BYTES, text, err));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));

    // Outputs: a new file in an existing folder, or an existing regular file.
    EXPECT_TRUE(CheckWritablePath("harness_files/new.png", err)) << err;
    EXPECT_TRUE(CheckWritablePath("harness_files/replay.txt", err)) << err;
    EXPECT_FALSE(CheckWritablePath("harness_files/no_such_folder/s.json", err));
    EXPECT_NE(err.find("does not exist"), std::string::npos) << err;
    EXPECT_FALSE(CheckWritablePath("harness_files", err));
    EXPECT_FALSE(CheckWritablePath("", err));

    // A bad replay line stops the run with the file and the line named.
    SHarnessOptions o;
    {
        std::FILE* f = std::fopen("harness_files/bad.txt", "wb");
        ASSERT_NE(f, nullptr);
        std::fputs("1 move 2 3\n2 jump 1 2\n", f);
        std::fclose(f);
    }
    o.replayFile = "harness_files/bad.txt";
    EXPECT_FALSE(PrepareHarnessFiles(o, err));
    EXPECT_NE(err.find("harness_files/bad.txt: replay line 2: unknown event 'jump'"), std::string::npos) << err;
    o.replayFile = "harness_files/replay.txt";
    ASSERT_TRUE(PrepareHarnessFiles(o, err)) << err;
    ASSERT_EQ(o.replay.size(), 1u);
    EXPECT_EQ(o.replay[0].kind, SReplayEvent::KEY);
    o.dumpState = "harness_files/no_such_folder/s.json";
    EXPECT_FALSE(PrepareHarnessFiles(o, err));
    EXPECT_EQ(err.rfind("--dump-state: ", 0), 0u) << err;
    o.dumpState.clear();
    o.shots.emplace_back(3, "harness_files");
    EXPECT_FALSE(PrepareHarnessFiles(o, err));
    EXPECT_EQ(err.rfind("--shot: ", 0), 0u) << err;
}

TEST(Harness, QuitSignalsOnlyRaiseAFlag) {
    InstallQuitSignals();
    EXPECT_FALSE(TakeQuitSignal());
    std::raise(SIGTERM);
    EXPECT_TRUE(TakeQuitSignal());
    EXPECT_FALSE(TakeQuitSignal());  // taken once
    std::raise(SIGINT);
    EXPECT_TRUE(TakeQuitSignal());
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);

    // A game that does not take the first signal (stuck) ends on the second.
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        InstallQuitSignals();
        std::raise(SIGTERM);
        std::raise(SIGTERM);
        _exit(0);  // not reached
    }
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}
