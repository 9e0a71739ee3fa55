// The automation harness outside the loop: flags, harness files, the game
// folder, the launcher, quit signals, the run summary and the exit code.
#include "shell/harness.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <sstream>

#include "base/clock.h"
#include "base/paths.h"
#include "resources/png_file.h"
#include "world/map.h"

extern char** environ;

namespace {

// A decimal integer: an optional '-' and digits only, within the 64-bit range.
bool ParseInt64(const char* s, int64_t& out) {
    if (!s || !*s) return false;
    const char* digits = *s == '-' ? s + 1 : s;
    if (!*digits) return false;
    for (const char* p = digits; *p; ++p)
        if (*p < '0' || *p > '9') return false;
    errno = 0;
    char* end = nullptr;
    const long long v = strtoll(s, &end, 10);
    if (errno == ERANGE || *end) return false;
    out = v;
    return true;
}

const char* const kValueFlags[] = {"--frames", "--replay", "--shot", "--clock", "--dump-state", "--warp", "--scale"};

volatile sig_atomic_t g_quitSignal = 0;

void OnQuitSignal(int) { g_quitSignal = 1; }

}  // namespace

bool ParseHarnessOptions(int argc, char** argv, SHarnessOptions& out, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        auto next = [&](const char* flag) -> const char* {
            if (i + 1 >= argc) {
                error = std::string(flag) + " needs a value";
                return nullptr;
            }
            return argv[++i];
        };
        if (a == "--headless") {
            out.headless = true;
        } else if (a == "--uncapped") {
            out.uncapped = true;
        } else if (a == "--frames") {
            const char* v = next("--frames");
            if (!v || !ParseInt64(v, out.frames) || out.frames < 1) {
                if (error.empty()) error = "--frames needs a number of frames from 1 on";
                return false;
            }
        } else if (a == "--replay") {
            const char* v = next("--replay");
            if (!v) return false;
            out.replayFile = v;
        } else if (a == "--shot") {
            const char* v = next("--shot");
            if (!v) return false;
            const char* colon = strchr(v, ':');
            int64_t frame = 0;
            if (!colon || !ParseInt64(std::string(v, colon).c_str(), frame) || frame < 0 || !colon[1]) {
                error = "--shot needs FRAME:FILE.png";
                return false;
            }
            out.shots.emplace_back(frame, colon + 1);
        } else if (a == "--clock") {
            const char* v = next("--clock");
            if (!v || !ParseInt64(v, out.clock) || out.clock < 0) {
                if (error.empty()) error = "--clock needs UNIX seconds";
                return false;
            }
        } else if (a == "--dump-state") {
            const char* v = next("--dump-state");
            if (!v) return false;
            out.dumpState = v;
        } else if (a == "--warp") {
            const char* v = next("--warp");
            if (!v) return false;
            std::string s = v;
            size_t c1 = s.find(':');
            out.warpMap = s.substr(0, c1);
            if (c1 != std::string::npos) {
                size_t c2 = s.find(':', c1 + 1);
                int64_t x = 0, y = 0;
                if (c2 == std::string::npos || !ParseInt64(s.substr(c1 + 1, c2 - c1 - 1).c_str(), x) ||
                    !ParseInt64(s.substr(c2 + 1).c_str(), y)) {
                    error = "--warp needs MAP or MAP:X:Y";
                    return false;
                }
                if (x < 0 || y < 0 || x > INT32_MAX || y > INT32_MAX) {
                    error = "--warp " + s + ": the cell is outside the map";
                    return false;
                }
                out.warpX = int32_t(x);
                out.warpY = int32_t(y);
            }
            if (out.warpMap.empty()) {
                error = "--warp needs a map name";
                return false;
            }
        } else if (a == "--scale") {
            const char* v = next("--scale");
            int64_t s = 0;
            if (!v || !ParseInt64(v, s) || s < 1 || s > 8) {
                if (error.empty()) error = "--scale needs a number from 1 to 8";
                return false;
            }
            out.scale = int(s);
        } else if (!a.empty() && a[0] == '-') {
            error = "unknown flag " + a;
            const size_t eq = a.find('=');
            for (const char* flag : kValueFlags)
                if (eq != std::string::npos && a.compare(0, eq, flag) == 0)
                    error += " (write " + a.substr(0, eq) + " " + a.substr(eq + 1) + ")";
            return false;
        }
    }
    return true;
}

void ApplyHarnessClock(const SHarnessOptions& options) {
    if (options.clock >= 0) clock_control::SetCalendarStart(options.clock);
    if (options.uncapped) clock_control::SetVirtualTicks(true);
}

void MakeHarnessPathsAbsolute(SHarnessOptions& options) {
    namespace fs = std::filesystem;
    auto absolute = [](std::string& path) {
        std::error_code ec;
        if (!path.empty() && fs::path(path).is_relative()) {
            const fs::path full = fs::absolute(path, ec);
            if (!ec) path = full.string();
        }
    };
    absolute(options.replayFile);
    absolute(options.dumpState);
    for (auto& shot : options.shots) absolute(shot.second);
}

bool ReadBoundedFile(const std::string& path, size_t maxBytes, std::string& out, std::string& error) {
    struct stat st;
    if (stat(path.c_str(), &st) != 0) {
        error = "cannot read " + path + ": " + strerror(errno);
        return false;
    }
    // A FIFO would block the open and a device may never end: only plain files.
    if (!S_ISREG(st.st_mode)) {
        error = path + " is not a regular file";
        return false;
    }
    if (uint64_t(st.st_size) > maxBytes) {
        error = path + " is larger than " + std::to_string(maxBytes) + " bytes";
        return false;
    }
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = "cannot read " + path + ": " + strerror(errno);
        return false;
    }
    bool ok = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    if (!ok) error = path + " is not a regular file";
    out.clear();
    char buf[65536];
    while (ok) {
        const ssize_t n = read(fd, buf, sizeof buf);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            error = "cannot read " + path + ": " + strerror(errno);
            ok = false;
        } else if (n == 0) {
            break;
        } else if (out.size() + size_t(n) > maxBytes) {
            error = path + " is larger than " + std::to_string(maxBytes) + " bytes";
            ok = false;
        } else {
            out.append(buf, size_t(n));
        }
    }
    close(fd);
    return ok;
}

bool CheckWritablePath(const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    if (path.empty()) {
        error = "an empty file name";
        return false;
    }
    struct stat st;
    if (stat(path.c_str(), &st) == 0) {
        if (!S_ISREG(st.st_mode)) {
            error = path + " is not a regular file";
            return false;
        }
        if (access(path.c_str(), W_OK) != 0) {
            error = "cannot write " + path + ": " + strerror(errno);
            return false;
        }
        return true;
    }
    if (errno != ENOENT) {
        error = "cannot write " + path + ": " + strerror(errno);
        return false;
    }
    std::string folder = fs::path(path).parent_path().string();
    if (folder.empty()) folder = ".";
    if (stat(folder.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        error = "cannot write " + path + ": the folder " + folder + " does not exist";
        return false;
    }
    if (access(folder.c_str(), W_OK) != 0) {
        error = "cannot write " + path + ": " + strerror(errno);
        return false;
    }
    return true;
}

bool PrepareHarnessFiles(SHarnessOptions& options, std::string& error) {
    if (!options.replayFile.empty()) {
        std::string text;
        if (!ReadBoundedFile(options.replayFile, REPLAY_MAX_BYTES, text, error)) {
            error = "--replay: " + error;
            return false;
        }
        options.replay.clear();
        if (!ParseReplay(text, options.replay, error)) {
            error = options.replayFile + ": " + error;
            return false;
        }
    }
    for (const auto& shot : options.shots) {
        if (!CheckWritablePath(shot.second, error)) {
            error = "--shot: " + error;
            return false;
        }
    }
    if (!options.dumpState.empty() && !CheckWritablePath(options.dumpState, error)) {
        error = "--dump-state: " + error;
        return false;
    }
    if (!options.warpMap.empty() && options.warpX >= 0) {
        // A map that does not load is the game's own failure ("Initializing map
        // failed!"); a cell outside a map that loads is refused here.
        CMap map;
        if (map.Load(HostPath("map\\" + options.warpMap).c_str(), nullptr) &&
            (options.warpX >= map.Size() || options.warpY >= map.Size())) {
            error = "--warp " + options.warpMap + ":" + std::to_string(options.warpX) + ":" +
                    std::to_string(options.warpY) + ": the cell is outside the " + std::to_string(map.Size()) + " x " +
                    std::to_string(map.Size()) + " map";
            return false;
        }
    }
    return true;
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

bool ParseReplay(const std::string& text, std::vector<SReplayEvent>& out, std::string& error) {
    std::istringstream in(text);
    std::string line;
    int lineNo = 0;
    while (std::getline(in, line)) {
        ++lineNo;
        size_t hash = line.find('#');
        if (hash != std::string::npos) line.resize(hash);
        std::istringstream ls(line);
        std::string frameText, verb;
        if (!(ls >> frameText)) continue;  // blank or comment
        SReplayEvent e;
        int64_t frame = 0;
        if (!ParseInt64(frameText.c_str(), frame) || frame < 0 || !(ls >> verb)) {
            error = "replay line " + std::to_string(lineNo) + ": expected FRAME VERB";
            return false;
        }
        e.frame = frame;
        int argsWanted = 2;
        if (verb == "move") e.kind = SReplayEvent::MOVE;
        else if (verb == "ldown") e.kind = SReplayEvent::LDOWN;
        else if (verb == "lup") e.kind = SReplayEvent::LUP;
        else if (verb == "rdown") e.kind = SReplayEvent::RDOWN;
        else if (verb == "rup") e.kind = SReplayEvent::RUP;
        else if (verb == "key") { e.kind = SReplayEvent::KEY; argsWanted = 1; }
        else if (verb == "quit") { e.kind = SReplayEvent::QUIT; argsWanted = 0; }
        else {
            error = "replay line " + std::to_string(lineNo) + ": unknown event '" + verb + "'";
            return false;
        }
        if (argsWanted >= 1 && !(ls >> e.x)) {
            error = "replay line " + std::to_string(lineNo) + ": missing argument";
            return false;
        }
        if (argsWanted == 2 && !(ls >> e.y)) {
            error = "replay line " + std::to_string(lineNo) + ": missing argument";
            return false;
        }
        std::string extra;
        if (ls >> extra) {
            error = "replay line " + std::to_string(lineNo) + ": unexpected '" + extra + "'";
            return false;
        }
        if (argsWanted == 2 && (e.x < 0 || e.x >= SCREEN_W || e.y < 0 || e.y >= SCREEN_H)) {
            error = "replay line " + std::to_string(lineNo) + ": point outside 640 x 480";
            return false;
        }
        out.push_back(e);
    }
    return true;
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
