// Helpers shared by the media tests: a scratch working directory (the engine log
// and test files go there) and small file helpers.
#pragma once
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace mediatest {

class ScratchDir {
public:
    ScratchDir() {
        // A fresh folder inside the test process's scratch folder.
        char buf[4096];
        old_ = getcwd(buf, sizeof(buf)) ? buf : ".";
        std::string tmpl = old_ + "/media_XXXXXX";
        const char* made = mkdtemp(tmpl.data());
        path_ = made ? made : old_;
        if (chdir(path_.c_str()) != 0) perror("chdir");
    }
    ~ScratchDir() {
        if (chdir(old_.c_str()) != 0) perror("chdir");
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::string& Path() const { return path_; }

private:
    std::string path_, old_;
};

inline std::string ReadFile(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

inline void WriteFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream f(path, std::ios::binary);
    f.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

inline int CountLines(const std::string& text) {
    int n = 0;
    for (char c : text) n += c == '\n';
    return n;
}

// The CJK font the game ships, or Debian's original when the game folder has not
// been assembled.
inline std::string FindFont() {
    const std::string candidates[] = {std::string(ASHEN_GAME_DIR) + "/data/seguibk.ttf",
                                      "/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf"};
    for (const std::string& c : candidates)
        if (std::filesystem::exists(c)) return c;
    return "";
}

}  // namespace mediatest
