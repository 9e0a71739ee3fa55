#include "ui/message_line.h"

#include <cstring>

#include <nlohmann/json.hpp>

#include "ui/richtext.h"

void MessageLineShow(SMessageLine& line, const char* text) {
    char given[sizeof line.text];
    std::strncpy(given, text ? text : "", sizeof given - 1);
    given[sizeof given - 1] = 0;
    ExpandCommaEscapes(given);
    const size_t current = std::strlen(line.text);
    const size_t added = std::strlen(given);
    if (line.framesLeft < 1 || std::strstr(line.text, given) != nullptr || current + added >= 78) {
        std::memcpy(line.text, given, added + 1);
    } else {
        // Both are shorter than 78 together, so the joined text fits.
        std::memcpy(line.text + current, "  ", 2);
        std::memcpy(line.text + current + 2, given, added + 1);
    }
    line.framesLeft = MESSAGE_FRAMES;
}

SRect MessageLineBox(int32_t textWidth, int32_t textHeight) {
    SRect r;
    r.left = (630 - textWidth) / 2;
    r.top = (365 - textHeight) / 2;
    r.right = r.left + textWidth + 10;
    r.bottom = r.top + textHeight + 5;
    return r;
}

void MessageLineDraw(SMessageLine& line, CGraph& graph) {
    if (line.framesLeft <= 0) return;
    const SPoint size = graph.MeasureText(line.text, 18);
    const SRect box = MessageLineBox(size.x, size.y);
    graph.HalfTintRect(SURF_BUFFER, box.left, box.top, box.right, box.bottom, 1);
    graph.DrawText(line.text, 320, (365 - size.y) / 2 + 2, SURF_BUFFER, TA_CENTER_TOP, RGB(255, 255, 255), 18);
    --line.framesLeft;
}

void MessageLineWriteState(const SMessageLine& line, StateJson& out) {
    out["text"] = StateText(line.text, sizeof line.text);
    out["frames_left"] = line.framesLeft;
}
