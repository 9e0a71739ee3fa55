#include "ui/menu_panels.h"

#include "resources/ini.h"

CMainMenuPanel::CMainMenuPanel() = default;
CMainMenuPanel::~CMainMenuPanel() = default;

bool CMainMenuPanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    // The main menu stands at the origin: its button positions are screen positions.
    if (!BeginLayout(ini, fileName, archivePath, false)) return false;
    for (const char* section : {"startButton", "loadButton", "aboutButton", "exitButton"})
        AddButton(ini, section, true);
    ini.Close();
    return true;
}

CMenuPanel::CMenuPanel() = default;
CMenuPanel::~CMenuPanel() = default;

bool CMenuPanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    if (!BeginLayout(ini, fileName, archivePath, true)) return false;
    for (const char* section : {"backButton", "saveButton", "loadButton", "helpButton", "exitButton"})
        AddButton(ini, section, false);
    ini.Close();
    return true;
}
