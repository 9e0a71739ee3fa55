// The item and skill database files.
#include "items/database_file.h"

#include <cstring>

bool ReadDatabaseHeader(CByteReader& in, uint32_t magic, int32_t dataOffset, size_t recordSize, size_t* count) {
    *count = 0;
    if (in.Remaining() < 4) return in.Fail("shorter than a magic");
    if (in.ReadU32("magic") != magic) return in.FailAt(0, "wrong magic");
    if (dataOffset < 0) return in.FailAt(0, "negative data offset %d", dataOffset);
    // A data offset past the end leaves no records; that is not an error.
    const size_t start = size_t(dataOffset) < in.Size() ? size_t(dataOffset) : in.Size();
    in.Seek(start, "data offset");
    const size_t records = recordSize ? in.Remaining() / recordSize : 0;
    if (records > kDbMaxRecords)
        return in.Fail("%zu records, more than the %zu a database may hold", records, kDbMaxRecords);
    *count = records;
    return in.Ok();
}

std::vector<uint8_t> DatabaseBytes(uint32_t magic, uint32_t countWord, const void* records, size_t count,
                                   size_t recordSize) {
    std::vector<uint8_t> out(8 + count * recordSize, 0);
    for (int i = 0; i < 4; ++i) {
        out[size_t(i)] = uint8_t(magic >> (8 * i));
        out[size_t(4 + i)] = uint8_t(countWord >> (8 * i));
    }
    if (count) std::memcpy(out.data() + 8, records, count * recordSize);
    return out;
}
