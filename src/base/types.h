// Basic value types and constants shared by every subsystem: rectangles, points,
// colours, window-message and virtual-key numbers, and the game modes.
#pragma once
#include <cstdint>

struct SRect {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
    int32_t Width() const { return right - left; }
    int32_t Height() const { return bottom - top; }
    bool Contains(int32_t x, int32_t y) const { return x >= left && x < right && y >= top && y < bottom; }
};

struct SPoint {
    int32_t x = 0, y = 0;
};

// A colour as GDI stores it: red in the low byte, then green, then blue.
using COLORREF = uint32_t;
constexpr COLORREF RGB(int r, int g, int b) {
    return uint32_t(r & 255) | (uint32_t(g & 255) << 8) | (uint32_t(b & 255) << 16);
}
constexpr int GetRValue(COLORREF c) { return int(c & 255); }
constexpr int GetGValue(COLORREF c) { return int((c >> 8) & 255); }
constexpr int GetBValue(COLORREF c) { return int((c >> 16) & 255); }

// Window messages, numbered as the Windows API numbers them.
constexpr uint32_t WM_DESTROY = 0x0002;
constexpr uint32_t WM_CLOSE = 0x0010;
constexpr uint32_t WM_QUIT = 0x0012;
constexpr uint32_t WM_ACTIVATEAPP = 0x001C;
constexpr uint32_t WM_KEYDOWN = 0x0100;
constexpr uint32_t WM_MOUSEMOVE = 0x0200;
constexpr uint32_t WM_LBUTTONDOWN = 0x0201;
constexpr uint32_t WM_LBUTTONUP = 0x0202;
constexpr uint32_t WM_RBUTTONDOWN = 0x0204;
constexpr uint32_t WM_RBUTTONUP = 0x0205;
constexpr uint32_t WM_USER = 0x0400;
constexpr uint32_t UM_GRAPHNOTIFY = WM_USER + 153;  // 0x499: the media player has events
constexpr uint32_t UM_SETGAME = WM_USER + 257;      // 0x501: hands the game object to the window procedure

// Virtual-key codes.
constexpr int VK_BACK = 8, VK_TAB = 9, VK_RETURN = 13, VK_ESCAPE = 27, VK_SPACE = 32;
constexpr int VK_LEFT = 37, VK_UP = 38, VK_RIGHT = 39, VK_DOWN = 40;
constexpr int VK_F1 = 112, VK_F2 = 113, VK_F3 = 114, VK_F4 = 115, VK_F5 = 116, VK_F6 = 117;
constexpr int VK_F7 = 118, VK_F8 = 119, VK_F9 = 120, VK_F10 = 121, VK_F11 = 122, VK_F12 = 123;

// Game modes (CGame::m_nGameState). 11 and 21 are not used.
enum EGameState : int32_t {
    GS_SPLASH = 0,
    GS_FADE = 1,
    GS_MAINMENU = 2,
    GS_PLAY = 3,
    GS_TALK = 4,
    GS_GAMEMENU = 5,
    GS_SAVE = 6,
    GS_LOAD = 7,
    GS_CREDITS = 8,
    GS_INFO = 9,
    GS_PACK = 10,
    GS_DEAD = 12,
    GS_RESULT = 13,
    GS_QUIT = 14,
    GS_HELP = 15,
    GS_BOSSKEY = 16,
    GS_MAPMSG = 17,
    GS_ENTERMAP = 18,
    GS_LOADMSG = 19,
    GS_LOADGAME = 20,
};

// The six picture packs, numbered as the game.ini keys [MDfile] role, ui, face,
// items, skill and tiles name their archives.
enum EPicturePack : int {
    PACK_ROLE = 0,
    PACK_UI = 1,
    PACK_FACE = 2,
    PACK_ITEMS = 3,
    PACK_SKILL = 4,
    PACK_TILES = 5,
    PACK_COUNT = 6,
};
// The game.ini keys of the packs, by number.
inline constexpr const char* PACK_KEYS[PACK_COUNT] = {"role", "ui", "face", "items", "skill", "tiles"};

// Screen dimensions of the game in game pixels, and of the map world.
constexpr int SCREEN_W = 640, SCREEN_H = 480;
constexpr int WORLD_W = 3200, WORLD_H = 1600;
// The sheets pictures are cut from: the tile sheet (one tile type's pictures at a
// time; also where a role's frame is staged) and the object sheet.
constexpr int TILE_SHEET_W = 640, TILE_SHEET_H = 640;
constexpr int OBJECT_SHEET_W = 2048, OBJECT_SHEET_H = 1600;
