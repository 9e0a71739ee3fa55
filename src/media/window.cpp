#include "media/window.h"

#include <SDL.h>

#include <cstdio>
#include <cstring>
#include <deque>

#include "media/cursor_file.h"
#include "base/gbk.h"
#include "base/message_box.h"

namespace platform {
namespace {

struct State {
    bool sdlStarted = false;
    bool headless = false;
    int requestedScale = 0;
    SDL_Window* window = nullptr;
    SDL_Renderer* renderer = nullptr;
    SDL_Texture* texture = nullptr;
    bool windowed = true;
    bool windowExists = false;  // headless: the window is only a flag
    WindowProc proc = nullptr;
    std::deque<SMsg> queue;
    bool quitPosted = false;
    int quitCode = 0;
    SPoint cursor{320, 240};
    bool buttons[2] = {false, false};
    bool injectedButtons = false;  // replay input owns the held-button state
    std::function<void(const uint16_t*)> frameObserver;
    bool cursorShown = true;
    SAniCursor ani;
    std::vector<SDL_Cursor*> cursors;
    uint32_t cursorStart = 0;
    uint32_t shownImage = UINT32_MAX;
};
State g;

// Windows virtual-key number of an SDL key, 0 when the game has no use for it.
int VirtualKey(const SDL_Keysym& k) {
    SDL_Keycode c = k.sym;
    if (c >= SDLK_a && c <= SDLK_z) return int('A' + (c - SDLK_a));
    if (c >= SDLK_0 && c <= SDLK_9) return int('0' + (c - SDLK_0));
    if (c >= SDLK_F1 && c <= SDLK_F12) return VK_F1 + int(c - SDLK_F1);
    switch (c) {
        case SDLK_ESCAPE: return VK_ESCAPE;
        case SDLK_RETURN: return VK_RETURN;
        case SDLK_SPACE: return VK_SPACE;
        case SDLK_BACKSPACE: return VK_BACK;
        case SDLK_TAB: return VK_TAB;
        case SDLK_LEFT: return VK_LEFT;
        case SDLK_RIGHT: return VK_RIGHT;
        case SDLK_UP: return VK_UP;
        case SDLK_DOWN: return VK_DOWN;
        default: return 0;
    }
}

intptr_t PackPoint(SPoint p) { return intptr_t((uint32_t(p.y & 0xFFFF) << 16) | uint32_t(p.x & 0xFFFF)); }

// Window pixels to game pixels, through the letterboxed logical size.
SPoint ToGame(int wx, int wy) {
    if (!g.renderer) return {wx, wy};
    float lx = 0, ly = 0;
    SDL_RenderWindowToLogical(g.renderer, wx, wy, &lx, &ly);
    int x = int(lx), y = int(ly);
    x = x < 0 ? 0 : (x > SCREEN_W - 1 ? SCREEN_W - 1 : x);
    y = y < 0 ? 0 : (y > SCREEN_H - 1 ? SCREEN_H - 1 : y);
    return {x, y};
}

void Push(uint32_t m, uintptr_t w, intptr_t l) { g.queue.push_back(SMsg{m, w, l}); }

void Translate(const SDL_Event& e) {
    switch (e.type) {
        case SDL_QUIT: Push(WM_CLOSE, 0, 0); break;
        case SDL_WINDOWEVENT:
            if (e.window.event == SDL_WINDOWEVENT_FOCUS_GAINED) Push(WM_ACTIVATEAPP, 1, 0);
            else if (e.window.event == SDL_WINDOWEVENT_FOCUS_LOST) Push(WM_ACTIVATEAPP, 0, 0);
            else if (e.window.event == SDL_WINDOWEVENT_CLOSE) Push(WM_CLOSE, 0, 0);
            break;
        case SDL_KEYDOWN: {
            if (e.key.keysym.sym == SDLK_RETURN && (e.key.keysym.mod & KMOD_ALT)) {
                ToggleFullscreen();
                break;
            }
            int vk = VirtualKey(e.key.keysym);
            if (vk) Push(WM_KEYDOWN, uintptr_t(vk), 0);
            break;
        }
        case SDL_MOUSEMOTION:
            if (!g.injectedButtons) {
                g.cursor = ToGame(e.motion.x, e.motion.y);
                Push(WM_MOUSEMOVE, 0, PackPoint(g.cursor));
            }
            break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: {
            if (g.injectedButtons) break;
            g.cursor = ToGame(e.button.x, e.button.y);
            bool down = e.type == SDL_MOUSEBUTTONDOWN;
            if (e.button.button == SDL_BUTTON_LEFT) Push(down ? WM_LBUTTONDOWN : WM_LBUTTONUP, 0, PackPoint(g.cursor));
            else if (e.button.button == SDL_BUTTON_RIGHT) Push(down ? WM_RBUTTONDOWN : WM_RBUTTONUP, 0, PackPoint(g.cursor));
            break;
        }
        default: break;
    }
}

void AnimateCursor() {
    if (g.cursors.empty()) return;
    uint32_t image = g.ani.ImageAt(SDL_GetTicks() - g.cursorStart);
    if (image != g.shownImage && image < g.cursors.size() && g.cursors[image]) {
        SDL_SetCursor(g.cursors[image]);
        g.shownImage = image;
    }
}

void FreeCursors() {
    for (SDL_Cursor* c : g.cursors)
        if (c) SDL_FreeCursor(c);
    g.cursors.clear();
    g.shownImage = UINT32_MAX;
}

void DestroyWindowObjects() {
    if (g.texture) SDL_DestroyTexture(g.texture);
    if (g.renderer) SDL_DestroyRenderer(g.renderer);
    if (g.window) SDL_DestroyWindow(g.window);
    g.texture = nullptr;
    g.renderer = nullptr;
    g.window = nullptr;
}

void Pump() {
    if (!g.sdlStarted) return;
    AnimateCursor();
    SDL_Event e;
    while (SDL_PollEvent(&e)) Translate(e);
}

void SdlMessageBox(const char* textGbk, const char* captionGbk, int icon) {
    if (g.headless || !g.sdlStarted) return;
    Uint32 flags = icon == MB_ICONERROR ? SDL_MESSAGEBOX_ERROR
                   : icon == MB_ICONWARNING ? SDL_MESSAGEBOX_WARNING : SDL_MESSAGEBOX_INFORMATION;
    SDL_ShowSimpleMessageBox(flags, GbkToUtf8(captionGbk).c_str(), GbkToUtf8(textGbk).c_str(), g.window);
}

// Without a display SDL falls back to a video driver that shows nothing (the
// game would then run unseen for ever); that is only wanted when asked for.
bool HasDisplay() {
    const char* driver = SDL_GetCurrentVideoDriver();
    if (!driver) return false;
    const bool invisible = std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0;
    return !invisible || SDL_getenv("SDL_VIDEODRIVER") != nullptr;
}

}  // namespace

bool Init(const SOptions& options) {
    g = State{};
    g.headless = options.headless;
    g.requestedScale = options.scale;
    if (g.headless) {
        SDL_setenv("SDL_VIDEODRIVER", "dummy", 1);
        SDL_setenv("SDL_AUDIODRIVER", "dummy", 1);
    }
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS | SDL_INIT_TIMER) != 0) {
        fprintf(stderr, "SDL_Init failed: %s\n", SDL_GetError());
        return false;
    }
    if (!g.headless && !HasDisplay()) {
        fprintf(stderr,
                "ashen-oath: no display to open the window on (DISPLAY and WAYLAND_DISPLAY are not set); "
                "use --headless to run without a window\n");
        SDL_Quit();
        return false;
    }
    g.sdlStarted = true;
    SetMessageBoxHandler(SdlMessageBox);
    return true;
}

void Shutdown() {
    FreeCursors();
    DestroyWindowObjects();
    SetMessageBoxHandler(nullptr);
    if (g.sdlStarted) SDL_Quit();
    g.sdlStarted = false;
}

bool IsHeadless() { return g.headless; }

static int ChooseScale() {
    if (g.requestedScale > 0) return g.requestedScale;
    SDL_Rect usable{0, 0, 1280, 960};
    if (SDL_GetDisplayUsableBounds(0, &usable) != 0) return 1;
    int scale = 3;
    while (scale > 1 && (SCREEN_W * scale > usable.w || SCREEN_H * scale + 40 > usable.h)) --scale;
    return scale;
}

bool CreateMainWindow(bool windowed, WindowProc proc) {
    g.proc = proc;
    g.windowed = windowed;
    if (g.headless) {
        g.windowExists = true;
        Push(WM_ACTIVATEAPP, 1, 0);
        return true;
    }
    int scale = ChooseScale();
    Uint32 flags = SDL_WINDOW_SHOWN | (windowed ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
    g.window = SDL_CreateWindow("Ashen Oath", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, SCREEN_W * scale,
                                SCREEN_H * scale, flags);
    if (!g.window) return false;
    g.renderer = SDL_CreateRenderer(g.window, -1, SDL_RENDERER_ACCELERATED);
    if (!g.renderer) g.renderer = SDL_CreateRenderer(g.window, -1, SDL_RENDERER_SOFTWARE);
    if (!g.renderer) return false;
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "nearest");
    SDL_RenderSetLogicalSize(g.renderer, SCREEN_W, SCREEN_H);
    SDL_RenderSetIntegerScale(g.renderer, SDL_TRUE);
    g.texture = SDL_CreateTexture(g.renderer, SDL_PIXELFORMAT_RGB565, SDL_TEXTUREACCESS_STREAMING, SCREEN_W, SCREEN_H);
    if (!g.texture) return false;
    g.windowExists = true;
    SDL_ShowCursor(g.cursorShown ? SDL_ENABLE : SDL_DISABLE);
    return true;
}

void DestroyMainWindow() {
    if (!g.windowExists) return;
    g.windowExists = false;
    DestroyWindowObjects();
    SendMessage(WM_DESTROY, 0, 0);
}

bool HasMainWindow() { return g.windowExists; }

void ToggleFullscreen() {
    if (!g.window) return;
    g.windowed = !g.windowed;
    SDL_SetWindowFullscreen(g.window, g.windowed ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
}

bool PeekMessage(SMsg& out) {
    if (g.queue.empty()) Pump();
    if (g.queue.empty()) {
        if (!g.quitPosted) return false;
        out = SMsg{WM_QUIT, uintptr_t(g.quitCode), 0};
        return true;
    }
    out = g.queue.front();
    return true;
}

bool GetMessage(SMsg& out) {
    for (;;) {
        if (g.queue.empty()) Pump();
        if (!g.queue.empty()) {
            out = g.queue.front();
            g.queue.pop_front();
            return true;
        }
        if (g.quitPosted) {
            g.quitPosted = false;
            out = SMsg{WM_QUIT, uintptr_t(g.quitCode), 0};
            return false;
        }
        if (g.sdlStarted && !g.headless) SDL_WaitEventTimeout(nullptr, 50);
        else return false;  // nothing can arrive headless without input
    }
}

void PostMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) { Push(message, wParam, lParam); }

void PostQuitMessage(int code) {
    g.quitPosted = true;
    g.quitCode = code;
}

intptr_t SendMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) {
    return g.proc ? g.proc(message, wParam, lParam) : DefWindowProc(message, wParam, lParam);
}

intptr_t DispatchMessage(const SMsg& msg) { return SendMessage(msg.message, msg.wParam, msg.lParam); }

intptr_t DefWindowProc(uint32_t message, uintptr_t, intptr_t) {
    if (message == WM_CLOSE) DestroyMainWindow();
    return 0;
}

SPoint GetCursorPos() {
    if (!g.injectedButtons && g.window) {
        int x = 0, y = 0;
        SDL_GetMouseState(&x, &y);
        g.cursor = ToGame(x, y);
    }
    return g.cursor;
}

void SetCursorPos(int32_t x, int32_t y) {
    g.cursor = {x, y};
    if (g.window && !g.injectedButtons) {
        int wx = 0, wy = 0, ww = 0, wh = 0;
        SDL_GetWindowSize(g.window, &ww, &wh);
        // Map the game point to window pixels through the logical viewport.
        SDL_Rect vp;
        float sx = 1, sy = 1;
        SDL_RenderGetViewport(g.renderer, &vp);
        SDL_RenderGetScale(g.renderer, &sx, &sy);
        wx = int((vp.x + x) * sx);
        wy = int((vp.y + y) * sy);
        SDL_WarpMouseInWindow(g.window, wx, wy);
    }
}

void ShowCursor(bool show) {
    g.cursorShown = show;
    if (g.sdlStarted && !g.headless) SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

bool IsButtonDown(int button) {
    if (button < 0 || button > 1) return false;
    if (g.injectedButtons || !g.window) return g.buttons[button];
    Uint32 state = SDL_GetMouseState(nullptr, nullptr);
    return (state & SDL_BUTTON(button == 0 ? SDL_BUTTON_LEFT : SDL_BUTTON_RIGHT)) != 0;
}

void PresentFrame(const uint16_t* pixels) {
    if (g.frameObserver) g.frameObserver(pixels);
    if (!g.texture || !pixels) return;
    SDL_UpdateTexture(g.texture, nullptr, pixels, SCREEN_W * 2);
    SDL_SetRenderDrawColor(g.renderer, 0, 0, 0, 255);
    SDL_RenderClear(g.renderer);
    SDL_RenderCopy(g.renderer, g.texture, nullptr, nullptr);
    SDL_RenderPresent(g.renderer);
}

void InjectMouseMove(int32_t x, int32_t y) {
    g.injectedButtons = true;
    g.cursor = {x, y};
    Push(WM_MOUSEMOVE, 0, PackPoint(g.cursor));
}

void InjectButton(int button, bool down, int32_t x, int32_t y) {
    g.injectedButtons = true;
    g.cursor = {x, y};
    if (button >= 0 && button <= 1) g.buttons[button] = down;
    if (button == 0) Push(down ? WM_LBUTTONDOWN : WM_LBUTTONUP, 0, PackPoint(g.cursor));
    else Push(down ? WM_RBUTTONDOWN : WM_RBUTTONUP, 0, PackPoint(g.cursor));
}

void InjectKey(int vk) { Push(WM_KEYDOWN, uintptr_t(vk), 0); }

void InjectQuit() { Push(WM_CLOSE, 0, 0); }

void SetAnimatedCursor(const SAniCursor* cursor) {
    FreeCursors();
    g.ani = cursor ? *cursor : SAniCursor{};
    if (g.headless || !g.sdlStarted || !cursor) return;
    for (SCursorImage& img : g.ani.images) {
        SDL_Surface* s = SDL_CreateRGBSurfaceWithFormatFrom(img.argb.data(), img.width, img.height, 32, img.width * 4,
                                                            SDL_PIXELFORMAT_ARGB8888);
        g.cursors.push_back(s ? SDL_CreateColorCursor(s, img.hotX, img.hotY) : nullptr);
        if (s) SDL_FreeSurface(s);
    }
    g.cursorStart = SDL_GetTicks();
    AnimateCursor();
}

void SetFrameObserver(std::function<void(const uint16_t*)> observer) { g.frameObserver = std::move(observer); }

}  // namespace platform
