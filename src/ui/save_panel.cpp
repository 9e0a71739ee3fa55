#include "ui/save_panel.h"

#include <cstdio>
#include <cstring>

#include "media/graph.h"
#include "resources/ini.h"
#include "base/gbk.h"

namespace {
constexpr size_t kMagicSize = 4;
constexpr size_t kTimeOffset = 4, kTimeSize = 30;
constexpr size_t kHeaderOffset = 34, kHeaderSize = 92;
constexpr size_t kDisplayNameOffset = 24;
const char kNoData[] = "No Saved Data";

// A zero-terminated text inside a fixed field, bounded by the field.
std::string FieldText(const uint8_t* field, size_t size) {
    size_t n = 0;
    while (n < size && field[n]) ++n;
    return std::string(reinterpret_cast<const char*>(field), n);
}
}  // namespace

CSavePanel::CSavePanel() = default;
CSavePanel::~CSavePanel() = default;

bool CSavePanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    if (!BeginLayout(ini, fileName, archivePath, true)) return false;
    m_nWidth = ini.GetInt("panel", "w");
    m_nHeight = ini.GetInt("panel", "h");
    AddButton(ini, "exitButton", false);
    // Slot buttons: text buttons at the panel's left edge; SetTexts centres them.
    for (int i = 0; i < SAVE_SLOT_COUNT; ++i) {
        char section[16];
        std::snprintf(section, sizeof section, "Button%d", i);
        const int32_t y = ini.GetInt(section, "y");
        std::string caption = GbkText("无进度");
        if (i == 0) caption += GbkText("(快捷)");
        m_vecButtons.emplace_back(caption.c_str(), m_nX, m_nY + y, 0, 1);
    }
    AddLabel(ini, "titleLabel", 1);
    ini.Close();
    return true;
}

void CSavePanel::SetTexts(const std::string captions[SAVE_SLOT_COUNT], const char* title) {
    for (int n = 1; n <= SAVE_SLOT_COUNT && size_t(n) < m_vecButtons.size(); ++n) {
        CButton& b = m_vecButtons[size_t(n)];
        const std::string& text = captions[n - 1];
        b.SetText(text.c_str());
        SPoint size{0, 0};
        if (g_pGraph) size = g_pGraph->MeasureText(text.c_str(), 18);
        b.Move(m_nX + (m_nWidth - size.x) / 2, -1, size.x, size.y);
    }
    if (!m_vecLabels.empty()) {
        m_vecLabels[0].lines.assign(1, title ? title : "");
        m_vecLabels[0].firstLine = 0;
        m_vecLabels[0].atEnd = 0;
    }
}

bool IsSaveFile(const char* hostPath) {
    FILE* f = std::fopen(hostPath, "rb");
    if (!f) return false;
    char magic[kMagicSize] = {0};
    const bool ok = std::fread(magic, 1, kMagicSize, f) == kMagicSize && std::memcmp(magic, "vnsv", kMagicSize) == 0;
    std::fclose(f);
    return ok;
}

std::string SaveSlotCaption(const char* hostPath) {
    FILE* f = std::fopen(hostPath, "rb");
    if (!f) return kNoData;
    uint8_t head[kHeaderOffset + kHeaderSize];
    const size_t got = std::fread(head, 1, sizeof head, f);
    std::fclose(f);
    if (got < sizeof head || std::memcmp(head, "vnsv", kMagicSize) != 0) return kNoData;
    const std::string when = FieldText(head + kTimeOffset, kTimeSize);
    const std::string where =
        FieldText(head + kHeaderOffset + kDisplayNameOffset, kHeaderSize - kDisplayNameOffset);
    std::string caption = where + "(" + when + ")";
    if (caption.size() > SAVE_CAPTION_MAX) {
        // Cut at a character boundary so no half GBK character remains.
        size_t cut = 0;
        while (cut < caption.size()) {
            const size_t step = (uint8_t(caption[cut]) >= 0x80) ? 2 : 1;
            if (cut + step > SAVE_CAPTION_MAX) break;
            cut += step;
        }
        caption.resize(cut);
    }
    return caption;
}

std::string FormatSaveTime(const SSystemTime& t) {
    char text[kTimeSize];
    std::snprintf(text, sizeof text, "%d/%d/%d-%d:%d:%d", t.year, t.month, t.day, t.hour + 8, t.minute, t.second);
    return text;
}
