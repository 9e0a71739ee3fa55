// CByteReader: reads a file image held in memory, front to back, never past its
// end. Integers are little-endian; records are fixed-size structures copied byte
// for byte; texts are fixed-size fields that end at their first zero (or at the
// field's end when a damaged file leaves them unterminated).
//
// The first failure sticks: every later read returns zero (or false, or an empty
// text) and leaves the position where the failure happened, so a reader can run
// through a whole record and check Ok() once. Error() names the file image, what
// was being read and the byte offset of the failure; callers report it once.
//
//     CByteReader in(bytes, "map\\main.map");
//     in.Expect("2pam", 4, "magic");
//     const int32_t n = in.ReadI32("size");
//     if (!in.CheckCount(uint64_t(n) * n, sizeof(SMapCell), "cells")) return false;
//
// ReadFileBytes is the one way the engine gets a file's bytes: a regular file
// only, never more than a cap the caller names (the largest file its format can
// hold), read into memory for a CByteReader.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

class CByteReader {
public:
    CByteReader() = default;
    // The bytes are not copied: they must outlive the reader. name stands for the
    // image in error texts (usually the game's name of the file).
    CByteReader(const uint8_t* data, size_t size, std::string name = std::string());
    explicit CByteReader(const std::vector<uint8_t>& bytes, std::string name = std::string())
        : CByteReader(bytes.data(), bytes.size(), std::move(name)) {}

    bool Ok() const { return m_error.empty(); }
    // "<name>: <what> at byte <offset>"; empty while nothing failed.
    const std::string& Error() const { return m_error; }
    // The same failure without the name and the offset ("wrong magic"), and its
    // offset, for callers that word their own messages.
    const std::string& Reason() const { return m_reason; }
    size_t ErrorOffset() const { return m_errorOffset; }
    const std::string& Name() const { return m_name; }
    // Position from the start of the image (of the outermost image for a Sub reader).
    size_t Offset() const { return m_base + m_pos; }
    size_t Size() const { return m_size; }
    // Bytes left to read; 0 once a read has failed.
    size_t Remaining() const { return Ok() ? m_size - m_pos : 0; }
    bool AtEnd() const { return m_pos == m_size; }

    uint8_t ReadU8(const char* what = "byte");
    uint16_t ReadU16(const char* what = "16-bit value");
    uint32_t ReadU32(const char* what = "32-bit value");
    int16_t ReadI16(const char* what = "16-bit value") { return int16_t(ReadU16(what)); }
    int32_t ReadI32(const char* what = "32-bit value") { return int32_t(ReadU32(what)); }

    // Copies n bytes; false (dst untouched) when fewer remain.
    bool ReadBytes(void* dst, size_t n, const char* what = "bytes");
    // The next n bytes in place, or nullptr when fewer remain.
    const uint8_t* ReadSpan(size_t n, const char* what = "bytes");
    // A text field of n bytes: the text up to its first zero, at most n bytes.
    std::string ReadText(size_t n, const char* what = "text");
    // Reads n bytes and fails unless they equal magic.
    bool Expect(const void* magic, size_t n, const char* what = "magic");
    bool Skip(size_t n, const char* what = "bytes");
    // Moves to an offset inside this reader's bytes (0 .. Size()).
    bool Seek(size_t offset, const char* what = "offset");

    // One fixed-size record (a packed, trivially copyable structure).
    template <class T>
    bool ReadRecord(T& out, const char* what = "record") {
        static_assert(std::is_trivially_copyable_v<T>, "records are copied byte for byte");
        const uint8_t* p = ReadSpan(sizeof(T), what);
        if (!p) return false;
        std::memcpy(&out, p, sizeof(T));
        return true;
    }
    // count records; the count is first checked against the remaining bytes, so
    // nothing is allocated for a count the image cannot hold.
    template <class T>
    bool ReadRecords(std::vector<T>& out, uint64_t count, const char* what = "records") {
        static_assert(std::is_trivially_copyable_v<T>, "records are copied byte for byte");
        if (!CheckCount(count, sizeof(T), what)) return false;
        const uint8_t* p = ReadSpan(size_t(count) * sizeof(T), what);
        if (!p) return false;
        out.resize(size_t(count));
        if (count) std::memcpy(out.data(), p, size_t(count) * sizeof(T));
        return true;
    }
    // Fails unless count records of recordSize bytes fit in the remaining bytes
    // (without overflow for any count).
    bool CheckCount(uint64_t count, size_t recordSize, const char* what = "records");
    // Fails unless every byte has been read.
    bool ExpectEnd(const char* what = "end of data");

    // A reader over the next n bytes (and skips them here). Its errors carry the
    // same name and offsets counted from this image's start; a failure inside it
    // does not fail this reader (check Sub's Ok()). Empty and failed when fewer
    // than n bytes remain, which also fails this reader.
    CByteReader Sub(size_t n, const char* what = "block");
    // Takes over a Sub reader's failure (when this reader has none); returns
    // sub.Ok().
    bool Absorb(const CByteReader& sub);

    // Records a failure found by the caller (a field out of its range, say) at the
    // current offset. printf-style; returns false. Later failures are ignored.
    bool Fail(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // The same at a given offset of this reader.
    bool FailAt(size_t offset, const char* format, ...) __attribute__((format(printf, 3, 4)));

private:
    bool Need(size_t n, const char* what);
    void SetError(size_t offset, const std::string& what);

    const uint8_t* m_data = nullptr;
    size_t m_size = 0;
    size_t m_pos = 0;
    size_t m_base = 0;
    std::string m_name;
    std::string m_error;
    std::string m_reason;
    size_t m_errorOffset = 0;
};

// The outcome of reading a file's bytes.
enum class EFileRead {
    Ok,
    Missing,   // cannot be opened (absent, unreadable)
    TooLarge,  // larger than the cap: nothing was read
    Failed,    // not a regular file, or a read error
};

// Reads a whole regular file (host path). A file larger than maxBytes is
// refused before anything is read. error (when given) receives a text naming the
// file on any failure.
EFileRead ReadFileBytes(const std::string& hostPath, size_t maxBytes, std::vector<uint8_t>& out,
                        std::string* error = nullptr);
// Reads at most maxBytes of a regular file from offset on (fewer at its end; none
// past it). fileSize (when given) receives the file's size.
EFileRead ReadFilePart(const std::string& hostPath, uint64_t offset, size_t maxBytes, std::vector<uint8_t>& out,
                       std::string* error = nullptr, uint64_t* fileSize = nullptr);
