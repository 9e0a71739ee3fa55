#include "resources/picture_ref.h"

#include <cstring>

int PackOfFolder(const std::string& folder) {
    static const char* const kKeys[6] = {"role", "ui", "face", "items", "skill", "tiles"};
    for (int i = 0; i < 6; ++i)
        if (folder == kKeys[i]) return i;
    return -1;
}

bool SplitPictureRef(const char* ref, int& pack, std::string& name) {
    if (!ref) return false;
    const char* sep = strchr(ref, '/');
    if (!sep) sep = strchr(ref, '\\');
    if (!sep) return false;
    int p = PackOfFolder(std::string(ref, sep));
    if (p >= 0) pack = p;
    name = sep + 1;
    return true;
}
