#include <gtest/gtest.h>

#include "res_test_util.h"
#include "resources/ini.h"
#include "resources/vrn_writer.h"

namespace {

std::string Crlf(std::initializer_list<const char*> lines) {
    std::string s;
    for (const char* l : lines) s += std::string(l) + "\r\n";
    return s;
}

TEST(Ini, ScanRulesAndStopCharacters) {
    CIni ini;
    ASSERT_TRUE(ini.OpenText(Crlf({"[a]", "x=1", "[b]", "y=2"})));
    EXPECT_EQ(ini.GetInt("a", "y"), 2);  // runs on into [b]
    EXPECT_EQ(ini.GetInt("b", "x"), 0);  // starts after [b]
    EXPECT_EQ(ini.GetString("b", "x"), "");
    // An absent section scans from the second line of the text.
    EXPECT_EQ(ini.GetString("zz", "x"), "1");

    ini.OpenText(Crlf({"x=first", "[a]", "x=second"}));
    EXPECT_EQ(ini.GetString("nosuch", "x"), "second");
    EXPECT_EQ(ini.GetString("a", "x"), "second");

    ini.OpenText(Crlf({"[a]", "x = 5"}));
    EXPECT_EQ(ini.GetString("a", "x"), "");
    EXPECT_EQ(ini.GetString("a", "x "), " 5");

    ini.OpenText(Crlf({"[a]", "x=5;note", "t=5\t6", "z=[z]", "e=a=b c", "n=", "k"}));
    EXPECT_EQ(ini.GetString("a", "x"), "5");
    EXPECT_EQ(ini.GetString("a", "t"), "5");
    EXPECT_EQ(ini.GetString("a", "z"), "[z");
    EXPECT_EQ(ini.GetString("a", "e"), "a=b c");
    EXPECT_EQ(ini.GetString("a", "n"), "");
    EXPECT_EQ(ini.GetString("a", "k"), "");  // stop was CR: empty value

    ini.OpenText(Crlf({"[a]", ";x=1", "x=2", "  y=3", "#c=4"}));
    EXPECT_EQ(ini.GetInt("a", "x"), 2);
    EXPECT_EQ(ini.GetString("a", "y"), "");
    EXPECT_EQ(ini.GetString("a", "  y"), "3");
    EXPECT_EQ(ini.GetString("a", "#c"), "4");

    ini.OpenText(Crlf({"[ a]", "p=1", "[A]", "q=2", "[a]", "r=3", "[a]", "p=9"}));
    EXPECT_EQ(ini.GetString(" a", "p"), "1");
    EXPECT_EQ(ini.GetString("a", "q"), "");  // [A] is not [a]; scan starts after the first [a]
    EXPECT_EQ(ini.GetString("a", "p"), "9"); // first p after the first [a]
    EXPECT_EQ(ini.GetString("A", "r"), "3");

    // Section names stop at ']' ';' CR TAB; a header not at a line start is not one.
    ini.OpenText(Crlf({"[s;x]", "a=1", " [t]", "b=2", "[u\tv]", "c=3"}));
    EXPECT_EQ(ini.GetString("s", "a"), "1");
    EXPECT_EQ(ini.GetString("u", "c"), "3");
    EXPECT_EQ(ini.GetString("t", "a"), "1");  // not a section: scan from line 2

    // Keys above 63 bytes never match.
    std::string k63(63, 'k'), k64(64, 'k');
    ini.OpenText(Crlf({"[a]", (k63 + "=ok").c_str(), (k64 + "=no").c_str()}));
    EXPECT_EQ(ini.GetString("a", k63.c_str()), "ok");
    EXPECT_EQ(ini.GetString("a", k64.c_str()), "");

    // GBK bytes pass through; LF-only files still split lines.
    ini.OpenText("[m]\nname=\xB0\xA2\xC0\xFB\nend=1");
    EXPECT_EQ(ini.GetString("m", "name"), "\xB0\xA2\xC0\xFB");
    EXPECT_EQ(ini.GetInt("m", "end"), 1);
}

TEST(Ini, Numbers) {
    EXPECT_EQ(CIni::ParseInt("-12abc"), -12);
    EXPECT_EQ(CIni::ParseInt("abc"), 0);
    EXPECT_EQ(CIni::ParseInt("99999999999"), 2147483647);
    EXPECT_EQ(CIni::ParseInt("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(CIni::ParseInt("2147483647"), 2147483647);
    EXPECT_EQ(CIni::ParseInt("2147483648"), 2147483647);
    EXPECT_EQ(CIni::ParseInt("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(CIni::ParseInt(" \t+42"), 42);
    EXPECT_EQ(CIni::ParseInt("+-3"), 0);
    EXPECT_EQ(CIni::ParseInt("-"), 0);
    EXPECT_EQ(CIni::ParseInt("0007"), 7);
    EXPECT_EQ(CIni::ParseInt("123456789012345678901234567890"), 2147483647);
    CIni ini;
    ini.OpenText(Crlf({"[n]", "v= 12", "w=-12abc"}));
    EXPECT_EQ(ini.GetInt("n", "v"), 12);  // leading blank skipped by the number reader
    EXPECT_EQ(ini.GetInt("n", "w"), -12);
}

TEST(Ini, DiskAndArchiveOpens) {
    restest::ScratchDir dir;
    CIni ini;
    // Missing and empty files fail and answer empty.
    EXPECT_FALSE(ini.Open("missing.ini", nullptr));
    EXPECT_TRUE(ini.IsFailed());
    EXPECT_EQ(ini.GetString("a", "b"), "");
    restest::WriteText("empty.ini", "");
    EXPECT_FALSE(ini.Open("empty.ini", nullptr));
    EXPECT_TRUE(ini.IsFailed());

    // A backslash game name reaches the host folder.
    restest::WriteText("data/boot.ini", Crlf({"[MDfile]", "ini=data\\ini.vrn"}));
    EXPECT_TRUE(ini.Open("data\\boot.ini", nullptr));
    EXPECT_FALSE(ini.IsFailed());
    EXPECT_EQ(ini.GetString("MDfile", "ini"), "data\\ini.vrn");

    std::vector<SVrnInput> entries{{"game.ini", {}}, {"ui\\menu.ini", {}}};
    std::string g = Crlf({"[MDfile]", "role=data\\role.vrn"}), m = Crlf({"[btn]", "x=10"});
    entries[0].data.assign(g.begin(), g.end());
    entries[1].data.assign(m.begin(), m.end());
    std::vector<uint8_t> image;
    ASSERT_TRUE(BuildVrnArchive(entries, VRN_COMPRESS_NEVER, &image, nullptr));
    restest::WriteBytes("data/ini.vrn", image);

    // The same object is reopened from the archive after a disk read.
    ini.Close();
    EXPECT_TRUE(ini.Open("game.ini", "data\\ini.vrn"));
    EXPECT_FALSE(ini.IsFailed());
    EXPECT_EQ(ini.GetString("MDfile", "role"), "data\\role.vrn");
    CIni sub("ui\\menu.ini", "data/ini.vrn");
    EXPECT_FALSE(sub.IsFailed());
    EXPECT_EQ(sub.GetInt("btn", "x"), 10);

    // Entry missing from the archive, and a missing archive (with its message).
    EXPECT_FALSE(ini.Open("nothere.ini", "data\\ini.vrn"));
    EXPECT_TRUE(ini.IsFailed());
    EXPECT_TRUE(restest::Boxes().empty());
    EXPECT_FALSE(ini.Open("game.ini", "data\\none.vrn"));
    EXPECT_TRUE(ini.IsFailed());
    EXPECT_EQ(ini.GetString("MDfile", "role"), "");
    ASSERT_EQ(restest::Boxes().size(), 1u);
    EXPECT_NE(restest::Boxes()[0].find("data\\none.vrn"), std::string::npos);
}

}  // namespace
