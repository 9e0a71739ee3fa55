// Picture references in layout files and data: a pack folder, a separator and an
// entry name ("ui/bosskey.bmp", or "ui\bosskey.bmp" when the text holds no "/").
#pragma once
#include <string>

// Pack number of a folder key ("role" 0, "ui" 1, "face" 2, "items" 3, "skill" 4,
// "tiles" 5), or -1.
int PackOfFolder(const std::string& folder);

// Splits a reference at the first "/" (else the first "\"). False when the text
// has no separator (it is then not a picture reference). A folder that is not a
// pack key leaves pack as the caller had it; name is everything after the
// separator.
bool SplitPictureRef(const char* ref, int& pack, std::string& name);
