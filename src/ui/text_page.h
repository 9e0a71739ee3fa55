// Whole-page texts (the credits): lines broken at line feeds and, where a line is
// wider than the page, at blanks; each line centred on the page.
#pragma once
#include <cstdint>
#include <string>

#include "base/types.h"

class IRichTextSink;

// Every backslash of a configured text becomes a line feed (the trail bytes of
// two-byte GBK characters are left alone).
std::string BackslashesToLineFeeds(const std::string& text);

// Top of a block of `lines` lines of height `lineHeight` centred on the screen.
int32_t CenteredTextTop(int32_t lineHeight, int32_t lines);

// Draws text from rect.top down, one line per lineHeight, each line centred
// between rect.left and rect.right and broken at blanks to fit that width.
// Returns the number of lines drawn.
int32_t DrawTextPage(const std::string& text, const SRect& rect, int32_t lineHeight, COLORREF color,
                     IRichTextSink& sink);
