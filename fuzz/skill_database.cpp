// Skill database reader on damaged files, fed as bytes: records, lookups by id and
// name, and the written image of what was read.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "items/database.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    TCDataBase<SSkillInfo> db;
    if (!db.LoadBuffer(data, size, kDbDataOffset, kSkillDbMagic)) {
        if (db.Count() != 0) __builtin_trap();  // a refused file adds nothing
        return 0;
    }
    const int32_t n = db.Count();
    if (n < 0 || size_t(n) > kDbMaxRecords || (n > 0 && size_t(n) * sizeof(SSkillInfo) + 8 > size)) __builtin_trap();
    std::vector<SSkillInfo> records;
    for (int32_t id = 1; id <= n; ++id) {
        SSkillInfo it = db.Get(id);
        // A terminated name finds a record (the first of that name).
        if (std::memchr(it.szName, 0, sizeof it.szName) && db.FindByName(it.szName) == 0) __builtin_trap();
        records.push_back(db.Get(id));
    }
    db.Get(-1);
    db.Get(n + 1);
    const std::vector<uint8_t> image = DatabaseBytes(kSkillDbMagic, records);
    TCDataBase<SSkillInfo> back;
    if (!back.LoadBuffer(image.data(), image.size(), kDbDataOffset, kSkillDbMagic) || back.Count() != n)
        __builtin_trap();
    return 0;
}
