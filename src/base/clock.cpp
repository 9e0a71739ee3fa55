#include "base/clock.h"

#include <chrono>

namespace {

struct ClockState {
    bool virtualTicks = false;
    uint32_t virtualNow = 0;
    bool calendarFixed = false;
    int64_t calendarStartMs = 0;
    uint32_t calendarStartTick = 0;
};
ClockState g_clock;

uint32_t RealTicks() {
    using namespace std::chrono;
    static const steady_clock::time_point start = steady_clock::now();
    return uint32_t(duration_cast<milliseconds>(steady_clock::now() - start).count());
}

int64_t DaysFromCivilInverse(int64_t z, int& y, int& m, int& d) {
    // Civil date from days since 1970-01-01 (H. Hinnant's algorithm).
    z += 719468;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    d = int(doy - (153 * mp + 2) / 5 + 1);
    m = int(mp < 10 ? mp + 3 : mp - 9);
    y = int(yoe + era * 400 + (m <= 2 ? 1 : 0));
    return 0;
}

}  // namespace

uint32_t GetTickCount() { return g_clock.virtualTicks ? g_clock.virtualNow : RealTicks(); }

static int64_t NowUnixMs() {
    if (g_clock.calendarFixed)
        return g_clock.calendarStartMs + int64_t(uint32_t(GetTickCount() - g_clock.calendarStartTick));
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

SSystemTime SystemTimeFromUnixMs(int64_t unixMs) {
    SSystemTime t;
    int64_t days = unixMs >= 0 ? unixMs / 86400000 : -((-unixMs + 86399999) / 86400000);
    int64_t msOfDay = unixMs - days * 86400000;
    DaysFromCivilInverse(days, t.year, t.month, t.day);
    t.dayOfWeek = int(((days % 7) + 11) % 7);  // 1970-01-01 was a Thursday (4)
    t.hour = int(msOfDay / 3600000);
    t.minute = int(msOfDay / 60000 % 60);
    t.second = int(msOfDay / 1000 % 60);
    t.milliseconds = int(msOfDay % 1000);
    return t;
}

void GetSystemTime(SSystemTime& out) { out = SystemTimeFromUnixMs(NowUnixMs()); }

int64_t GetCalendarSeconds() {
    int64_t ms = NowUnixMs();
    return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
}

namespace clock_control {
void SetCalendarStart(int64_t unixSeconds) {
    g_clock.calendarFixed = true;
    g_clock.calendarStartMs = unixSeconds * 1000;
    g_clock.calendarStartTick = GetTickCount();
}
void SetVirtualTicks(bool on) {
    if (on && !g_clock.virtualTicks) g_clock.virtualNow = RealTicks();
    g_clock.virtualTicks = on;
}
void AdvanceTicks(uint32_t ms) { g_clock.virtualNow += ms; }
void SetTicks(uint32_t ms) { g_clock.virtualNow = ms; }
void Reset() { g_clock = ClockState{}; }
}  // namespace clock_control
