// The item and skill databases: flat files of fixed-size records behind an
// 8-byte header ("2eti" items, "2lks" skills), held by TCDataBase<T>. Index 0
// is a zero-filled placeholder; the k-th record of the file has id k.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "base/paths.h"

constexpr uint32_t kItemDbMagic = 0x69746532;   // "2eti"
constexpr uint32_t kSkillDbMagic = 0x736B6C32;  // "2lks"
constexpr int32_t kDbDataOffset = 8;

// Item types.
enum EItemType : int32_t {
    ITEM_POTION = 0,
    ITEM_WEAPON = 1,
    ITEM_ARMOUR = 2,
    ITEM_BALDRIC = 3,
    ITEM_BOOK = 4,
    ITEM_BAG3 = 5,
    ITEM_BAG4 = 6,
    ITEM_BAG5 = 7,
    ITEM_PLAIN = 8,  // and any other value: cannot be used
};

// One item, 272 bytes. Texts are zero-terminated GBK.
struct SItemInfo {
    char szName[52];     // also the key scripts, books and missions use
    int32_t nPrice;      // buying price; selling yields half
    char szDesc[101];    // shown in tips
    char szRemark[51];   // shown in tips in colour 3 when not empty
    int32_t nType;       // EItemType
    int32_t nReserved;   // not read by the game
    char szPicture[16];  // picture in the items pack
    int32_t nLevel;      // level needed to use or equip
    int32_t nHp;
    int32_t nMp;
    int32_t nExp;
    int32_t nAttack;
    int32_t nDefence;
    int32_t nMoral;
    int32_t nHitRate;
    int32_t nMaxHp;
    int32_t nMaxMp;
};

// One skill, 516 bytes.
struct SSkillInfo {
    char szName[51];         // a book of the same name teaches it
    char szDesc[101];
    int32_t nKind;           // 0 heals the caster, else damages the target
    int32_t nRange;          // pixels; 0 means 20
    int32_t nDamage;         // damage (or healing) at level 1
    int32_t nMaxLevel;
    int32_t nGrowth;         // percent per level
    char szSound[15];        // "sound\%s"
    char szIcon[15];         // in the skill pack
    char szFrames[20][15];   // animation frames in the skill pack
    char pad0[2];
    int32_t nFrameCount;     // 0..20
    int32_t nMpCost;
    char cKey;               // shortcut key character
    char pad1[3];
};

static_assert(std::is_trivially_copyable_v<SItemInfo> && std::is_standard_layout_v<SItemInfo>);
static_assert(sizeof(SItemInfo) == 272);
static_assert(offsetof(SItemInfo, nPrice) == 52);
static_assert(offsetof(SItemInfo, szDesc) == 56);
static_assert(offsetof(SItemInfo, szRemark) == 157);
static_assert(offsetof(SItemInfo, nType) == 208);
static_assert(offsetof(SItemInfo, szPicture) == 216);
static_assert(offsetof(SItemInfo, nLevel) == 232);
static_assert(offsetof(SItemInfo, nHp) == 236);
static_assert(offsetof(SItemInfo, nMp) == 240);
static_assert(offsetof(SItemInfo, nExp) == 244);
static_assert(offsetof(SItemInfo, nAttack) == 248);
static_assert(offsetof(SItemInfo, nDefence) == 252);
static_assert(offsetof(SItemInfo, nMoral) == 256);
static_assert(offsetof(SItemInfo, nHitRate) == 260);
static_assert(offsetof(SItemInfo, nMaxHp) == 264);
static_assert(offsetof(SItemInfo, nMaxMp) == 268);

static_assert(std::is_trivially_copyable_v<SSkillInfo> && std::is_standard_layout_v<SSkillInfo>);
static_assert(sizeof(SSkillInfo) == 516);
static_assert(offsetof(SSkillInfo, szDesc) == 51);
static_assert(offsetof(SSkillInfo, nKind) == 152);
static_assert(offsetof(SSkillInfo, nRange) == 156);
static_assert(offsetof(SSkillInfo, nDamage) == 160);
static_assert(offsetof(SSkillInfo, nMaxLevel) == 164);
static_assert(offsetof(SSkillInfo, nGrowth) == 168);
static_assert(offsetof(SSkillInfo, szSound) == 172);
static_assert(offsetof(SSkillInfo, szIcon) == 187);
static_assert(offsetof(SSkillInfo, szFrames) == 202);
static_assert(offsetof(SSkillInfo, nFrameCount) == 504);
static_assert(offsetof(SSkillInfo, nMpCost) == 508);
static_assert(offsetof(SSkillInfo, cKey) == 512);

template <class T>
class TCDataBase {
public:
    TCDataBase() : m_records(1) { std::memset(&m_records[0], 0, sizeof(T)); }
    virtual ~TCDataBase() = default;

    // Reads "data\items.itm" style names from the disk (not from an archive).
    // False when the file cannot be opened or its magic differs. Records follow
    // at dataOffset up to the end of the file; a trailing partial record is
    // ignored. A second Load appends.
    bool Load(const char* fileName, int32_t dataOffset, uint32_t magic) {
        FILE* f = std::fopen(HostPath(fileName).c_str(), "rb");
        if (!f) return false;
        std::vector<uint8_t> bytes;
        uint8_t buf[65536];
        size_t got;
        while ((got = std::fread(buf, 1, sizeof buf, f)) > 0) bytes.insert(bytes.end(), buf, buf + got);
        std::fclose(f);
        return LoadBuffer(bytes.data(), bytes.size(), dataOffset, magic);
    }

    // The same over a file image in memory.
    bool LoadBuffer(const uint8_t* data, size_t size, int32_t dataOffset, uint32_t magic) {
        if (size < 4 || dataOffset < 0) return false;
        uint32_t m = uint32_t(data[0]) | uint32_t(data[1]) << 8 | uint32_t(data[2]) << 16 | uint32_t(data[3]) << 24;
        if (m != magic) return false;
        for (size_t pos = size_t(dataOffset); pos <= size && size - pos >= sizeof(T); pos += sizeof(T)) {
            T rec;
            std::memcpy(&rec, data + pos, sizeof(T));
            m_records.push_back(rec);
        }
        return true;
    }

    // A copy of record id; ids outside 0..Count() give the placeholder.
    T Get(int32_t id) const {
        if (id < 0 || size_t(id) >= m_records.size()) return m_records.empty() ? T{} : m_records[0];
        return m_records[size_t(id)];
    }
    // Records read from files (the placeholder not counted); -1 when empty.
    int32_t Count() const { return m_records.empty() ? -1 : int32_t(m_records.size() - 1); }

    // Id of the first record whose name equals name byte for byte, 0 for none.
    int32_t FindByName(const char* name) const {
        for (size_t i = 1; i < m_records.size(); ++i)
            if (std::strncmp(m_records[i].szName, name, sizeof(m_records[i].szName)) == 0 &&
                std::strlen(name) < sizeof(m_records[i].szName))
                return int32_t(i);
        return 0;
    }

private:
    std::vector<T> m_records;
};

using CItemDataBase = TCDataBase<SItemInfo>;
using CSkillDataBase = TCDataBase<SSkillInfo>;

// The game's two databases, for code without a game pointer (set by the game
// object at construction, null before and after it).
extern CItemDataBase* g_pItemDB;
extern CSkillDataBase* g_pSkillDB;
