// Helpers shared by the resources tests: a scratch working folder (the engine
// log lands there), file I/O, and a recorder of message boxes.
#pragma once
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "base/message_box.h"

namespace restest {

inline std::vector<std::string>& Boxes() {
    static std::vector<std::string> boxes;
    return boxes;
}

inline void RecordBox(const char* text, const char*, int) { Boxes().push_back(text ? text : ""); }

// Changes into a fresh folder for the test's life and records message boxes.
class ScratchDir {
public:
    ScratchDir() {
        // A fresh folder inside the test process's scratch folder.
        old_ = std::filesystem::current_path();
        std::string tmpl = (old_ / "res_XXXXXX").string();
        dir_ = mkdtemp(tmpl.data());
        std::filesystem::current_path(dir_);
        Boxes().clear();
        SetMessageBoxObserver(&RecordBox);
    }
    ~ScratchDir() {
        SetMessageBoxObserver(nullptr);
        std::filesystem::current_path(old_);
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }
    const std::filesystem::path& Path() const { return dir_; }

private:
    std::filesystem::path dir_, old_;
};

inline void WriteBytes(const std::filesystem::path& p, const std::vector<uint8_t>& b) {
    if (p.has_parent_path()) std::filesystem::create_directories(p.parent_path());
    std::ofstream o(p, std::ios::binary | std::ios::trunc);
    o.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
}

inline void WriteText(const std::filesystem::path& p, const std::string& s) {
    WriteBytes(p, std::vector<uint8_t>(s.begin(), s.end()));
}

inline std::string ReadText(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline std::vector<uint8_t> ReadBytes(const std::filesystem::path& p) {
    std::string s = ReadText(p);
    return std::vector<uint8_t>(s.begin(), s.end());
}

inline int CountLines(const std::string& text, const std::string& needle) {
    int n = 0;
    for (size_t pos = text.find(needle); pos != std::string::npos; pos = text.find(needle, pos + 1)) ++n;
    return n;
}

// Picture-like bytes: 24-bit rows of a magenta background with a few shaded
// shapes, as the generated sprites look.
inline std::vector<uint8_t> SpriteLikeBytes(size_t n, uint32_t seed) {
    std::vector<uint8_t> v(n);
    uint32_t s = seed;
    for (size_t i = 0; i < n; i += 3) {
        size_t px = i / 3;
        size_t x = px % 64, y = (px / 64) % 64;
        bool inside = (x - 32) * (x - 32) + (y - 32) * (y - 32) < 400 + (seed % 7) * 30;
        s = s * 1103515245u + 12345u;
        uint8_t shade = uint8_t(inside ? 80 + ((x + y) & 31) + ((s >> 28) & 3) : 0);
        uint8_t b = inside ? shade : 255, g = inside ? uint8_t(shade / 2) : 0, r = inside ? uint8_t(shade + 20) : 255;
        if (i < n) v[i] = b;
        if (i + 1 < n) v[i + 1] = g;
        if (i + 2 < n) v[i + 2] = r;
    }
    return v;
}

}  // namespace restest
