// Debug lines: short trace lines of the engine, apart from the engine log. They
// go to stderr, and only when the environment variable ASHEN_DEBUG is 1.
#pragma once

void DebugOut(const char* format, ...) __attribute__((format(printf, 1, 2)));
bool DebugEnabled();
