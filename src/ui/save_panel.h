// The save panel ("savepanel.ini"): an exit button (0), six slot buttons (1..6)
// whose captions tell where and when each slot was saved, and a centred title.
#pragma once
#include <cstdint>
#include <string>

#include "base/clock.h"
#include "ui/panel.h"

constexpr int SAVE_SLOT_COUNT = 6;
constexpr size_t SAVE_CAPTION_MAX = 49;  // bytes of a slot caption

class CSavePanel : public CPanel {
public:
    CSavePanel();
    ~CSavePanel() override;

    bool Load(const char* fileName, const char* archivePath);
    // Slot captions (each centred within the panel width) and the title.
    void SetTexts(const std::string captions[SAVE_SLOT_COUNT], const char* title);

    int32_t Width() const { return m_nWidth; }
    int32_t Height() const { return m_nHeight; }

private:
    int32_t m_nWidth = 0;
    int32_t m_nHeight = 0;
};

// The caption of one slot file (a host path): "No Saved Data" when the file is
// missing, too short or not a saved game, else "<map display name>(<save time>)",
// at most 49 bytes.
std::string SaveSlotCaption(const char* hostPath);
// The save time text of a slot: "%d/%d/%d-%d:%d:%d" with the hour + 8, not reduced.
std::string FormatSaveTime(const SSystemTime& t);
// True when the file opens and begins with the four bytes "vnsv".
bool IsSaveFile(const char* hostPath);
