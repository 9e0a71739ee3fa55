// Byte builders shared by the file-format tests: little-endian integers put at an
// offset or appended, fixed text fields, whole records, and files read and
// written whole (relative paths land in the test's scratch folder).
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

namespace testbytes {

using Bytes = std::vector<uint8_t>;

// Values written at an offset (the bytes must exist).
inline void Set16(Bytes& b, size_t at, uint16_t v) {
    b[at] = uint8_t(v);
    b[at + 1] = uint8_t(v >> 8);
}
inline void Set32(Bytes& b, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) b[at + size_t(i)] = uint8_t(v >> (8 * i));
}
inline uint16_t Get16(const Bytes& b, size_t at) { return uint16_t(b[at] | b[at + 1] << 8); }
inline int32_t Get32(const Bytes& b, size_t at) {
    uint32_t u = 0;
    for (int i = 0; i < 4; ++i) u |= uint32_t(b[at + size_t(i)]) << (8 * i);
    return int32_t(u);
}

// Values appended at the end.
inline void Append8(Bytes& b, uint8_t v) { b.push_back(v); }
inline void Append16(Bytes& b, uint16_t v) {
    b.push_back(uint8_t(v));
    b.push_back(uint8_t(v >> 8));
}
inline void Append32(Bytes& b, uint32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back(uint8_t(v >> (8 * i)));
}
inline void AppendBytes(Bytes& b, const void* p, size_t n) {
    const uint8_t* s = static_cast<const uint8_t*>(p);
    b.insert(b.end(), s, s + n);
}
inline void AppendBytes(Bytes& b, const Bytes& more) { b.insert(b.end(), more.begin(), more.end()); }
inline void AppendText(Bytes& b, const std::string& s) { b.insert(b.end(), s.begin(), s.end()); }
// A text in a field of `field` bytes, zero padded (cut to the field when longer).
inline void AppendField(Bytes& b, const std::string& s, size_t field) {
    const size_t n = s.size() < field ? s.size() : field;
    b.insert(b.end(), s.begin(), s.begin() + std::ptrdiff_t(n));
    b.insert(b.end(), field - n, 0);
}
// A packed record as it lies in memory.
template <class T>
void AppendRecord(Bytes& b, const T& record) {
    static_assert(std::is_trivially_copyable_v<T>);
    AppendBytes(b, &record, sizeof record);
}
template <class T>
void AppendRecords(Bytes& b, const std::vector<T>& records) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (!records.empty()) AppendBytes(b, records.data(), records.size() * sizeof(T));
}

inline Bytes LoadFile(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
inline void SaveFile(const std::filesystem::path& p, const Bytes& b) {
    if (p.has_parent_path()) std::filesystem::create_directories(p.parent_path());
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
}

}  // namespace testbytes
