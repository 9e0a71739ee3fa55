// The player's mouse in the world: held buttons steering the hero, right clicks
// on characters, picking a character under the cursor, hover feedback.
#include <cstdio>
#include <cstring>

#include "characters/role.h"
#include "media/graph.h"
#include "media/window.h"
#include "base/debug.h"
#include "shell/game.h"
#include "shell/game_modes.h"
#include "world/map.h"

namespace {

SPoint WorldPoint(const CGame& game) {
    const SPoint c = platform::GetCursorPos();
    return SPoint{c.x + game.m_ptCamera.x, c.y + game.m_ptCamera.y};
}

// A character found by its rectangle counts only where its picture is drawn.
bool RolePixelAt(CGame& game, int32_t x, int32_t y) {
    const CSurface* layer = game.m_pGraph->GetSurface(SURF_ROLE);
    if (!layer || x < 0 || y < 0 || x >= layer->width || y >= layer->height) return false;
    return layer->At(x, y) != KEY565;
}

bool HeroDead(const CGame& game) { return !game.m_pRole || game.m_pRole->IsDead(); }

}  // namespace

int CGame::FindNpcAt(int32_t x, int32_t y, int flag) {
    int kept = -1;
    for (size_t i = 0; i < m_vecVisibleRoles.size(); ++i) {
        CRole* r = m_vecVisibleRoles[i];
        if (!r || r->IsDead()) continue;
        if (!r->GetRect().Contains(x, y)) continue;
        if (i == 0 && flag == 1) return 0;
        if (kept < 0 || r->m_y > m_vecVisibleRoles[size_t(kept)]->m_y) kept = int(i);
    }
    return kept;
}

void CGame::OnWorldLButton() {
    if (m_nGameState == GS_FADE || HeroDead(*this)) return;
    if (std::strcmp(m_pRole->GetState(), "fight") == 0) return;
    if (m_nGameState != GS_PLAY) return;
    const SPoint pt = WorldPoint(*this);
    const int n = FindNpcAt(pt.x, pt.y, 0);
    if (n > 0) {
        CRole* npc = m_vecVisibleRoles[size_t(n)];
        if (!RolePixelAt(*this, pt.x, pt.y)) {
            m_pRole->WalkTo(pt.x, pt.y, "run");
            return;
        }
        if (!npc->IsDead() && npc->FindAction("die") >= 0) {
            DebugOut("start to fight in cgame\n");
            DebugOut("npcindex=%d\n", n);
            m_pRole->m_nFightTargetId = n;
            m_pRole->m_pFightTarget = npc;
            m_pRole->WalkTo(pt.x, pt.y, "run");
            return;
        }
    }
    m_pRole->WalkTo(pt.x, pt.y, "run");
    m_pRole->m_nFightTargetId = -1;
    m_pRole->m_pFightTarget = nullptr;
}

void CGame::OnWorldRButton() {
    if (!m_bHandEmpty || HeroDead(*this) || m_nGameState != GS_PLAY) return;
    const SPoint pt = WorldPoint(*this);
    const int n = FindNpcAt(pt.x, pt.y, 0);
    if (n > 0 && RolePixelAt(*this, pt.x, pt.y))
        m_pRole->Stand();
    else
        m_pRole->WalkTo(pt.x, pt.y, "walk");
}

void CGame::OnRButtonDown() {
    const SGameMode* mode = FindGameMode(m_nGameState);
    if (!mode || !mode->heroKeys || !m_bHandEmpty) return;
    // The HUD takes right clicks on its bag grids first (player panel).
    if (HeroDead(*this)) return;
    const SPoint pt = WorldPoint(*this);
    const int n = FindNpcAt(pt.x, pt.y, 0);
    if (n <= 0 || m_nGameState != GS_PLAY || !RolePixelAt(*this, pt.x, pt.y)) return;
    m_nTalkTarget = n;
    // The NPC's click script, words or shop follow from the NPC subsystem.
}

void CGame::UpdateWorldHover() {
    const SPoint cursor = platform::GetCursorPos();
    const SPoint pt{cursor.x + m_ptCamera.x, cursor.y + m_ptCamera.y};
    std::string label;
    if (m_pMap && m_pMap->GetCellLabel(label, pt.x, pt.y) && !label.empty()) {
        const SPoint size = m_pGraph->MeasureText(label.c_str());
        int32_t left = cursor.x, top = cursor.y - size.y;
        if (left + size.x >= SCREEN_W) left = SCREEN_W - 1 - size.x;
        if (top < 1) top = cursor.y + 32;
        if (top + size.y >= SCREEN_H) top = SCREEN_H - 1 - size.y;
        m_pGraph->HalfTintRect(SURF_BUFFER, left, top, left + size.x, top + size.y, 0);
        m_pGraph->DrawText(label.c_str(), left, top, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 255));
    }
    if (m_nHoveredNpc > 0 && size_t(m_nHoveredNpc) < m_vecVisibleRoles.size() && m_vecVisibleRoles[size_t(m_nHoveredNpc)])
        m_vecVisibleRoles[size_t(m_nHoveredNpc)]->SetHighlight(0);
    const int n = FindNpcAt(pt.x, pt.y, 0);
    if (n > 0 && RolePixelAt(*this, pt.x, pt.y)) {
        CRole* npc = m_vecVisibleRoles[size_t(n)];
        m_nHoveredNpc = n;
        npc->SetHighlight(1);
        DrawOutlinedText(SURF_BUFFER, npc->m_szName, 320, 20, RGB(0, 0, 0), RGB(153, 153, 255), true);
        m_pGraph->FillRectRGB(SURF_BUFFER, SRect{244, 44, 396, 56}, RGB(255, 0, 0));
        m_pGraph->FrameRect(SURF_BUFFER, SRect{244, 44, 396, 56}, RGB(255, 255, 255));
        const int32_t left = npc->m_nMaxHp > 0 ? 245 + 150 * npc->m_nHp / npc->m_nMaxHp : 245;
        const SRect empty{left, 45, 395, 55};
        m_pGraph->FillRect(SURF_BUFFER, &empty, 0);
    } else {
        m_nHoveredNpc = -1;
    }
}
