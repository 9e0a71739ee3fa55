// The item and skill databases held in memory: TCDataBase<T> over the files of
// items/database_file.h. Index 0 is a zero-filled placeholder; the k-th record
// of the file has id k.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "base/log.h"
#include "base/paths.h"
#include "items/database_file.h"

template <class T>
class TCDataBase {
public:
    TCDataBase() : m_records(1) { std::memset(&m_records[0], 0, sizeof(T)); }
    virtual ~TCDataBase() = default;

    // Reads "data\items.itm" style names from the disk (not from an archive).
    // False when the file cannot be opened, its magic differs or it holds more
    // records than a database may (a line in the engine log says which). Records
    // follow at dataOffset up to the end of the file; a trailing partial record
    // is ignored. A second Load appends.
    bool Load(const char* fileName, int32_t dataOffset, uint32_t magic) {
        std::vector<uint8_t> bytes;
        std::string error;
        const EFileRead got = ReadFileBytes(HostPath(fileName), DatabaseFileMaxBytes(sizeof(T)), bytes, &error);
        if (got == EFileRead::Missing) return false;
        if (got != EFileRead::Ok) {
            CLog("GameEngine.log", false).Write("database %s, refused!", error.c_str());
            return false;
        }
        CByteReader in(bytes, fileName);
        if (ReadDatabaseRecords(in, magic, dataOffset, m_records)) return true;
        CLog("GameEngine.log", false).Write("database %s, refused!", in.Error().c_str());
        return false;
    }

    // The same over a file image in memory (nothing logged).
    bool LoadBuffer(const uint8_t* data, size_t size, int32_t dataOffset, uint32_t magic) {
        CByteReader in(data, size);
        return ReadDatabaseRecords(in, magic, dataOffset, m_records);
    }

    // A copy of record id; ids outside 0..Count() give the placeholder.
    T Get(int32_t id) const {
        if (id < 0 || size_t(id) >= m_records.size()) return m_records.empty() ? T{} : m_records[0];
        return m_records[size_t(id)];
    }
    // Records read from files (the placeholder not counted); -1 when empty.
    int32_t Count() const { return m_records.empty() ? -1 : int32_t(m_records.size() - 1); }

    // Id of the first record whose name equals name byte for byte, 0 for none.
    int32_t FindByName(const char* name) const {
        for (size_t i = 1; i < m_records.size(); ++i)
            if (std::strncmp(m_records[i].szName, name, sizeof(m_records[i].szName)) == 0 &&
                std::strlen(name) < sizeof(m_records[i].szName))
                return int32_t(i);
        return 0;
    }

private:
    std::vector<T> m_records;
};

using CItemDataBase = TCDataBase<SItemInfo>;
using CSkillDataBase = TCDataBase<SSkillInfo>;

// The game's two databases, for code without a game pointer (set by the game
// object at construction, null before and after it).
extern CItemDataBase* g_pItemDB;
extern CSkillDataBase* g_pSkillDB;
