// The process entry: the launcher hand-shake, the crash log, the one game object,
// its start-up and loop, and the harness summary.
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "media/window.h"
#include "shell/game.h"
#include "shell/harness.h"
#include "base/log.h"
#include "base/message_box.h"

int main(int argc, char** argv) {
    std::string commandLine;
    for (int i = 1; i < argc; ++i) {
        if (i > 1) commandLine += ' ';
        commandLine += argv[i];
    }
    if (commandLine.find("action=play") == std::string::npos) {
        StartLauncher("");
        return 0;
    }

    SHarnessOptions options;
    std::string error;
    if (!ParseHarnessOptions(argc, argv, options, error)) {
        fprintf(stderr, "ashen-oath: %s\n", error.c_str());
        return 2;
    }
    InstallCrashLog();
    ApplyHarnessClock(options);

    auto wallStart = std::chrono::steady_clock::now();
    platform::SOptions platformOptions;
    platformOptions.headless = options.headless;
    platformOptions.scale = options.scale;
    if (!platform::Init(platformOptions)) return 1;
    atexit(platform::Shutdown);  // after the game object is destroyed

    // The one game object lives until the process exits.
    static CGame game;
    game.SetHarness(options);
    int code = 1;
    if (game.Init(1)) {
        game.Run();
    } else {
        MessageBox("Initialize application failed.", "Error", MB_ICONERROR);
    }
    StartLauncher("time=end");
    FinishHarness(game, wallStart);
    return code;
}
