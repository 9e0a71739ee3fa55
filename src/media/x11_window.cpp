#include "media/x11_window.h"

#include <SDL.h>

#if defined(ASHEN_HAVE_X11)
#include <SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#endif

namespace x11 {

#if defined(ASHEN_HAVE_X11)

namespace {

bool Handles(SDL_Window* window, Display*& display, Window& xwindow) {
    if (!window) return false;
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return false;
    display = info.info.x11.display;
    xwindow = info.info.x11.window;
    return display != nullptr && xwindow != 0;
}

// The window named by a root-or-window property of type WINDOW, or 0.
Window WindowProperty(Display* display, Window on, Atom property) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    Window result = 0;
    if (XGetWindowProperty(display, on, property, 0, 1, False, XA_WINDOW, &type, &format, &count, &after, &data) ==
            Success &&
        type == XA_WINDOW && format == 32 && count == 1 && data)
        result = *reinterpret_cast<Window*>(data);
    if (data) XFree(data);
    return result;
}

}  // namespace

bool RealWindowSize(SDL_Window* window, int& width, int& height) {
    Display* display = nullptr;
    Window xwindow = 0;
    if (!Handles(window, display, xwindow)) return false;
    XWindowAttributes a;
    if (!XGetWindowAttributes(display, xwindow, &a)) return false;
    width = a.width;
    height = a.height;
    return width > 0 && height > 0;
}

bool WithoutWindowManager(SDL_Window* window) {
    Display* display = nullptr;
    Window xwindow = 0;
    if (!Handles(window, display, xwindow)) return false;
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", True);
    if (check == None) return true;
    // A running manager names a child window that names itself again; a property
    // left behind by a manager that has gone names a window that no longer does.
    const Window wm = WindowProperty(display, DefaultRootWindow(display), check);
    if (!wm) return true;
    int (*old)(Display*, XErrorEvent*) = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    const Window self = WindowProperty(display, wm, check);
    XSync(display, False);
    XSetErrorHandler(old);
    return self != wm;
}

#else

bool RealWindowSize(SDL_Window*, int&, int&) { return false; }
bool WithoutWindowManager(SDL_Window*) { return false; }

#endif

}  // namespace x11
