#include "base/message_line_hook.h"

namespace {
GameMessageHandler g_handler = nullptr;
}  // namespace

void ShowGameMessage(const char* textGbk) {
    if (g_handler && textGbk) g_handler(textGbk);
}

void SetGameMessageHandler(GameMessageHandler handler) { g_handler = handler; }
