// Map change, EnterMap, the hero's step over cell scripts and exits, and the
// world part of the playing frame.
#include <cstdio>
#include <cstring>
#include <memory>

#include "characters/role.h"
#include "items/item_pack.h"
#include "media/graph.h"
#include "media/mouse.h"
#include "media/show.h"
#include "media/window.h"
#include "base/debug.h"
#include "shell/game.h"
#include "base/log.h"
#include "base/message_box.h"
#include "base/paths.h"
#include "script/mission.h"
#include "script/records.h"
#include "world/map.h"

void CGame::CreateWorld() { m_pMap = new CMap(); }

void CGame::DeleteWorld() {
    m_vecVisibleRoles.clear();
    delete m_pRole;
    m_pRole = nullptr;
    delete m_pHeroBag;
    m_pHeroBag = nullptr;
    delete m_pHeroEquipment;
    m_pHeroEquipment = nullptr;
    delete m_pMap;
    m_pMap = nullptr;
}

void CGame::LoadMapRegistries() {
    if (m_pMap) m_pMap->LoadRegistries(m_szIniPack);
}

int CGame::ChangeMap(const char* name, int32_t x, int32_t y, int32_t facing, int32_t newGame) {
    m_strTargetMap = name ? name : "";
    m_nTargetX = x;
    m_nTargetY = y;
    m_nTargetFacing = facing;
    m_bTargetNewGame = newGame;
    StartFade(1, GS_MAPMSG);
    return 1;
}

int CGame::LoadMap(const char* path) {
    if (m_pLog) m_pLog->Write("Start to load map...");
    std::vector<SMapNpc> placements;
    if (!m_pMap->Load(HostPath(path).c_str(), &placements)) return 0;
    m_vecNpcPlacements.clear();
    for (const SMapNpc& p : placements) m_vecNpcPlacements.push_back(SNpcPlacement{p.record, p.cellX, p.cellY});
    if (m_pLog) m_pLog->Write("Load map over,start to draw map...");
    DrawTiles(m_pGraph, m_pMap, m_szIniPack, m_pLog);
    m_pGraph->LoadBitmapToSurface(PACK_TILES, "obj.bmp", SURF_OBJSHEET, 0, 0, BMP_CACHE_GAME);
    m_pMap->DrawObjects(m_pGraph, SURF_OBJECT, SURF_OBJSHEET, SURF_GROUND, m_pGraph->GetColorMask());
    m_pMap->GetHeader(m_mapInfo.words);
    if (m_pLog) m_pLog->Write("Draw map over!");
    return 1;
}

int CGame::EnterMap() {
    m_pGraph->FreeBitmapCache(BMP_CACHE_MAP);
    char path[100];
    std::snprintf(path, sizeof path, "map\\%s", m_strTargetMap.c_str());
    if (!m_bTargetNewGame) m_pMap->Unload();
    if (!LoadMap(path)) {
        MessageBox("Initializing map failed!", "Error", MB_NOICON);
        platform::DestroyMainWindow();
        return 0;
    }
    int32_t cx = m_nTargetX, cy = m_nTargetY;
    if (cx < 0 || cy < 0) {
        cx = m_mapInfo.StartX();
        cy = m_mapInfo.StartY();
    }
    const SPoint pt = m_pMap->GetCellPoint(cx, cy);
    if (m_bTargetNewGame || !m_pRole) {
        // A hero file that is missing, damaged or without a standing picture
        // would give an invisible hero: the game ends with its message instead.
        auto hero = std::make_unique<CRole>("role.pmg", "hadrin", pt.x, pt.y + 32, 10, 100, BMP_CACHE_GAME);
        if (!hero->HasActions() || hero->FindAction("stand") < 0) {
            if (m_pLog) m_pLog->Write("data\\role.pmg is missing or damaged: no hero");
            MessageBox("Initializing role failed!", "Error", MB_NOICON);
            platform::DestroyMainWindow();
            return 0;
        }
        m_vecVisibleRoles.clear();
        delete m_pRole;
        m_pRole = hero.release();
        m_pRole->SetDirection(m_nTargetFacing);
        // The hero's bag of 9 grids and the equipment, kept by the game.
        delete m_pHeroBag;
        delete m_pHeroEquipment;
        m_pHeroBag = new CUserItemPack(9);
        m_pHeroEquipment = new CWeaponItemPack();
        m_pRole->SetPacks(m_pHeroBag, m_pHeroEquipment);
        // The HUD and pack panel layouts of a new game are set up by their own
        // subsystems.
        if (m_pRecords) m_pRecords->ClearForNewGame();
        if (m_pMissionSystem) m_pMissionSystem->Clear();
        e_killCount = 0;
        m_bHandEmpty = 1;
        m_nHeldItemId = 0;
    } else {
        m_pRole->SetPosition(pt.x, pt.y, m_nTargetFacing);
    }
    // The map's NPCs are created from m_vecNpcPlacements by the NPC subsystem.
    e_brain = 0;
    m_listGroundItems.clear();
    m_itHoveredItem = m_listGroundItems.end();
    m_nHoveredNpc = -1;
    m_pRole->Stand();
    m_bMusicStarted = 0;
    StartFade(1, GS_PLAY);
    m_nWanderTimer = -1;
    return 1;
}

namespace {

bool IsMovingState(const char* s) { return std::strcmp(s, "walk") == 0 || std::strcmp(s, "run") == 0; }

// The step word of one walking role: may it step, and who stands at its probe.
uint32_t StepWord(CGame& game, size_t index) {
    CRole* self = game.m_vecVisibleRoles[index];
    const SPoint p = self->GetStepPoint(self->GetState());
    const bool npcProbe = self->m_nNpcId != 0;
    CRole* found = nullptr;
    for (size_t k = 0; k < game.m_vecVisibleRoles.size(); ++k) {
        CRole* r = game.m_vecVisibleRoles[k];
        if (!r || r->IsDead()) continue;
        if (k == 0 && !npcProbe) continue;
        if (!r->GetRect().Contains(p.x, p.y)) continue;
        if (k == 0) return 0;  // an NPC walking into the hero
        if (!found || r->m_y > found->m_y) found = r;
    }
    if (found && !npcProbe) {
        // The hero is only blocked by what is visibly drawn at the probe.
        const CSurface* layer = game.m_pGraph->GetSurface(SURF_ROLE);
        if (p.x < 0 || p.y < 0 || p.x >= layer->width || p.y >= layer->height || layer->At(p.x, p.y) == KEY565)
            found = nullptr;
    }
    const uint32_t high = found ? uint32_t(found->m_nNpcId) & 0xFFFF : 0xFFFF;
    const int32_t cross = game.m_pMap->GetCross(p.x, p.y);
    const uint32_t low = (cross != 0 && (!found || found == self)) ? 1 : 0;
    if (!npcProbe && !low)
        DebugOut("[DrawRole]cannot cross:findnpc=%d,map cross=%d,pt.x=%d,pt.y=%d,state=%s\n",
                 found ? found->m_nNpcId : -1, cross, p.x, p.y, self->GetState());
    return (high << 16) | low;
}

void StepRole(CGame& game, size_t index) {
    CRole* role = game.m_vecVisibleRoles[index];
    if (!role) return;
    uint32_t word = 0xFFFF0000u;
    if (IsMovingState(role->GetState())) word = StepWord(game, index);
    role->Update(word);
}

}  // namespace

void CGame::DrawRole() {
    if (!m_pRole) return;
    const SPoint p = m_pRole->GetStepPoint(m_pRole->GetState());
    std::string name;
    if (m_pMap->GetCellScript(name, p.x, p.y)) {
        RunScript(name.c_str(), 0);
        return;
    }
    if (m_pMap->GetCellExit(name, p.x, p.y)) {
        m_ptCamera = m_pRole->GetViewOrigin();
        m_rcCamera = SRect{m_ptCamera.x, m_ptCamera.y, m_ptCamera.x + SCREEN_W, m_ptCamera.y + SCREEN_H};
        m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_GROUND, m_rcCamera, BLT_WAIT);
        m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_ROLE, m_rcCamera, BLT_WAIT_SRCKEY);
        m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_OBJECT, m_rcCamera, BLT_WAIT_SRCKEY);
        ChangeMap(name.c_str(), -1, -1, 5, 0);
        return;
    }
    const SPoint view = m_pRole->GetViewOrigin();
    m_pGraph->ClearRoleLayer(view.x, view.y);
    DebugOut("[DrawRole]my state=%s\n", m_pRole->GetState());
    // NPCs draw first, so the hero's probe sees them on the role layer.
    for (size_t i = 1; i < m_vecVisibleRoles.size(); ++i) StepRole(*this, i);
    if (!m_vecVisibleRoles.empty()) StepRole(*this, 0);
}

void CGame::UpdateRoles() {
    if (!m_pRole) return;
    // The draw list: the hero first; the NPC subsystem adds the visible NPCs.
    if (m_vecVisibleRoles.empty()) m_vecVisibleRoles.push_back(m_pRole);
    m_vecVisibleRoles[0] = m_pRole;
    if (std::strcmp(m_pRole->GetState(), "dieout") == 0) {
        ComposeSnapshot();
        m_pGraph->GrayRect(SURF_TEMP, 0, 0, SCREEN_W, SCREEN_H);
        m_pGraph->HalfTintRect(SURF_TEMP, 0, 210, SCREEN_W, 270, 0);
        DrawOutlinedText(SURF_TEMP, "I was killed. Let me try again!", 320, 240, RGB(255, 255, 255),
                         RGB(255, 0, 0), false);
        PlayWav("death.wav");
        m_nGameState = GS_DEAD;
        return;
    }
    DrawRole();
}

bool CGame::PlayFrame() {
    if (!m_bMusicStarted) {
        char music[64];
        std::snprintf(music, sizeof music, "music\\%s", m_mapInfo.MusicName());
        if (m_pShow && m_pShow->Open(m_hWnd, music)) m_pShow->Play(m_hWnd, 1);
        m_bMusicStarted = 1;
    }
    if (m_pScript && m_fade.phase == 2) {
        if (ContinueScript()) return true;
    }
    m_pGraph->FillRect(SURF_BUFFER, nullptr, 0);
    if (!m_pRole) return true;
    m_ptCamera = m_pRole->GetViewOrigin();
    UpdateRoles();
    if (m_nGameState != GS_PLAY) return false;
    m_rcCamera = SRect{m_ptCamera.x, m_ptCamera.y, m_ptCamera.x + SCREEN_W, m_ptCamera.y + SCREEN_H};
    m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_GROUND, m_rcCamera, BLT_WAIT);
    m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_ROLE, m_rcCamera, BLT_WAIT_SRCKEY);
    m_pGraph->BltFast(SURF_BUFFER, 0, 0, SURF_OBJECT, m_rcCamera, BLT_WAIT_SRCKEY);
    if (e_brain) DrawRain(0);
    UpdateWorldHover();
    // The HUD is drawn here by the player panel.
    DrawMapNameAndPosition();
    if (m_bWorldClickArmed) {
        const bool left = m_pMouse ? m_pMouse->IsLeftDown() : platform::IsButtonDown(0);
        const bool right = m_pMouse ? m_pMouse->IsRightDown() : platform::IsButtonDown(1);
        if (left) OnWorldLButton();
        if (right) OnWorldRButton();
    }
    if (m_fade.phase != 2) {
        StartFade(0, GS_PLAY);
        return false;
    }
    return true;
}

void CGame::DrawMapNameAndPosition() {
    DrawOutlinedText(SURF_BUFFER, m_mapInfo.DisplayName(), 565, 20, RGB(0, 0, 0), RGB(255, 227, 170), true);
    char text[32];
    if (!PositionLabel(text, sizeof text)) return;
    DrawOutlinedText(SURF_BUFFER, text, 565, 35, RGB(0, 0, 0), RGB(255, 227, 170), true);
}

bool CGame::PositionLabel(char* text, size_t size) const {
    if (!m_pRole || !m_pMap || size == 0) return false;
    // The cell under the hero's position, the centre of its picture: for a
    // hero a new game stood on a cell, the cell diagonally above it
    // (content/maps/README.md).
    const SPoint cell = m_pMap->PointToCell(m_pRole->m_x, m_pRole->m_y);
    std::snprintf(text, size, "(%d,%d)", cell.x, cell.y);
    return true;
}
