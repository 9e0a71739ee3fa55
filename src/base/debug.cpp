#include "base/debug.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

bool DebugEnabled() {
    static const bool on = [] {
        const char* v = getenv("ASHEN_DEBUG");
        return v && strcmp(v, "1") == 0;
    }();
    return on;
}

void DebugOut(const char* format, ...) {
    if (!DebugEnabled()) return;
    va_list args;
    va_start(args, format);
    vfprintf(stderr, format, args);
    va_end(args);
}
