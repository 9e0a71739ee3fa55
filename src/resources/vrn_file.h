// CVRN_File: reader of the game-data archives ("VRN1"). Open loads the whole
// directory (breadth-first records) into a tree of nodes keyed by full path
// ("root\dir\name"); FindEntry selects an entry; Read writes it out, decoding
// the LZ77 chunks (49152 bytes of output each) of compressed entries.
//
// Every count, size and offset read from the file is checked against the file
// (through CByteReader): a damaged directory makes Open fail, a damaged entry
// makes Read fail. From a file only the directory (up to the data offset in the
// header) and the entry being read are read.
#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class CByteReader;
class CLog;

// Archive layout constants shared by the reader, the writer and the tools.
constexpr char kVrnMagic[4] = {'V', 'R', 'N', '1'};
constexpr uint32_t kVrnHeaderSize = 12;
constexpr uint32_t kVrnRecordSize = 24;  // fixed part, then name and terminator
constexpr uint32_t kVrnChunkOutput = 49152;
constexpr uint8_t kVrnKindDir = 1;

struct SVrnNode {
    std::string path;       // "root", "root\a.txt", "root\data\role.pmg"
    std::string name;       // last component ("root" for the root)
    uint32_t size = 0;      // file: stored size; directory: child count
    uint32_t fullSize = 0;  // file: size after decompression
    uint32_t offset = 0;    // file: relative to the data base
    uint8_t kind = 0;       // 1 directory, else file
    uint8_t compressed = 0;
    uint32_t nameLength = 0;
    std::map<std::string, std::unique_ptr<SVrnNode>> children;  // by full path

    bool IsDir() const { return kind == kVrnKindDir; }
};

class CVRN_File {
public:
    CVRN_File();
    virtual ~CVRN_File();
    CVRN_File(const CVRN_File&) = delete;
    CVRN_File& operator=(const CVRN_File&) = delete;

    // Reads the header and the whole directory (a game name such as "data\ini.vrn"
    // is turned into a host path). Message box and false when the
    // file cannot be opened or is not a valid archive (the old tree then stays).
    bool Open(const char* archivePath);
    // Same, over an archive image in memory (not copied: it must outlive the
    // reader). displayName stands in for the path in messages.
    bool OpenMemory(const uint8_t* data, size_t size, const char* displayName);
    // Path inside the archive without "root\"; backslash-separated.
    bool FindEntry(const char* path);
    // Full size of the current entry, -1 without one.
    int32_t GetSize() const;
    // Writes the whole current entry into buffer (GetSize bytes). size 0 means
    // GetSize; a non-zero size below the entry's full size is refused.
    bool Read(void* buffer, int32_t size);
    void Close();

    bool IsOpen() const { return m_pRoot != nullptr; }
    const SVrnNode* Root() const { return m_pRoot.get(); }
    const SVrnNode* Current() const { return m_pCurrent; }
    uint32_t DataBase() const { return m_nDataBase; }
    const std::string& ArchivePath() const { return m_strPath; }

private:
    bool Load(CByteReader& in, const char* displayName);
    bool ReadStored(const uint8_t* stored, const SVrnNode& node, uint8_t* dst);

    SVrnNode* m_pCurrent = nullptr;
    std::unique_ptr<SVrnNode> m_pRoot;
    std::string m_strPath;
    uint32_t m_nDataBase = 0;
    const uint8_t* m_pMemory = nullptr;
    size_t m_nMemorySize = 0;
    std::unique_ptr<CLog> m_pLog;
};
