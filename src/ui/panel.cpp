#include "ui/panel.h"

#include <cstring>

#include <nlohmann/json.hpp>

#include "media/graph.h"
#include "media/sound.h"
#include "media/window.h"
#include "resources/ini.h"
#include "resources/picture_ref.h"
#include "ui/richtext.h"

bool ParsePictureRef(const char* ref, int* pack, std::string* name) {
    if (!ref || !*ref || std::strcmp(ref, "NULL") == 0) return false;
    return SplitPictureRef(ref, *pack, *name);
}

void DrawLabelText(SLabel& label, IRichTextSink& sink) {
    SRichLayout layout;
    layout.x = label.x;
    layout.y = label.y;
    layout.lineHeight = label.lineHeight;
    layout.wrapBytes = label.lineChars;
    layout.centred = label.centred != 0;
    layout.defaultColor = label.color;
    layout.firstLine = label.firstLine;
    layout.maxLines = label.linesShown;
    CRichTextWriter writer(sink, layout);
    for (std::string& line : label.lines) {
        ExpandCommaEscapes(line);
        if (!writer.Paragraph(line)) return;
    }
    label.atEnd = 1;
}

STooltipPlacement PlaceTooltip(int32_t x, int32_t y, int32_t width, int32_t lineHeight, int32_t lineCount) {
    STooltipPlacement p;
    const int32_t textHeight = lineHeight * lineCount;
    p.left = x < 4 ? 4 : x;
    if (p.left + width + 3 >= SCREEN_W) p.left = SCREEN_W - 5 - width;
    p.top = y;
    if (y + textHeight + 4 > SCREEN_H) p.top = SCREEN_H - 7 - textHeight;
    p.box = SRect{p.left - 3, p.top, p.left + width + 3, p.top + textHeight + 4};
    p.penX = p.left + width / 2 + 2;
    p.penY = p.top + 2;
    return p;
}

CPanel::CPanel() = default;

CPanel::~CPanel() { delete m_pSound; }

void CPanel::UpdateHover() { UpdateHoverAt(platform::GetCursorPos()); }

void CPanel::UpdateHoverAt(SPoint pt) {
    for (CButton& b : m_vecButtons) b.UpdateHover(pt);
}

int CPanel::GetClickedButton() const { return GetClickedButtonAt(platform::GetCursorPos()); }

int CPanel::GetClickedButtonAt(SPoint pt) const {
    for (int i = int(m_vecButtons.size()) - 1; i >= 0; --i)
        if (m_vecButtons[size_t(i)].HitTest(pt)) return i;
    return -1;
}

void CPanel::Draw() {
    if (g_pGraph && m_bHasBg) g_pGraph->DrawBitmap(m_nBgPack, m_strBgName.c_str(), SURF_BUFFER, m_nX, m_nY);
    for (CButton& b : m_vecButtons) b.Draw();
    for (SLabel& l : m_vecLabels) DrawLabel(l);
}

void CPanel::DrawLabel(SLabel& label) {
    if (!g_pGraph) return;
    if (label.charWidth == 0) {
        const SFontMetrics m = g_pGraph->GetFontMetrics(label.fontHeight);
        label.charWidth = m.avgCharWidth + 1;
        label.lineHeight = m.height + m.externalLeading;
    }
    CGraphTextSink sink(g_pGraph, SURF_BUFFER, label.fontHeight);
    DrawLabelText(label, sink);
}

void CPanel::PlaySound(const char* fileName) {
    if (!fileName || !*fileName) return;
    if (!m_pSound) m_pSound = new CSound();
    const std::string path = std::string("sound\\") + fileName;
    m_pSound->LoadWav(path.c_str());
    m_pSound->Play(0);
}

void CPanel::DrawTooltip(int32_t x, int32_t y, const char* text, int32_t lineChars, int32_t lineCount) {
    if (!g_pGraph || !text) return;
    const int32_t width = g_pGraph->MeasureText("aaaaaaaaaaaaaaaaaaaaaaa", m_nFontHeight).x;
    const SFontMetrics m = g_pGraph->GetFontMetrics(m_nFontHeight);
    const int32_t lineHeight = m.height + m.externalLeading;
    const STooltipPlacement p = PlaceTooltip(x, y, width, lineHeight, lineCount);
    g_pGraph->HalfTintRect(SURF_BUFFER, p.box.left, p.box.top, p.box.right, p.box.bottom, 1);
    SRichLayout layout;
    layout.x = p.penX;
    layout.y = p.penY;
    layout.lineHeight = lineHeight;
    layout.wrapBytes = lineChars;
    layout.centred = true;
    layout.defaultColor = RGB(255, 255, 255);
    CGraphTextSink sink(g_pGraph, SURF_BUFFER, m_nFontHeight);
    CRichTextWriter writer(sink, layout);
    writer.Paragraph(text, std::strlen(text));
}

bool CPanel::BeginLayout(CIni& ini, const char* fileName, const char* archivePath, bool readPosition) {
    if (!ini.Open(fileName, archivePath) || ini.IsFailed()) {
        ini.Close();
        return false;
    }
    m_vecButtons.clear();
    m_vecLabels.clear();
    ReadPanelSection(ini, readPosition);
    return true;
}

void CPanel::ReadPanelSection(CIni& ini, bool readPosition) {
    m_strBgPic = ini.GetString("panel", "bgpic");
    m_nBgPack = 0;
    m_bHasBg = ParsePictureRef(m_strBgPic.c_str(), &m_nBgPack, &m_strBgName);
    if (readPosition) {
        m_nX = ini.GetInt("panel", "x");
        m_nY = ini.GetInt("panel", "y");
    }
}

void CPanel::AddButton(CIni& ini, const char* section, bool readText1) {
    const std::string text = ini.GetString(section, "text");
    const int32_t type = ini.GetInt(section, "type");
    const int32_t x = ini.GetInt(section, "x");
    const int32_t y = ini.GetInt(section, "y");
    std::string text1;
    const bool hasText1 = readText1 && type == 2 && !(text1 = ini.GetString(section, "text1")).empty();
    m_vecButtons.emplace_back(text.c_str(), m_nX + x, m_nY + y, type, 1, hasText1 ? text1.c_str() : nullptr);
}

void CPanel::AddLabel(CIni& ini, const char* section, int centred) {
    SLabel label;
    label.linesShown = ini.GetInt(section, "lines");
    label.x = m_nX + ini.GetInt(section, "x");
    label.y = m_nY + ini.GetInt(section, "y");
    label.lineChars = ini.GetInt(section, "lineChars");
    label.centred = centred;
    label.fontHeight = 20;
    m_vecLabels.push_back(std::move(label));
}

void CPanel::WriteState(StateJson& out) const {
    int hovered = -1;
    for (size_t i = 0; i < m_vecButtons.size(); ++i)
        if (m_vecButtons[i].Hover()) hovered = int(i);
    out["hovered"] = hovered;
    StateJson& buttons = out["buttons"] = StateJson::array();
    for (const CButton& b : m_vecButtons) buttons.push_back(StateText(b.Text().c_str()));
    StateJson& labels = out["labels"] = StateJson::array();
    for (const SLabel& l : m_vecLabels) {
        StateJson label = StateJson::object();
        label["first_line"] = l.firstLine;
        StateJson& lines = label["lines"] = StateJson::array();
        for (const std::string& line : l.lines) lines.push_back(StateText(line.c_str()));
        labels.push_back(std::move(label));
    }
}
