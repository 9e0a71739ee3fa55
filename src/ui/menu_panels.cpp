#include "ui/menu_panels.h"

#include "resources/ini.h"

CMainMenuPanel::CMainMenuPanel() = default;
CMainMenuPanel::~CMainMenuPanel() = default;

bool CMainMenuPanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    if (!ini.Open(fileName, archivePath) || ini.IsFailed()) {
        ini.Close();
        return false;
    }
    m_vecButtons.clear();
    // The main menu stands at the origin: its button positions are screen positions.
    ReadPanelSection(ini, false);
    for (const char* section : {"startButton", "loadButton", "aboutButton", "exitButton"})
        AddButton(ini, section, true);
    ini.Close();
    return true;
}

CMenuPanel::CMenuPanel() = default;
CMenuPanel::~CMenuPanel() = default;

bool CMenuPanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    if (!ini.Open(fileName, archivePath) || ini.IsFailed()) {
        ini.Close();
        return false;
    }
    m_vecButtons.clear();
    ReadPanelSection(ini, true);
    for (const char* section : {"backButton", "saveButton", "loadButton", "helpButton", "exitButton"})
        AddButton(ini, section, false);
    ini.Close();
    return true;
}
