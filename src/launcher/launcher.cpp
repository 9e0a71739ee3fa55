// The launcher: started by the game with no argument it starts the game with
// "action=play" in the launcher's own folder; started with "time=end" (when the
// game ends) it does nothing.
// With ASHEN_LAUNCHER_LOG set it appends its argument line to that file, so
// tests can see how it was called.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
    std::string args;
    for (int i = 1; i < argc; ++i) {
        if (i > 1) args += ' ';
        args += argv[i];
    }
    if (const char* log = getenv("ASHEN_LAUNCHER_LOG")) {
        if (FILE* f = fopen(log, "ab")) {
            fprintf(f, "launcher [%s]\n", args.c_str());
            fclose(f);
        }
    }
    if (args.find("time=end") != std::string::npos) return 0;
    if (getenv("ASHEN_LAUNCHER_NOEXEC")) return 0;  // tests: record the call only
    // Start the game from the launcher's own folder (found from its executable,
    // so a launcher started through PATH or a shortcut works too), in that folder.
    std::string dir;
    char exe[4096];
    const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n > 0) {
        exe[n] = 0;
        dir = exe;
        dir.resize(dir.rfind('/') == std::string::npos ? 0 : dir.rfind('/'));
    }
    if (dir.empty()) {
        const std::string self = argv[0];
        const size_t slash = self.rfind('/');
        dir = slash != std::string::npos ? self.substr(0, slash) : ".";
    }
    if (chdir(dir.c_str()) != 0) perror("launcher: cannot enter the game folder");
    std::string game = dir + "/ashen-oath";
    execl(game.c_str(), game.c_str(), "action=play", static_cast<char*>(nullptr));
    perror("launcher: cannot start the game");
    return 1;
}
