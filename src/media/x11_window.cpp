#include "media/x11_window.h"

#include <SDL.h>

#if defined(ASHEN_HAVE_X11)
#include <SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
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

bool ReadWindowImage(SDL_Window* window, std::vector<uint32_t>& xrgb, int& width, int& height) {
    Display* display = nullptr;
    Window xwindow = 0;
    if (!Handles(window, display, xwindow)) return false;
    XWindowAttributes a;
    if (!XGetWindowAttributes(display, xwindow, &a) || a.width <= 0 || a.height <= 0) return false;
    XImage* image = XGetImage(display, xwindow, 0, 0, unsigned(a.width), unsigned(a.height), AllPlanes, ZPixmap);
    if (!image) return false;
    auto shiftOf = [](unsigned long mask, int& shift, int& bits) {
        shift = bits = 0;
        if (!mask) return;
        while (!(mask & 1ul)) mask >>= 1, ++shift;
        while (mask & 1ul) mask >>= 1, ++bits;
    };
    int rs, rb, gs, gb, bs, bb;
    shiftOf(image->red_mask, rs, rb);
    shiftOf(image->green_mask, gs, gb);
    shiftOf(image->blue_mask, bs, bb);
    // A channel of `bits` widened to 8 by repeating its top bits.
    auto widen = [](unsigned long v, int bits) -> uint32_t {
        if (bits <= 0) return 0;
        if (bits >= 8) return uint32_t(v >> (bits - 8)) & 255u;
        uint32_t out = 0;
        for (int have = 0; have < 8; have += bits) out = (out << bits) | uint32_t(v);
        return (out >> ((8 + bits - 1) / bits * bits - 8)) & 255u;
    };
    width = a.width;
    height = a.height;
    xrgb.assign(size_t(width) * size_t(height), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const unsigned long p = XGetPixel(image, x, y);
            xrgb[size_t(y) * size_t(width) + size_t(x)] =
                (widen((p & image->red_mask) >> rs, rb) << 16) | (widen((p & image->green_mask) >> gs, gb) << 8) |
                widen((p & image->blue_mask) >> bs, bb);
        }
    XDestroyImage(image);
    return true;
}

#else

bool RealWindowSize(SDL_Window*, int&, int&) { return false; }
bool WithoutWindowManager(SDL_Window*) { return false; }
bool ReadWindowImage(SDL_Window*, std::vector<uint32_t>&, int&, int&) { return false; }

#endif

}  // namespace x11
