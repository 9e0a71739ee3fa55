// CGame: the one game object. It owns every long-lived object, runs the 40 ms
// message loop and the mode machine, and handles the player's commands. Its
// operations are spread over several files by concern:
//   game_startup.cpp      construction, Init, shutdown, the configuration files
//   game_loop.cpp         Run, the window procedure, UpdateFrame, StartFade, ShowSplash,
//                         the effect sound, outlined text, the snapshot
//   game_modes.cpp        the mode table (game_modes.h): each mode's frame, click and Esc,
//                         and the small per-mode steps (splash, fade, pages, loading)
//   game_input.cpp        keys, left clicks, screens and the game menu
//   game_world_input.cpp  world clicks, hover feedback, NPC picking
//   game_map.cpp          map change, EnterMap, DrawRole, the playing frame's world
//   game_panels.cpp       creation and loading of the panels, the panel-mode frames,
//                         the menus' and panels' clicks, the message line
//   game_screens.cpp      help, credits, boss key, screenshots
//   game_saves.cpp        the save panel's slots and starting a load
//   game_savegame.cpp     writing and reading saved games
//   game_script.cpp       RunScript, ContinueScript
//   game_rain.cpp         rain
//   game_harness.cpp      the automation harness: replay, shots, the state dump
#pragma once
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"

class CLog;
class CGraph;
class CMouse;
class CSound;
class KGDShowInstance;
class CMap;
class CRole;
class CRoleNPC;
class CItem;
class CScript;
class CTalk;
class CPanel;
class CMenuPanel;
class CMainMenuPanel;
class CDlgPanel;
class CSavePanel;
class CTutorialPanel;
class CPlayerPanel;
class CPackPanel;
class CMissionSystem;
class CPlayerRecords;
class CUserItemPack;
class CWeaponItemPack;
struct SItemInfo;
struct SSkillInfo;
template <class T> class TCDataBase;

// One replayed input event.
struct SReplayEvent {
    int64_t frame = 0;
    enum EKind { MOVE, LDOWN, LUP, RDOWN, RUP, KEY, QUIT } kind = MOVE;
    int32_t x = 0, y = 0;  // cursor, or the key code for KEY
};

// The harness options (--headless, --uncapped, ...), read by main.
struct SHarnessOptions {
    bool headless = false;
    bool uncapped = false;
    int64_t frames = -1;         // quit after this many frames (-1: never)
    std::string replayFile;
    std::vector<SReplayEvent> replay;  // the replay file's events, read before the game starts
    std::vector<std::pair<int64_t, std::string>> shots;  // frame, PNG path
    int64_t clock = -1;          // fixed calendar start (UNIX seconds)
    std::string dumpState;       // JSON file written at exit
    std::string warpMap;         // --warp MAP[:X:Y]
    int32_t warpX = -1, warpY = -1;
    int scale = 0;               // --scale N (0: from game.ini or automatic)
};

// The fade record.
struct SFade {
    int32_t phase = 0;     // FADE_STEADY once the mode's first frame was faded in; 0 before
    int32_t kind = 0;      // FADE_IN, FADE_OUT or FADE_SPLASH
    int32_t level = 0;     // 0 none .. FADE_BLACK; negative: waiting time
    int32_t rising = 0;    // 1 while the level grows
    SRect source{0, 0, 640, 480};
};

enum EFadeKind : int32_t { FADE_IN = 0, FADE_OUT = 1, FADE_SPLASH = 2 };
constexpr int32_t FADE_STEADY = 2;          // fade phase of a mode that has been faded in
constexpr int32_t FADE_BLACK = 31;          // darkest level; a fade in starts here, a fade out ends past it
constexpr int32_t FADE_STEP = 4;            // level change per frame
constexpr int32_t FADE_SPLASH_HOLD = -160;  // a splash picture stays undarkened while the level climbs to 0
constexpr int32_t FADE_SPLASH_END = 51;     // a splash picture's fade out ends at this level
constexpr int SPLASH_COUNT = 5;             // splash pictures [FlashWindow1] .. [FlashWindow5]

// The current map's 92-byte header (23 words), as the game keeps it.
struct SMapInfo {
    uint32_t words[23] = {};
    const char* FileName() const { return reinterpret_cast<const char*>(words) + 4; }
    const char* DisplayName() const { return reinterpret_cast<const char*>(words) + 24; }
    int32_t StartX() const { return int32_t(words[17]); }
    int32_t StartY() const { return int32_t(words[18]); }
    const char* MusicName() const { return reinterpret_cast<const char*>(words) + 76; }
};

class CGame {
public:
    CGame();
    virtual ~CGame();
    CGame(const CGame&) = delete;
    CGame& operator=(const CGame&) = delete;

    // ---- start-up (game_startup.cpp) ----
    int Init(int showCommand);
    int ReadGameIni(const char* fileName);
    int CreateMainWindow(int showCommand, int windowed);
    int ChangeDisplayBitsPerPel(int bits);
    void LoadCursor();

    // ---- loop and modes (game_loop.cpp) ----
    int Run();
    // One pass of the loop: a waiting message, or else at most one frame. False
    // when WM_QUIT arrived (its code in quitCode).
    bool RunOnce(int& quitCode);
    static intptr_t WindowProc(uint32_t message, uintptr_t wParam, intptr_t lParam);
    void UpdateFrame();
    void StartFade(int direction, int target);
    void ShowSplash(const char* name, int target);
    void ShowMessage(const char* text);
    int PlayWav(const char* fileName);
    void DrawOutlinedText(int surf, const char* text, int32_t x, int32_t y, COLORREF outline, COLORREF color,
                          bool diagonalOutline);
    void ComposeSnapshot();  // camera rectangle of the three layers and the rain into the snapshot

    // ---- input (game_input.cpp) ----
    int OnKeyDown(int key);
    void OnLButtonDown();
    void OnLButtonUp();
    void OnRButtonDown();
    void OnWorldLButton();
    void OnWorldRButton();
    int OpenScreen(int id);
    int OpenGameMenu();

    // ---- map change (game_map.cpp) ----
    int ChangeMap(const char* name, int32_t x, int32_t y, int32_t facing, int32_t newGame);
    int EnterMap();
    int LoadMap(const char* path);
    void DrawRole();
    void UpdateRoles();        // step 5 of the playing frame
    bool PlayFrame();          // GS_PLAY; false when the frame ended early (mode left, fade-in started)
    void DrawMapNameAndPosition();
    bool PositionLabel(char* text, size_t size) const;  // "(%d,%d)": PointToCell of the hero
    void UpdateWorldHover();
    int FindNpcAt(int32_t x, int32_t y, int flag);

    // ---- panels (game_panels.cpp) ----
    void CreatePanels();                     // constructor step 3: the four start-up panels, empty
    void DeletePanels();                     // destructor: every panel the game owns
    void PublishButtonGlobals(CSound* hoverSound);  // Init step 8: display + hover sound for buttons
    int LoadPanels();                        // Init step 12: the four layouts; 0 on the first failure
    bool FrameMainMenu();                    // GS_MAINMENU; false when the frame ended early (fade-in)
    void FramePanelMode();                   // snapshot + the mode's panel (menu, save, load, info, help, talk, pack)
    void OnMainMenuClick();                  // left click in GS_MAINMENU
    void OnGameMenuClick();                  // left click in GS_GAMEMENU
    void OnDialogClick();                    // left click in GS_INFO and GS_HELP
    void OnSavePanelClick();                 // left click in GS_SAVE
    void OnLoadPanelClick();                 // left click in GS_LOAD
    CPanel* ModePanel();                     // the panel the current mode shows, or none
    void DrawMessageLine();                  // the message line at the end of a presented frame

    // ---- world objects (game_map.cpp) ----
    void CreateWorld();                      // constructor step 2: the map object and its lists
    void DeleteWorld();                      // destructor: map, roles, NPCs, ground items
    void LoadMapRegistries();                // end of ReadGameIni: "maps.ini" and "scripts.ini"

    // ---- rain (game_rain.cpp) ----
    void StartRain();
    void DrawRain(int target);               // 0: back buffer, >0: snapshot

    // ---- screens (game_screens.cpp) ----
    void ShowHelp();
    int ShowCredits();
    void ShowBossKey();
    void GameOver();
    int ScreenShot();

    // ---- saves (game_saves.cpp) ----
    void OpenSavePanel(int loadForm, int returnMode);
    void SaveGame(int slot);
    int LoadSlot(int slot);
    int LoadGame();

    // ---- scripts (game_script.cpp) ----
    int RunScript(const char* name, int quiet);
    int ContinueScript();

    // ---- harness ----
    void SetHarness(const SHarnessOptions& options) { m_harness = options; }
    const SHarnessOptions& Harness() const { return m_harness; }
    int64_t FrameCount() const { return m_nFrameCount; }
    std::string DumpStateJson();  // the state dump: the game's part and each subsystem's part
    void WriteState(StateJson& out) const;  // the game's own part: mode, frame, flags, camera
    void HarnessStart();          // --warp and the replay file, before the loop
    bool HarnessInjectInput();    // replayed events of the next frame; true when some were queued
    void HarnessAfterFrame();     // frame count, --shot pictures, --frames limit
    void HarnessStop();           // after the loop: frees the replay state
    // The first thing the harness could not do during the run (a shot that could
    // not be written); empty when all went well.
    const std::string& HarnessError() const { return m_strHarnessError; }
    void SetHarnessError(const std::string& error) {
        if (m_strHarnessError.empty()) m_strHarnessError = error;
    }

    // ---- accessors used across subsystems ----
    CGraph* Graph() { return m_pGraph; }
    CLog* Log() { return m_pLog; }
    const char* IniPack() const { return m_szIniPack; }
    const char* ScriptPack() const { return m_szScriptPack; }
    int32_t GameState() const { return m_nGameState; }

public:
    // Members, in the order the game declares them.
    CTutorialPanel* m_pTutorialPanel = nullptr;
    int32_t m_nLoadPanelOrigin = 0;
    int32_t m_nWanderTimer = 100;
    int32_t m_nLoadSlot = 0;
    std::string m_strTargetMap;
    int32_t m_nTargetX = -1, m_nTargetY = -1, m_nTargetFacing = 5;
    int32_t m_bTargetNewGame = 0;
    int32_t m_nTalkTarget = 0;
    int32_t m_nHeldItemId = 0;
    int32_t m_bActive = 1;
    int32_t m_bHandEmpty = 1;

    // configuration
    void* m_hInstance = nullptr;
    int32_t m_bWindowed = 0;
    int32_t m_nBitsPerPel = 16;
    char m_szIniPack[30] = {0};
    char m_szScriptPack[30] = {0};
    char m_szSplash[SPLASH_COUNT][30] = {};
    char m_szStartMusic[30] = {0};
    char m_szCreditMusic[30] = {0};
    char m_szEndMusic[30] = {0};
    char m_szCurrentDir[256] = {0};
    std::set<std::string> m_setUnreadableIni;  // entries of the ini archive that cannot be read

    int32_t e_killCount = 0;
    CSound* m_pSound = nullptr;            // the effect sound
    KGDShowInstance* m_pShow = nullptr;
    CPlayerRecords* m_pRecords = nullptr;  // notes, honours, factions, enmity, affection, VIP info
    SFade m_fade;
    int32_t m_nResumeState = 0;
    CMissionSystem* m_pMissionSystem = nullptr;
    std::list<CItem*> m_listGroundItems;
    std::list<CItem*>::iterator m_itHoveredItem;
    TCDataBase<SItemInfo>* m_pItemDB = nullptr;
    TCDataBase<SSkillInfo>* m_pSkillDB = nullptr;
    int32_t m_nHoveredNpc = -1;
    std::vector<CRole*> m_vecVisibleRoles;     // draw list, rebuilt each frame; [0] is the hero
    std::vector<CRoleNPC*> m_vecNpcs;          // the map's NPCs by number - 1 (null once dead)
    struct SNpcPlacement { uint32_t record; int32_t cellX, cellY; };
    std::vector<SNpcPlacement> m_vecNpcPlacements;
    int32_t m_bTrading = 0;
    int32_t m_nOpenScreen = 0;
    int32_t m_bWorldClickArmed = 0;
    int32_t e_brain = 0;
    int32_t m_bMusicStarted = 0;
    SMapInfo m_mapInfo;
    SRect m_rcCamera{0, 0, 640, 480};
    SPoint m_ptCamera{0, 0};
    CLog* m_pLog = nullptr;
    CGraph* m_pGraph = nullptr;
    CMap* m_pMap = nullptr;
    CRole* m_pRole = nullptr;
    // The hero's bag and equipment: owned here, lent to the hero (CRole::m_pBag).
    CUserItemPack* m_pHeroBag = nullptr;
    CWeaponItemPack* m_pHeroEquipment = nullptr;
    void* m_hWnd = nullptr;
    CScript* m_pScript = nullptr;
    std::string m_strTalkLabel;
    CTalk* m_pTalk = nullptr;
    CSavePanel* m_pSavePanel = nullptr;
    CMenuPanel* m_pMenuPanel = nullptr;
    CMainMenuPanel* m_pMainMenuPanel = nullptr;
    CDlgPanel* m_pDlgPanel = nullptr;
    CPackPanel* m_pPackPanel[2] = {nullptr, nullptr};
    CPlayerPanel* m_pPlayerPanel = nullptr;
    CMouse* m_pMouse = nullptr;
    std::vector<uint16_t> m_vecRainDrops;      // x, y pairs as a flat list
    int32_t m_nRainNumber = 0;
    int32_t m_nGameState = GS_SPLASH;
    struct SAniCursor* m_pCursor = nullptr;   // from "data\cursor.ani", or none

    // loop state
    int32_t m_nSplashCounter = 0;
    uint32_t m_nLastFrameTick = 0;
    int64_t m_nFrameCount = 0;
    SHarnessOptions m_harness;
    std::string m_strHarnessError;
    struct SReplayState;
    SReplayState* m_pReplay = nullptr;

    // ---- members added by the UI (panels, screens) ----

    // ---- members added by the world (maps, roles) ----
};

// The game object, for code that has no game pointer (nullptr until constructed).
extern CGame* g_pGame;
