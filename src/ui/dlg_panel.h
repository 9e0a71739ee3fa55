// The dialog panel ("dlg.ini"): a centred title and a scrollable text, with the
// buttons exit (0), up (1) and down (2). It shows the information and help screens.
#pragma once
#include <string>
#include <vector>

#include "ui/panel.h"

class CDlgPanel : public CPanel {
public:
    CDlgPanel();
    ~CDlgPanel() override;

    bool Load(const char* fileName, const char* archivePath);
    // New title (label 0) and text (label 1); the text starts at its first line.
    void SetText(const std::vector<std::string>& title, const std::vector<std::string>& text);
    // The clicked button, after scrolling the text for up (1) and down (2).
    int OnClick();
    int OnClickAt(SPoint pt);
};
