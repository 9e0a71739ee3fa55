// What the X server itself says about the game's window, for the cases where SDL's
// own idea of it can be wrong: without a window manager nobody carries out a
// full-screen request, yet SDL then believes the window has the display's size.
// Every function answers false when the window is not an X11 window (Wayland,
// other systems) or the build has no X11.
#pragma once
#include <cstdint>
#include <vector>

struct SDL_Window;

namespace x11 {

// The window's size as the X server has it.
bool RealWindowSize(SDL_Window* window, int& width, int& height);
// True when the window is an X11 window and no window manager runs on its screen
// (no _NET_SUPPORTING_WM_CHECK window on the root).
bool WithoutWindowManager(SDL_Window* window);
// Reads the window's pixels back from the X server as 0x00RRGGBB (true-colour
// visuals only).
bool ReadWindowImage(SDL_Window* window, std::vector<uint32_t>& xrgb, int& width, int& height);

}  // namespace x11
