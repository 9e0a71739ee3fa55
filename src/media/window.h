// The platform window and message queue over SDL2. SDL events become message
// records handed to one window procedure; posting and sending are emulated by our
// own queue. In headless mode SDL runs with its dummy drivers and no window.
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "base/types.h"

struct SMsg {
    uint32_t message = 0;
    uintptr_t wParam = 0;
    intptr_t lParam = 0;
};

struct SAniCursor;

using WindowProc = intptr_t (*)(uint32_t message, uintptr_t wParam, intptr_t lParam);

namespace platform {

struct SOptions {
    bool headless = false;
    int scale = 0;        // 0: the largest integer scale that fits the desktop, at most 3
};

// Starts SDL (video, audio and events; dummy drivers when headless).
bool Init(const SOptions& options);
void Shutdown();
bool IsHeadless();

// The main window: title "Ashen Oath", 640 x 480 game pixels at an integer scale;
// full screen is letterboxed at the desktop's mode. False when it cannot be made.
bool CreateMainWindow(bool windowed, WindowProc proc);
// Destroys the window and sends WM_DESTROY to the window procedure.
void DestroyMainWindow();
bool HasMainWindow();
void ToggleFullscreen();

// Message queue.
bool PeekMessage(SMsg& out);          // true when a message waits (not removed)
// Blocks until something arrives for the queue or timeoutMs pass (woken early
// when the animated cursor must change its picture). True when an event arrived.
// Without a window (headless) nothing can arrive: it sleeps at most 10 ms.
bool WaitMessage(uint32_t timeoutMs);
bool GetMessage(SMsg& out);           // waits for a message; false on WM_QUIT
void PostMessage(uint32_t message, uintptr_t wParam, intptr_t lParam);
void PostQuitMessage(int code);
intptr_t SendMessage(uint32_t message, uintptr_t wParam, intptr_t lParam);
intptr_t DispatchMessage(const SMsg& msg);
// The default procedure: WM_CLOSE destroys the window.
intptr_t DefWindowProc(uint32_t message, uintptr_t wParam, intptr_t lParam);

// Cursor in game pixels (client coordinates), whatever the scale.
SPoint GetCursorPos();
void SetCursorPos(int32_t x, int32_t y);
void ShowCursor(bool show);
// Held mouse buttons (SDL state, or the replayed state).
bool IsButtonDown(int button);  // 0 left, 1 right

// The window's cursor: an animated cursor (nullptr: the standard arrow). The
// window layer keeps its own copy and animates it between messages.
void SetAnimatedCursor(const SAniCursor* cursor);

// Presents a 640 x 480 16-bit frame (5-6-5, or 5-5-5 with layout555) in the
// window, letterboxed at an integer scale (nothing when headless). Only what
// changed since the last present is converted and sent.
void PresentFrame(const uint16_t* pixels, bool layout555 = false);

// Where the picture stands in the window now (all zero without a window).
struct SWindowLayout {
    int32_t windowW = 0, windowH = 0;      // window size in window coordinates
    int32_t drawableW = 0, drawableH = 0;  // size of what is drawn into, in pixels
    int32_t x = 0, y = 0, scale = 0;       // the picture's top-left and scale
    bool accelerated = false;              // accelerated renderer (else the window surface)
};
SWindowLayout GetWindowLayout();
// Reads back the window's picture as 0x00RRGGBB pixels: from the X server where
// the window is an X11 window (what is seen), else what the last present drew.
// False without a window.
bool ReadWindowPixels(std::vector<uint32_t>& xrgb, int32_t& width, int32_t& height);

// Input injection for the replay harness: the events enter the same queue as real
// ones and update the cursor and held-button state.
void InjectMouseMove(int32_t x, int32_t y);
void InjectButton(int button, bool down, int32_t x, int32_t y);
void InjectKey(int vk);
void InjectQuit();

// Frame observer: called by PresentFrame with every presented picture (the harness
// writes --shot PNGs from it).
void SetFrameObserver(std::function<void(const uint16_t* pixels)> observer);

}  // namespace platform
