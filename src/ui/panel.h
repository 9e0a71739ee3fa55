// The panel framework: a background picture with buttons and text labels, laid
// out by an INI file and drawn over the frozen screen. The game shows one panel
// at a time, asks it each frame to update its hover state and draw itself, and on
// a left click asks which button is under the cursor.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "base/state_json.h"
#include "base/types.h"
#include "ui/button.h"

class CIni;
class CSound;
class IRichTextSink;

// A block of text lines inside a panel, in the rich-text markup.
struct SLabel {
    int32_t charWidth = 0;       // average character width + 1; 0 until first measured
    int32_t lineHeight = 0;      // font height + external leading
    COLORREF color = 0;
    int fontHeight = 20;
    std::vector<std::string> lines;  // one string per paragraph
    int32_t x = 0, y = 0;        // start; the centre x of a centred label
    int32_t linesShown = 0;      // "lines"
    int32_t lineChars = 0;       // "lineChars": wrap width in bytes
    int32_t firstLine = 0;       // scroll position
    int32_t centred = 0;
    int32_t atEnd = 0;           // 1 once a draw has reached the end of the text
};

// Lays a label out through a sink: expands "\d" in its lines, draws the visible
// screen lines and sets its at-end flag. The label's line height must be known.
void DrawLabelText(SLabel& label, IRichTextSink& sink);

// Where a tooltip box of the given size goes for a request at (x, y).
struct STooltipPlacement {
    int32_t left = 0, top = 0;       // text area
    SRect box;                       // the darkened box
    int32_t penX = 0, penY = 0;      // centre of the first line
};
STooltipPlacement PlaceTooltip(int32_t x, int32_t y, int32_t width, int32_t lineHeight, int32_t lineCount);

// Splits a picture reference "kind/name" (or "kind\name" when there is no "/")
// into the pack number and the entry name. False for "NULL", an empty text or a
// text without separator. A kind that is not a pack key leaves *pack unchanged.
bool ParsePictureRef(const char* ref, int* pack, std::string* name);

class CPanel {
public:
    CPanel();
    virtual ~CPanel();
    CPanel(const CPanel&) = delete;
    CPanel& operator=(const CPanel&) = delete;

    // Hover of every button from the cursor (or a given point).
    void UpdateHover();
    void UpdateHoverAt(SPoint pt);
    // Number of the button under the cursor, -1 for none; the highest wins.
    int GetClickedButton() const;
    int GetClickedButtonAt(SPoint pt) const;
    // Background, buttons, then labels, on the back buffer.
    void Draw();
    // Plays "sound\<name>" once on the panel's own buffer; "" does nothing.
    void PlaySound(const char* fileName);
    // A darkened box with centred white text near (x, y), in the panel's font.
    void DrawTooltip(int32_t x, int32_t y, const char* text, int32_t lineChars, int32_t lineCount);

    int32_t X() const { return m_nX; }
    int32_t Y() const { return m_nY; }
    std::vector<CButton>& Buttons() { return m_vecButtons; }
    std::vector<SLabel>& Labels() { return m_vecLabels; }
    const std::string& BgPic() const { return m_strBgPic; }
    // The dump's "panel" part: the hovered button (-1: none), the button texts
    // and each label's lines with its scroll position.
    void WriteState(StateJson& out) const;

protected:
    // Layout helpers for the panels' Load operations.
    // Opens a layout file and starts the panel anew: no buttons, no labels, the
    // "panel" section read. False (and nothing changed) when the file failed.
    bool BeginLayout(CIni& ini, const char* fileName, const char* archivePath, bool readPosition);
    void ReadPanelSection(CIni& ini, bool readPosition);
    void AddButton(CIni& ini, const char* section, bool readText1);
    void AddLabel(CIni& ini, const char* section, int centred);
    void DrawLabel(SLabel& label);

    int m_nFontHeight = 18;
    int32_t m_nX = 0, m_nY = 0;
    std::vector<CButton> m_vecButtons;
    std::vector<SLabel> m_vecLabels;
    std::string m_strBgPic;
    int m_nBgPack = 0;
    std::string m_strBgName;
    bool m_bHasBg = false;
    CSound* m_pSound = nullptr;  // owned, made on first use
};
