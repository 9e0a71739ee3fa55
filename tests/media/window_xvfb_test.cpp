// The real window on a private X server (Xvfb, started by the test; skipped when
// it is not installed): the picture the window shows at scale 1 and 2 is the
// headless PNG shot of the same frame, pixel for pixel; full screen and back,
// with and without a window manager, keep the picture and the mouse mapping on
// the real window.
#include <gtest/gtest.h>
#include <png.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "media/window.h"
#include "shell/harness.h"

#if defined(__SANITIZE_ADDRESS__)
// SDL's X11 video starts D-Bus (input methods, screen saver), which keeps a buffer
// after SDL_Quit; it is the system library's, not ours.
extern "C" const char* __lsan_default_suppressions() { return "leak:libdbus-1.so\n"; }
#endif

namespace {

bool Installed(const char* program) {
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    size_t start = 0;
    while (start <= dirs.size()) {
        const size_t end = dirs.find(':', start);
        const std::string dir = dirs.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!dir.empty() && access((dir + "/" + program).c_str(), X_OK) == 0) return true;
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return false;
}

// Starts a program with its output thrown away; -1 on failure.
pid_t Spawn(const std::vector<std::string>& argv, int keepFd = -1) {
    const pid_t pid = fork();
    if (pid != 0) return pid;
    const int devnull = open("/dev/null", O_WRONLY);
    if (devnull >= 0) {
        dup2(devnull, 1);
        dup2(devnull, 2);
    }
    for (int fd = 3; fd < 256; ++fd)
        if (fd != keepFd) close(fd);
    // Whatever the program keeps (settings, caches) stays in the test's folder.
    char cwd[1024];
    if (getcwd(cwd, sizeof cwd))
        for (const char* var : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
            setenv(var, cwd, 1);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
}

// An X server of the given screen size on a free display, without lock or socket
// files (abstract socket only); DISPLAY points at it while it lives.
class CPrivateXServer {
public:
    bool Start(const char* screen) {
        int fds[2];
        if (pipe(fds) != 0) return false;
        m_server = Spawn({"Xvfb", "-displayfd", std::to_string(fds[1]), "-screen", "0", screen, "-nolisten", "tcp",
                          "-nolisten", "unix", "-nolock"},
                         fds[1]);
        close(fds[1]);
        std::string number;
        pollfd p{fds[0], POLLIN, 0};
        while (poll(&p, 1, 10000) > 0) {
            char c = 0;
            if (read(fds[0], &c, 1) != 1 || c == '\n') break;
            number += c;
        }
        close(fds[0]);
        if (number.empty()) return false;
        m_old = std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "";
        setenv("DISPLAY", (":" + number).c_str(), 1);
        return true;
    }
    // A window manager on the server; false when none is installed.
    bool StartWindowManager() {
        if (!Installed("openbox")) return false;
        m_wm = Spawn({"openbox", "--sm-disable"});
        // Give it the time to claim the screen.
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        return m_wm > 0;
    }
    ~CPrivateXServer() {
        for (pid_t pid : {m_wm, m_server})
            if (pid > 0) {
                kill(pid, SIGTERM);
                waitpid(pid, nullptr, 0);
            }
        if (m_old.empty()) unsetenv("DISPLAY");
        else setenv("DISPLAY", m_old.c_str(), 1);
    }

private:
    pid_t m_server = -1, m_wm = -1;
    std::string m_old;
};

intptr_t Proc(uint32_t, uintptr_t, intptr_t) { return 0; }

// Handles window events for a while (configure, expose, focus).
void Pump(int ms) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    SMsg m;
    while (std::chrono::steady_clock::now() < end) {
        while (platform::PeekMessage(m) && m.message != WM_QUIT) platform::GetMessage(m);
        platform::WaitMessage(10);
    }
}

// Waits until the window reports the given size.
bool WaitForSize(int w, int h) {
    for (int i = 0; i < 60; ++i) {
        Pump(50);
        const platform::SWindowLayout l = platform::GetWindowLayout();
        if (l.windowW == w && l.windowH == h) return true;
    }
    return false;
}

// A frame with every 16-bit value, then stripes.
std::vector<uint16_t> TestFrame(int seed) {
    std::vector<uint16_t> f(size_t(SCREEN_W) * SCREEN_H);
    for (size_t i = 0; i < f.size(); ++i) f[i] = uint16_t(i < 65536 ? i : (i * 2654435761u) >> (seed & 7));
    return f;
}

// The PNG the harness writes for --shot, read back as 0x00RRGGBB.
std::vector<uint32_t> HeadlessShot(const std::vector<uint16_t>& frame, const char* name) {
    std::vector<uint32_t> out;
    if (!WritePng565(name, frame.data(), SCREEN_W, SCREEN_H)) return out;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, name)) return out;
    image.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> rgb(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr)) return out;
    out.resize(size_t(image.width) * image.height);
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = (uint32_t(rgb[3 * i]) << 16) | (uint32_t(rgb[3 * i + 1]) << 8) | rgb[3 * i + 2];
    return out;
}

// Compares the window's picture with the shot at the layout's place and scale,
// and the letterbox bands with black. Returns the number of wrong pixels.
int CompareWindow(const std::vector<uint32_t>& shot, const platform::SWindowLayout& l) {
    std::vector<uint32_t> seen;
    int32_t w = 0, h = 0;
    if (!platform::ReadWindowPixels(seen, w, h)) return -1;
    if (w != l.windowW || h != l.windowH) return -2;
    int bad = 0;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            const int32_t gx = x - l.x, gy = y - l.y;
            uint32_t want = 0;
            if (gx >= 0 && gy >= 0 && gx < SCREEN_W * l.scale && gy < SCREEN_H * l.scale)
                want = shot[size_t(gy / l.scale) * SCREEN_W + size_t(gx / l.scale)];
            bad += seen[size_t(y) * size_t(w) + size_t(x)] != want;
        }
    return bad;
}

}  // namespace

class WindowOnXvfb : public ::testing::Test {
protected:
    void SetUp() override {
        if (!Installed("Xvfb")) GTEST_SKIP() << "Xvfb is not installed";
        unsetenv("ASHEN_RENDERER");
    }
    void TearDown() override { unsetenv("ASHEN_RENDERER"); }
};

// The picture checks on one X server: scales 1 and 2, a whole frame, then a frame
// that changes a few places.
static void CheckPictureOn(const char* screen) {
    SCOPED_TRACE(screen);
    CPrivateXServer x;
    ASSERT_TRUE(x.Start(screen));
    // ASHEN_TEST_ACCELERATED=1 runs the same checks on the accelerated renderer
    // (OpenGL; on Xvfb a software rasteriser).
    if (const char* a = std::getenv("ASHEN_TEST_ACCELERATED"); a && *a == '1')
        setenv("ASHEN_RENDERER", "accelerated", 1);
    for (int scale = 1; scale <= 2; ++scale) {
        platform::SOptions o;
        o.scale = scale;
        ASSERT_TRUE(platform::Init(o));
        ASSERT_TRUE(platform::CreateMainWindow(true, &Proc));
        ASSERT_TRUE(WaitForSize(640 * scale, 480 * scale));
        std::vector<uint16_t> frame = TestFrame(scale);
        platform::PresentFrame(frame.data());
        Pump(100);
        const platform::SWindowLayout l = platform::GetWindowLayout();
        EXPECT_EQ(l.scale, scale);
        EXPECT_EQ(l.x, 0);
        EXPECT_EQ(l.y, 0);
        EXPECT_EQ(l.accelerated, std::getenv("ASHEN_RENDERER") != nullptr);
        EXPECT_EQ(CompareWindow(HeadlessShot(frame, "shot.png"), l), 0) << "scale " << scale;
        // A later frame that changes a few places: only those are sent, and the
        // window again shows that frame's shot.
        for (int y = 100; y < 130; ++y)
            for (int x = 200; x < 250; ++x) frame[size_t(y) * SCREEN_W + size_t(x)] ^= 0x5A5A;
        frame[479 * SCREEN_W + 639] = 0xFFFF;
        platform::PresentFrame(frame.data());
        Pump(50);
        EXPECT_EQ(CompareWindow(HeadlessShot(frame, "shot2.png"), l), 0) << "scale " << scale;
        platform::DestroyMainWindow();
        platform::Shutdown();
    }
}

TEST_F(WindowOnXvfb, PictureIsTheHeadlessShotAtScaleOneAndTwo) {
    // A 24-bit display (the window takes 32-bit pixels), then a 16-bit one
    // (5-6-5 pixels: the frame is copied as it is).
    CheckPictureOn("1600x1200x24");
    CheckPictureOn("1600x1200x16");
}

TEST_F(WindowOnXvfb, FullScreenAndBackFollowTheRealWindow) {
    CPrivateXServer x;
    ASSERT_TRUE(x.Start("1280x1024x24"));
    for (int pass = 0; pass < 2; ++pass) {
        if (pass == 1 && !x.StartWindowManager()) {
            std::printf("openbox is not installed: full screen checked without a window manager only\n");
            break;
        }
        SCOPED_TRACE(pass == 0 ? "without a window manager" : "with a window manager");
        for (bool startWindowed : {true, false}) {
            platform::SOptions o;
            o.scale = 1;
            ASSERT_TRUE(platform::Init(o));
            ASSERT_TRUE(platform::CreateMainWindow(startWindowed, &Proc));
            const std::vector<uint16_t> frame = TestFrame(3);
            const std::vector<uint32_t> shot = HeadlessShot(frame, "shot.png");
            for (int step = 0; step < 3; ++step) {
                const bool full = startWindowed ? step == 1 : step != 1;
                if (step > 0) platform::ToggleFullscreen();
                ASSERT_TRUE(full ? WaitForSize(1280, 1024) : WaitForSize(640, 480)) << step;
                platform::PresentFrame(frame.data());
                Pump(100);
                const platform::SWindowLayout l = platform::GetWindowLayout();
                EXPECT_EQ(l.scale, full ? 2 : 1);
                EXPECT_EQ(l.x, 0);
                EXPECT_EQ(l.y, full ? 32 : 0);
                EXPECT_EQ(CompareWindow(shot, l), 0) << step;
                // The mouse: a game point warped to and read back.
                for (SPoint p : {SPoint{0, 0}, SPoint{100, 50}, SPoint{639, 479}}) {
                    platform::SetCursorPos(p.x, p.y);
                    Pump(60);
                    const SPoint q = platform::GetCursorPos();
                    EXPECT_EQ(q.x, p.x) << step;
                    EXPECT_EQ(q.y, p.y) << step;
                }
            }
            platform::DestroyMainWindow();
            platform::Shutdown();
        }
    }
}
