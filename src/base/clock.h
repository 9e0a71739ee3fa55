// Time sources: the millisecond tick count (the frame pacer) and the UTC calendar
// clock (logs, saves, screenshots, random seeds). Both can be replaced: the
// harness fixes the calendar start with --clock and makes ticks virtual with
// --uncapped; tests inject their own.
#pragma once
#include <cstdint>

struct SSystemTime {
    int year = 1970, month = 1, dayOfWeek = 4, day = 1;
    int hour = 0, minute = 0, second = 0, milliseconds = 0;
};

// Milliseconds since an arbitrary start, wrapping like the Windows tick count.
uint32_t GetTickCount();
// Current UTC time.
void GetSystemTime(SSystemTime& out);
// Seconds since 1970 (UTC); the random generator's seed source.
int64_t GetCalendarSeconds();

// Breaks a UTC time given in milliseconds since 1970 into its fields.
SSystemTime SystemTimeFromUnixMs(int64_t unixMs);

namespace clock_control {
// Fixes the calendar: the clock starts at unixSeconds and advances with the tick
// count from the moment of the call.
void SetCalendarStart(int64_t unixSeconds);
// Virtual ticks: the tick count no longer follows the wall clock and only moves
// by Advance (used by --uncapped and tests).
void SetVirtualTicks(bool on);
void AdvanceTicks(uint32_t ms);
void SetTicks(uint32_t ms);
// Back to the real clocks.
void Reset();
}  // namespace clock_control
