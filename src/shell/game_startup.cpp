// CGame: construction, the start-up sequence, the configuration files and the
// order of shutdown.
#include <unistd.h>

#include <cstdio>
#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

#include "base/message_line_hook.h"
#include "items/database.h"
#include "items/progress.h"
#include "media/cursor_file.h"
#include "media/graph.h"
#include "media/mouse.h"
#include "media/show.h"
#include "media/sound.h"
#include "media/window.h"
#include "resources/ini.h"
#include "resources/vrn_file.h"
#include "base/debug.h"
#include "shell/game.h"
#include "base/gbk.h"
#include "base/log.h"
#include "base/message_box.h"
#include "base/paths.h"
#include "script/mission.h"
#include "script/records.h"

CGame* g_pGame = nullptr;

namespace {

// Copies an INI value into a fixed field. The configuration must respect the
// field's size; a longer value is cut instead of overrunning the field.
template <size_t N>
void CopyField(char (&field)[N], const std::string& value) {
    strncpy(field, value.c_str(), N - 1);
    field[N - 1] = 0;
}

// The entries of an archive whose directory is intact but whose data cannot be
// read back (a truncated or damaged archive). Each is reported here, once, with
// the archive's and the entry's names: the readers would otherwise find an empty
// text and go on without a word.
std::set<std::string> UnreadableEntries(const char* archivePath, CLog* log) {
    std::set<std::string> out;
    CVRN_File archive;
    if (!archivePath || !archive.Open(archivePath) || !archive.Root()) return out;
    std::vector<const SVrnNode*> files;
    std::vector<const SVrnNode*> pending{archive.Root()};
    while (!pending.empty()) {
        const SVrnNode* node = pending.back();
        pending.pop_back();
        for (const auto& child : node->children) {
            if (child.second->IsDir())
                pending.push_back(child.second.get());
            else
                files.push_back(child.second.get());
        }
    }
    std::vector<uint8_t> bytes;
    for (const SVrnNode* file : files) {
        const std::string name = file->path.substr(file->path.find('\\') + 1);  // without "root\"
        if (!archive.FindEntry(name.c_str())) continue;
        bytes.assign(size_t(std::max(archive.GetSize(), 1)), 0);
        if (archive.Read(bytes.data(), 0)) continue;
        out.insert(name);
        if (log) log->Write("%s: the entry %s cannot be read (damaged archive)", archivePath, name.c_str());
        fprintf(stderr, "ashen-oath: %s: the entry %s cannot be read (damaged archive)\n", archivePath, name.c_str());
    }
    return out;
}

}  // namespace

CGame::CGame() {
    // 1. Empty strings and lists; the ground-item list, the fade and counters.
    m_itHoveredItem = m_listGroundItems.end();
    // 2. Databases, display, map object and the role lists.
    m_pItemDB = new TCDataBase<SItemInfo>();
    m_pSkillDB = new TCDataBase<SSkillInfo>();
    m_pMissionSystem = new CMissionSystem();
    m_pRecords = new CPlayerRecords();
    m_pGraph = new CGraph();
    CreateWorld();
    m_nHoveredNpc = -1;
    m_nWanderTimer = 100;
    e_brain = 0;
    m_nHeldItemId = 0;
    // 3. The four start-up panels, empty until Init loads their layouts.
    CreatePanels();
    // 4. The media player.
    m_pShow = new KGDShowInstance();
    // 5. The working directory and the engine log (truncated: one header per run).
    if (!getcwd(m_szCurrentDir, sizeof(m_szCurrentDir) - 1)) m_szCurrentDir[0] = 0;
    m_pLog = new CLog("GameEngine.log", true);
    // 6. Modes and flags.
    m_nGameState = GS_SPLASH;
    m_bMusicStarted = 0;
    m_bHandEmpty = 1;
    m_bActive = 1;
    // 7. The effect sound and the animated cursor.
    m_pSound = new CSound();
    LoadCursor();
    // 8. Globals.
    g_pGame = this;
    g_pGraph = m_pGraph;
    g_pItemDB = m_pItemDB;
    g_pSkillDB = m_pSkillDB;
    g_pProgress = m_pMissionSystem;
    SetGameMessageHandler([](const char* text) {
        if (g_pGame) g_pGame->ShowMessage(text);
    });
    m_bWindowed = 0;
    m_nBitsPerPel = 16;
}

CGame::~CGame() {
    // 1-2. The desktop's colour depth is never changed and the font is never
    // added to the system's font table, so neither needs restoring.
    // 3. The hover sound belongs to the button class; the mouse device.
    PublishButtonGlobals(nullptr);
    if (m_pMouse) m_pMouse->ReleaseMouse();
    // 4. Panels, world objects, display, databases.
    DeletePanels();
    DeleteWorld();
    delete m_pGraph;
    m_pGraph = nullptr;
    g_pGraph = nullptr;
    delete m_pItemDB;
    delete m_pSkillDB;
    m_pItemDB = nullptr;
    m_pSkillDB = nullptr;
    g_pItemDB = nullptr;
    g_pSkillDB = nullptr;
    SetGameMessageHandler(nullptr);
    if (g_pProgress == m_pMissionSystem) g_pProgress = nullptr;
    delete m_pMissionSystem;
    m_pMissionSystem = nullptr;
    delete m_pRecords;
    m_pRecords = nullptr;
    // 5. The effect sound and the sound device.
    delete m_pSound;
    m_pSound = nullptr;
    delete m_pMouse;
    m_pMouse = nullptr;
    ReleaseSound();
    // 6. The media player.
    delete m_pShow;
    m_pShow = nullptr;
    delete m_pCursor;
    m_pCursor = nullptr;
    HarnessStop();  // the replay state is only complete in the harness's own file
    // 7. The engine log.
    delete m_pLog;
    m_pLog = nullptr;
    if (g_pGame == this) g_pGame = nullptr;
}

int CGame::ChangeDisplayBitsPerPel(int bits) {
    // The desktop's depth is never changed here; the display works in its own
    // 16-bit buffers whatever the desktop runs at.
    DebugOut("cgame::ChangeDisplayBitsPerPel failed.\n");
    m_nBitsPerPel = bits;
    return 0;
}

void CGame::LoadCursor() {
    auto* cursor = new SAniCursor();
    std::string error;
    if (LoadAniCursor(HostPath("data\\cursor.ani"), *cursor, error)) {
        m_pCursor = cursor;
    } else {
        delete cursor;
        DebugOut("%s\n", error.c_str());
    }
}

int CGame::CreateMainWindow(int, int windowed) {
    if (!platform::CreateMainWindow(windowed != 0, &CGame::WindowProc)) return 0;
    platform::SetAnimatedCursor(m_pCursor);  // the standard arrow when it did not load
    m_hWnd = this;
    return 1;
}

int CGame::Init(int showCommand) {
    // 2. The bootstrap game.ini on disk: windowed or full screen, and the scale.
    {
        CIni boot("game.ini", nullptr);
        if (!boot.IsFailed()) {
            m_bWindowed = boot.GetInt("MDfile", "windowmode") == 1 ? 1 : 0;
            int scale = boot.GetInt("MDfile", "scale");
            if (m_harness.scale == 0 && scale > 0) m_harness.scale = scale;
        }
    }
    // 3. Desktop depth (kept as it is).
    if (m_bWindowed) ChangeDisplayBitsPerPel(m_nBitsPerPel);
    // 4. The main window.
    if (!CreateMainWindow(showCommand, m_bWindowed)) return 0;
    // 5. The display.
    if (!m_pGraph->Init(m_bWindowed)) {
        MessageBox("Initialize DirectDraw failed!", "Error", MB_ICONERROR);
        m_pGraph->Release();
        platform::DestroyMainWindow();
        return 0;
    }
    // 6. The mouse device.
    m_pMouse = new CMouse();
    if (m_pMouse->CreateMouse(1, 0, 1) != 0) {
        m_pLog->Write("Create Input Device---Mouse...Failed!");
        MessageBox("Initialize DirectInput failed!", "Error", MB_ICONERROR);
        m_pGraph->Release();
        platform::DestroyMainWindow();
        return 0;
    }
    m_pLog->Write("Create Input Device---Mouse...OK!");
    // 7. Sound: a failure leaves the game silent.
    if (!InitSound()) {
        MessageBox("Initialize DirectSound failed!", "error", MB_ICONERROR);
        SetSoundEnabled(false);
        ReleaseSound();
    }
    // 8. The shared button hover sound.
    {
        CSound* hover = new CSound();
        if (hover->LoadWav("sound\\button_over.wav")) {
            PublishButtonGlobals(hover);
        } else {
            delete hover;
            PublishButtonGlobals(nullptr);
        }
    }
    // 9-10. The databases.
    if (!m_pItemDB->Load("data\\items.itm", 8, 0x69746532)) {
        MessageBox("Load item database failed!", "Error", MB_ICONERROR);
        m_pGraph->Release();
        platform::DestroyMainWindow();
        return 0;
    }
    if (!m_pSkillDB->Load("data\\skill.skl", 8, 0x736B6C32)) {
        MessageBox("Load skill database failed!", "Error", MB_ICONERROR);
        m_pGraph->Release();
        platform::DestroyMainWindow();
        return 0;
    }
    // 11. The two game.ini files.
    if (!ReadGameIni("game.ini")) {
        MessageBox("Load game.ini failed!", "Error", MB_ICONERROR);
        platform::DestroyMainWindow();
        return 0;
    }
    // 12. The start-up panel layouts.
    if (!LoadPanels()) {
        MessageBox("Load ini files failed!", "Error", MB_ICONERROR);
        platform::DestroyMainWindow();
        return 0;
    }
    // 13. Hide the system cursor until the splash pictures are over.
    platform::ShowCursor(false);
    return 1;
}

int CGame::ReadGameIni(const char* fileName) {
    CIni ini;
    if (!ini.Open(fileName, nullptr)) return 0;
    CopyField(m_szIniPack, ini.GetString("MDfile", "ini"));
    ini.Close();
    if (!ini.Open(fileName, m_szIniPack)) return 0;
    m_setUnreadableIni = UnreadableEntries(m_szIniPack, m_pLog);
    if (m_setUnreadableIni.count(fileName)) return 0;
    for (int i = 0; i < SPLASH_COUNT; ++i) {
        char section[32];
        snprintf(section, sizeof(section), "FlashWindow%d", i + 1);
        CopyField(m_szSplash[i], ini.GetString(section, "pic"));
    }
    CopyField(m_szStartMusic, ini.GetString("music", "start"));
    CopyField(m_szEndMusic, ini.GetString("music", "end"));
    for (int pack = 0; pack < PACK_COUNT; ++pack)
        m_pGraph->SetPackPath(pack, ini.GetString("MDfile", PACK_KEYS[pack]).c_str());
    CopyField(m_szScriptPack, ini.GetString("MDfile", "script"));
    ini.Close();
    LoadMapRegistries();
    return 1;
}
