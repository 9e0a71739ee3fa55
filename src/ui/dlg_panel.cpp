#include "ui/dlg_panel.h"

#include "media/window.h"
#include "resources/ini.h"

CDlgPanel::CDlgPanel() = default;
CDlgPanel::~CDlgPanel() = default;

bool CDlgPanel::Load(const char* fileName, const char* archivePath) {
    CIni ini;
    if (!BeginLayout(ini, fileName, archivePath, true)) return false;
    AddButton(ini, "exitButton", false);
    AddButton(ini, "upButton", false);
    AddButton(ini, "downButton", false);
    AddLabel(ini, "titleLabel", 1);
    AddLabel(ini, "textLabel", 0);
    ini.Close();
    return true;
}

void CDlgPanel::SetText(const std::vector<std::string>& title, const std::vector<std::string>& text) {
    if (m_vecLabels.size() < 2) return;
    m_vecLabels[0].lines = title;
    m_vecLabels[1].lines = text;
    m_vecLabels[1].firstLine = 0;
    m_vecLabels[1].atEnd = 0;
}

int CDlgPanel::OnClick() { return OnClickAt(platform::GetCursorPos()); }

int CDlgPanel::OnClickAt(SPoint pt) {
    const int n = GetClickedButtonAt(pt);
    if (m_vecLabels.size() < 2) return n;
    SLabel& text = m_vecLabels[1];
    if (n == 1 && text.firstLine > 0) {
        --text.firstLine;
        text.atEnd = 0;
    } else if (n == 2 && !text.atEnd) {
        ++text.firstLine;
    }
    return n;
}
