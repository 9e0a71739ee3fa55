// The process entry: the game folder, the launcher hand-shake, the harness flags
// and files, the crash log, the one game object, its start-up and loop, and the
// harness summary and exit code.
#include <chrono>
#include <cstdio>
#include <string>

#include "base/log.h"
#include "base/message_box.h"
#include "media/window.h"
#include "shell/game.h"
#include "shell/harness.h"

int main(int argc, char** argv) {
    std::string commandLine;
    for (int i = 1; i < argc; ++i) {
        if (i > 1) commandLine += ' ';
        commandLine += argv[i];
    }
    SHarnessOptions options;
    std::string error;
    const bool play = commandLine.find("action=play") != std::string::npos;
    if (play && !ParseHarnessOptions(argc, argv, options, error)) {
        fprintf(stderr, "ashen-oath: %s\n", error.c_str());
        return EXIT_HARNESS_ERROR;
    }
    // Paths given on the command line are taken from where the game was started.
    MakeHarnessPathsAbsolute(options);
    EnterGameFolder();
    if (!play) {
        StartLauncher("");
        return 0;
    }
    if (!PrepareHarnessFiles(options, error)) {
        fprintf(stderr, "ashen-oath: %s\n", error.c_str());
        return EXIT_HARNESS_ERROR;
    }
    InstallCrashLog();
    InstallQuitSignals();
    ApplyHarnessClock(options);

    auto wallStart = std::chrono::steady_clock::now();
    platform::SOptions platformOptions;
    platformOptions.headless = options.headless;
    platformOptions.scale = options.scale;
    if (!platform::Init(platformOptions)) return EXIT_GAME;
    atexit(platform::Shutdown);  // after the game object is destroyed

    // The one game object lives until the process exits.
    static CGame game;
    game.SetHarness(options);
    const bool started = game.Init(1) != 0;
    if (started) {
        game.Run();
    } else {
        MessageBox("Initialize application failed.", "Error", MB_ICONERROR);
    }
    StartLauncher("time=end");
    return FinishHarness(game, started, wallStart);
}
