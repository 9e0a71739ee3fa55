// The harness's command line and files: the flags, the replay file (bounded,
// regular, every line checked), the output paths and the --warp cell, all
// checked before the game starts.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "base/paths.h"
#include "shell/harness.h"
#include "world/map.h"

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
    const fs::path parent = fs::path(path).parent_path();
    const std::string folder = parent.empty() ? std::string(".") : parent.string();
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
