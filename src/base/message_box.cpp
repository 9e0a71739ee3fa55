#include "base/message_box.h"

#include <cstdio>

#include "base/gbk.h"

namespace {
MessageBoxHandler g_handler = nullptr;
MessageBoxObserver g_observer = nullptr;
}  // namespace

void SetMessageBoxHandler(MessageBoxHandler handler) { g_handler = handler; }
void SetMessageBoxObserver(MessageBoxObserver observer) { g_observer = observer; }

void MessageBox(const char* textGbk, const char* captionGbk, int icon) {
    if (g_observer) g_observer(textGbk ? textGbk : "", captionGbk ? captionGbk : "", icon);
    fprintf(stderr, "[%s] %s\n", GbkToUtf8(captionGbk ? captionGbk : "").c_str(),
            GbkToUtf8(textGbk ? textGbk : "").c_str());
    if (g_handler) g_handler(textGbk ? textGbk : "", captionGbk ? captionGbk : "", icon);
}
