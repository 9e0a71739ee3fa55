// CRole: anything that stands, walks and fights on the map (the hero and every
// NPC). A role reads its animation file (characters/role_file.h: actions of
// eight directions, frames naming pictures of the role pack), shows one frame per tick in its state and
// draws itself onto the role layer. Position is the centre of its picture.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"
#include "characters/role_file.h"

class CLog;
class CSkill;
class CUserItemPack;
class CWeaponItemPack;
class CSound;

// The snapshot used by saved games and panels.
struct SRoleInfo {
    int32_t x, y, direction, money, level, maxHp, hp, maxMp, mp, nextExp, exp, attack, defence, moral, hitRate;
    CUserItemPack* bag;
    CWeaponItemPack* equipment;
    int32_t skillId, skillLevel;
    std::vector<std::pair<int32_t, int32_t>> skills;
};

class CRole {
public:
    // Reads "data\" + fileName; (x, y) is the bottom-left of the first standing
    // picture. cacheKind BMP_CACHE_GAME keeps the hero's pictures, BMP_CACHE_MAP
    // the NPCs' (media/graph.h).
    CRole(const char* fileName, const char* name, int32_t x, int32_t y, int32_t attack, int32_t maxHp,
          int cacheKind);
    virtual int32_t GetExpReward() { return 0; }
    virtual ~CRole();
    CRole(const CRole&) = delete;
    CRole& operator=(const CRole&) = delete;

    int FindAction(const char* name) const;
    int SetAction(int dir, const char* name, int k);
    void DrawFrame(int k);
    void Update(uint32_t stepWord);
    const char* GetState() const { return m_szState; }
    void SetDirection(int d) { m_nDir = d; }
    void SetPosition(int32_t x, int32_t y, int d) { m_x = x; m_y = y; m_nDir = d; }
    void SetTarget(int32_t x, int32_t y) { m_nTargetX = x; m_nTargetY = y; }
    SRect GetRect() const;
    SPoint GetViewOrigin() const;
    void SetHighlight(int flag) { m_bHighlight = flag; }
    float GetHPRatio() const { return m_nMaxHp ? float(m_nHp) / float(m_nMaxHp) : 0.0f; }
    void GetInfo(SRoleInfo& out) const;
    // Takes everything from the record except its bag and equipment words; the
    // given packs become the role's (not owned, see m_pBag).
    void SetInfo(const SRoleInfo& info, CUserItemPack* bag, CWeaponItemPack* equipment);
    // Hands the role its bag and equipment (not owned, see m_pBag).
    void SetPacks(CUserItemPack* bag, CWeaponItemPack* equipment) { m_pBag = bag; m_pEquipment = equipment; }
    void Stand();
    // The dump's "hero" part: position, direction, state and the numbers.
    void WriteState(StateJson& out) const;

    // ---- Stats (role_stats.cpp). Signed changes take '+' or '-'; any other
    // sign changes nothing. Results stay inside 32 bits. ----
    // '+' heals up to max HP; '-' is damage: amounts above 5 are lowered by the
    // defence but not below 5. A role brought to 0 HP reports its death as
    // progress under its name and starts dying.
    void SetNowHealth(char sign, int32_t n);
    void ChangeMp(char sign, int32_t n);        // '-' stops at 0; '+' at max MP
    void ChangeMaxHp(char sign, int32_t n);     // '-' stops at 100; HP is not touched
    void ChangeMaxMp(char sign, int32_t n);     // '-' stops at 100; MP is not touched
    void ChangeExp(char sign, int32_t n);       // '+' reaching the next level: one LevelUp
    void ChangeAttack(char sign, int32_t n);    // '-' stops at 0
    void ChangeDefence(char sign, int32_t n);   // '-' stops at 0
    void ChangeHitRate(char sign, int32_t n);   // kept between 10 and 100
    void ChangeMoney(char sign, int32_t n);     // '-' stops at 0
    void ChangeMoral(int32_t n, char sign);     // unbounded
    // One level more: +20 max HP, +18 max MP (both refilled), +5 attack,
    // +2 defence; experience restarts from 0 and the next level needs
    // ((L + 15) * L - 6) * 10 for the new level L. "Level Up!" and its sound.
    void LevelUp();

    // ---- Skills (role_stats.cpp) ----
    // Set on the current skill; 0 without one or when refused.
    int SetCurrentSkill(int32_t id, int32_t level);
    // The first known skill whose shortcut key is key becomes current: 1 when it
    // did. id receives the matching skill's id, 0 when none matched.
    int SelectSkillByKey(int key, int32_t& id);
    // Appends the skill of that name at level 1: 1 when learnt, 0 when there is
    // no such skill or it is already known.
    int LearnSkill(const char* name);
    // Forgets the skill of that name: 1 when removed. A removed current skill
    // hands over to the first skill still known.
    int RemoveSkill(const char* name);
    // The known level of a skill id, 0 when it is not known.
    int32_t KnownSkillLevel(int32_t id) const;
    // Plays "sound\" + fileName on one of the role's own sound channels.
    static void PlayOn(CSound* channel, const char* fileName);

    // Movement (movement.cpp).
    void FaceTo(double tx, double ty);
    int WalkTo(int32_t x, int32_t y, const char* mode);
    SPoint GetStepPoint(const char* state) const;
    void SimpleStep(int32_t crossable, int step);
    void SetWalk(int32_t x, int32_t y, const char* mode);
    SPoint WanderPoint() const;

    // The walk counter shared by every role (paces the MP cost of running).
    static int32_t s_nWalkCounter;

    bool HasActions() const { return !m_actions.empty(); }
    int FrameIndex(int action, int dir, int k) const;
    const std::vector<SRoleAction>& Actions() const { return m_actions; }
    const std::vector<SRoleFrame>& Frames() const { return m_frames; }
    bool IsDead() const;  // "die" or "dieout"

    // The surface a frame is drawn on (the role layer; the ground layer for a body).
    int m_nDrawSurface = 3;

public:
    int32_t m_nDetour = 0;
    int32_t m_nMaxMp = 50;
    int32_t m_nMp = 50;
    int32_t m_nNextExp = 100;
    int32_t m_nExp = 0;
    int32_t m_nMoral = 50;
    int32_t m_nMoney = 0;
    int32_t m_nLevel = 1;
    // The hero's bag and equipment. The role never owns or frees them: the game
    // object creates them with the hero, keeps them (CGame::m_pHeroBag,
    // m_pHeroEquipment) and frees them, also when a loaded game replaces them
    // through SetInfo. NPCs have none.
    CUserItemPack* m_pBag = nullptr;
    CWeaponItemPack* m_pEquipment = nullptr;
    CSound* m_pItemSound = nullptr;
    CSound* m_pLevelSound = nullptr;
    int32_t m_nDefence = 0;
    char m_szFightSound[16] = {0};
    CSound* m_pFightSound = nullptr;
    CSound* m_pSkillSound = nullptr;
    CSkill* m_pSkill = nullptr;         // current skill (owned), or none
    std::vector<std::pair<int32_t, int32_t>> m_vecSkills{{1, 1}};
    int32_t m_nNpcId = 0;
    CRole* m_pFightTarget = nullptr;
    int32_t m_nFightTargetId = -1;
    std::unique_ptr<CLog> m_pLog;
    int32_t m_nStep = 0;
    int32_t m_nDir = 5;
    char m_szState[20] = {0};
    SRoleFileHeader m_header{};
    std::vector<SRoleAction> m_actions;
    std::vector<SRoleFrame> m_frames;
    int32_t m_nFrame = 0;
    int32_t m_nMaxHp = 0;
    int32_t m_nHp = 0;
    int32_t m_nAttack = 0;
    int32_t m_nHitRate = 30;
    int32_t m_bHighlight = 0;
    char m_szName[20] = {0};
    int32_t m_nTargetX = 0, m_nTargetY = 0;
    int32_t m_x = 0, m_y = 0;
    int m_nCacheKind = 0;

private:
    void DrawFrameIndex(int frame);
    void WalkTick(int step, uint32_t stepWord);
    void StepToward(int32_t dx, int32_t dy, int p);
    void DieTick();
    void SetStateName(const char* name);
};

// Brightens a highlighted role picture in place (5-6-5; the colour key stays).
void BrightenPixels(uint16_t* pixels, int32_t width, int32_t height, int32_t pitch);
