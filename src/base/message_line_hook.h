// The message line as a hook: code below the game object (roles, packs, story
// records) shows a line of text through it without knowing who draws it. The
// game installs a handler at construction; without one a message goes nowhere.
#pragma once

using GameMessageHandler = void (*)(const char* textGbk);

// Shows a GBK text on the message line (no-op without a handler or a text).
void ShowGameMessage(const char* textGbk);
// Installs the handler (nullptr removes it).
void SetGameMessageHandler(GameMessageHandler handler);
