// The progress hook: game events that advance or count down missions (a role
// killed, an item picked up or given, an item sold, dropped or used) are
// reported here by the subsystems that see them. The mission system listens;
// while no listener is installed the reports go nowhere.
#pragma once

class IProgressListener {
public:
    // One unit of progress for name; anyFlag set lets "any" goals count it.
    // Returns 1 when something advanced.
    virtual int OnProgress(const char* name, int anyFlag) = 0;
    // One item of name has left the player.
    virtual void OnLose(const char* name) = 0;
    virtual ~IProgressListener();
};

extern IProgressListener* g_pProgress;

// Forward to g_pProgress; 0 / nothing while it is null.
int ReportProgress(const char* name, int anyFlag);
void ReportLoss(const char* name);
