// The engine log's line format and file behaviour, and the crash log.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "base/clock.h"
#include "base/gbk.h"
#include "base/log.h"

namespace fs = std::filesystem;

namespace {

std::string ReadFile(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

fs::path TempDir(const char* name) {
    fs::path d = fs::current_path() / (std::string("ashen_") + name + "_" + std::to_string(getpid()));
    fs::remove_all(d);
    fs::create_directories(d);
    return d;
}

}  // namespace

TEST(EngineLog, EntryFormatHourPlusEightNoPaddingTwoSpaces) {
    // 1 March 2011, 20:30:09.007 UTC.
    SSystemTime t = SystemTimeFromUnixMs((int64_t(1299011409)) * 1000 + 7);
    EXPECT_EQ(t.year, 2011);
    EXPECT_EQ(t.month, 3);
    EXPECT_EQ(t.day, 1);
    EXPECT_EQ(t.hour, 20);
    char line[256];
    FormatLogEntry(line, sizeof(line), t, "hello");
    EXPECT_STREQ(line, "(2011/3/1  28:30:9:7)----->hello\n");
    // The date is not moved on when the hour passes 24.
    SSystemTime late = SystemTimeFromUnixMs(int64_t(1293839999) * 1000);  // 2010-12-31 23:59:59
    FormatLogEntry(line, sizeof(line), late, "x");
    EXPECT_STREQ(line, "(2010/12/31  31:59:59:0)----->x\n");
}

TEST(EngineLog, FileHasOneHeaderCrLfEndsAndCutsLongMessages) {
    fs::path dir = TempDir("log");
    std::string path = (dir / "GameEngine.log").string();
    clock_control::SetCalendarStart(1299011409);
    {
        CLog first(path.c_str(), true);
        first.Write("first run %d", 1);
    }
    {
        // A second run truncates: only its lines remain, after one header.
        CLog second(path.c_str(), true);
        CLog appender(path.c_str(), false);
        second.Write("line %s", "a");
        appender.Write("%s", std::string(2000, 'z').c_str());
    }
    clock_control::Reset();
    std::string text = ReadFile(path);
    EXPECT_EQ(text.rfind("\t\t..::Game Log::..\r\n", 0), 0u);
    EXPECT_EQ(text.find("..::Game Log::..", 5), std::string::npos);
    EXPECT_EQ(text.find("first run"), std::string::npos);
    EXPECT_NE(text.find("(2011/3/1  28:30:9:"), std::string::npos);
    EXPECT_NE(text.find(")----->line a\r\n"), std::string::npos);
    // Every LF is preceded by CR; no bare LF.
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            ASSERT_GT(i, 0u);
            ASSERT_EQ(text[i - 1], '\r') << "at " << i;
        }
    }
    // The long message is cut at 1023 bytes.
    size_t z = text.find("zzz");
    ASSERT_NE(z, std::string::npos);
    size_t end = text.find("\r\n", z);
    EXPECT_EQ(end - z, 1023u);
    fs::remove_all(dir);
}

TEST(EngineLog, MissingFolderIsNotAnError) {
    CLog log("/nonexistent-folder-for-ashen/GameEngine.log", true);
    log.Write("nothing happens");
    SUCCEED();
}

TEST(CrashLog, SignalWritesThreeGbkLinesThenDiesByTheSignal) {
    if (CrashLogSanitized()) GTEST_SKIP() << "a sanitised build leaves crashes to the sanitizer";
    fs::path dir = TempDir("crash");
    pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        if (chdir(dir.c_str()) != 0) _exit(3);
        InstallCrashLog();
        raise(SIGSEGV);
        _exit(4);  // not reached: the default action ends the process
    }
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    std::string text = ReadFile(dir / "exceptionLog.log");
    std::string expected1 = Utf8ToGbk("异常发生代码") + " : 0xC0000005\r\r\n";
    ASSERT_EQ(text.rfind(expected1, 0), 0u) << GbkToUtf8(text);
    std::string line2 = Utf8ToGbk("异常发生地址") + " : 0x";
    std::string line3 = Utf8ToGbk("异常发生标志") + " : 0x00000001\r\r\n";
    size_t p2 = text.find(line2);
    ASSERT_EQ(p2, expected1.size());
    // The address is eight upper-case hexadecimal digits.
    std::string addr = text.substr(p2 + line2.size(), 8);
    for (char c : addr) EXPECT_TRUE(isdigit((unsigned char)c) || (c >= 'A' && c <= 'F')) << addr;
    EXPECT_EQ(text.substr(p2 + line2.size() + 8, 3), "\r\r\n");
    EXPECT_EQ(text.substr(text.size() - line3.size()), line3);
    fs::remove_all(dir);
}
