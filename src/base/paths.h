// Game data names use backslashes ("data\role.pmg", "saves\%d.sav"); this turns
// such a name into a host path at the file-system boundary. Archive paths keep
// their backslashes and never pass through here.
#pragma once
#include <string>

std::string HostPath(const char* gameName);
inline std::string HostPath(const std::string& gameName) { return HostPath(gameName.c_str()); }
