// CRole: anything that stands, walks and fights on the map (the hero and every
// NPC). A role reads its animation file (actions of eight directions, frames
// naming pictures of the role pack), shows one frame per tick in its state and
// draws itself onto the role layer. Position is the centre of its picture.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"

class CLog;
class CSkill;
class CItemPack;
class CSound;

#pragma pack(push, 1)
struct SRoleFileHeader {
    int32_t magic;          // ROLE_FILE_MAGIC
    uint8_t unused1[20];
    int32_t frameCount;
    int32_t actionCount;
    uint8_t unused2[2500];
};

struct SRoleAction {
    int32_t unused1;
    char name[52];          // "stand", "walk", "run", "fight", "die", ...
    int32_t framesPerDir;   // n: the action owns 8 x n frames
    uint8_t unused2[3124];
    int32_t firstFrame;     // index of its first frame in the frame table
};

struct SRoleFrame {
    int32_t unused;
    int32_t width, height;
    char bitmap[32];        // picture in the role pack
};
#pragma pack(pop)

static_assert(sizeof(SRoleFileHeader) == 2532, "role file header is 2532 bytes");
static_assert(sizeof(SRoleAction) == 3188, "role action is 3188 bytes");
static_assert(sizeof(SRoleFrame) == 44, "role frame is 44 bytes");
static_assert(offsetof(SRoleAction, firstFrame) == 3184, "action layout");

constexpr int32_t ROLE_FILE_MAGIC = 8077;

// Reads a role animation file (host path). False when it cannot be opened, the
// magic is wrong, or the counts and indices do not agree with the file.
bool ReadRoleFile(const char* hostPath, SRoleFileHeader& header, std::vector<SRoleAction>& actions,
                  std::vector<SRoleFrame>& frames);
// Writes one (for tools and tests). False on a write failure.
bool WriteRoleFile(const char* hostPath, const std::vector<SRoleAction>& actions,
                   const std::vector<SRoleFrame>& frames);

// The snapshot used by saved games and panels.
struct SRoleInfo {
    int32_t x, y, direction, money, level, maxHp, hp, maxMp, mp, nextExp, exp, attack, defence, moral, hitRate;
    CItemPack* bag;
    CItemPack* equipment;
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
    void SetInfo(const SRoleInfo& info, CItemPack* bag, CItemPack* equipment);
    void Stand();
    // The dump's "hero" part: position, direction, state and the numbers.
    void WriteState(StateJson& out) const;

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
    CItemPack* m_pBag = nullptr;        // not owned: SetInfo may replace it
    CItemPack* m_pEquipment = nullptr;  // not owned
    CSound* m_pItemSound = nullptr;
    CSound* m_pLevelSound = nullptr;
    int32_t m_nDefence = 0;
    char m_szFightSound[16] = {0};
    CSound* m_pFightSound = nullptr;
    CSound* m_pSkillSound = nullptr;
    CSkill* m_pSkill = nullptr;         // current skill, or none
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
