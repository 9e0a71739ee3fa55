// CGame: writing and reading saved games. The game state they hold (bag,
// equipment, skills, missions) is not built yet, so saving writes nothing and a
// load returns to the main menu with a message.
#include "shell/game.h"

void CGame::SaveGame(int) { ShowMessage("Saving is not available yet."); }

int CGame::LoadGame() {
    ShowMessage("Loading saved games is not available yet.");
    m_bMusicStarted = 0;
    StartFade(1, GS_MAINMENU);
    return 1;
}
