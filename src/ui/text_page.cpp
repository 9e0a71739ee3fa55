#include "ui/text_page.h"

#include "ui/richtext.h"

std::string BackslashesToLineFeeds(const std::string& text) {
    std::string out = text;
    for (size_t i = 0; i < out.size(); ++i) {
        const uint8_t c = uint8_t(out[i]);
        if (c >= 0x81) {
            ++i;  // a two-byte character: its second byte may look like a backslash
        } else if (c == '\\') {
            out[i] = '\n';
        }
    }
    return out;
}

int32_t CenteredTextTop(int32_t lineHeight, int32_t lines) { return (SCREEN_H - lineHeight * lines) / 2; }

int32_t DrawTextPage(const std::string& text, const SRect& rect, int32_t lineHeight, COLORREF color,
                     IRichTextSink& sink) {
    const int32_t centre = (rect.left + rect.right) / 2;
    const int32_t width = rect.Width();
    int32_t y = rect.top;
    int32_t drawn = 0;
    auto emit = [&](const std::string& line) {
        if (!line.empty()) sink.DrawRun(line.c_str(), centre, y, color, true);
        y += lineHeight;
        ++drawn;
    };
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        // Break at blanks while the line is wider than the page.
        while (!line.empty() && sink.MeasureRun(line.c_str()) > width) {
            size_t cut = std::string::npos;
            for (size_t pos = line.find(' '); pos != std::string::npos; pos = line.find(' ', pos + 1)) {
                if (sink.MeasureRun(line.substr(0, pos).c_str()) > width) break;
                cut = pos;
            }
            if (cut == std::string::npos || cut == 0) break;  // one long word: leave it whole
            emit(line.substr(0, cut));
            line.erase(0, cut + 1);
        }
        emit(line);
        if (end == text.size()) break;
        start = end + 1;
    }
    return drawn;
}
