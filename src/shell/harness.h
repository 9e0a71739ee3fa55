// The automation harness: command-line flags, replayed input, frame shots, the
// state dump and the run summary; and the launcher hand-shake.
#pragma once
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "shell/game.h"

// Parses --headless, --uncapped, --frames N, --replay FILE, --shot FRAME:FILE.png,
// --clock UNIX_SECONDS, --dump-state FILE, --warp MAP[:X:Y], --scale N. Other
// arguments (such as "action=play") are left alone.
bool ParseHarnessOptions(int argc, char** argv, SHarnessOptions& out, std::string& error);
void ApplyHarnessClock(const SHarnessOptions& options);

// Starts "<working directory>/launcher" with the given parameter text, without
// waiting; failure is not reported.
void StartLauncher(const char* parameters);

// Prints "frames=N wall_ms=W cpu_ms=C peak_rss_kb=R" when --frames was given and
// writes the --dump-state file.
void FinishHarness(CGame& game, std::chrono::steady_clock::time_point wallStart);

// One replayed input event.
struct SReplayEvent {
    int64_t frame = 0;
    enum EKind { MOVE, LDOWN, LUP, RDOWN, RUP, KEY, QUIT } kind = MOVE;
    int32_t x = 0, y = 0;  // cursor, or the key code for KEY
};

// Reads a replay file: one event per line "FRAME verb args", '#' starts a
// comment. False with a message naming the line on a malformed line.
bool ParseReplay(const std::string& text, std::vector<SReplayEvent>& out, std::string& error);

// Writes a 640 x 480 5-6-5 picture as an RGB PNG file.
bool WritePng565(const char* path, const uint16_t* pixels, int width, int height);
