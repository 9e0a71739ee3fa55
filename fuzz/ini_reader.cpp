// INI reader on arbitrary texts: the first line of the input holds a section
// and a key separated by a TAB; the rest is the text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "resources/ini.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string all(reinterpret_cast<const char*>(data), size);
    size_t nl = all.find('\n');
    if (nl == std::string::npos) return 0;
    std::string head = all.substr(0, nl), text = all.substr(nl + 1);
    size_t tab = head.find('\t');
    std::string section = head.substr(0, tab), key = tab == std::string::npos ? "" : head.substr(tab + 1);
    CIni ini;
    ini.OpenText(text);
    std::string v = ini.GetString(section.c_str(), key.c_str());
    if (v.find_first_of(";\r\n\t]") != std::string::npos) __builtin_trap();  // values end at these
    ini.GetInt(section.c_str(), key.c_str());
    CIni::ParseInt(text.c_str());
    return 0;
}
