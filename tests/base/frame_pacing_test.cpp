// The loop's pacing decision: when the next frame is due and how long to sleep,
// including the wrap-around of the 32-bit tick count and its signed comparison.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "base/frame_pacing.h"

TEST(FramePacing, FortyMillisecondsAreNotYetFortyOneAre) {
    EXPECT_FALSE(IsFrameDue(100000, 100040));
    EXPECT_TRUE(IsFrameDue(100000, 100041));
    SFrameWake w = NextFrameWake(100000, 100000);
    EXPECT_FALSE(w.due);
    EXPECT_EQ(w.waitMs, 41u);
    EXPECT_EQ(w.wakeTick, 100041u);
    w = NextFrameWake(100000, 100039);
    EXPECT_EQ(w.waitMs, 2u);
    w = NextFrameWake(100000, 100040);
    EXPECT_FALSE(w.due);
    EXPECT_EQ(w.waitMs, 1u);
    EXPECT_EQ(w.wakeTick, 100041u);
    w = NextFrameWake(100000, 100041);
    EXPECT_TRUE(w.due);
    EXPECT_EQ(w.waitMs, 0u);
    // Late: due at once, no catch-up owed.
    w = NextFrameWake(100000, 100300);
    EXPECT_TRUE(w.due);
    EXPECT_EQ(w.waitMs, 0u);
}

TEST(FramePacing, UnsignedWrapOfTheTickIsContinuous) {
    // The limit wraps past 0xFFFFFFFF: 0xFFFFFFF0 + 40 = 0x18. As signed numbers
    // the ticks run -16 ... -1, 0 ... 24, so the frame is due at 25, 41 ms later.
    const uint32_t last = 0xFFFFFFF0u;
    SFrameWake w = NextFrameWake(last, 0xFFFFFFF5u);
    EXPECT_FALSE(w.due);
    EXPECT_EQ(w.waitMs, 36u);
    EXPECT_EQ(w.wakeTick, 0x19u);
    EXPECT_FALSE(IsFrameDue(last, 0x18u));
    EXPECT_TRUE(IsFrameDue(last, 0x19u));
    w = NextFrameWake(last, 0x18u);
    EXPECT_EQ(w.waitMs, 1u);
    EXPECT_EQ(w.wakeTick, 0x19u);
}

TEST(FramePacing, SignedBoundaryStallsAndTheWaitStaysBounded) {
    // Crossing from 0x7FFFFFFF to 0x80000000 turns the tick negative while the
    // limit stays positive: the signed comparison stays false (as it does with
    // the Windows tick count), and the loop keeps looking every 41 ms.
    const uint32_t last = 0x7FFFFFC0u;  // limit 0x7FFFFFE8
    SFrameWake w = NextFrameWake(last, 0x7FFFFFE0u);
    EXPECT_EQ(w.waitMs, 9u);
    EXPECT_EQ(w.wakeTick, 0x7FFFFFE9u);
    EXPECT_TRUE(IsFrameDue(last, 0x7FFFFFE9u));
    EXPECT_FALSE(IsFrameDue(last, 0x80000000u));
    w = NextFrameWake(last, 0x80000000u);
    EXPECT_FALSE(w.due);
    EXPECT_EQ(w.waitMs, kMaxFrameWaitMs);
    EXPECT_EQ(w.wakeTick, 0x80000000u + kMaxFrameWaitMs);
    // A limit of exactly the largest signed value is never exceeded.
    const uint32_t never = 0x7FFFFFFFu - 40;
    for (uint32_t now : {0x7FFFFFF0u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0u, 0x12345678u}) {
        w = NextFrameWake(never, now);
        EXPECT_FALSE(w.due) << now;
        EXPECT_EQ(w.waitMs, kMaxFrameWaitMs) << now;
    }
    // A tick source that went back in time is looked at again after 41 ms.
    w = NextFrameWake(100000, 50);
    EXPECT_FALSE(w.due);
    EXPECT_EQ(w.waitMs, kMaxFrameWaitMs);
}

TEST(FramePacing, WakingAtTheWakeTickFindsTheFrameDueAndNotBefore) {
    // Over ticks around both boundaries and ordinary values: no tick before the
    // wake-up runs a frame, and the wake-up itself does (unless the wait was cut
    // to the longest sleep).
    std::vector<uint32_t> lasts = {0, 1000, 0x7FFFFF00u, 0x7FFFFFC0u, 0x7FFFFFD6u, 0x7FFFFFD8u,
                                   0xFFFFFFD7u, 0xFFFFFFE0u, 0xFFFFFFF0u, 0xFFFFFFFFu};
    for (uint32_t last : lasts) {
        for (int32_t d = -5; d <= 50; ++d) {
            const uint32_t now = last + uint32_t(d);
            const SFrameWake w = NextFrameWake(last, now);
            EXPECT_EQ(w.due, IsFrameDue(last, now));
            if (w.due) continue;
            ASSERT_GE(w.waitMs, 1u);
            ASSERT_LE(w.waitMs, kMaxFrameWaitMs);
            EXPECT_EQ(w.wakeTick, now + w.waitMs);
            for (uint32_t t = 0; t < w.waitMs; ++t) EXPECT_FALSE(IsFrameDue(last, now + t)) << last << " " << d;
            if (w.waitMs < kMaxFrameWaitMs) EXPECT_TRUE(IsFrameDue(last, w.wakeTick)) << last << " " << d;
        }
    }
}
