// CGame: running story scripts. The script interpreter is not part of the engine
// yet: RunScript reports that no script could be run, so callers take their
// fallbacks (a new game starts on "main.map").
#include "base/debug.h"
#include "shell/game.h"

int CGame::RunScript(const char* name, int quiet) {
    DebugOut("RunScript(%s, %d): no script interpreter\n", name ? name : "", quiet);
    return 0;
}

int CGame::ContinueScript() { return 0; }
