// The main menu ("mainmenu.ini": start, load, about, exit, at the screen origin)
// and the in-game menu ("menu.ini": back, save, load, help, exit).
#pragma once
#include <cstdint>
#include <vector>

#include "ui/panel.h"

class CMainMenuPanel : public CPanel {
public:
    enum { BTN_START = 0, BTN_LOAD = 1, BTN_ABOUT = 2, BTN_EXIT = 3 };
    CMainMenuPanel();
    ~CMainMenuPanel() override;
    bool Load(const char* fileName, const char* archivePath);

    // The menu's frame on the back buffer, as Draw makes it. When the background
    // covers the whole screen without a transparent pixel, the composed picture
    // is kept and copied back on every frame whose hover state is the same (the
    // hover sound still plays as Draw plays it); only a hover change composes
    // it again.
    void DrawFrame();
    // Number of times DrawFrame composed the picture (for tests).
    int ComposeCount() const { return m_nComposed; }

private:
    bool BackgroundCoversScreen();

    std::vector<uint16_t> m_composed;  // the last composed frame
    std::vector<int32_t> m_composedHover;
    bool m_bComposedValid = false;
    int m_nOpaqueBg = -1;              // -1 not yet known, 0 no, 1 yes
    int m_nComposed = 0;
};

class CMenuPanel : public CPanel {
public:
    enum { BTN_BACK = 0, BTN_SAVE = 1, BTN_LOAD = 2, BTN_HELP = 3, BTN_EXIT = 4 };
    CMenuPanel();
    ~CMenuPanel() override;
    bool Load(const char* fileName, const char* archivePath);
};
