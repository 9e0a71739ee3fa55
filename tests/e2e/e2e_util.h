// Running the real game binary in a scratch copy of the game folder, with the
// replay files of tests/e2e/replays/ and the dumped state read as JSON.
#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <nlohmann/json.hpp>

namespace e2e {

namespace fs = std::filesystem;

inline std::string ReadFile(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void WriteFile(const fs::path& p, const std::string& text) {
    std::ofstream out(p, std::ios::binary);
    out << text;
}

// A fresh copy of the game folder (symlinking the big read-only files), inside
// the test process's scratch folder (its working directory).
inline fs::path CopyGame(const std::string& name) {
    fs::path dst = fs::current_path() / ("e2e_" + name);
    fs::remove_all(dst);
    fs::create_directories(dst);
    for (auto& e : fs::directory_iterator(ASHEN_GAME_DIR)) {
        fs::path to = dst / e.path().filename();
        std::string fn = e.path().filename().string();
        if (fn == "saves" || fn == "screenshot") {
            fs::create_directories(to);
        } else if (fn == "GameEngine.log" || fn == "exceptionLog.log") {
            continue;
        } else if (e.is_directory()) {
            fs::create_directories(to);
            for (auto& f : fs::directory_iterator(e.path())) fs::create_symlink(f.path(), to / f.path().filename());
        } else if (fn == "game.ini" || fn == "ashen-oath" || fn == "launcher") {
            fs::copy_file(e.path(), to);
        } else {
            fs::create_symlink(e.path(), to);
        }
    }
    return dst;
}

// The launcher runs on its own after the game ends: waits until it has left its
// line in the log (or a few seconds passed) and returns the log.
inline std::string WaitForLauncherLog(const fs::path& log) {
    for (int i = 0; i < 100; ++i) {
        std::string text = ReadFile(log);
        if (!text.empty() && text.back() == '\n') return text;
        usleep(50000);
    }
    return ReadFile(log);
}

struct Result {
    int exitCode = -1;
    int signal = 0;
    std::string out, err;
};

// Runs a shell command line in dir, capturing stdout and stderr.
inline Result RunGame(const fs::path& dir, const std::string& args, const std::string& env = "") {
    fs::path out = dir / "stdout.txt", err = dir / "stderr.txt";
    std::string cmd = "cd '" + dir.string() + "' && " + env + " ./ashen-oath " + args + " >'" + out.string() +
                      "' 2>'" + err.string() + "'";
    int status = std::system(cmd.c_str());
    Result r;
    if (WIFEXITED(status)) r.exitCode = WEXITSTATUS(status);
    r.out = ReadFile(out);
    r.err = ReadFile(err);
    return r;
}

// A replay file of tests/e2e/replays/, by name.
inline fs::path Replay(const std::string& name) {
    return fs::path(ASHEN_SOURCE_DIR) / "tests" / "e2e" / "replays" / name;
}

// The dumped state; a discarded value (is_discarded()) when the file is missing
// or not JSON.
inline nlohmann::json ReadState(const fs::path& p) { return nlohmann::json::parse(ReadFile(p), nullptr, false); }

// A top-level integer of the dumped state, or -999999 when it is not there.
inline long StateInt(const nlohmann::json& state, const char* key) {
    if (!state.is_object() || !state.contains(key) || !state[key].is_number_integer()) return -999999;
    return state[key].get<long>();
}

}  // namespace e2e
