#include "base/frame_pacing.h"

bool IsFrameDue(uint32_t lastFrameTick, uint32_t now) {
    return int32_t(now) > int32_t(lastFrameTick + kFrameIntervalMs);
}

SFrameWake NextFrameWake(uint32_t lastFrameTick, uint32_t now) {
    SFrameWake w;
    w.wakeTick = now;
    if (IsFrameDue(lastFrameTick, now)) {
        w.due = true;
        return w;
    }
    // Not due: read as signed numbers, now is at most the limit. The first tick
    // above the limit is limit + 1, unless the limit is the largest signed value
    // (no tick exceeds it; look again after the longest sleep).
    const int32_t limit = int32_t(lastFrameTick + kFrameIntervalMs);
    uint32_t wait = kMaxFrameWaitMs;
    if (limit != INT32_MAX) {
        // now <= limit < limit + 1, so the distance is positive and fits 32 bits.
        const int64_t distance = int64_t(limit) + 1 - int64_t(int32_t(now));
        if (distance < int64_t(kMaxFrameWaitMs)) wait = uint32_t(distance);
    }
    w.waitMs = wait;
    w.wakeTick = now + wait;
    return w;
}
