// CGame: the help screen, the credits page, the boss screen and screenshots.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "media/graph.h"
#include "resources/ini.h"
#include "resources/picture_ref.h"
#include "base/clock.h"
#include "base/debug.h"
#include "base/log.h"
#include "shell/game.h"
#include "ui/dlg_panel.h"
#include "ui/richtext.h"
#include "ui/screenshot.h"
#include "ui/text_page.h"

namespace {
constexpr SRect kScreen{0, 0, SCREEN_W, SCREEN_H};
}

void CGame::ShowHelp() {
    CIni ini;
    if (!ini.Open("game.ini", m_szIniPack) || ini.IsFailed()) return;
    const std::string content = BackslashesToLineFeeds(ini.GetString("help", "content"));
    ini.Close();
    // The game menu stays visible behind the panel.
    m_pGraph->BltFast(SURF_TEMP, 0, 0, SURF_BUFFER, kScreen, BLT_WAIT);
    if (m_pDlgPanel) m_pDlgPanel->SetText({"<3Help/>"}, {content});
    m_nGameState = GS_HELP;
}

int CGame::ShowCredits() {
    CIni ini;
    if (!ini.Open("credit.ini", m_szIniPack) || ini.IsFailed()) return 0;
    const std::string pic = ini.GetString("credit", "pic");
    const std::string music = ini.GetString("credit", "music");
    snprintf(m_szCreditMusic, sizeof m_szCreditMusic, "%s", music.c_str());
    if (m_szCreditMusic[0]) m_bMusicStarted = 0;
    const std::string content = BackslashesToLineFeeds(ini.GetString("credit", "content"));
    const int32_t lines = ini.GetInt("credit", "contentLines");
    ini.Close();

    // The page is built on the ground layer, which GS_CREDITS shows.
    int pack = PACK_UI;
    std::string name;
    if (SplitPictureRef(pic.c_str(), pack, name)) m_pGraph->LoadBitmapToSurface(pack, name.c_str(), SURF_GROUND, 0, 0, BMP_CACHE_MAP);
    const SFontMetrics m = m_pGraph->GetFontMetrics(18);
    const int32_t lineHeight = m.height + m.externalLeading;
    const SRect rect{0, CenteredTextTop(lineHeight, lines), SCREEN_W, SCREEN_H};
    CGraphTextSink sink(m_pGraph, SURF_GROUND, 18);
    DrawTextPage(content, rect, lineHeight, RGB(0, 0, 0), sink);

    StartFade(1, GS_CREDITS);
    DebugOut("credit:%s\n", content.c_str());
    return 1;
}

void CGame::ShowBossKey() {
    int pack = PACK_UI;
    std::string name;
    if (SplitPictureRef("ui/bosskey.bmp", pack, name)) m_pGraph->LoadBitmapToSurface(pack, name.c_str(), SURF_TEMP, 0, 0, BMP_CACHE_MAP);
    m_nResumeState = m_nGameState;
    m_nGameState = GS_BOSSKEY;
    DebugOut("boss screen start!\n");
}

int CGame::ScreenShot() {
    if (m_pGraph->GetColorMask() != COLOR_MASK_565) return 0;
    char dir[256] = {0};
    if (!getcwd(dir, sizeof dir)) return 0;
    SSystemTime t;
    GetSystemTime(t);
    const std::string path = ScreenShotFileName(dir, t);
    const CSurface* back = m_pGraph->GetSurface(SURF_BUFFER);
    if (!back || !back->Valid()) return 0;
    // The folder is made when it is missing; a shot that cannot be written is
    // said in the log and on stderr instead of being lost without a word.
    auto fail = [this](const std::string& what) {
        if (m_pLog) m_pLog->Write("Screenshot failed: %s", what.c_str());
        fprintf(stderr, "ashen-oath: screenshot failed: %s\n", what.c_str());
        return 0;
    };
    const std::string folder = std::string(dir) + "/screenshot";
    struct stat st;
    if (stat(folder.c_str(), &st) != 0) {
        if (mkdir(folder.c_str(), 0755) != 0) return fail("cannot make the folder " + folder + ": " + strerror(errno));
    } else if (!S_ISDIR(st.st_mode)) {
        return fail(folder + " is not a folder");
    }
    std::vector<uint8_t> bgr;
    SurfaceToBgr(*back, bgr);
    DebugOut("7\n");
    if (!WriteJpegBgr(path.c_str(), bgr.data(), back->width, back->height, 75)) return fail("cannot write " + path);
    return 1;
}
