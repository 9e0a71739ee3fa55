#include <gtest/gtest.h>

#include <SDL.h>

#include <sys/stat.h>

#include <cstdlib>
#include <memory>

#include "media/sound.h"
#include "media_test_util.h"
#include "wav_util.h"

namespace {

using mediatest::MakeWav;

class SoundTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        SetSoundEnabled(false);
    }
    void TearDown() override {
        ReleaseSound();
        SetSoundEnabled(false);
    }
    // Waits until the condition holds or the time runs out.
    template <typename F>
    static bool WaitFor(F cond, int ms) {
        for (int t = 0; t < ms; t += 10) {
            if (cond()) return true;
            SDL_Delay(10);
        }
        return cond();
    }
    mediatest::ScratchDir dir;
};

TEST_F(SoundTest, DisabledSoundLoadsNothingAndLogsNothing) {
    CSound s;
    EXPECT_TRUE(s.LoadWav("sound\\missing.wav"));
    EXPECT_TRUE(s.Buffer().empty());
    mediatest::WriteFile("a.wav", MakeWav(mediatest::Tone(0.05)));
    EXPECT_TRUE(s.LoadWav("a.wav"));
    EXPECT_TRUE(s.Buffer().empty());
    s.Play(0);
    EXPECT_FALSE(s.IsPlaying());
    EXPECT_EQ(mediatest::ReadFile("GameEngine.log"), "");
}

TEST_F(SoundTest, InitRulesAndMissingFile) {
    ASSERT_TRUE(InitSound());
    EXPECT_TRUE(IsSoundEnabled());
    EXPECT_TRUE(InitSound());  // already up

    CSound s;
    mediatest::WriteFile("good.wav", MakeWav(std::vector<uint8_t>(1000, 7)));
    ASSERT_TRUE(s.LoadWav("good.wav"));
    const std::vector<uint8_t> kept = s.Buffer();
    ASSERT_FALSE(kept.empty());

    // A missing file: one log line with the name as given; the old buffer stays.
    mkdir("sound", 0755);
    EXPECT_FALSE(s.LoadWav("sound\\missing.wav"));
    EXPECT_EQ(s.Buffer(), kept);
    const std::string log = mediatest::ReadFile("GameEngine.log");
    EXPECT_EQ(mediatest::CountLines(log), 1);
    EXPECT_NE(log.find("----->[sound]error on opening file sound\\missing.wav\r\n"), std::string::npos) << log;

    // Backslash names reach the host path.
    mediatest::WriteFile("sound/hit.wav", MakeWav(std::vector<uint8_t>(1000, 9)));
    EXPECT_TRUE(s.LoadWav("sound\\hit.wav"));
    EXPECT_EQ(s.Buffer()[0], 9);
}

TEST_F(SoundTest, BufferIsRiffSizeFilledUpToRMinus800) {
    ASSERT_TRUE(InitSound());
    CSound s;

    // 1000-byte file: R = 992, 192 bytes copied from offset 44, the rest silent.
    std::vector<uint8_t> data(956);
    for (size_t i = 0; i < data.size(); ++i) data[i] = uint8_t(i * 7 + 1);
    const std::vector<uint8_t> file = MakeWav(data);
    ASSERT_EQ(file.size(), 1000u);
    mediatest::WriteFile("k.wav", file);
    ASSERT_TRUE(s.LoadWav("k.wav"));
    ASSERT_EQ(s.Buffer().size(), 992u);
    for (size_t i = 0; i < 192; ++i) ASSERT_EQ(s.Buffer()[i], file[44 + i]) << i;
    for (size_t i = 192; i < 992; ++i) ASSERT_EQ(s.Buffer()[i], 0) << i;

    // R below 800 fails without a log line; exactly 800 loads an all-silent buffer.
    mediatest::WriteFile("short.wav", MakeWav(std::vector<uint8_t>(763, 5)));  // R = 799
    EXPECT_FALSE(s.LoadWav("short.wav"));
    EXPECT_TRUE(s.Buffer().empty());
    mediatest::WriteFile("edge.wav", MakeWav(std::vector<uint8_t>(764, 5)));  // R = 800
    ASSERT_TRUE(s.LoadWav("edge.wav"));
    ASSERT_EQ(s.Buffer().size(), 800u);
    for (uint8_t b : s.Buffer()) ASSERT_EQ(b, 0);

    // The RIFF size rules, not the file size: a header claiming more than the
    // file holds gives a longer silent buffer; bytes after the samples (another
    // chunk) are copied as samples when they fall inside R - 800.
    std::vector<uint8_t> body(2000, 3);
    std::vector<uint8_t> withChunk = MakeWav(body, 1, 44100, 16, 36 + 2000 + 12);
    const char extra[12] = {'L', 'I', 'S', 'T', 4, 0, 0, 0, 'a', 'b', 'c', 'd'};
    withChunk.insert(withChunk.end(), extra, extra + 12);
    mediatest::WriteFile("chunk.wav", withChunk);
    ASSERT_TRUE(s.LoadWav("chunk.wav"));
    ASSERT_EQ(s.Buffer().size(), 2048u);
    EXPECT_EQ(s.Buffer()[1247], 3);  // fill = 1248 bytes, all sample data
    EXPECT_EQ(s.Buffer()[1248], 0);
    std::vector<uint8_t> claimsMore = MakeWav(std::vector<uint8_t>(1000, 4), 1, 44100, 16, 5000);
    claimsMore.insert(claimsMore.end(), extra, extra + 12);
    mediatest::WriteFile("long.wav", claimsMore);
    ASSERT_TRUE(s.LoadWav("long.wav"));
    ASSERT_EQ(s.Buffer().size(), 5000u);
    EXPECT_EQ(s.Buffer()[999], 4);
    EXPECT_EQ(s.Buffer()[1000], 'L');
    EXPECT_EQ(s.Buffer()[1011], 'd');
    EXPECT_EQ(s.Buffer()[1012], 0);
    EXPECT_EQ(mediatest::ReadFile("GameEngine.log"), "");
}

TEST_F(SoundTest, RefusedFormatsEmptyTheSound) {
    ASSERT_TRUE(InitSound());
    CSound s;
    mediatest::WriteFile("ok.wav", MakeWav(std::vector<uint8_t>(2000, 1)));
    ASSERT_TRUE(s.LoadWav("ok.wav"));

    const struct {
        int channels, rate, bits, tag;
    } bad[] = {{1, 44100, 16, 3}, {1, 44100, 12, 1}, {0, 44100, 16, 1}, {1, 50, 16, 1}};
    int n = 0;
    for (const auto& b : bad) {
        mediatest::WriteFile("bad.wav", MakeWav(std::vector<uint8_t>(2000, 1), b.channels, b.rate, b.bits, -1, b.tag));
        EXPECT_FALSE(s.LoadWav("bad.wav"));
        EXPECT_TRUE(s.Buffer().empty());
        ++n;
    }
    // A file too short to hold a header.
    mediatest::WriteFile("tiny.wav", {'R', 'I', 'F', 'F'});
    EXPECT_FALSE(s.LoadWav("tiny.wav"));
    ++n;
    const std::string log = mediatest::ReadFile("GameEngine.log");
    EXPECT_EQ(mediatest::CountLines(log), n);
    size_t count = 0;
    for (size_t p = log.find("----->error on create sound buffer\r\n"); p != std::string::npos;
         p = log.find("----->error on create sound buffer\r\n", p + 1))
        ++count;
    EXPECT_EQ(count, size_t(n));

    // 8-bit stereo at 22 kHz is taken and converted; its silent tail is 0x80.
    mediatest::WriteFile("u8.wav", MakeWav(std::vector<uint8_t>(1200, 0x90), 2, 22050, 8));
    ASSERT_TRUE(s.LoadWav("u8.wav"));
    ASSERT_EQ(s.Buffer().size(), 1236u);
    EXPECT_EQ(s.Buffer()[435], 0x90);
    EXPECT_EQ(s.Buffer()[436], 0x80);
}

TEST_F(SoundTest, PlayingOncePerBufferAndTogether) {
    ASSERT_TRUE(InitSound());
    CSound a, b;
    mediatest::WriteFile("a.wav", MakeWav(mediatest::Tone(0.1)));
    mediatest::WriteFile("long.wav", MakeWav(mediatest::Tone(3.0, 220)));
    ASSERT_TRUE(a.LoadWav("a.wav"));
    ASSERT_TRUE(b.LoadWav("long.wav"));

    // Looping, then asked again to play once: the second request is ignored
    // while the first sounds, so it keeps looping past its length.
    a.Play(-1);
    b.Play(0);
    EXPECT_TRUE(a.IsPlaying());
    EXPECT_TRUE(b.IsPlaying());  // two effects at once on their own channels
    a.Play(0);
    SDL_Delay(400);
    EXPECT_TRUE(a.IsPlaying());
    EXPECT_TRUE(b.IsPlaying());

    // Loading another file stops the sound that was playing.
    ASSERT_TRUE(b.LoadWav("a.wav"));
    EXPECT_FALSE(b.IsPlaying());
    b.Play(0);
    EXPECT_TRUE(WaitFor([&] { return !b.IsPlaying(); }, 3000));
    EXPECT_TRUE(a.IsPlaying());

    // Switching sound off makes Play do nothing.
    SetSoundEnabled(false);
    b.Play(0);
    EXPECT_FALSE(b.IsPlaying());
    SetSoundEnabled(true);

    // Many sounds each get a channel of their own.
    std::vector<std::unique_ptr<CSound>> many;
    for (int i = 0; i < 12; ++i) {
        many.push_back(std::make_unique<CSound>());
        ASSERT_TRUE(many.back()->LoadWav("long.wav"));
        many.back()->Play(0);
    }
    for (auto& s : many) EXPECT_TRUE(s->IsPlaying());
}

}  // namespace

namespace {

using mediatest::MakeWav;

class SoundCapTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        SetSoundEnabled(false);
    }
    void TearDown() override {
        ReleaseSound();
        SetSoundEnabled(false);
    }
    mediatest::ScratchDir dir;
};

// A header that claims far more samples than an effect may hold is refused
// before any buffer is made, on every load; the cap itself is taken.
TEST_F(SoundCapTest, ClaimedSizesAboveTheCapAreRefused) {
    ASSERT_TRUE(InitSound());
    CSound s;
    mediatest::WriteFile("ok.wav", MakeWav(std::vector<uint8_t>(2000, 1)));
    ASSERT_TRUE(s.LoadWav("ok.wav"));
    mediatest::WriteFile("huge.wav", MakeWav(std::vector<uint8_t>(2000, 2), 1, 44100, 16, 64 << 20));
    for (int play = 0; play < 3; ++play) {
        EXPECT_FALSE(s.LoadWav("huge.wav"));
        EXPECT_TRUE(s.Buffer().empty());
        EXPECT_LT(s.Buffer().capacity(), 64u << 10);
    }
    const std::string log = mediatest::ReadFile("GameEngine.log");
    EXPECT_EQ(mediatest::CountLines(log), 3);
    EXPECT_NE(log.find("----->[sound]huge.wav: claims 67108864 bytes of samples, more than the 4194304 a sound may "
                       "hold at byte 4\r\n"),
              std::string::npos)
        << log;
    // Exactly the cap: a long silent buffer behind the file's samples.
    mediatest::WriteFile("cap.wav", MakeWav(std::vector<uint8_t>(2000, 2), 1, 44100, 16, 4 << 20));
    ASSERT_TRUE(s.LoadWav("cap.wav"));
    ASSERT_EQ(s.Buffer().size(), size_t(4) << 20);
    EXPECT_EQ(s.Buffer()[1999], 2);
    EXPECT_EQ(s.Buffer()[2000], 0);
    mediatest::WriteFile("over.wav", MakeWav(std::vector<uint8_t>(2000, 2), 1, 44100, 16, (4 << 20) + 1));
    EXPECT_FALSE(s.LoadWav("over.wav"));
}

}  // namespace
