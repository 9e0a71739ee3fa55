// Item and skill databases built in memory for the model tests, installed as
// g_pItemDB / g_pSkillDB for the life of a CTestDatabases.
#pragma once
#include <cstdint>
#include <cstring>
#include <vector>

#include "items/database.h"

inline SItemInfo TestItem(const char* name, int32_t type, int32_t price = 10) {
    SItemInfo r;
    std::memset(&r, 0, sizeof r);
    std::snprintf(r.szName, sizeof r.szName, "%s", name);
    r.nType = type;
    r.nPrice = price;
    return r;
}

inline SSkillInfo TestSkill(const char* name, int32_t kind, int32_t damage, int32_t maxLevel, int32_t growth,
                            int32_t cost = 0, char key = 0, int32_t range = 0) {
    SSkillInfo r;
    std::memset(&r, 0, sizeof r);
    std::snprintf(r.szName, sizeof r.szName, "%s", name);
    r.nKind = kind;
    r.nDamage = damage;
    r.nMaxLevel = maxLevel;
    r.nGrowth = growth;
    r.nMpCost = cost;
    r.cKey = key;
    r.nRange = range;
    return r;
}

// The file image: magic, four unread bytes, the records.
template <class T>
std::vector<uint8_t> DatabaseImage(uint32_t magic, const std::vector<T>& records) {
    std::vector<uint8_t> b(8 + sizeof(T) * records.size(), 0);
    std::memcpy(b.data(), &magic, 4);
    for (size_t i = 0; i < records.size(); ++i) std::memcpy(b.data() + 8 + sizeof(T) * i, &records[i], sizeof(T));
    return b;
}

class CTestDatabases {
public:
    CTestDatabases(const std::vector<SItemInfo>& items, const std::vector<SSkillInfo>& skills)
        : m_oldItems(g_pItemDB), m_oldSkills(g_pSkillDB) {
        const std::vector<uint8_t> i = DatabaseImage(kItemDbMagic, items);
        const std::vector<uint8_t> s = DatabaseImage(kSkillDbMagic, skills);
        m_items.LoadBuffer(i.data(), i.size(), kDbDataOffset, kItemDbMagic);
        m_skills.LoadBuffer(s.data(), s.size(), kDbDataOffset, kSkillDbMagic);
        g_pItemDB = &m_items;
        g_pSkillDB = &m_skills;
    }
    ~CTestDatabases() {
        g_pItemDB = m_oldItems;
        g_pSkillDB = m_oldSkills;
    }
    CTestDatabases(const CTestDatabases&) = delete;
    CTestDatabases& operator=(const CTestDatabases&) = delete;

private:
    CItemDataBase m_items;
    CSkillDataBase m_skills;
    CItemDataBase* m_oldItems;
    CSkillDataBase* m_oldSkills;
};
