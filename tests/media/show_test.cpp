#include <gtest/gtest.h>

#include <SDL.h>
#include <SDL_mixer.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "media/show.h"
#include "media/window.h"
#include "media_test_util.h"
#include "base/types.h"
#include "wav_util.h"

namespace {

class ShowTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        mediatest::WriteFile("short.wav", mediatest::MakeWav(mediatest::Tone(0.15)));
        mediatest::WriteFile("long.wav", mediatest::MakeWav(mediatest::Tone(5.0)));
        DrainQueue();
    }
    // Removes every queued message; returns how many were UM_GRAPHNOTIFY.
    static int DrainQueue() {
        int notes = 0;
        SMsg m;
        while (platform::PeekMessage(m) && m.message != WM_QUIT) {
            platform::GetMessage(m);
            notes += m.message == UM_GRAPHNOTIFY;
        }
        return notes;
    }
    // Pumps the media events until a UM_GRAPHNOTIFY is queued.
    static int WaitForNotify(int ms) {
        for (int t = 0; t < ms; t += 10) {
            PollMediaEvents();
            if (int n = DrainQueue()) return n;
            SDL_Delay(10);
        }
        return 0;
    }
    mediatest::ScratchDir dir;
};

TEST_F(ShowTest, CallsBeforeOpenSetTheirTexts) {
    KGDShowInstance show;
    EXPECT_STREQ(show.GetErrorText(), "");
    EXPECT_FALSE(show.Play(nullptr, 0));
    EXPECT_STREQ(show.GetErrorText(), "Media haven't loaded!");
    EXPECT_FALSE(show.Pause());
    EXPECT_STREQ(show.GetErrorText(), "No Media!");
    EXPECT_FALSE(show.Resume());
    EXPECT_STREQ(show.GetErrorText(), "m_pMediaControl==null");
    EXPECT_FALSE(show.Stop());
    EXPECT_STREQ(show.GetErrorText(), "No Media!");
    EXPECT_FALSE(show.Play(nullptr, 1));
    EXPECT_FALSE(show.Close());
    EXPECT_STREQ(show.GetErrorText(), "No Media!");
    EXPECT_FALSE(show.HandleEvents());
    EXPECT_FALSE(show.IsPlaying());

    EXPECT_FALSE(show.Open(nullptr, "music\\nothing.ogg"));
    EXPECT_STREQ(show.GetErrorText(), "RenderFile Failed!");
    EXPECT_FALSE(show.IsLoaded());
    mediatest::WriteFile("junk.ogg", {'n', 'o', 't', ' ', 'm', 'u', 's', 'i', 'c'});
    EXPECT_FALSE(show.Open(nullptr, "junk.ogg"));
    EXPECT_STREQ(show.GetErrorText(), "RenderFile Failed!");
}

TEST_F(ShowTest, StateMachine) {
    KGDShowInstance show;
    ASSERT_TRUE(show.Open(nullptr, "long.wav")) << show.GetErrorText();
    EXPECT_EQ(show.GetState(), 0);
    EXPECT_FALSE(show.IsPlaying());
    EXPECT_FALSE(show.Pause());  // not running: false, text unchanged
    EXPECT_STREQ(show.GetErrorText(), "");

    ASSERT_TRUE(show.Play(nullptr, 0));
    EXPECT_EQ(show.GetState(), 1);
    EXPECT_TRUE(show.IsPlaying());
    EXPECT_TRUE(Mix_PlayingMusic());

    // Resume while running fails with the media-control text.
    EXPECT_FALSE(show.Resume());
    EXPECT_STREQ(show.GetErrorText(), "m_pMediaControl==null");
    EXPECT_EQ(show.GetState(), 1);

    EXPECT_TRUE(show.Pause());
    EXPECT_EQ(show.GetState(), 3);
    EXPECT_FALSE(show.IsPlaying());
    EXPECT_TRUE(Mix_PausedMusic());
    EXPECT_FALSE(show.Pause());
    EXPECT_TRUE(show.Resume());
    EXPECT_EQ(show.GetState(), 1);
    EXPECT_FALSE(Mix_PausedMusic());

    EXPECT_TRUE(show.Stop());
    EXPECT_EQ(show.GetState(), 2);
    EXPECT_TRUE(Mix_PausedMusic());
    EXPECT_FALSE(show.Resume());  // stopped is not paused
    EXPECT_TRUE(show.Play(nullptr, 1));
    EXPECT_EQ(show.GetState(), 1);
    EXPECT_TRUE(show.GetLoop());
    EXPECT_FALSE(Mix_PausedMusic());

    // Stopping or closing on purpose is not the end of the piece.
    EXPECT_TRUE(show.Close());
    EXPECT_FALSE(show.IsLoaded());
    EXPECT_EQ(show.GetState(), 0);
    EXPECT_FALSE(Mix_PlayingMusic());
    PollMediaEvents();
    EXPECT_EQ(DrainQueue(), 0);
    EXPECT_FALSE(show.Close());
    EXPECT_STREQ(show.GetErrorText(), "No Media!");

    // A new Open replaces the piece and starts from state 0.
    ASSERT_TRUE(show.Open(nullptr, "long.wav"));
    ASSERT_TRUE(show.Play(nullptr, 0));
    ASSERT_TRUE(show.Open(nullptr, "short.wav"));
    EXPECT_EQ(show.GetState(), 0);
    EXPECT_FALSE(Mix_PlayingMusic());
}

TEST_F(ShowTest, EndOfPieceReachesTheGameAsAMessage) {
    KGDShowInstance show;
    // Looping: the end restarts the piece.
    ASSERT_TRUE(show.Open(nullptr, "short.wav"));
    ASSERT_TRUE(show.Play(nullptr, 1));
    ASSERT_EQ(WaitForNotify(4000), 1);
    EXPECT_TRUE(show.HandleEvents());
    EXPECT_TRUE(show.IsLoaded());
    EXPECT_TRUE(show.IsPlaying());
    EXPECT_TRUE(Mix_PlayingMusic());
    // And it ends (and restarts) again.
    ASSERT_EQ(WaitForNotify(4000), 1);
    EXPECT_TRUE(show.HandleEvents());
    EXPECT_TRUE(show.IsPlaying());
    // A second HandleEvents without a new end changes nothing.
    EXPECT_TRUE(show.HandleEvents());
    EXPECT_TRUE(show.IsPlaying());

    // Not looping: the end releases everything.
    ASSERT_TRUE(show.Play(nullptr, 0));
    ASSERT_EQ(WaitForNotify(4000), 1);
    EXPECT_TRUE(show.HandleEvents());
    EXPECT_FALSE(show.IsLoaded());
    EXPECT_FALSE(show.IsPlaying());
    EXPECT_EQ(show.GetState(), 0);
    EXPECT_FALSE(show.Play(nullptr, 0));
    EXPECT_STREQ(show.GetErrorText(), "Media haven't loaded!");
    EXPECT_FALSE(show.HandleEvents());

    // An end that was pending when a new piece opened belongs to the old one.
    ASSERT_TRUE(show.Open(nullptr, "short.wav"));
    ASSERT_TRUE(show.Play(nullptr, 0));
    SDL_Delay(600);
    ASSERT_TRUE(show.Open(nullptr, "long.wav"));
    ASSERT_TRUE(show.Play(nullptr, 0));
    PollMediaEvents();
    DrainQueue();
    EXPECT_TRUE(show.HandleEvents());
    EXPECT_TRUE(show.IsLoaded());
    EXPECT_TRUE(show.IsPlaying());
}

}  // namespace

namespace {

std::vector<uint8_t> ShippedMusic() {
    const std::string path = std::string(ASHEN_GAME_DIR) + "/music/village.ogg";
    const std::string s = mediatest::ReadFile(path);
    return std::vector<uint8_t>(s.begin(), s.end());
}

// A long random tail after the last page: the piece opens at once (the decoder
// never sees the tail) and plays, and the log says what was left out.
TEST_F(ShowTest, DamagedTailsAreCutOffBeforeTheDecoderSeesThem) {
    std::vector<uint8_t> ogg = ShippedMusic();
    ASSERT_GT(ogg.size(), 100000u);
    const size_t pages = ogg.size();
    uint32_t seed = 99;
    ogg.resize(pages + (16u << 20));
    for (size_t i = pages; i < ogg.size(); ++i) {
        seed = seed * 1664525u + 1013904223u;
        ogg[i] = uint8_t(seed >> 24);
    }
    mediatest::WriteFile("tail.ogg", ogg);
    KGDShowInstance show;
    const uint32_t start = SDL_GetTicks();
    ASSERT_TRUE(show.Open(nullptr, "tail.ogg")) << show.GetErrorText();
    EXPECT_LT(SDL_GetTicks() - start, 1500u);
    EXPECT_TRUE(show.Play(nullptr, 1));
    EXPECT_TRUE(show.IsPlaying());
    const std::string log = mediatest::ReadFile("GameEngine.log");
    EXPECT_NE(log.find("music tail.ogg: 16777216 bytes after the last Ogg page ignored"), std::string::npos) << log;
    EXPECT_TRUE(show.Close());

    // Not the start of a Vorbis stream, or a huge file that is not Ogg at all:
    // refused with a line in the log, without decoding.
    std::vector<uint8_t> notVorbis = ShippedMusic();
    notVorbis[27 + notVorbis[26]] = 'X';  // the identification header's packet type
    mediatest::WriteFile("other.ogg", notVorbis);
    EXPECT_FALSE(show.Open(nullptr, "other.ogg"));
    EXPECT_STREQ(show.GetErrorText(), "RenderFile Failed!");
    {
        FILE* f = std::fopen("big.wav", "wb");
        ASSERT_NE(f, nullptr);
        const std::vector<uint8_t> head = mediatest::MakeWav(mediatest::Tone(0.1));
        std::fwrite(head.data(), 1, head.size(), f);
        std::fseek(f, 40L << 20, SEEK_SET);
        std::fputc(0, f);
        std::fclose(f);
    }
    EXPECT_FALSE(show.Open(nullptr, "big.wav"));
    const std::string after = mediatest::ReadFile("GameEngine.log");
    EXPECT_NE(after.find("music other.ogg: the first Ogg page does not start a Vorbis stream"), std::string::npos)
        << after;
    EXPECT_NE(after.find("music big.wav: 41943041 bytes, more than the 33554432 a piece may take"), std::string::npos)
        << after;
    // The undamaged piece still opens.
    mediatest::WriteFile("clean.ogg", ShippedMusic());
    EXPECT_TRUE(show.Open(nullptr, "clean.ogg")) << show.GetErrorText();
}

}  // namespace
