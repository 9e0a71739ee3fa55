// The mode machine as one table: for each game mode its name, its frame, its
// left click, its Esc key, the panel it shows and whether the hero's keys act in
// it. UpdateFrame, OnLButtonDown, OnKeyDown, OnRButtonDown and the state dump
// look the current mode up here, so a new mode is one new row in game_modes.cpp.
#pragma once
#include <cstdint>

class CGame;
class CPanel;

struct SGameMode {
    int32_t mode;                  // the value of CGame::m_nGameState
    const char* name;              // "GS_PLAY", ... (the state dump's mode_name)
    bool (*frame)(CGame&);         // draws one frame; false when it ended early (nothing is presented)
    void (*click)(CGame&);         // left button pressed; nullptr: the click is ignored
    void (*escape)(CGame&);        // Esc pressed; nullptr: the key is ignored
    CPanel* (*panel)(CGame&);      // the panel drawn over the snapshot; nullptr: none
    bool heroKeys;                 // F1-F4, F6 and right clicks reach the hero in this mode
};

// The row of a mode, or nullptr for a number that is no mode (11, 21, ...).
const SGameMode* FindGameMode(int32_t mode);
// The mode's name, "unknown" for a number that is no mode.
const char* GameModeName(int32_t mode);
// Every row, in mode order (count in *count).
const SGameMode* GameModes(int* count);
