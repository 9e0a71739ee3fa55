#include "ui/richtext.h"

#include <cstring>

#include "media/graph.h"

COLORREF RichTextColor(int digit) {
    static const COLORREF kTable[10] = {
        RGB(0, 0, 0),     RGB(0, 0, 0),       RGB(255, 0, 0),   RGB(0, 255, 0),     RGB(0, 0, 255),
        RGB(255, 255, 0), RGB(255, 0, 255),   RGB(0, 255, 255), RGB(127, 127, 127), RGB(255, 255, 255),
    };
    return (digit >= 0 && digit <= 9) ? kTable[digit] : RGB(0, 0, 0);
}

void ExpandCommaEscapes(std::string& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '\\' && text[i + 1] == 'd') {
            text[i] = ',';
            text[i + 1] = ' ';
            ++i;
        }
    }
}

void ExpandCommaEscapes(char* text) {
    if (!text) return;
    for (char* p = text; p[0] && p[1]; ++p) {
        if (p[0] == '\\' && p[1] == 'd') {
            p[0] = ',';
            p[1] = ' ';
            ++p;
        }
    }
}

int32_t CGraphTextSink::MeasureRun(const char* run) {
    return m_pGraph ? m_pGraph->MeasureText(run, m_nFontHeight).x : 0;
}

void CGraphTextSink::DrawRun(const char* run, int32_t x, int32_t y, COLORREF color, bool centred) {
    if (m_pGraph) m_pGraph->DrawText(run, x, y, m_nSurface, centred ? TA_CENTER_TOP : TA_LEFT_TOP, color, m_nFontHeight);
}

CRichTextWriter::CRichTextWriter(IRichTextSink& sink, const SRichLayout& layout)
    : m_sink(sink), m_layout(layout), m_nPenX(layout.x), m_color(layout.defaultColor) {
    m_run[0] = 0;
}

// A full buffer is drawn early; the pen carries on after it, so nothing changes on screen.
void CRichTextWriter::Append(char c) {
    if (m_nRunLength + 1 >= sizeof m_run) Flush();
    m_run[m_nRunLength++] = c;
    m_run[m_nRunLength] = 0;
}

// A screen line may receive bytes while it lies inside the visible window.
bool CRichTextWriter::Room() {
    if (m_layout.maxLines > 0 && m_nLine - m_layout.firstLine >= m_layout.maxLines) m_bFull = true;
    return !m_bFull;
}

void CRichTextWriter::Flush() {
    if (m_nRunLength == 0) return;
    const int32_t shown = m_nLine - m_layout.firstLine;
    if (shown >= 0 && (m_layout.maxLines <= 0 || shown < m_layout.maxLines)) {
        const int32_t y = m_layout.y + shown * m_layout.lineHeight;
        m_sink.DrawRun(m_run, m_nPenX, y, m_color, m_layout.centred);
        m_nPenX += m_sink.MeasureRun(m_run);
    }
    m_nRunLength = 0;
    m_run[0] = 0;
}

void CRichTextWriter::NewLine() {
    Flush();
    ++m_nLine;
    m_nPenX = m_layout.x;
    m_nCount = 0;
}

bool CRichTextWriter::Paragraph(const char* text, size_t length) {
    if (m_bFull) return false;
    // The previous paragraph's last line holds bytes: this one starts below it.
    if (m_bStarted && m_nCount > 0) NewLine();
    m_bStarted = true;
    const auto* p = reinterpret_cast<const uint8_t*>(text);
    size_t i = 0;
    while (i < length) {
        const uint8_t c = p[i];
        if (c >= 0x80) {
            if (!Room()) return false;
            // Keep the two bytes of a character in one run.
            if (m_nRunLength + 3 > sizeof m_run) Flush();
            Append(char(c));
            if (i + 1 < length) Append(char(p[i + 1]));
            m_nCount += 2;
            i += 2;
        } else if (c == '<') {
            Flush();
            if (i + 1 < length) {
                const uint8_t d = p[i + 1];
                if (d >= '0' && d <= '9') m_color = RichTextColor(d - '0');
                i += 2;
            } else {
                i += 1;
            }
        } else if (c == '/' && i + 1 < length && p[i + 1] == '>') {
            Flush();
            m_color = m_layout.defaultColor;
            i += 2;
        } else if (c == '\n') {
            NewLine();
            i += 1;
            continue;
        } else {
            if (!Room()) return false;
            Append(char(c));
            m_nCount += 1;
            i += (c == ',') ? 2 : 1;
        }
        if (m_layout.wrapBytes > 0 && m_nCount >= m_layout.wrapBytes) NewLine();
    }
    Flush();
    return !m_bFull;
}
