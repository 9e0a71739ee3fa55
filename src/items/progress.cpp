#include "items/progress.h"

IProgressListener* g_pProgress = nullptr;

IProgressListener::~IProgressListener() = default;

int ReportProgress(const char* name, int anyFlag) {
    if (!g_pProgress || !name) return 0;
    return g_pProgress->OnProgress(name, anyFlag);
}

void ReportLoss(const char* name) {
    if (g_pProgress && name) g_pProgress->OnLose(name);
}
