// When the game loop runs its next frame, and how long it may sleep until then.
// A frame is due when the tick count, read as a signed 32-bit number, is greater
// than the last frame's tick plus 40 (so exactly 40 ms later is not yet). The loop
// never catches up: the next frame is measured from the start of the last one.
#pragma once
#include <cstdint>

constexpr uint32_t kFrameIntervalMs = 40;
// The longest single sleep between two checks. Bounded so that a tick source that
// jumps (or a signed comparison that cannot become true for a long time) is
// looked at again soon.
constexpr uint32_t kMaxFrameWaitMs = kFrameIntervalMs + 1;

struct SFrameWake {
    bool due = false;        // run a frame now
    uint32_t waitMs = 0;     // how long to sleep from now (0 when due), at most kMaxFrameWaitMs
    uint32_t wakeTick = 0;   // now + waitMs (wrapping): the frame's due tick unless the wait was capped
};

// True when a frame is due at `now` after a frame at `lastFrameTick`.
bool IsFrameDue(uint32_t lastFrameTick, uint32_t now);

// The next wake-up from the last frame's tick and the current tick, across the
// wrap-around of the 32-bit tick count.
SFrameWake NextFrameWake(uint32_t lastFrameTick, uint32_t now);
