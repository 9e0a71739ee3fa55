// The automation harness: command-line flags, the files it reads and writes,
// replayed input, frame shots, the state dump, the run summary and the exit
// code; the game folder, the launcher hand-shake and the quit signals.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "shell/game.h"

// Exit codes of the game process.
constexpr int EXIT_HARNESS_DONE = 0;   // a --frames run that ran all its frames
constexpr int EXIT_GAME = 1;           // every plain run; start-up failed; ended before its frames
constexpr int EXIT_HARNESS_ERROR = 2;  // a bad flag, or a harness file that could not be read or written

// The largest replay file read (a replay is a short text).
constexpr size_t REPLAY_MAX_BYTES = 16u << 20;

// Parses --headless, --uncapped, --frames N, --replay FILE, --shot FRAME:FILE.png,
// --clock UNIX_SECONDS, --dump-state FILE, --warp MAP[:X:Y], --scale N. Other
// words (such as "action=play") are left alone; anything else that starts with
// '-', a missing or malformed number and a number out of range is an error.
bool ParseHarnessOptions(int argc, char** argv, SHarnessOptions& out, std::string& error);
void ApplyHarnessClock(const SHarnessOptions& options);

// Turns the relative paths of --replay, --shot and --dump-state into absolute
// ones from the current folder, so that they keep their meaning when the game
// moves into its own folder.
void MakeHarnessPathsAbsolute(SHarnessOptions& options);

// Reads the harness's input and checks its outputs before the game starts: the
// replay file (a regular file of at most REPLAY_MAX_BYTES, every line valid),
// the --shot and --dump-state paths (a file that can be written), and the
// --warp cell (inside its map). False with a message naming the file and line.
bool PrepareHarnessFiles(SHarnessOptions& options, std::string& error);

// Reads a whole regular file of at most maxBytes without ever blocking: FIFOs,
// devices and folders are refused before they are opened.
bool ReadBoundedFile(const std::string& path, size_t maxBytes, std::string& out, std::string& error);
// True when path names a file that can be written (an existing regular file, or
// a new file in an existing folder).
bool CheckWritablePath(const std::string& path, std::string& error);

// Reads a replay file: one event per line "FRAME verb args", '#' starts a
// comment. False with a message naming the line on a malformed line.
bool ParseReplay(const std::string& text, std::vector<SReplayEvent>& out, std::string& error);

// A game started from another folder (a desktop shortcut) moves into the folder
// of its own executable when that folder holds the game ("game.ini") and the
// current one does not. Returns that folder, or "" when it stayed.
std::string EnterGameFolder();
// The folder that holds the running executable ("" when unknown).
std::string ExecutableFolder();

// Starts "<working directory>/launcher" with the given parameter text, without
// waiting. A launcher that is not there is said on stderr.
void StartLauncher(const char* parameters);

// SIGTERM and SIGINT end the game as a closed window does: the handlers only
// raise a flag, which the loop takes and turns into WM_CLOSE. A second signal
// while the first is still waiting ends the process at once.
void InstallQuitSignals();
bool TakeQuitSignal();

// Writes the --dump-state file and, for a --frames run, prints
// "frames=N wall_ms=W cpu_ms=C peak_rss_kb=R"; reports what went wrong on
// stderr and returns the process's exit code.
int FinishHarness(CGame& game, bool started, std::chrono::steady_clock::time_point wallStart);

// Writes a 640 x 480 5-6-5 picture as an RGB PNG file.
bool WritePng565(const char* path, const uint16_t* pixels, int width, int height);
