// CByteReader and the bounded file read.
#include "base/byte_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

CByteReader::CByteReader(const uint8_t* data, size_t size, std::string name)
    : m_data(data), m_size(data ? size : 0), m_name(std::move(name)) {}

void CByteReader::SetError(size_t offset, const std::string& what) {
    if (!m_error.empty()) return;
    char at[48];
    std::snprintf(at, sizeof at, " at byte %zu", m_base + offset);
    m_error = (m_name.empty() ? std::string("data") : m_name) + ": " + what + at;
    m_reason = what;
    m_errorOffset = m_base + offset;
}

bool CByteReader::Need(size_t n, const char* what) {
    if (!Ok()) return false;
    if (n <= m_size - m_pos) return true;
    char text[160];
    std::snprintf(text, sizeof text, "%s runs past the end (%zu bytes needed, %zu left)", what ? what : "data", n,
                  m_size - m_pos);
    SetError(m_pos, text);
    return false;
}

uint8_t CByteReader::ReadU8(const char* what) {
    if (!Need(1, what)) return 0;
    return m_data[m_pos++];
}

uint16_t CByteReader::ReadU16(const char* what) {
    if (!Need(2, what)) return 0;
    const uint8_t* p = m_data + m_pos;
    m_pos += 2;
    return uint16_t(p[0] | p[1] << 8);
}

uint32_t CByteReader::ReadU32(const char* what) {
    if (!Need(4, what)) return 0;
    const uint8_t* p = m_data + m_pos;
    m_pos += 4;
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

bool CByteReader::ReadBytes(void* dst, size_t n, const char* what) {
    const uint8_t* p = ReadSpan(n, what);
    if (!p) return false;
    if (n) std::memcpy(dst, p, n);
    return true;
}

const uint8_t* CByteReader::ReadSpan(size_t n, const char* what) {
    if (!Need(n, what)) return nullptr;
    const uint8_t* p = m_data + m_pos;
    m_pos += n;
    // A zero-length span of an empty image is still a valid (non-null) answer.
    static const uint8_t kNothing = 0;
    return p ? p : &kNothing;
}

std::string CByteReader::ReadText(size_t n, const char* what) {
    const uint8_t* p = ReadSpan(n, what);
    if (!p) return std::string();
    const void* zero = std::memchr(p, 0, n);
    const size_t len = zero ? size_t(static_cast<const uint8_t*>(zero) - p) : n;
    return std::string(reinterpret_cast<const char*>(p), len);
}

bool CByteReader::Expect(const void* magic, size_t n, const char* what) {
    const size_t at = m_pos;
    const uint8_t* p = ReadSpan(n, what);
    if (!p) return false;
    if (n && std::memcmp(p, magic, n) != 0) {
        SetError(at, std::string("wrong ") + (what ? what : "magic"));
        m_pos = at;
        return false;
    }
    return true;
}

bool CByteReader::Skip(size_t n, const char* what) { return ReadSpan(n, what) != nullptr; }

bool CByteReader::Seek(size_t offset, const char* what) {
    if (!Ok()) return false;
    if (offset > m_size) {
        char text[160];
        std::snprintf(text, sizeof text, "%s %zu lies past the end (%zu bytes)", what ? what : "offset", offset,
                      m_size);
        SetError(m_pos, text);
        return false;
    }
    m_pos = offset;
    return true;
}

bool CByteReader::CheckCount(uint64_t count, size_t recordSize, const char* what) {
    if (!Ok()) return false;
    const uint64_t left = m_size - m_pos;
    // count * recordSize > left, asked without the multiplication.
    if (recordSize == 0 || count <= left / recordSize) return true;
    char text[200];
    std::snprintf(text, sizeof text, "%llu %s of %zu bytes do not fit in the %llu bytes left",
                  static_cast<unsigned long long>(count), what ? what : "records", recordSize,
                  static_cast<unsigned long long>(left));
    SetError(m_pos, text);
    return false;
}

bool CByteReader::ExpectEnd(const char* what) {
    if (!Ok()) return false;
    if (m_pos == m_size) return true;
    char text[160];
    std::snprintf(text, sizeof text, "%zu bytes after the %s", m_size - m_pos, what ? what : "end of data");
    SetError(m_pos, text);
    return false;
}

CByteReader CByteReader::Sub(size_t n, const char* what) {
    CByteReader sub;
    sub.m_name = m_name;
    sub.m_base = m_base + m_pos;
    const uint8_t* p = ReadSpan(n, what);
    if (!p) {
        sub.m_error = m_error;
        sub.m_reason = m_reason;
        sub.m_errorOffset = m_errorOffset;
        return sub;
    }
    sub.m_data = p;
    sub.m_size = n;
    return sub;
}

bool CByteReader::Absorb(const CByteReader& sub) {
    if (sub.Ok()) return true;
    if (m_error.empty()) {
        m_error = sub.m_error;
        m_reason = sub.m_reason;
        m_errorOffset = sub.m_errorOffset;
    }
    return false;
}

bool CByteReader::Fail(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    SetError(m_pos, text);
    return false;
}

bool CByteReader::FailAt(size_t offset, const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    SetError(offset, text);
    return false;
}

namespace {

// Opens without blocking (a FIFO must not stall the game) and insists on a
// regular file.
EFileRead OpenRegular(const std::string& path, int* fd, uint64_t* size, std::string* error) {
    *fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (*fd < 0) {
        if (error) *error = path + ": cannot be opened (" + std::strerror(errno) + ")";
        return EFileRead::Missing;
    }
    struct stat st {};
    if (::fstat(*fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        if (error) *error = path + ": not a regular file";
        ::close(*fd);
        *fd = -1;
        return EFileRead::Failed;
    }
    *size = uint64_t(st.st_size);
    return EFileRead::Ok;
}

EFileRead ReadAt(int fd, const std::string& path, uint64_t offset, size_t n, std::vector<uint8_t>& out,
                 std::string* error) {
    out.resize(n);
    size_t got = 0;
    while (got < n) {
        const ssize_t r = ::pread(fd, out.data() + got, n - got, off_t(offset + got));
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) break;
        got += size_t(r);
    }
    if (got != n) {
        // The file shrank or failed under us.
        out.clear();
        if (error) *error = path + ": read error";
        return EFileRead::Failed;
    }
    return EFileRead::Ok;
}

}  // namespace

EFileRead ReadFileBytes(const std::string& hostPath, size_t maxBytes, std::vector<uint8_t>& out,
                        std::string* error) {
    out.clear();
    int fd = -1;
    uint64_t size = 0;
    EFileRead r = OpenRegular(hostPath, &fd, &size, error);
    if (r != EFileRead::Ok) return r;
    if (size > maxBytes) {
        ::close(fd);
        if (error)
            *error = hostPath + ": " + std::to_string(size) + " bytes, more than the " + std::to_string(maxBytes) +
                     " this file may hold";
        return EFileRead::TooLarge;
    }
    r = ReadAt(fd, hostPath, 0, size_t(size), out, error);
    ::close(fd);
    return r;
}

EFileRead ReadFilePart(const std::string& hostPath, uint64_t offset, size_t maxBytes, std::vector<uint8_t>& out,
                       std::string* error, uint64_t* fileSize) {
    out.clear();
    int fd = -1;
    uint64_t size = 0;
    EFileRead r = OpenRegular(hostPath, &fd, &size, error);
    if (fileSize) *fileSize = size;
    if (r != EFileRead::Ok) return r;
    const uint64_t left = offset < size ? size - offset : 0;
    const size_t n = left < maxBytes ? size_t(left) : maxBytes;
    r = ReadAt(fd, hostPath, offset, n, out, error);
    ::close(fd);
    return r;
}
