// Message boxes. The default shows the text on stderr; the media layer installs a
// handler that also shows an SDL message box when a window may be shown. Texts
// are GBK, as the rest of the engine's strings.
#pragma once

enum EMessageBoxIcon { MB_NOICON = 0, MB_ICONERROR = 0x10, MB_ICONWARNING = 0x30, MB_ICONINFO = 0x40 };

void MessageBox(const char* textGbk, const char* captionGbk, int icon);

using MessageBoxHandler = void (*)(const char* textGbk, const char* captionGbk, int icon);
void SetMessageBoxHandler(MessageBoxHandler handler);

// Tests observe message boxes through this hook (it runs before the handler).
using MessageBoxObserver = void (*)(const char* textGbk, const char* captionGbk, int icon);
void SetMessageBoxObserver(MessageBoxObserver observer);
