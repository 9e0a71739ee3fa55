// The markup of every text the game composes for the player: "<d" starts a run in
// colour d (0-9), "/>" returns to the default colour, LF breaks the line, a comma
// hides the byte after it, and a byte from 0x80 up starts a two-byte GBK character
// that is kept whole. The walk lays text out into screen lines of a fixed byte
// width and hands the coloured runs to a sink, so the layout can be checked
// without pixels and the same walk serves labels, tooltips and the dialogue box.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/types.h"

class CGraph;

// The colour of a markup digit (0..9); other values give black.
COLORREF RichTextColor(int digit);

// Replaces every "\d" by ", " (same length, so it works in place).
void ExpandCommaEscapes(std::string& text);
void ExpandCommaEscapes(char* text);

// Where the walk sends its runs. Runs arrive zero-terminated.
class IRichTextSink {
public:
    virtual ~IRichTextSink() = default;
    virtual int32_t MeasureRun(const char* run) = 0;
    virtual void DrawRun(const char* run, int32_t x, int32_t y, COLORREF color, bool centred) = 0;
};

// Draws runs with the display's text fonts on one surface.
class CGraphTextSink : public IRichTextSink {
public:
    CGraphTextSink(CGraph* graph, int surface, int fontHeight)
        : m_pGraph(graph), m_nSurface(surface), m_nFontHeight(fontHeight) {}
    int32_t MeasureRun(const char* run) override;
    void DrawRun(const char* run, int32_t x, int32_t y, COLORREF color, bool centred) override;

private:
    CGraph* m_pGraph;
    int m_nSurface;
    int m_nFontHeight;
};

struct SRichLayout {
    int32_t x = 0, y = 0;        // pen start; the centre of each run when centred
    int32_t lineHeight = 0;
    int32_t wrapBytes = 0;       // a screen line breaks once it holds this many bytes; 0: never
    bool centred = false;
    COLORREF defaultColor = 0;
    int32_t firstLine = 0;       // screen lines before it are laid out but not drawn
    int32_t maxLines = 0;        // screen lines drawn from firstLine on; 0: no limit
};

// One walk over one or more paragraphs. Each paragraph after one whose last
// screen line holds bytes begins on a new screen line.
class CRichTextWriter {
public:
    CRichTextWriter(IRichTextSink& sink, const SRichLayout& layout);
    // Lays out and draws one paragraph; false once the visible lines are used up
    // (the rest of the text is not walked).
    bool Paragraph(const char* text, size_t length);
    bool Paragraph(const std::string& text) { return Paragraph(text.data(), text.size()); }
    bool Full() const { return m_bFull; }
    // Number of the current screen line, counted from 0 over the whole walk.
    int32_t CurrentLine() const { return m_nLine; }

private:
    void Flush();
    void NewLine();
    bool Room();

    void Append(char c);

    IRichTextSink& m_sink;
    SRichLayout m_layout;
    // The bytes not yet drawn; a fixed buffer so that drawing allocates nothing.
    char m_run[256];
    size_t m_nRunLength = 0;
    int32_t m_nPenX = 0;
    int32_t m_nLine = 0;
    int32_t m_nCount = 0;
    COLORREF m_color = 0;
    bool m_bFull = false;
    bool m_bStarted = false;
};
