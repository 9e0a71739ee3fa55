// CPlayerRecords: the story's records about the player, kept by the game and
// changed by script commands: notes (a journal, newest first), honours (oldest
// first), factions joined, each faction's enmity toward the player, affection of
// named characters, and a free key/value store (VIP info). Map entries never
// written read as 0. Saved games write and read the members directly.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

// A faction whose enmity reaches this value is hostile; dropping below it makes
// peace. NPCs of a faction fight the player when the enmity is above it.
constexpr int32_t kEnmityThreshold = 50;

class CPlayerRecords {
public:
    // Puts "* " + text at the front of the notes.
    void AddNote(const char* text);
    // Appends text to the honours.
    void AddHonor(const char* text);
    // join: appends a faction not yet joined (1), else 0. Leave: empties the
    // first entry equal to name, which keeps its place (1), else 0.
    int ChangeFaction(const char* name, int join);
    // Raises or lowers a faction's enmity. Crossing the threshold upward shows
    // the feud message and adds its note; crossing it downward, the peace ones.
    void ChangeFactionEnmity(const char* faction, int32_t amount, int raise);
    // The faction's enmity; 0 without an entry (none is created).
    int32_t Enmity(const char* faction) const;
    // Raises or lowers a character's affection.
    void ChangeGirlLove(const char* name, int32_t amount, int raise);
    // Affection of name; 0 without an entry (none is created).
    int32_t GetGirlLove(const char* name) const;
    // VIP value of key; 0 without an entry (none is created).
    int32_t GetVIPInfo(const char* key) const;
    void SetVIPInfo(const char* key, int32_t value);
    // A new game: no notes, honours, factions, enmity, affection or VIP info.
    void ClearForNewGame();

    std::vector<std::string> m_vecNotes;
    std::vector<std::string> m_vecHonours;
    std::vector<std::string> m_vecFactions;
    std::map<std::string, int32_t> m_mapEnmity;
    std::map<std::string, int32_t> m_mapAffection;
    std::map<std::string, int32_t> m_mapVip;
};
