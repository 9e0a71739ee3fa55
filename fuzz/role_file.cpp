// Role file reader on damaged role files, fed as bytes, with the engine's and the
// tools' checks. Accepted frames fit the staging sheet; names are terminated; a
// strict accept is also an engine accept; what is read writes back unchanged.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "base/byte_reader.h"
#include "characters/role_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CByteReader engine(data, size, "fuzz.rol");
    SRoleFile f;
    const bool engineOk = ReadRoleFile(engine, f, ERoleCheck::Engine);
    CByteReader strict(data, size, "fuzz.rol");
    SRoleFile s;
    const bool strictOk = ReadRoleFile(strict, s, ERoleCheck::Strict);
    if (strictOk && !engineOk) __builtin_trap();
    if (!engineOk) {
        if (engine.Error().empty()) __builtin_trap();
        return 0;
    }
    if (f.actions.size() > size_t(ROLE_MAX_ACTIONS) || f.frames.size() > size_t(ROLE_MAX_FRAMES)) __builtin_trap();
    for (const SRoleFrame& fr : f.frames) {
        if (fr.width < 0 || fr.height < 0 || fr.width > ROLE_FRAME_MAX_W || fr.height > ROLE_FRAME_MAX_H)
            __builtin_trap();
        if (!std::memchr(fr.bitmap, 0, sizeof fr.bitmap)) __builtin_trap();
    }
    for (const SRoleAction& a : f.actions)
        if (!std::memchr(a.name, 0, sizeof a.name)) __builtin_trap();
    const std::vector<uint8_t> bytes = RoleFileBytes(f);
    if (bytes.size() > size) __builtin_trap();
    if (strictOk && RoleFileBytes(s) != std::vector<uint8_t>(data, data + size)) __builtin_trap();
    return 0;
}
