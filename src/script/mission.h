// Missions: the quest log. A script adds a mission with a goal (gather items of
// a name, kill enemies of a name, or kill any enemies); game events reported
// through the progress hook advance it, items leaving the player count it down,
// and the script's status question is where it gets completed. Saved games keep
// each mission as a 276-byte record.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "items/progress.h"

class CLog;
class CItemPack;

// Mission kinds.
enum EMissionKind : int32_t { MISSION_GET_ITEMS = 0, MISSION_KILL_NAMED = 1, MISSION_KILL_ANY = 2 };

// Status codes of CheckMission.
enum EMissionStatus : int32_t {
    MISSION_OPEN = 0,            // not reached yet
    MISSION_COMPLETED = 1,       // completed by this check
    MISSION_WAS_DONE = 2,        // completed before
    MISSION_COMPLETED_TAGGED = 3,  // completed by this check, completion tag 1
    MISSION_NONE = 4,            // no such mission
};

// One mission as saved: texts zero-terminated GBK, integers little-endian.
#pragma pack(push, 1)
struct SMissionRecord {
    char szName[100];
    char szText[100];
    int32_t nDone;
    int32_t nKind;
    char szTarget[52];
    int32_t nRequired;
    int32_t nCurrent;
    int32_t nAutoComplete;
    int32_t nTag;
};
#pragma pack(pop)
static_assert(sizeof(SMissionRecord) == 276, "mission record is 276 bytes");
static_assert(offsetof(SMissionRecord, nDone) == 200 && offsetof(SMissionRecord, nKind) == 204 &&
                  offsetof(SMissionRecord, szTarget) == 208 && offsetof(SMissionRecord, nRequired) == 260 &&
                  offsetof(SMissionRecord, nCurrent) == 264 && offsetof(SMissionRecord, nAutoComplete) == 268 &&
                  offsetof(SMissionRecord, nTag) == 272,
              "mission record layout");

constexpr size_t kMissionRecordSize = sizeof(SMissionRecord);
// The record's bytes as stored in a saved game, and back. Reading stops each
// text at its first zero byte or at the end of its field.
void EncodeMissionRecord(const SMissionRecord& record, uint8_t* out);
SMissionRecord DecodeMissionRecord(const uint8_t* in);

class CMission {
public:
    virtual ~CMission() = default;

    // The completion check: 2 when done before; 0 while current < required;
    // otherwise the mission is done, current restarts from 0, and the code is 3
    // with completion tag 1, else 1.
    int32_t Check();
    // The mission screen's line: "* " + text, then "<4(Done)/>" or what is still
    // needed (the remaining count in colour 2).
    std::string Description() const;

    std::string m_strName;   // unique key
    std::string m_strText;   // shown to the player
    int32_t m_nDone = 0;
    int32_t m_nKind = MISSION_GET_ITEMS;
    std::string m_strTarget;  // item name, enemy name, or empty for any enemy
    int32_t m_nRequired = 0;
    int32_t m_nCurrent = 0;   // may fall below 0
    int32_t m_nAutoComplete = 0;
    int32_t m_nTag = 0;       // 1: completion reports 3
};

class CMissionSystem : public IProgressListener {
public:
    CMissionSystem();
    ~CMissionSystem() override;
    CMissionSystem(const CMissionSystem&) = delete;
    CMissionSystem& operator=(const CMissionSystem&) = delete;

    // Appends a new open mission: 1, or 0 (and an engine log line) when a
    // mission of that name exists.
    int AddMission(const char* name, const char* text, int32_t kind, const char* target, int32_t required,
                   int32_t autoComplete, int32_t tag);
    // AddMission, then for an added "get items" mission the starting count: one
    // progress of the target for every such item the bag already holds (every
    // mission with that target advances). bag may be null.
    int AddMissionCountingBag(const char* name, const char* text, int32_t kind, const char* target,
                              int32_t required, int32_t autoComplete, int32_t tag, const CItemPack* bag);
    // Appends a mission from a saved record as stored (no uniqueness test).
    void AddMissionRecord(const SMissionRecord& record);
    // The record of mission index (texts cut to their fields at a character
    // boundary); a zero record outside the list.
    SMissionRecord GetMissionRecord(int32_t index) const;
    int32_t GetMissionCount() const;
    // Index of the mission of that name, -1 when none.
    int32_t FindMission(const char* name) const;
    // The completion check of that mission (EMissionStatus); 4 when none.
    int32_t CheckMission(const char* name);
    // The current count of that mission (may be negative); 0 when none.
    int32_t GetMissionObjCount(const char* name) const;
    // One unit for every mission whose target is name (the name taken as empty
    // for "kill any" missions when anyFlag is set), done or not; auto-complete
    // missions run the completion check. 1 when some mission advanced.
    int OnProgress(const char* name, int anyFlag) override;
    // Every mission whose target is name counts one down, without a floor.
    void OnLose(const char* name) override;
    // The mission screen: open missions newest first, then completed ones newest
    // first.
    std::vector<std::string> GetMissionTexts() const;
    void Clear() { m_vecMissions.clear(); }

    const std::vector<CMission>& Missions() const { return m_vecMissions; }

private:
    std::vector<CMission> m_vecMissions;
    std::unique_ptr<CLog> m_pLog;
};
