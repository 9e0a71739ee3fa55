// CIni: byte-oriented key/value text files (see ini.h for the rules).
#include "resources/ini.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "resources/vrn_file.h"
#include "base/byte_reader.h"
#include "base/paths.h"

namespace {

constexpr int kMaxKey = 63;
constexpr size_t kMaxIniBytes = 64u << 20;  // no configuration text comes near this

inline bool IsSectionStop(char c) { return c == ']' || c == ';' || c == '\r' || c == '\t' || c == '\n'; }
inline bool IsKeyStop(char c) { return c == '=' || c == ';' || c == '\r' || c == '\n'; }
inline bool IsValueStop(char c) { return c == ';' || c == '\r' || c == '\n' || c == '\t' || c == ']'; }

}  // namespace

CIni::CIni() = default;

CIni::CIni(const char* fileName, const char* archivePath) { Open(fileName, archivePath); }

CIni::~CIni() = default;

void CIni::Close() {
    m_text.clear();
    m_text.shrink_to_fit();
    m_nLength = 0;
    m_sections.clear();
}

bool CIni::Open(const char* fileName, const char* archivePath) {
    Close();
    auto fail = [this]() {
        m_text.assign(1, '\0');
        m_nLength = 1;
        BuildIndex();
        m_bFailed = 1;
        return false;
    };
    if (!fileName) return fail();
    if (archivePath) {
        CVRN_File archive;
        if (!archive.Open(archivePath) || !archive.FindEntry(fileName)) return fail();
        int32_t size = archive.GetSize();
        if (size < 0) return fail();
        m_text.assign(size_t(size) + 1, '\0');
        // A read error leaves the zero-filled text: lookups then find nothing.
        archive.Read(m_text.data(), size);
        archive.Close();
        m_nLength = size;
        m_bFailed = 0;
        BuildIndex();
        return true;
    }
    std::snprintf(m_szFileName, sizeof m_szFileName, "%s", fileName);
    std::vector<uint8_t> raw;
    if (ReadFileBytes(HostPath(fileName), kMaxIniBytes, raw) != EFileRead::Ok) return fail();
    std::vector<char> bytes(raw.begin(), raw.end());
    if (bytes.empty()) return fail();
    m_text = std::move(bytes);
    m_nLength = int32_t(m_text.size());
    m_bFailed = 0;
    BuildIndex();
    return true;
}

bool CIni::OpenText(const std::string& text) {
    Close();
    if (text.empty()) {
        m_text.assign(1, '\0');
        m_nLength = 1;
        m_bFailed = 1;
        BuildIndex();
        return false;
    }
    m_text.assign(text.begin(), text.end());
    m_nLength = int32_t(m_text.size());
    m_bFailed = 0;
    BuildIndex();
    return true;
}

void CIni::BuildIndex() {
    m_sections.clear();
    const char* t = m_text.data();
    const int32_t n = m_nLength;
    int32_t count = 0;
    for (int32_t i = 0; i < n; ++i)
        if (t[i] == '[' && (i == 0 || t[i - 1] == '\n')) ++count;
    m_sections.reserve(size_t(count));
    for (int32_t i = 0; i < n; ++i)
        if (t[i] == '[' && (i == 0 || t[i - 1] == '\n')) m_sections.push_back(i + 1);
}

int32_t CIni::FindSection(const char* section) const {
    const char* t = m_text.data();
    const int32_t n = m_nLength;
    const size_t want = std::strlen(section);
    for (int32_t start : m_sections) {
        int32_t e = start;
        while (e < n && !IsSectionStop(t[e])) ++e;
        if (size_t(e - start) == want && std::memcmp(t + start, section, want) == 0) return start;
    }
    return -1;
}

std::string CIni::GetString(const char* section, const char* key) const {
    if (!section || !key) return std::string();
    const char* t = m_text.data();
    const int32_t n = m_nLength;
    const size_t keyLen = std::strlen(key);
    if (keyLen > size_t(kMaxKey)) return std::string();

    // The scan starts at the line after the section's header, or at the second
    // line of the text when the section is absent.
    int32_t pos = FindSection(section);
    if (pos < 0) pos = 0;
    while (pos < n && t[pos] != '\n') ++pos;
    if (pos >= n) return std::string();
    ++pos;

    while (pos < n) {
        const int32_t lineStart = pos;
        int32_t e = pos;
        while (e < n && !IsKeyStop(t[e])) ++e;
        if (size_t(e - lineStart) == keyLen && std::memcmp(t + lineStart, key, keyLen) == 0) {
            if (e >= n || t[e] == '\r' || t[e] == '\n') return std::string();
            int32_t v = e + 1;
            int32_t ve = v;
            while (ve < n && !IsValueStop(t[ve]) && t[ve] != '\0') ++ve;
            return std::string(t + v, size_t(ve - v));
        }
        while (pos < n && t[pos] != '\n') ++pos;
        if (pos < n) ++pos;
    }
    return std::string();
}

int32_t CIni::GetInt(const char* section, const char* key) const { return ParseInt(GetString(section, key).c_str()); }

int32_t CIni::ParseInt(const char* text) {
    if (!text) return 0;
    const char* s = text;
    while (*s == ' ' || *s == '\t' || *s == '\r' || *s == '\n' || *s == '\v' || *s == '\f') ++s;
    bool negative = false;
    if (*s == '+' || *s == '-') negative = *s++ == '-';
    int64_t v = 0;
    for (; *s >= '0' && *s <= '9'; ++s) {
        v = v * 10 + (*s - '0');
        if (v > int64_t(INT32_MAX) + 1) v = int64_t(INT32_MAX) + 1;  // saturate; the sign decides below
    }
    if (negative) return v >= int64_t(INT32_MAX) + 1 ? INT32_MIN : int32_t(-v);
    return v > INT32_MAX ? INT32_MAX : int32_t(v);
}
