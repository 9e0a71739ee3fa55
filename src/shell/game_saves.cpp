// CGame: the save panel side of saved games: opening the panel with the slot
// captions, and starting the load of a slot.
#include <cstdio>
#include <string>

#include "media/graph.h"
#include "shell/game.h"
#include "base/paths.h"
#include "ui/save_panel.h"

namespace {
std::string SlotPath(int slot) {
    char name[32];
    std::snprintf(name, sizeof name, "saves\\%d.sav", slot);
    return HostPath(name);
}
}  // namespace

void CGame::OpenSavePanel(int loadForm, int returnMode) {
    const char* title;
    if (loadForm) {
        m_nLoadPanelOrigin = m_nGameState;
        m_nResumeState = returnMode;
        title = "<3Load Game/>";
        m_nGameState = GS_LOAD;
    } else {
        title = "<3Save Game/>";
        m_nGameState = GS_SAVE;
    }
    // The panel stands on the picture of the mode it was opened from.
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_BUFFER, SRect{0, 0, SCREEN_W, SCREEN_H}, BLT_WAIT);
    std::string captions[SAVE_SLOT_COUNT];
    for (int n = 1; n <= SAVE_SLOT_COUNT; ++n) captions[n - 1] = SaveSlotCaption(SlotPath(n).c_str());
    if (m_pSavePanel) m_pSavePanel->SetTexts(captions, title);
}

int CGame::LoadSlot(int slot) {
    if (slot < 1 || slot > SAVE_SLOT_COUNT || !IsSaveFile(SlotPath(slot).c_str())) return 0;
    m_nLoadSlot = slot;
    StartFade(1, GS_LOADMSG);
    return 1;
}
