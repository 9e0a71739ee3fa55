// The engine log "GameEngine.log": each writer only remembers the path, and each
// line opens the file, appends one entry and closes it again, so the file is
// complete up to the last line even after a crash.
#pragma once
#include <cstdarg>

class CLog {
public:
    // Stores the path (at most 254 bytes); with truncate set, empties the file and
    // writes the header line.
    CLog(const char* path, bool truncate);
    virtual ~CLog() = default;

    // Formats the message (at most 1023 bytes), then appends
    // "(%d/%d/%d  %d:%d:%d:%d)----->%s\n" with the UTC time, hour + 8; CR LF on disk.
    void Write(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void WriteV(const char* format, va_list args);

    const char* GetPath() const { return m_szPath; }

private:
    char m_szPath[255];
};

// Formats one entry exactly as it appears in the file (before the CR LF
// translation), for the given broken-down UTC time. Used by the writer and tests.
struct SSystemTime;
int FormatLogEntry(char* out, int outSize, const SSystemTime& t, const char* message);

// Installs the crash-log signal handlers (SIGSEGV, SIGBUS, SIGFPE, SIGILL,
// SIGABRT). The handler writes "exceptionLog.log" in the working directory with
// async-signal-safe calls only, then re-raises with the default action.
void InstallCrashLog();
// True in a sanitised build, where InstallCrashLog leaves the sanitizer's own
// handlers in place and installs nothing.
bool CrashLogSanitized();
