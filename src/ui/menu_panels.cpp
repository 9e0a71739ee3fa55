#include "ui/menu_panels.h"

#include <cstring>

#include "media/graph.h"
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
    m_bComposedValid = false;
    m_nOpaqueBg = -1;
    return true;
}

bool CMainMenuPanel::BackgroundCoversScreen() {
    if (m_nOpaqueBg >= 0) return m_nOpaqueBg == 1;
    CGraph* g = g_pGraph;
    if (!g || !m_bHasBg || m_nX != 0 || m_nY != 0 || !m_vecLabels.empty()) return false;  // not known yet
    int32_t w = 0, h = 0;
    if (!g->GetBitmapSize(m_nBgPack, m_strBgName.c_str(), &w, &h)) return false;
    // Staged where Draw stages it (the role layer's corner, which Draw then
    // overwrites again), to look for transparent pixels.
    if (!g->LoadBitmapToSurface(m_nBgPack, m_strBgName.c_str(), SURF_ROLE, 0, 0, 0)) return false;
    bool opaque = w >= SCREEN_W && h >= SCREEN_H;
    const CSurface* staged = g->GetSurface(SURF_ROLE);
    for (int32_t y = 0; opaque && y < SCREEN_H; ++y) {
        const uint16_t* row = staged->Row(y);
        for (int32_t x = 0; x < SCREEN_W; ++x)
            if (row[x] == staged->colorKey) {
                opaque = false;
                break;
            }
    }
    m_nOpaqueBg = opaque ? 1 : 0;
    return opaque;
}

void CMainMenuPanel::DrawFrame() {
    CGraph* g = g_pGraph;
    CSurface* back = g ? g->GetSurface(SURF_BUFFER) : nullptr;
    if (!back || !back->Valid()) {
        Draw();
        return;
    }
    const size_t pixels = size_t(back->width) * size_t(back->height);
    bool same = m_bComposedValid && m_composedHover.size() == m_vecButtons.size() && m_composed.size() == pixels;
    for (size_t i = 0; same && i < m_vecButtons.size(); ++i) same = m_composedHover[i] == m_vecButtons[i].Hover();
    if (same) {
        for (CButton& b : m_vecButtons) b.UpdateHoverSound();
        std::memcpy(back->pixels.data(), m_composed.data(), pixels * sizeof(uint16_t));
        return;
    }
    const bool keep = BackgroundCoversScreen();
    Draw();
    ++m_nComposed;
    m_bComposedValid = keep;
    if (!keep) return;
    m_composed.assign(back->pixels.begin(), back->pixels.end());
    m_composedHover.resize(m_vecButtons.size());
    for (size_t i = 0; i < m_vecButtons.size(); ++i) m_composedHover[i] = m_vecButtons[i].Hover();
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
