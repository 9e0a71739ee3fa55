// The message line: one line of text shown for 70 presented frames in the middle
// of the screen. A new message joins a still visible one unless it repeats it or
// the two would be too long together.
#pragma once
#include <cstdint>

#include "base/state_json.h"
#include "media/graph.h"

constexpr int32_t MESSAGE_FRAMES = 70;

// Puts a text on the line with the merging rules.
void MessageLineShow(SMessageLine& line, const char* text);
// The darkened box for a text of the given extent.
SRect MessageLineBox(int32_t textWidth, int32_t textHeight);
// Draws the line on the back buffer while it has frames left, and counts down.
void MessageLineDraw(SMessageLine& line, CGraph& graph);
// The dump's "message" part: the text and the frames it has left.
void MessageLineWriteState(const SMessageLine& line, StateJson& out);
