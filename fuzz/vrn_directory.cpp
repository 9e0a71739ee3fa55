// Archive reader on arbitrary bytes: directory parsing, lookups of every node
// and reads of every file entry (stored and LZ77 chunks).
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "resources/vrn_file.h"
#include "base/message_box.h"

namespace {
void Quiet(const char*, const char*, int) {}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static bool init = [] {
        SetMessageBoxHandler(&Quiet);
        return true;
    }();
    (void)init;
    CVRN_File vrn;
    if (!vrn.OpenMemory(data, size, "fuzz")) return 0;
    // Every node whose names hold no backslash must be found by its path.
    std::vector<std::string> paths;
    std::function<void(const SVrnNode&)> walk = [&](const SVrnNode& n) {
        for (const auto& [p, child] : n.children) {
            if (child->name.find('\\') != std::string::npos) continue;
            paths.push_back(p.substr(5));
            if (paths.size() > 2000) return;
            walk(*child);
        }
    };
    walk(*vrn.Root());
    std::vector<uint8_t> buf;
    for (const std::string& p : paths) {
        if (!vrn.FindEntry(p.c_str())) __builtin_trap();
        const int32_t size = vrn.GetSize();
        if (size < 0 || size > (8 << 20)) continue;
        buf.assign(size_t(size) + 1, 0);
        vrn.Read(buf.data(), size == 0 ? 1 : size);
    }
    return 0;
}
