// textc <src-dir> <dst-dir>: copies every file under src-dir to the same
// relative path under dst-dir. Text files (valid UTF-8 without NUL bytes) are
// converted to GBK with CR LF line ends, as the game reads them; other files
// are copied unchanged. A file is rewritten only when its bytes change, so
// the timestamps of unchanged outputs stay put.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "base/gbk.h"

namespace fs = std::filesystem;

namespace {

bool IsUtf8Text(const std::string& s) {
    size_t i = 0;
    while (i < s.size()) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        if (c == 0) return false;
        int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        if (extra < 0 || i + size_t(extra) >= s.size() + (extra == 0 ? 1 : 0)) return false;
        for (int k = 1; k <= extra; ++k)
            if ((static_cast<unsigned char>(s[i + size_t(k)]) & 0xC0) != 0x80) return false;
        i += size_t(extra) + 1;
    }
    return true;
}

// 1-based line of the first character GBK cannot hold, 0 when all fit.
int FirstUnmappableLine(const std::string& utf8) {
    int line = 1;
    size_t start = 0;
    while (start <= utf8.size()) {
        size_t end = utf8.find('\n', start);
        std::string part = utf8.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (GbkToUtf8(Utf8ToGbk(part)) != part) return line;
        if (end == std::string::npos) break;
        start = end + 1;
        ++line;
    }
    return 0;
}

std::string ToCrLf(const std::string& s) {
    std::string out;
    out.reserve(s.size() + s.size() / 16);
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\n' && (i == 0 || s[i - 1] != '\r')) out += '\r';
        out += s[i];
    }
    return out;
}

bool ReadFile(const fs::path& p, std::string* out) {
    std::ifstream in(p, std::ios::binary);
    if (!in) return false;
    out->assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: textc <src-dir> <dst-dir>\n");
        return 2;
    }
    const fs::path src = argv[1], dst = argv[2];
    std::error_code ec;
    if (!fs::is_directory(src, ec)) {
        std::fprintf(stderr, "textc: %s is not a folder\n", argv[1]);
        return 1;
    }
    std::vector<fs::path> files;
    for (auto it = fs::recursive_directory_iterator(src, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        if (it->is_regular_file()) files.push_back(it->path());
    if (ec) {
        std::fprintf(stderr, "textc: cannot list %s: %s\n", argv[1], ec.message().c_str());
        return 1;
    }
    int failures = 0;
    for (const fs::path& file : files) {
        std::string bytes;
        if (!ReadFile(file, &bytes)) {
            std::fprintf(stderr, "textc: cannot read %s\n", file.c_str());
            ++failures;
            continue;
        }
        std::string out = bytes;
        if (IsUtf8Text(bytes)) {
            std::string text = bytes;
            if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
            if (int line = FirstUnmappableLine(text)) {
                std::fprintf(stderr, "textc: %s:%d: a character cannot be written in GBK\n", file.c_str(), line);
                ++failures;
                continue;
            }
            out = ToCrLf(Utf8ToGbk(text));
        }
        const fs::path target = dst / fs::relative(file, src);
        std::string old;
        if (ReadFile(target, &old) && old == out) continue;
        fs::create_directories(target.parent_path(), ec);
        std::ofstream o(target, std::ios::binary | std::ios::trunc);
        o.write(out.data(), std::streamsize(out.size()));
        if (!o) {
            std::fprintf(stderr, "textc: cannot write %s\n", target.c_str());
            ++failures;
        }
    }
    return failures ? 1 : 0;
}
