// The item and skill databases: flat files of fixed-size records behind an
// 8-byte header (the magic, "2eti" items or "2lks" skills, then a record count
// that the game does not read). Records run from the data offset to the end of
// the file; a trailing partial record is ignored. One definition for the engine
// (TCDataBase) and the table compiler (dbc).
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "base/byte_reader.h"

constexpr uint32_t kItemDbMagic = 0x69746532;   // "2eti"
constexpr uint32_t kSkillDbMagic = 0x736B6C32;  // "2lks"
constexpr int32_t kDbDataOffset = 8;
// Ids of items and skills stay below this; a file claiming more records (junk
// appended to it, say) is refused before it costs memory.
constexpr size_t kDbMaxRecords = 10000;

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

// The largest database file of recordSize-byte records the engine reads: the
// header, kDbMaxRecords records and a partial one.
constexpr size_t DatabaseFileMaxBytes(size_t recordSize) { return 8 + (kDbMaxRecords + 1) * recordSize - 1; }

// Checks the magic, moves to the data offset and counts the whole records left
// (at most kDbMaxRecords, else a failure). Nothing is read when it fails.
bool ReadDatabaseHeader(CByteReader& in, uint32_t magic, int32_t dataOffset, size_t recordSize, size_t* count);

// The records of a database image, appended to out.
template <class T>
bool ReadDatabaseRecords(CByteReader& in, uint32_t magic, int32_t dataOffset, std::vector<T>& out) {
    size_t count = 0;
    if (!ReadDatabaseHeader(in, magic, dataOffset, sizeof(T), &count)) return false;
    std::vector<T> records;
    if (!in.ReadRecords(records, count, "records")) return false;
    out.insert(out.end(), records.begin(), records.end());
    return true;
}

// The file image: magic, the count word, the records.
std::vector<uint8_t> DatabaseBytes(uint32_t magic, uint32_t countWord, const void* records, size_t count,
                                   size_t recordSize);
template <class T>
std::vector<uint8_t> DatabaseBytes(uint32_t magic, const std::vector<T>& records) {
    return DatabaseBytes(magic, uint32_t(records.size()), records.data(), records.size(), sizeof(T));
}
