#include "base/paths.h"

std::string HostPath(const char* gameName) {
    std::string s = gameName ? gameName : "";
    for (char& c : s)
        if (c == '\\') c = '/';
    return s;
}
