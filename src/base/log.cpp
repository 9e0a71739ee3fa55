#include "base/log.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "base/clock.h"
#include "base/gbk.h"
#include "base/paths.h"

namespace {

// Writes text to a file opened in binary mode, turning every LF into CR LF: the
// log's lines end in CR LF on disk.
void WriteTextMode(FILE* f, const char* text) {
    for (const char* p = text; *p; ++p) {
        if (*p == '\n') fputc('\r', f);
        fputc(*p, f);
    }
}

}  // namespace

CLog::CLog(const char* path, bool truncate) {
    memset(m_szPath, 0, sizeof(m_szPath));
    if (path) strncpy(m_szPath, path, sizeof(m_szPath) - 1);
    if (truncate) {
        FILE* f = fopen(HostPath(m_szPath).c_str(), "wb");
        if (f) {
            WriteTextMode(f, "\t\t..::Game Log::..\n");
            fclose(f);
        } else {
            // The log is the one place the engine tells what went wrong; when it
            // cannot be written (a read-only game folder), say so where it is seen.
            fprintf(stderr, "ashen-oath: cannot write the engine log %s (%s): nothing will be logged\n", m_szPath,
                    strerror(errno));
        }
    }
}

int FormatLogEntry(char* out, int outSize, const SSystemTime& t, const char* message) {
    return snprintf(out, size_t(outSize), "(%d/%d/%d  %d:%d:%d:%d)----->%s\n", t.year, t.month, t.day,
                    t.hour + 8, t.minute, t.second, t.milliseconds, message);
}

void CLog::Write(const char* format, ...) {
    va_list args;
    va_start(args, format);
    WriteV(format, args);
    va_end(args);
}

void CLog::WriteV(const char* format, va_list args) {
    char message[1024];
    vsnprintf(message, sizeof(message), format, args);  // cut at 1023 bytes
    FILE* f = fopen(HostPath(m_szPath).c_str(), "ab");
    if (!f) return;
    SSystemTime t;
    GetSystemTime(t);
    char entry[1200];
    FormatLogEntry(entry, sizeof(entry), t, message);
    WriteTextMode(f, entry);
    fclose(f);
}

#if defined(__SANITIZE_ADDRESS__)
#define ASHEN_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define ASHEN_SANITIZED 1
#endif
#endif

bool CrashLogSanitized() {
#ifdef ASHEN_SANITIZED
    return true;
#else
    return false;
#endif
}

// ---------------------------------------------------------------------------
// Crash log. Everything below runs inside a signal handler: no allocation, no
// stdio, only open/write/close and a hand-made hexadecimal formatter.

namespace {

char g_crashLine1[64], g_crashLine2[64], g_crashLine3[64];  // GBK labels, prepared at install
size_t g_crashLen1, g_crashLen2, g_crashLen3;
char g_crashPath[512];

void HexWord(char* out, uint32_t v) {
    static const char digits[] = "0123456789ABCDEF";
    for (int i = 7; i >= 0; --i) {
        out[i] = digits[v & 15];
        v >>= 4;
    }
}

// The crash log reports a signal as the Windows exception code of the same fault.
uint32_t CodeForSignal(int sig, int siCode) {
    switch (sig) {
        case SIGSEGV: return 0xC0000005u;  // access violation
        case SIGBUS: return 0xC0000006u;   // in-page error
        case SIGILL: return 0xC000001Du;   // illegal instruction
        case SIGFPE: return siCode == FPE_INTDIV ? 0xC0000094u : 0xC0000090u;
        case SIGABRT: return 0x40000015u;  // fatal application exit
        default: return 0xE0000000u | uint32_t(sig);
    }
}

void WriteCrashLine(int fd, const char* label, size_t labelLen, uint32_t value) {
    char line[96];
    size_t n = 0;
    memcpy(line, label, labelLen);
    n = labelLen;
    memcpy(line + n, " : 0x", 5);
    n += 5;
    HexWord(line + n, value);
    n += 8;
    // "\r\n" written through a text-mode stream ends as CR CR LF on disk.
    line[n++] = '\r';
    line[n++] = '\r';
    line[n++] = '\n';
    ssize_t w = write(fd, line, n);
    (void)w;
}

void CrashHandler(int sig, siginfo_t* info, void*) {
    int fd = open(g_crashPath, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
        uint32_t address = info ? uint32_t(reinterpret_cast<uintptr_t>(info->si_addr)) : 0;
        uint32_t flags = (sig == SIGABRT) ? 0u : 1u;  // 1: not continuable
        WriteCrashLine(fd, g_crashLine1, g_crashLen1, CodeForSignal(sig, info ? info->si_code : 0));
        WriteCrashLine(fd, g_crashLine2, g_crashLen2, address);
        WriteCrashLine(fd, g_crashLine3, g_crashLen3, flags);
        close(fd);
    }
    // Hand over to the default action.
    signal(sig, SIG_DFL);
    raise(sig);
}

void PrepareLabel(char* dst, size_t& len, const char* utf8) {
    std::string g = Utf8ToGbk(utf8);
    len = std::min(g.size(), size_t(60));
    memcpy(dst, g.data(), len);
}

}  // namespace

void InstallCrashLog() {
    // A sanitised build keeps the sanitizer's own handlers: its report says far
    // more about a wild access than the crash log can.
    if (CrashLogSanitized()) return;
    PrepareLabel(g_crashLine1, g_crashLen1, "异常发生代码");
    PrepareLabel(g_crashLine2, g_crashLen2, "异常发生地址");
    PrepareLabel(g_crashLine3, g_crashLen3, "异常发生标志");
    std::string path = HostPath("exceptionLog.log");
    if (getcwd(g_crashPath, sizeof(g_crashPath) - 20)) {
        strcat(g_crashPath, "/");
        strcat(g_crashPath, path.c_str());
    } else {
        strncpy(g_crashPath, path.c_str(), sizeof(g_crashPath) - 1);
    }
    struct sigaction sa;
    memset(&sa, 0, sizeof(sa));
    sa.sa_sigaction = CrashHandler;
    sa.sa_flags = SA_SIGINFO | SA_RESETHAND;
    sigemptyset(&sa.sa_mask);
    for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(sig, &sa, nullptr);
}
