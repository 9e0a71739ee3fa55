#include "ui/button.h"

#include <cstring>

#include "media/graph.h"
#include "media/sound.h"
#include "base/debug.h"
#include "ui/panel.h"

CSound* g_pButtonOverSound = nullptr;

namespace {
int64_t g_nHoverSoundCount = 0;
}

int64_t ButtonHoverSoundCount() { return g_nHoverSoundCount; }

CButton::CButton(const char* text, int32_t x, int32_t y, int32_t type, int32_t hoverSound, const char* text1)
    : m_nX(x), m_nY(y), m_nType(type), m_strText(text ? text : ""), m_nHoverSound(hoverSound) {
    if (type == 2 && text1) m_strText1 = text1;
    ParsePictures();
    m_rect = SRect{x, y, x, y};
    if (type == 0) {
        if (g_pGraph && !m_strText.empty()) {
            const SPoint size = g_pGraph->MeasureText(m_strText.c_str(), 18);
            m_rect = SRect{x, y, x + size.x, y + size.y};
        }
        return;
    }
    // A picture button reacts only when it has a picture; type 2 also needs a
    // hover picture named in its layout.
    if (m_strText == "NULL") return;
    if (type == 2 && !text1) return;
    int32_t w = 0, h = 0;
    if (m_bPic && g_pGraph && g_pGraph->GetBitmapSize(m_nPack, m_strName.c_str(), &w, &h))
        m_rect = SRect{x, y, x + w, y + h};
}

CButton::~CButton() = default;

void CButton::ParsePictures() {
    m_bPic = false;
    m_bPic1 = false;
    if (m_nType == 0) return;
    m_nPack = 0;
    m_bPic = ParsePictureRef(m_strText.c_str(), &m_nPack, &m_strName);
    if (m_nType == 2) {
        m_nPack1 = 0;
        m_bPic1 = ParsePictureRef(m_strText1.c_str(), &m_nPack1, &m_strName1);
    }
}

bool CButton::UpdateHover(SPoint pt) {
    m_nHover = HitTest(pt) ? 1 : 0;
    return m_nHover != 0;
}

void CButton::Move(int32_t x, int32_t y, int32_t width, int32_t height) {
    if (x != -1) m_nX = x;
    if (y != -1) m_nY = y;
    m_rect = SRect{m_nX, m_nY, m_nX + width, m_nY + height};
}

void CButton::SetText(const char* text) {
    m_strText = text ? text : "";
    ParsePictures();
}

// Draws a picture brightened: staged at the corner of the role layer, lit there
// (key pixels stay), then copied with the colour key.
static void DrawBrightened(CGraph* g, int pack, const std::string& name, int32_t x, int32_t y) {
    int32_t w = 0, h = 0;
    if (!g->GetBitmapSize(pack, name.c_str(), &w, &h) || w <= 0 || h <= 0) return;
    if (!g->LoadBitmapToSurface(pack, name.c_str(), SURF_ROLE, 0, 0, BMP_CACHE_MAP)) return;
    g->BrightenRect(SURF_ROLE, 0, 0, w, h);
    g->BltFast(SURF_BUFFER, x, y, SURF_ROLE, SRect{0, 0, w, h}, BLT_WAIT_SRCKEY);
}

void CButton::UpdateHoverSound() {
    if (!m_nHover) {
        m_nSounded = 0;
        return;
    }
    if (m_nSounded == 0 && m_nHoverSound == 1) {
        if (g_pButtonOverSound) {
            DebugOut("[button]playsound\n");
            g_pButtonOverSound->Play(0);
            ++g_nHoverSoundCount;
        }
        m_nSounded = 1;
    }
}

void CButton::Draw() {
    CGraph* g = g_pGraph;
    UpdateHoverSound();
    if (m_nHover) {
        if (!g) return;
        switch (m_nType) {
        case 0: g->DrawText(m_strText.c_str(), m_nX, m_nY, SURF_BUFFER, TA_LEFT_TOP, RGB(255, 0, 0), 18); break;
        case 1: if (m_bPic) DrawBrightened(g, m_nPack, m_strName, m_nX, m_nY); break;
        case 2: if (m_bPic1) g->DrawBitmap(m_nPack1, m_strName1.c_str(), SURF_BUFFER, m_nX, m_nY); break;
        default: break;
        }
        return;
    }
    if (!g) return;
    if (m_nType == 0)
        g->DrawText(m_strText.c_str(), m_nX, m_nY, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 255), 18);
    else if (m_bPic)
        g->DrawBitmap(m_nPack, m_strName.c_str(), SURF_BUFFER, m_nX, m_nY);
}
