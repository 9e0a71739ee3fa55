// CSkill: a role's current skill. It answers range, damage, MP cost and sound
// for moving and fighting from its copy of the skill record, and plays the
// strike animation: one frame of the record's animation per tick, drawn with
// the colour key onto the role layer around a world point.
#pragma once
#include <cstdint>

#include "items/database.h"

class CSkill {
public:
    CSkill();
    virtual ~CSkill() = default;

    // Makes skill id at level current (the level is capped at the record's
    // highest, and at least 1). 0 when refused: id below 1 (the skill becomes none, level 1),
    // while the strike animation runs, or an id past the skill database.
    int Set(int32_t id, int32_t level);
    // The record's kind (0 heals the caster); -1 without a skill.
    int32_t Kind() const;
    // Range in pixels (a record range of 0 means 20); 0 without a skill.
    int32_t GetRange() const;
    // Damage (or healing) at the current level; 0 without a skill.
    int32_t Damage() const;
    // MP paid per use; 0 without a skill.
    int32_t Cost() const;
    // The sound played when the skill strikes ("" without a skill).
    const char* SoundName() const;

    // Starts the strike animation centred on world point (x, y) and draws its
    // first frame; nothing without a skill or without animation frames.
    void StartAnimation(int32_t x, int32_t y);
    // Shows the next frame: 1 while frames remain, 0 (and idle) after the last.
    int DrawNextFrame();
    bool IsRunning() const { return m_bRunning != 0; }
    // Ends a running animation at once (a loaded game starts idle).
    void StopAnimation() { m_bRunning = 0; m_nFrame = -1; }

    int32_t Id() const { return m_nId; }
    int32_t Level() const { return m_nLevel; }
    int32_t Frame() const { return m_nFrame; }
    const SSkillInfo& Record() const { return m_record; }

private:
    bool HasSkill() const { return m_nId > 0; }
    int32_t FrameCount() const;
    void DrawAnimationFrame(int32_t k);

    int32_t m_bRunning = 0;
    int32_t m_nAnimX = 0, m_nAnimY = 0;
    int32_t m_nFrame = -1;
    int32_t m_nId = 1;
    int32_t m_nLevel = 1;
    SSkillInfo m_record;
    char m_szSound[sizeof(SSkillInfo::szSound) + 1] = {0};
};

// Damage of a skill record at a level: the base value grown by the record's
// percentage once per level above 1, each step in double precision, truncated
// at the end. Level 1 (or less) gives the base value.
int32_t SkillDamageAt(const SSkillInfo& record, int32_t level);
