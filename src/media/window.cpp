#include "media/window.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "media/cursor_file.h"
#include "media/present.h"
#include "media/x11_window.h"
#include "base/debug.h"
#include "base/gbk.h"
#include "base/log.h"
#include "base/message_box.h"

namespace platform {
namespace {

struct State {
    bool sdlStarted = false;
    bool headless = false;
    int requestedScale = 0;
    SDL_Window* window = nullptr;
    present::ERenderPath path = present::ERenderPath::Surface;
    SDL_Renderer* renderer = nullptr;  // accelerated path only
    SDL_Texture* texture = nullptr;
    SDL_Surface* surface = nullptr;    // surface path: the window's own surface (SDL owns it)
    present::SPixelFormat surfaceFormat;
    // Where the picture stands, from the last known size of the window and of
    // what is drawn into it; recomputed after every size change.
    present::SLetterbox letterbox;
    int32_t windowW = SCREEN_W, windowH = SCREEN_H;
    int32_t drawableW = SCREEN_W, drawableH = SCREEN_H;
    bool layoutStale = true;   // a size or mode change happened: measure again, redraw all
    bool redrawAll = true;     // the next present converts the whole picture
    std::vector<uint16_t> lastFrame;  // what the window shows, for updating only what changed
    bool windowed = true;
    int windowScale = 1;
    // Full screen without a window manager: a borderless window over the display,
    // and the windowed place to go back to.
    bool coverDisplay = false;
    SDL_Rect windowedRect{0, 0, 0, 0};
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

// Measures the window and the size of what is drawn into it, and places the
// picture. The surface path draws into the window's surface, whose size SDL keeps
// from the window's configure events; the accelerated path into the renderer's
// output.
void MeasureLayout() {
    if (!g.window) return;
    int ww = 0, wh = 0;
    SDL_GetWindowSize(g.window, &ww, &wh);
    int dw = ww, dh = wh;
    if (g.path == present::ERenderPath::Accelerated && g.renderer) {
        SDL_GetRendererOutputSize(g.renderer, &dw, &dh);
    } else if (g.path == present::ERenderPath::Surface) {
        g.surface = SDL_GetWindowSurface(g.window);
        if (g.surface) {
            dw = g.surface->w;
            dh = g.surface->h;
            const SDL_PixelFormat* f = g.surface->format;
            g.surfaceFormat = present::SPixelFormat{f->BytesPerPixel, f->Rmask, f->Gmask, f->Bmask};
        }
    }
    // The X server's word on the size wins: SDL can believe in a full-screen
    // size that no window manager gave the window. The surface path then draws
    // into the part of its surface that the window shows.
    int rw = 0, rh = 0;
    if (x11::RealWindowSize(g.window, rw, rh) && (rw != ww || rh != wh)) {
        if (g.path == present::ERenderPath::Surface) {
            dw = std::min(dw, rw);
            dh = std::min(dh, rh);
        }
        ww = rw;
        wh = rh;
    }
    g.windowW = ww > 0 ? ww : SCREEN_W;
    g.windowH = wh > 0 ? wh : SCREEN_H;
    g.drawableW = dw > 0 ? dw : g.windowW;
    g.drawableH = dh > 0 ? dh : g.windowH;
    g.letterbox = present::ComputeLetterbox(g.drawableW, g.drawableH);
    DebugOut("window %dx%d, drawn %dx%d, picture at (%d,%d) x%d\n", int(g.windowW), int(g.windowH),
             int(g.drawableW), int(g.drawableH), int(g.letterbox.x), int(g.letterbox.y), int(g.letterbox.scale));
    g.layoutStale = false;
    g.redrawAll = true;
}

// Window pixels to game pixels, through the letterbox.
SPoint ToGame(int wx, int wy) {
    if (!g.window) return {wx, wy};
    if (g.layoutStale) MeasureLayout();
    return present::WindowToGame(g.letterbox, wx, wy, g.windowW, g.windowH, g.drawableW, g.drawableH);
}

void Push(uint32_t m, uintptr_t w, intptr_t l) { g.queue.push_back(SMsg{m, w, l}); }

void Translate(const SDL_Event& e) {
    switch (e.type) {
        case SDL_QUIT: Push(WM_CLOSE, 0, 0); break;
        case SDL_WINDOWEVENT:
            switch (e.window.event) {
                case SDL_WINDOWEVENT_FOCUS_GAINED: Push(WM_ACTIVATEAPP, 1, 0); break;
                case SDL_WINDOWEVENT_FOCUS_LOST: Push(WM_ACTIVATEAPP, 0, 0); break;
                case SDL_WINDOWEVENT_CLOSE: Push(WM_CLOSE, 0, 0); break;
                case SDL_WINDOWEVENT_SIZE_CHANGED:
                case SDL_WINDOWEVENT_RESIZED:
                case SDL_WINDOWEVENT_MAXIMIZED:
                case SDL_WINDOWEVENT_RESTORED:
                case SDL_WINDOWEVENT_SHOWN:
                    g.layoutStale = true;
                    break;
                case SDL_WINDOWEVENT_EXPOSED: g.redrawAll = true; break;
                default: break;
            }
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

// Milliseconds until the animated cursor shows its next step (UINT32_MAX when
// it does not move).
uint32_t CursorWaitMs() {
    if (!g.cursorShown || g.cursors.size() < 2 || g.ani.sequence.empty() ||
        g.ani.jiffies.size() < g.ani.sequence.size())
        return UINT32_MAX;
    const uint32_t total = g.ani.TotalJiffies();
    if (total == 0) return UINT32_MAX;
    const uint64_t ms = SDL_GetTicks() - g.cursorStart;
    const uint64_t jiffy = ms * 60 / 1000;  // jiffies since the start (1/60 s each)
    const uint64_t inCycle = jiffy % total;
    uint64_t end = 0;                       // end of the step holding inCycle
    for (size_t i = 0; i < g.ani.sequence.size(); ++i) {
        end += g.ani.jiffies[i];
        if (inCycle < end) break;
    }
    const uint64_t next = jiffy - inCycle + end;
    const uint64_t nextMs = (next * 1000 + 59) / 60;  // first millisecond of that jiffy
    return nextMs > ms ? uint32_t(std::min<uint64_t>(nextMs - ms, UINT32_MAX - 1)) : 0;
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
    g.surface = nullptr;
    g.window = nullptr;
    g.lastFrame.clear();
    g.layoutStale = true;
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

namespace {

// The window is made hidden and windowed; full screen is entered before it is
// first shown.
SDL_Window* MakeWindow(int scale) {
    return SDL_CreateWindow("Ashen Oath", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, SCREEN_W * scale,
                            SCREEN_H * scale, SDL_WINDOW_HIDDEN);
}

// Full screen at the desktop's mode. A window manager does it on request; without
// one nobody would, so the window itself is made borderless and laid over the
// display.
void EnterFullscreen() {
    if (x11::WithoutWindowManager(g.window)) {
        SDL_GetWindowPosition(g.window, &g.windowedRect.x, &g.windowedRect.y);
        SDL_GetWindowSize(g.window, &g.windowedRect.w, &g.windowedRect.h);
        SDL_Rect bounds{0, 0, 0, 0};
        const int display = SDL_GetWindowDisplayIndex(g.window);
        if (SDL_GetDisplayBounds(display < 0 ? 0 : display, &bounds) == 0 && bounds.w > 0 && bounds.h > 0) {
            SDL_SetWindowBordered(g.window, SDL_FALSE);
            SDL_SetWindowPosition(g.window, bounds.x, bounds.y);
            SDL_SetWindowSize(g.window, bounds.w, bounds.h);
            g.coverDisplay = true;
            return;
        }
    }
    SDL_SetWindowFullscreen(g.window, SDL_WINDOW_FULLSCREEN_DESKTOP);
}

void LeaveFullscreen() {
    if (g.coverDisplay) {
        g.coverDisplay = false;
        SDL_SetWindowSize(g.window, g.windowedRect.w, g.windowedRect.h);
        SDL_SetWindowPosition(g.window, g.windowedRect.x, g.windowedRect.y);
        SDL_SetWindowBordered(g.window, SDL_TRUE);
        return;
    }
    SDL_SetWindowFullscreen(g.window, 0);
    SDL_SetWindowSize(g.window, SCREEN_W * g.windowScale, SCREEN_H * g.windowScale);
}

// Whether the machine has a graphics device a GPU driver could use. Without one
// every OpenGL is a software rasteriser, and asking it what it is would load it
// (and its worker threads) for nothing.
bool HasGpuDevice() {
#if defined(__linux__)
    static const char* const kNodes[] = {"/dev/dri/renderD128", "/dev/dri/renderD129", "/dev/dri/card0",
                                         "/dev/dri/card1", "/dev/nvidia0", "/dev/nvidiactl"};
    for (const char* node : kNodes)
        if (access(node, F_OK) == 0) return true;
    return false;
#else
    return true;
#endif
}

// Creates the accelerated renderer and reads what it is: SDL's renderer name and,
// for OpenGL, the GL renderer string.
SDL_Renderer* ProbeAccelerated(std::string& sdlName, std::string& glName) {
    SDL_Renderer* r = SDL_CreateRenderer(g.window, -1, SDL_RENDERER_ACCELERATED);
    if (!r) return nullptr;
    SDL_RendererInfo info;
    if (SDL_GetRendererInfo(r, &info) == 0 && info.name) sdlName = info.name;
    if (sdlName.compare(0, 6, "opengl") == 0) {
        using GetStringFn = const unsigned char* (*)(unsigned int);
        auto getString = reinterpret_cast<GetStringFn>(SDL_GL_GetProcAddress("glGetString"));
        const unsigned int kGlRenderer = 0x1F01;
        const unsigned char* text = getString ? getString(kGlRenderer) : nullptr;
        if (text) glName = reinterpret_cast<const char*>(text);
    }
    return r;
}

void LogRenderer(const char* what, const char* reason, const std::string& detail) {
    char line[512];
    std::snprintf(line, sizeof line, "Renderer: %s (%s%s%s)", what, reason, detail.empty() ? "" : ": ",
                  detail.c_str());
    CLog("GameEngine.log", false).Write("%s", line);
    DebugOut("%s\n", line);
}

// Picks how frames reach the screen and makes what that path needs. The window
// exists; it may be made anew without OpenGL when the probe rules the GPU out.
bool SetUpRenderer(int scale) {
    present::ERenderPath forced = present::ERenderPath::Surface;
    bool valid = true;
    const char* env = std::getenv("ASHEN_RENDERER");
    const bool isForced = present::ParseRendererOverride(env, &forced, &valid);
    if (!valid) {
        CLog("GameEngine.log", false).Write("ASHEN_RENDERER=%s is neither software nor accelerated; ignored", env);
        fprintf(stderr, "ASHEN_RENDERER=%s is neither software nor accelerated; ignored\n", env);
    }
    present::SRenderChoice choice;
    std::string sdlName, glName;
    if (isForced) {
        choice.path = forced;
        choice.reason = "forced by ASHEN_RENDERER";
    } else if (!HasGpuDevice()) {
        choice.path = present::ERenderPath::Surface;
        choice.reason = "no GPU device";
    } else {
        g.renderer = ProbeAccelerated(sdlName, glName);
        choice = present::ChooseRenderPath(g.renderer ? sdlName.c_str() : nullptr, glName.c_str());
        if (choice.path == present::ERenderPath::Surface && g.renderer) {
            // Drop the probe and its OpenGL window: the surface path wants a plain one.
            SDL_DestroyRenderer(g.renderer);
            g.renderer = nullptr;
            SDL_DestroyWindow(g.window);
            g.window = MakeWindow(scale);
            if (!g.window) return false;
        }
    }
    g.path = choice.path;
    if (g.path == present::ERenderPath::Accelerated) {
        if (!g.renderer) g.renderer = SDL_CreateRenderer(g.window, -1, SDL_RENDERER_ACCELERATED);
        if (!g.renderer) {
            // No accelerated renderer at all: fall back to the surface.
            g.path = present::ERenderPath::Surface;
            choice.reason = "the accelerated renderer could not be made";
        } else if (sdlName.empty()) {
            SDL_RendererInfo info;
            if (SDL_GetRendererInfo(g.renderer, &info) == 0 && info.name) sdlName = info.name;
        }
    }
    if (g.path == present::ERenderPath::Surface) {
        // The window's own surface, filled by our conversion. SDL must not put an
        // OpenGL texture behind it.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        g.surface = SDL_GetWindowSurface(g.window);
        if (!g.surface) return false;
        const SDL_PixelFormat* f = g.surface->format;
        g.surfaceFormat = present::SPixelFormat{f->BytesPerPixel, f->Rmask, f->Gmask, f->Bmask};
        const std::string detail = std::string(SDL_GetPixelFormatName(f->format)) +
                                   (glName.empty() ? std::string() : ", OpenGL: " + glName);
        LogRenderer("window surface", choice.reason, detail);
    } else {
        const std::string detail = sdlName + (glName.empty() ? std::string() : ", " + glName);
        LogRenderer("accelerated", choice.reason, detail);
    }
    g.layoutStale = true;
    g.redrawAll = true;
    return true;
}

}  // namespace

bool CreateMainWindow(bool windowed, WindowProc proc) {
    g.proc = proc;
    g.windowed = windowed;
    if (g.headless) {
        g.windowExists = true;
        Push(WM_ACTIVATEAPP, 1, 0);
        return true;
    }
    g.windowScale = ChooseScale();
    g.coverDisplay = false;
    g.window = MakeWindow(g.windowScale);
    if (!g.window) return false;
    if (!SetUpRenderer(g.windowScale)) {
        DestroyWindowObjects();
        return false;
    }
    if (!windowed) EnterFullscreen();
    SDL_ShowWindow(g.window);
    g.layoutStale = true;
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
    if (g.windowed) LeaveFullscreen();
    else EnterFullscreen();
    g.layoutStale = true;
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

bool WaitMessage(uint32_t timeoutMs) {
    if (!g.queue.empty() || g.quitPosted) return true;
    if (!g.sdlStarted || g.headless || !g.window) {
        // Nothing arrives from outside without a window: just let the time pass.
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min<uint32_t>(timeoutMs, 10)));
        return false;
    }
    const uint32_t wait = std::min(timeoutMs, CursorWaitMs());
    if (wait == 0) return false;
    return SDL_WaitEventTimeout(nullptr, int(std::min<uint32_t>(wait, INT32_MAX))) == 1;
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
        if (g.layoutStale) MeasureLayout();
        const SPoint w = present::GameToWindow(g.letterbox, x, y, g.windowW, g.windowH, g.drawableW, g.drawableH);
        SDL_WarpMouseInWindow(g.window, w.x, w.y);
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

namespace {

// Surface path: converts what changed since the last present into the window's
// surface and sends only those rectangles to the window system.
void PresentToSurface(const uint16_t* pixels, present::E16Layout layout) {
    SDL_Surface* s = SDL_GetWindowSurface(g.window);
    if (!s) return;
    if (s != g.surface || s->w < g.drawableW || s->h < g.drawableH) g.layoutStale = true;
    if (g.layoutStale) MeasureLayout();
    s = g.surface;
    if (!s) return;
    if (g.lastFrame.size() != size_t(SCREEN_W) * SCREEN_H) {
        g.lastFrame.assign(size_t(SCREEN_W) * SCREEN_H, 0);
        g.redrawAll = true;
    }
    const bool all = g.redrawAll;
    const present::SDirtyBands bands = present::UpdateDirtyBands(pixels, g.lastFrame.data(), SCREEN_W, SCREEN_H, all);
    if (bands.count == 0) return;  // the window already shows this picture
    const present::SLetterbox& lb = g.letterbox;
    // Only a drawable smaller than the picture cuts it (the scale is then 1).
    const int32_t visibleW = std::min<int32_t>(SCREEN_W, (g.drawableW - lb.x) / lb.scale);
    const int32_t visibleH = std::min<int32_t>(SCREEN_H, (g.drawableH - lb.y) / lb.scale);
    if (SDL_MUSTLOCK(s) && SDL_LockSurface(s) != 0) return;
    if (all) SDL_memset(s->pixels, 0, size_t(s->pitch) * size_t(s->h));  // black around the picture
    uint8_t* origin = static_cast<uint8_t*>(s->pixels) + size_t(lb.y) * size_t(s->pitch) +
                      size_t(lb.x) * size_t(g.surfaceFormat.bytesPerPixel);
    SDL_Rect rects[present::kMaxBands];
    int count = 0;
    for (int i = 0; i < bands.count; ++i) {
        const SRect& b = bands.bands[i];
        const int32_t x1 = std::min(b.right, visibleW), y1 = std::min(b.bottom, visibleH);
        if (b.left >= x1 || b.top >= y1) continue;
        present::ConvertFrame(pixels, SCREEN_W, b.left, b.top, x1, y1, layout, g.surfaceFormat, lb.scale, origin,
                              s->pitch);
        rects[count++] = SDL_Rect{lb.x + b.left * lb.scale, lb.y + b.top * lb.scale, (x1 - b.left) * lb.scale,
                                  (y1 - b.top) * lb.scale};
    }
    if (SDL_MUSTLOCK(s)) SDL_UnlockSurface(s);
    if (all) {
        SDL_UpdateWindowSurface(g.window);
    } else if (count > 0) {
        SDL_UpdateWindowSurfaceRects(g.window, rects, count);
    }
    g.redrawAll = false;
}

// Accelerated path: a streaming 32-bit texture filled by the same conversion as
// the surface path (so that every GPU shows the same pixel values), drawn into
// the letterbox with nearest-pixel scaling.
void PresentToRenderer(const uint16_t* pixels, present::E16Layout layout) {
    if (g.layoutStale) MeasureLayout();
    if (!g.texture) {
        g.texture = SDL_CreateTexture(g.renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, SCREEN_W,
                                      SCREEN_H);
        if (!g.texture) return;
        SDL_SetTextureScaleMode(g.texture, SDL_ScaleModeNearest);
        g.redrawAll = true;
    }
    if (g.lastFrame.size() != size_t(SCREEN_W) * SCREEN_H) {
        g.lastFrame.assign(size_t(SCREEN_W) * SCREEN_H, 0);
        g.redrawAll = true;
    }
    const present::SDirtyBands bands =
        present::UpdateDirtyBands(pixels, g.lastFrame.data(), SCREEN_W, SCREEN_H, g.redrawAll);
    if (bands.count == 0) return;  // the window already shows this picture
    static const present::SPixelFormat kTextureFormat{4, 0x00FF0000, 0x0000FF00, 0x000000FF};
    for (int i = 0; i < bands.count; ++i) {
        const SRect& b = bands.bands[i];
        const SDL_Rect r{b.left, b.top, b.Width(), b.Height()};
        void* locked = nullptr;
        int pitch = 0;
        if (SDL_LockTexture(g.texture, &r, &locked, &pitch) != 0) continue;
        present::ConvertFrame(pixels + size_t(b.top) * SCREEN_W + size_t(b.left), SCREEN_W, 0, 0, b.Width(),
                              b.Height(), layout, kTextureFormat, 1, static_cast<uint8_t*>(locked), pitch);
        SDL_UnlockTexture(g.texture);
    }
    const present::SLetterbox& lb = g.letterbox;
    const SDL_Rect dst{lb.x, lb.y, lb.Width(), lb.Height()};
    SDL_SetRenderDrawColor(g.renderer, 0, 0, 0, 255);
    SDL_RenderClear(g.renderer);
    SDL_RenderCopy(g.renderer, g.texture, nullptr, &dst);
    SDL_RenderPresent(g.renderer);
    g.redrawAll = false;
}

}  // namespace

void PresentFrame(const uint16_t* pixels, bool layout555) {
    if (g.frameObserver) g.frameObserver(pixels);
    if (!g.window || !pixels) return;
    const present::E16Layout layout = layout555 ? present::E16Layout::RGB555 : present::E16Layout::RGB565;
    if (g.path == present::ERenderPath::Accelerated && g.renderer) PresentToRenderer(pixels, layout);
    else PresentToSurface(pixels, layout);
}

bool ReadWindowPixels(std::vector<uint32_t>& xrgb, int32_t& width, int32_t& height) {
    xrgb.clear();
    width = height = 0;
    if (!g.window) return false;
    // What the window system shows, where it can be asked.
    int w = 0, h = 0;
    if (x11::ReadWindowImage(g.window, xrgb, w, h)) {
        width = w;
        height = h;
        return true;
    }
    if (g.path == present::ERenderPath::Accelerated && g.renderer) {
        if (SDL_GetRendererOutputSize(g.renderer, &width, &height) != 0 || !g.texture) return false;
        xrgb.assign(size_t(width) * size_t(height), 0);
        // Draw the last picture again (not presented): what a present shows.
        const present::SLetterbox& lb = g.letterbox;
        const SDL_Rect dst{lb.x, lb.y, lb.Width(), lb.Height()};
        SDL_SetRenderDrawColor(g.renderer, 0, 0, 0, 255);
        SDL_RenderClear(g.renderer);
        SDL_RenderCopy(g.renderer, g.texture, nullptr, &dst);
        return SDL_RenderReadPixels(g.renderer, nullptr, SDL_PIXELFORMAT_RGB888, xrgb.data(), width * 4) == 0;
    }
    SDL_Surface* s = g.surface;
    if (!s) return false;
    width = std::min<int32_t>(s->w, g.drawableW);
    height = std::min<int32_t>(s->h, g.drawableH);
    xrgb.assign(size_t(width) * size_t(height), 0);
    return SDL_ConvertPixels(width, height, s->format->format, s->pixels, s->pitch, SDL_PIXELFORMAT_RGB888,
                             xrgb.data(), width * 4) == 0;
}

SWindowLayout GetWindowLayout() {
    SWindowLayout out;
    if (!g.window) return out;
    if (g.layoutStale) MeasureLayout();
    out.windowW = g.windowW;
    out.windowH = g.windowH;
    out.drawableW = g.drawableW;
    out.drawableH = g.drawableH;
    out.x = g.letterbox.x;
    out.y = g.letterbox.y;
    out.scale = g.letterbox.scale;
    out.accelerated = g.path == present::ERenderPath::Accelerated;
    return out;
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
