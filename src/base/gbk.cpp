#include "base/gbk.h"

#include <iconv.h>

#include <cerrno>
#include <map>
#include <memory>
#include <mutex>

namespace {

std::string Convert(const char* to, const char* from, std::string_view in) {
    iconv_t cd = iconv_open(to, from);
    if (cd == reinterpret_cast<iconv_t>(-1)) return std::string(in);
    std::string out;
    out.resize(in.size() * 2 + 8);
    char* src = const_cast<char*>(in.data());
    size_t srcLeft = in.size();
    size_t done = 0;
    while (srcLeft > 0) {
        char* dst = out.data() + done;
        size_t dstLeft = out.size() - done;
        size_t r = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
        done = out.size() - dstLeft;
        if (r != size_t(-1)) break;
        if (errno == E2BIG) {
            out.resize(out.size() * 2);
        } else {
            // An invalid or truncated sequence: show a question mark, skip a byte.
            if (out.size() - done < 1) out.resize(out.size() + 16);
            out[done++] = '?';
            ++src;
            --srcLeft;
        }
    }
    out.resize(done);
    iconv_close(cd);
    return out;
}

}  // namespace

std::string GbkToUtf8(std::string_view gbk) {
    bool ascii = true;
    for (unsigned char c : gbk) ascii = ascii && c < 0x80;
    if (ascii) return std::string(gbk);
    return Convert("UTF-8", "GBK", gbk);
}

std::string Utf8ToGbk(std::string_view utf8) {
    bool ascii = true;
    for (unsigned char c : utf8) ascii = ascii && c < 0x80;
    if (ascii) return std::string(utf8);
    return Convert("GBK", "UTF-8", utf8);
}

const char* GbkText(const char* utf8Literal) {
    static std::mutex lock;
    static std::map<const char*, std::unique_ptr<std::string>> cache;
    std::lock_guard<std::mutex> guard(lock);
    auto& slot = cache[utf8Literal];
    if (!slot) slot = std::make_unique<std::string>(Utf8ToGbk(utf8Literal));
    return slot->c_str();
}
