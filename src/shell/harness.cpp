// The automation harness around the game: the game folder, the launcher, quit
// signals, the clock, the run summary and the exit code, and the PNG shots.
#include "shell/harness.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "base/clock.h"
#include "resources/png_file.h"

extern char** environ;

namespace {

volatile sig_atomic_t g_quitSignal = 0;

// The first signal asks the loop to close the game. A second one before the loop
// took the first (the game is stuck, say in a modal message box) ends the
// process the default way.
void OnQuitSignal(int sig) {
    if (g_quitSignal) {
        signal(sig, SIG_DFL);
        raise(sig);
        return;
    }
    g_quitSignal = 1;
}

}  // namespace

void ApplyHarnessClock(const SHarnessOptions& options) {
    if (options.clock >= 0) clock_control::SetCalendarStart(options.clock);
    if (options.uncapped) clock_control::SetVirtualTicks(true);
}

std::string ExecutableFolder() {
    char exe[4096];
    const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n <= 0) return "";
    exe[n] = 0;
    return std::filesystem::path(exe).parent_path().string();
}

std::string EnterGameFolder() {
    if (access("game.ini", F_OK) == 0) return "";
    const std::string folder = ExecutableFolder();
    if (folder.empty() || access((folder + "/game.ini").c_str(), F_OK) != 0) return "";
    if (chdir(folder.c_str()) != 0) return "";
    return folder;
}

void StartLauncher(const char* parameters) {
    char dir[256] = {0};
    if (!getcwd(dir, 255)) return;
    std::string path = std::string(dir) + "/launcher";
    if (access(path.c_str(), X_OK) != 0) return;
    std::string param = parameters ? parameters : "";
    char* args[3] = {path.data(), nullptr, nullptr};
    if (!param.empty()) args[1] = param.data();
    pid_t pid = 0;
    if (posix_spawn(&pid, path.c_str(), nullptr, nullptr, args, environ) != 0) return;
    // The launcher is not waited for; let the system reap it.
    signal(SIGCHLD, SIG_IGN);
}

void InstallQuitSignals() {
    struct sigaction sa;
    memset(&sa, 0, sizeof sa);
    sa.sa_handler = OnQuitSignal;
    sigemptyset(&sa.sa_mask);
    sa.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &sa, nullptr);
    sigaction(SIGINT, &sa, nullptr);
}

bool TakeQuitSignal() {
    if (!g_quitSignal) return false;
    g_quitSignal = 0;
    return true;
}

int FinishHarness(CGame& game, bool started, std::chrono::steady_clock::time_point wallStart) {
    const SHarnessOptions& o = game.Harness();
    std::string error = game.HarnessError();
    if (!o.dumpState.empty()) {
        bool written = false;
        if (FILE* f = fopen(o.dumpState.c_str(), "wb")) {
            const std::string json = game.DumpStateJson();
            written = fwrite(json.data(), 1, json.size(), f) == json.size();
            written = fclose(f) == 0 && written;
        }
        if (!written && error.empty()) error = "cannot write the state dump " + o.dumpState + ": " + strerror(errno);
    }
    if (started && error.empty()) {
        for (const auto& shot : o.shots)
            if (shot.first >= game.FrameCount()) {
                error = "the shot of frame " + std::to_string(shot.first) + " (" + shot.second +
                        ") was not taken: the run ended after " + std::to_string(game.FrameCount()) + " frames";
                break;
            }
    }
    if (o.frames >= 0) {
        auto wall = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - wallStart);
        struct rusage ru;
        getrusage(RUSAGE_SELF, &ru);
        long long cpuMs = (long long)(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) * 1000 +
                          (ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1000;
        printf("frames=%lld wall_ms=%lld cpu_ms=%lld peak_rss_kb=%ld\n", (long long)game.FrameCount(),
               (long long)wall.count(), cpuMs, ru.ru_maxrss);
        fflush(stdout);
    }
    if (!error.empty()) {
        fprintf(stderr, "ashen-oath: %s\n", error.c_str());
        return EXIT_HARNESS_ERROR;
    }
    if (o.frames < 0 || !started) return EXIT_GAME;
    if (game.FrameCount() >= o.frames) return EXIT_HARNESS_DONE;
    fprintf(stderr, "ashen-oath: the game ended after %lld of %lld frames\n", (long long)game.FrameCount(),
            (long long)o.frames);
    return EXIT_GAME;
}

bool WritePng565(const char* path, const uint16_t* pixels, int width, int height) {
    std::vector<uint8_t> rgb(size_t(width) * size_t(height) * 3);
    for (size_t i = 0; i < size_t(width) * size_t(height); ++i) {
        uint16_t p = pixels[i];
        int r = (p >> 11) & 31, g = (p >> 5) & 63, b = p & 31;
        rgb[i * 3 + 0] = uint8_t((r << 3) | (r >> 2));
        rgb[i * 3 + 1] = uint8_t((g << 2) | (g >> 4));
        rgb[i * 3 + 2] = uint8_t((b << 3) | (b >> 2));
    }
    return WritePngFile(path, width, height, 3, rgb.data());
}
