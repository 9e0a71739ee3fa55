// Roles: the stat changes used by fights, items and scripts; levelling; the
// known skills and the current skill.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/message_line_hook.h"
#include "characters/role.h"
#include "characters/skill.h"
#include "items/database.h"
#include "items/progress.h"
#include "media/sound.h"

namespace {

// Every stat stays a 32-bit value however large the change.
int32_t Clamp32(int64_t v) { return v > INT32_MAX ? INT32_MAX : v < INT32_MIN ? INT32_MIN : int32_t(v); }

// The common shape of the signed changes: '+' adds, '-' subtracts, then the
// floor (and the ceiling for '+') apply. Any other sign changes nothing.
bool Apply(int32_t& field, char sign, int32_t n) {
    if (sign == '+') field = Clamp32(int64_t(field) + n);
    else if (sign == '-') field = Clamp32(int64_t(field) - n);
    else return false;
    return true;
}

// The skill record's name as a terminated string (the field need not be).
std::string SkillName(int32_t id) {
    const SSkillInfo rec = g_pSkillDB->Get(id);
    return std::string(rec.szName, strnlen(rec.szName, sizeof rec.szName));
}

}  // namespace

void CRole::SetNowHealth(char sign, int32_t n) {
    if (sign == '+') {
        m_nHp = Clamp32(int64_t(m_nHp) + n);
        if (m_nHp > m_nMaxHp) m_nHp = m_nMaxHp;
        return;
    }
    if (sign != '-') return;
    // An amount of 5 or less is taken whole; a larger one is softened by the
    // defence, never below 5.
    if (n > 5) {
        n = Clamp32(int64_t(n) - m_nDefence);
        if (n <= 5) n = 5;
    }
    m_nHp = Clamp32(int64_t(m_nHp) - n);
    if (m_nHp > 0) return;
    ReportProgress(m_szName, 1);
    m_nHp = 0;
    if (FindAction("die") >= 0) {
        SetAction(m_nDir, "die", 0);
        m_nStep = 1;
    } else {
        SetStateName("dieout");
    }
}

void CRole::ChangeMp(char sign, int32_t n) {
    if (!Apply(m_nMp, sign, n)) return;
    if (sign == '+' && m_nMp > m_nMaxMp) m_nMp = m_nMaxMp;
    if (sign == '-' && m_nMp <= 0) m_nMp = 0;
}

void CRole::ChangeMaxHp(char sign, int32_t n) {
    if (Apply(m_nMaxHp, sign, n) && sign == '-' && m_nMaxHp < 100) m_nMaxHp = 100;
}

void CRole::ChangeMaxMp(char sign, int32_t n) {
    if (Apply(m_nMaxMp, sign, n) && sign == '-' && m_nMaxMp < 100) m_nMaxMp = 100;
}

void CRole::ChangeExp(char sign, int32_t n) {
    if (!Apply(m_nExp, sign, n)) return;
    if (sign == '-' && m_nExp < 0) m_nExp = 0;
    if (sign == '+' && m_nExp >= m_nNextExp) LevelUp();  // one level per gain, however large
}

void CRole::ChangeAttack(char sign, int32_t n) {
    if (Apply(m_nAttack, sign, n) && sign == '-' && m_nAttack < 0) m_nAttack = 0;
}

void CRole::ChangeDefence(char sign, int32_t n) {
    if (Apply(m_nDefence, sign, n) && sign == '-' && m_nDefence < 0) m_nDefence = 0;
}

void CRole::ChangeHitRate(char sign, int32_t n) {
    if (!Apply(m_nHitRate, sign, n)) return;
    if (sign == '+' && m_nHitRate > 100) m_nHitRate = 100;
    if (sign == '-' && m_nHitRate < 10) m_nHitRate = 10;
}

void CRole::ChangeMoney(char sign, int32_t n) {
    if (Apply(m_nMoney, sign, n) && sign == '-' && m_nMoney < 0) m_nMoney = 0;
}

void CRole::ChangeMoral(int32_t n, char sign) { Apply(m_nMoral, sign, n); }

void CRole::LevelUp() {
    m_nMaxHp = Clamp32(int64_t(m_nMaxHp) + 20);
    m_nHp = m_nMaxHp;
    m_nMaxMp = Clamp32(int64_t(m_nMaxMp) + 18);
    m_nMp = m_nMaxMp;
    m_nLevel = Clamp32(int64_t(m_nLevel) + 1);
    m_nAttack = Clamp32(int64_t(m_nAttack) + 5);
    m_nDefence = Clamp32(int64_t(m_nDefence) + 2);
    m_nExp = 0;  // any excess is lost
    const int64_t l = m_nLevel;
    // Beyond |L| = 46340 the figure is past 32 bits anyway.
    m_nNextExp = (l > 46340 || l < -46340) ? INT32_MAX : Clamp32(((l + 15) * l - 6) * 10);
    ShowGameMessage("Level Up!");
    PlayOn(m_pLevelSound, "level_up.wav");
}

void CRole::PlayOn(CSound* channel, const char* fileName) {
    if (!channel || !fileName || !fileName[0]) return;
    char path[64];
    std::snprintf(path, sizeof path, "sound\\%s", fileName);
    channel->LoadWav(path);
    channel->Play(0);
}

int CRole::SetCurrentSkill(int32_t id, int32_t level) { return m_pSkill ? m_pSkill->Set(id, level) : 0; }

int CRole::SelectSkillByKey(int key, int32_t& id) {
    id = 0;
    if (!g_pSkillDB) return 0;
    for (const auto& [skill, level] : m_vecSkills) {
        if (skill < 1 || skill > g_pSkillDB->Count()) continue;
        if (int(uint8_t(g_pSkillDB->Get(skill).cKey)) != key) continue;
        id = skill;
        return SetCurrentSkill(skill, level);
    }
    return 0;
}

int CRole::LearnSkill(const char* name) {
    if (!g_pSkillDB || !name) return 0;
    const int32_t id = g_pSkillDB->FindByName(name);
    if (id < 1) return 0;
    if (std::any_of(m_vecSkills.begin(), m_vecSkills.end(), [id](const auto& s) { return s.first == id; })) return 0;
    m_vecSkills.emplace_back(id, 1);
    return 1;
}

int CRole::RemoveSkill(const char* name) {
    if (!m_pSkill || !g_pSkillDB || !name) return 0;
    for (size_t i = 0; i < m_vecSkills.size(); ++i) {
        const int32_t id = m_vecSkills[i].first;
        if (id < 1 || id > g_pSkillDB->Count() || SkillName(id) != name) continue;
        const bool current = m_pSkill->Id() == id;
        m_vecSkills.erase(m_vecSkills.begin() + std::ptrdiff_t(i));
        // The first skill still known takes over; when the removed skill was the
        // only one, the current skill stays as it is.
        if (current && !m_vecSkills.empty()) SetCurrentSkill(m_vecSkills[0].first, m_vecSkills[0].second);
        return 1;
    }
    return 0;
}

int32_t CRole::KnownSkillLevel(int32_t id) const {
    for (const auto& [skill, level] : m_vecSkills)
        if (skill == id) return level;
    return 0;
}
