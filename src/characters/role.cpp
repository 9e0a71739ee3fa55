// Roles: the animation file, frames and drawing, the per-tick update.
#include "characters/role.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include <nlohmann/json.hpp>

#include "characters/skill.h"
#include "media/graph.h"
#include "media/sound.h"
#include "base/debug.h"
#include "base/log.h"
#include "base/paths.h"

namespace {
constexpr int kScratch = SURF_TILE;  // unused during play once the map is drawn

// a + b kept inside the 32-bit range: positions from damaged files must not
// overflow the frame arithmetic.
int32_t ClampedAdd(int32_t a, int64_t b) {
    const int64_t v = int64_t(a) + b;
    return v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : int32_t(v);
}
}  // namespace

void BrightenPixels(uint16_t* pixels, int32_t width, int32_t height, int32_t pitch) {
    for (int32_t y = 0; y < height; ++y) {
        uint16_t* row = pixels + size_t(y) * size_t(pitch);
        for (int32_t x = 0; x < width; ++x) {
            const uint16_t p = row[x];
            if (p == KEY565) continue;
            int r = p >> 11, g = (p >> 5) & 63, b = p & 31;
            r = r + 7 > 31 ? 31 : r + 7;
            g = g >= 49 ? 63 : g + 14;
            b = b > 23 ? 31 : b + 7;
            row[x] = uint16_t((r << 11) | (g << 5) | b);
        }
    }
}

CRole::CRole(const char* fileName, const char* name, int32_t x, int32_t y, int32_t attack, int32_t maxHp,
             int cacheKind)
    : m_pLog(std::make_unique<CLog>("GameEngine.log", false)),
      m_nMaxHp(maxHp), m_nHp(maxHp), m_nAttack(attack), m_nCacheKind(cacheKind) {
    std::snprintf(m_szName, sizeof m_szName, "%s", name ? name : "");
    std::snprintf(m_szFightSound, sizeof m_szFightSound, "%s", "role_fight.wav");
    m_x = x;
    m_y = y;
    // Skill 1 at level 1 is every role's basic blow; the four sound channels.
    // Made before the file is read, so a role without pictures still has them.
    m_pSkill = new CSkill();
    m_pSkill->Set(1, 1);
    m_pItemSound = new CSound();
    m_pLevelSound = new CSound();
    m_pFightSound = new CSound();
    m_pSkillSound = new CSound();
    const std::string path = HostPath(std::string("data\\") + (fileName ? fileName : ""));
    SRoleFile file;
    std::string error;
    bool missing = false;
    if (!LoadRoleFile(path, file, &error, &missing)) {
        if (!missing) m_pLog->Write("role file %s, refused!", error.c_str());
        return;
    }
    m_header = file.header;
    m_actions = std::move(file.actions);
    m_frames = std::move(file.frames);
    if (g_pGraph) {
        for (const SRoleFrame& f : m_frames) g_pGraph->LoadBitmapData(PACK_ROLE, f.bitmap, cacheKind);
    }
    int a = FindAction("stand");
    if (a < 0) a = FindAction("walk");
    if (a >= 0) {
        const int f = m_actions[size_t(a)].firstFrame;
        if (f >= 0 && size_t(f) < m_frames.size()) {
            m_nFrame = f;
            m_x = ClampedAdd(x, m_frames[size_t(f)].width / 2);
            m_y = ClampedAdd(y, -(m_frames[size_t(f)].height / 2));
        }
    }
}

CRole::~CRole() {
    delete m_pSkill;
    delete m_pItemSound;
    delete m_pLevelSound;
    delete m_pFightSound;
    delete m_pSkillSound;
}

int CRole::FindAction(const char* name) const {
    for (size_t i = 0; i < m_actions.size(); ++i)
        if (std::strcmp(m_actions[i].name, name) == 0) return int(i);
    return -1;
}

int CRole::FrameIndex(int action, int dir, int k) const {
    if (action < 0 || size_t(action) >= m_actions.size()) return -1;
    const SRoleAction& a = m_actions[size_t(action)];
    const int64_t f = int64_t(a.firstFrame) + int64_t(dir - 1) * a.framesPerDir + k;
    if (f < 0 || f >= int64_t(m_frames.size())) return -1;
    return int(f);
}

bool CRole::IsDead() const { return std::strcmp(m_szState, "die") == 0 || std::strcmp(m_szState, "dieout") == 0; }

void CRole::SetStateName(const char* name) {
    if (std::strcmp(m_szState, name) != 0) std::snprintf(m_szState, sizeof m_szState, "%s", name);
}

void CRole::DrawFrameIndex(int frame) {
    if (frame < 0 || size_t(frame) >= m_frames.size()) return;
    m_nFrame = frame;
    if (!g_pGraph) return;
    const SRoleFrame& f = m_frames[size_t(frame)];
    const int32_t w = f.width, h = f.height;
    // The reader keeps frames within the staging sheet; an empty frame draws nothing.
    if (w <= 0 || h <= 0 || w > ROLE_FRAME_MAX_W || h > ROLE_FRAME_MAX_H) return;
    CSurface* scratch = g_pGraph->GetSurface(kScratch);
    if (!scratch || scratch->width < w || scratch->height < h) return;
    SRect area{0, 0, w, h};
    g_pGraph->FillRect(kScratch, &area, KEY565);
    const int cache = m_nNpcId == 0 ? BMP_CACHE_GAME : BMP_CACHE_MAP;
    if (!g_pGraph->DrawBitmapData(PACK_ROLE, f.bitmap, kScratch, 0, 0, cache) &&
        !g_pGraph->LoadBitmapToSurface(PACK_ROLE, f.bitmap, kScratch, 0, 0, cache))
        DebugOut("loadmdbitmap failed.\n");
    if (m_bHighlight && std::strcmp(m_szState, "die") != 0) BrightenPixels(scratch->Row(0), w, h, scratch->width);
    g_pGraph->BltClipped(m_nDrawSurface, WORLD_W, WORLD_H, kScratch, BLT_WAIT_SRCKEY, ClampedAdd(m_x, -(w / 2)),
                         ClampedAdd(m_y, -(h / 2)), 0, 0, w, h);
}

int CRole::SetAction(int dir, const char* name, int k) {
    m_nDir = dir;
    SetStateName(name);
    DrawFrameIndex(FrameIndex(FindAction(name), dir, k));
    return dir;
}

void CRole::DrawFrame(int k) { DrawFrameIndex(FrameIndex(FindAction(m_szState), m_nDir, k)); }

void CRole::Stand() {
    SetStateName("stand");
    m_nStep = 0;
    if (m_nNpcId == 0) {
        m_pFightTarget = nullptr;
        m_nFightTargetId = -1;
    }
}

void CRole::DieTick() {
    const int a = FindAction("die");
    if (a < 0) {
        SetStateName("dieout");
        return;
    }
    const int n = m_actions[size_t(a)].framesPerDir;
    DrawFrame(m_nStep);
    m_nStep += 1;
    if (m_nStep > n - 1) {
        m_nStep = n - 1 < 0 ? 0 : n - 1;
        m_bHighlight = 0;
        m_nDrawSurface = SURF_GROUND;
        DrawFrame(m_nStep);
        m_nDrawSurface = SURF_ROLE;
        DebugOut("die\n");
        DebugOut("copy over\n");
        SetStateName("dieout");
    }
}

void CRole::Update(uint32_t stepWord) {
    if (m_nHp <= 0) SetStateName("die");
    if (m_szState[0] == 0) Stand();
    if (std::strcmp(m_szState, "stand") == 0) {
        const int a = FindAction("stand");
        const int n = a >= 0 ? m_actions[size_t(a)].framesPerDir : 1;
        m_nStep += 1;
        if (m_nStep > n - 1) m_nStep = 0;
        DrawFrame(m_nStep);
    } else if (std::strcmp(m_szState, "walk") == 0) {
        WalkTick(3, stepWord);
    } else if (std::strcmp(m_szState, "run") == 0) {
        WalkTick(6, stepWord);
    } else if (std::strcmp(m_szState, "die") == 0) {
        DieTick();
    }
    // "fight" is driven by combat. A running strike shows its next frame.
    if (m_pSkill && m_pSkill->IsRunning()) m_pSkill->DrawNextFrame();
}

SRect CRole::GetRect() const {
    if (m_nFrame < 0 || size_t(m_nFrame) >= m_frames.size()) return SRect{m_x, m_y, m_x, m_y};
    const SRoleFrame& f = m_frames[size_t(m_nFrame)];
    return SRect{ClampedAdd(m_x, -(f.width / 2)), ClampedAdd(m_y, -(f.height / 2)), ClampedAdd(m_x, f.width / 2),
                 ClampedAdd(m_y, f.height / 2)};
}

SPoint CRole::GetViewOrigin() const {
    int32_t ox = m_x - SCREEN_W / 2, oy = m_y - SCREEN_H / 2;
    if (ox <= 0) ox = 0;
    if (oy <= 0) oy = 0;
    if (ox + SCREEN_W > WORLD_W) ox = WORLD_W - SCREEN_W;
    if (oy + SCREEN_H > WORLD_H) oy = WORLD_H - SCREEN_H;
    return SPoint{ox, oy};
}

void CRole::GetInfo(SRoleInfo& out) const {
    out.x = m_x;
    out.y = m_y;
    out.direction = m_nDir;
    out.money = m_nMoney;
    out.level = m_nLevel;
    out.maxHp = m_nMaxHp;
    out.hp = m_nHp;
    out.maxMp = m_nMaxMp;
    out.mp = m_nMp;
    out.nextExp = m_nNextExp;
    out.exp = m_nExp;
    out.attack = m_nAttack;
    out.defence = m_nDefence;
    out.moral = m_nMoral;
    out.hitRate = m_nHitRate;
    out.bag = m_pBag;
    out.equipment = m_pEquipment;
    out.skillId = m_pSkill ? m_pSkill->Id() : 0;
    out.skillLevel = m_pSkill ? m_pSkill->Level() : 0;
    out.skills = m_vecSkills;
}

void CRole::SetInfo(const SRoleInfo& info, CUserItemPack* bag, CWeaponItemPack* equipment) {
    m_x = info.x;
    m_y = info.y;
    m_nDir = info.direction;
    m_nMoney = info.money;
    m_nLevel = info.level;
    m_nMaxHp = info.maxHp;
    m_nHp = info.hp;
    m_nMaxMp = info.maxMp;
    m_nMp = info.mp;
    m_nNextExp = info.nextExp;
    m_nExp = info.exp;
    m_nAttack = info.attack;
    m_nDefence = info.defence;
    m_nMoral = info.moral;
    m_nHitRate = info.hitRate;
    m_vecSkills = info.skills;
    if (!m_pSkill) m_pSkill = new CSkill();
    m_pSkill->StopAnimation();
    m_pSkill->Set(info.skillId, info.skillLevel);
    m_pBag = bag;
    m_pEquipment = equipment;
    m_pFightTarget = nullptr;
    m_nFightTargetId = -1;
}

void CRole::WriteState(StateJson& out) const {
    out["x"] = m_x;
    out["y"] = m_y;
    out["direction"] = m_nDir;
    out["state"] = StateText(m_szState, sizeof m_szState);
    out["hp"] = m_nHp;
    out["max_hp"] = m_nMaxHp;
    out["mp"] = m_nMp;
    out["max_mp"] = m_nMaxMp;
    out["attack"] = m_nAttack;
    out["defence"] = m_nDefence;
    out["hit_rate"] = m_nHitRate;
    out["level"] = m_nLevel;
    out["exp"] = m_nExp;
    out["next_exp"] = m_nNextExp;
    out["money"] = m_nMoney;
    out["moral"] = m_nMoral;
}
