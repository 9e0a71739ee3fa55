// CIni: the engine's key/value text files, from disk or from a game-data archive.
// The whole text is held in memory and every lookup scans it byte for byte:
// sections open with '[' at a line start, keys end at '=', values end at one of
// ';' CR LF TAB ']', nothing is trimmed, and a key missing from its section is
// taken from the first later line of any section that has it.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

class CIni {
public:
    CIni();
    // Constructs, then Open with the same arguments.
    CIni(const char* fileName, const char* archivePath);
    virtual ~CIni();
    CIni(const CIni&) = delete;
    CIni& operator=(const CIni&) = delete;

    // Loads a text from the archive (entry "root\" + fileName) when archivePath is
    // given, else from the disk. False, and the failed flag set, when nothing or an
    // empty text was found.
    bool Open(const char* fileName, const char* archivePath);
    // Loads a text held in memory (tests and tools).
    bool OpenText(const std::string& text);
    void Close();
    bool IsFailed() const { return m_bFailed != 0; }

    // The value of the first matching key; empty when not found.
    std::string GetString(const char* section, const char* key) const;
    // GetString read as a signed decimal integer, clamped to the 32-bit range.
    int32_t GetInt(const char* section, const char* key) const;

    // Reads a decimal integer as GetInt does (exposed for reuse and tests).
    static int32_t ParseInt(const char* text);

private:
    void BuildIndex();
    int32_t FindSection(const char* section) const;  // position after '[', or -1

    char m_szFileName[256] = {0};
    int32_t m_nLength = 0;
    std::vector<char> m_text;
    std::vector<int32_t> m_sections;
    uint8_t m_bFailed = 0;
};
