#include "shell/harness.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sstream>

#include "resources/png_file.h"
#include "base/clock.h"

extern char** environ;

namespace {

bool ParseInt64(const char* s, int64_t& out) {
    if (!s || !*s) return false;
    char* end = nullptr;
    long long v = strtoll(s, &end, 10);
    if (*end) return false;
    out = v;
    return true;
}

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
            if (!v || !ParseInt64(v, out.frames) || out.frames < 0) {
                if (error.empty()) error = "--frames needs a non-negative number";
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
            if (!colon || !ParseInt64(std::string(v, colon).c_str(), frame) || !colon[1]) {
                error = "--shot needs FRAME:FILE.png";
                return false;
            }
            out.shots.emplace_back(frame, colon + 1);
        } else if (a == "--clock") {
            const char* v = next("--clock");
            if (!v || !ParseInt64(v, out.clock)) {
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
        }
    }
    return true;
}

void ApplyHarnessClock(const SHarnessOptions& options) {
    if (options.clock >= 0) clock_control::SetCalendarStart(options.clock);
    if (options.uncapped) clock_control::SetVirtualTicks(true);
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

void FinishHarness(CGame& game, std::chrono::steady_clock::time_point wallStart) {
    const SHarnessOptions& o = game.Harness();
    if (!o.dumpState.empty()) {
        if (FILE* f = fopen(o.dumpState.c_str(), "wb")) {
            std::string json = game.DumpStateJson();
            fwrite(json.data(), 1, json.size(), f);
            fclose(f);
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
