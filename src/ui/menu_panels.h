// The main menu ("mainmenu.ini": start, load, about, exit, at the screen origin)
// and the in-game menu ("menu.ini": back, save, load, help, exit).
#pragma once
#include "ui/panel.h"

class CMainMenuPanel : public CPanel {
public:
    enum { BTN_START = 0, BTN_LOAD = 1, BTN_ABOUT = 2, BTN_EXIT = 3 };
    CMainMenuPanel();
    ~CMainMenuPanel() override;
    bool Load(const char* fileName, const char* archivePath);
};

class CMenuPanel : public CPanel {
public:
    enum { BTN_BACK = 0, BTN_SAVE = 1, BTN_LOAD = 2, BTN_HELP = 3, BTN_EXIT = 4 };
    CMenuPanel();
    ~CMenuPanel() override;
    bool Load(const char* fileName, const char* archivePath);
};
