// A panel button: a text caption (type 0), a picture that brightens under the
// cursor (type 1), or a picture with a separate hover picture (type 2). All
// buttons share one hover sound, played once each time the cursor enters.
#pragma once
#include <cstdint>
#include <string>

#include "base/types.h"

class CSound;

// The hover sound shared by every button (null: buttons are silent).
extern CSound* g_pButtonOverSound;
// Number of times any button has played the hover sound (for tests).
int64_t ButtonHoverSoundCount();

class CButton {
public:
    CButton(const char* text, int32_t x, int32_t y, int32_t type, int32_t hoverSound,
            const char* text1 = nullptr);
    virtual ~CButton();
    CButton(const CButton&) = default;
    CButton& operator=(const CButton&) = default;

    bool HitTest(SPoint pt) const { return m_rect.Contains(pt.x, pt.y); }
    bool UpdateHover(SPoint pt);
    // -1 for x or y keeps it; the rect becomes (x, y, x + width, y + height).
    void Move(int32_t x, int32_t y, int32_t width, int32_t height);
    void SetText(const char* text);
    // Draws the button on the back buffer; plays the hover sound first (below).
    void Draw();
    // The sound part of Draw alone: the hover sound on the first hovered frame,
    // re-armed when the cursor has left.
    void UpdateHoverSound();

    int32_t X() const { return m_nX; }
    int32_t Y() const { return m_nY; }
    int32_t Type() const { return m_nType; }
    const std::string& Text() const { return m_strText; }
    const std::string& Text1() const { return m_strText1; }
    const SRect& Rect() const { return m_rect; }
    int32_t Hover() const { return m_nHover; }
    int32_t Sounded() const { return m_nSounded; }

private:
    void ParsePictures();

    int32_t m_nX = 0, m_nY = 0;
    int32_t m_nType = 0;
    std::string m_strText;
    std::string m_strText1 = "NULL";
    SRect m_rect;
    int32_t m_nHover = 0;
    int32_t m_nSounded = 0;
    int32_t m_nHoverSound = 1;
    // Parsed picture references.
    int m_nPack = 0, m_nPack1 = 0;
    std::string m_strName, m_strName1;
    bool m_bPic = false, m_bPic1 = false;
};
