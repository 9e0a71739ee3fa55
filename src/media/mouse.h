// The held-button mouse device: polled once a frame for the left and right
// buttons. Cursor positions and clicks come from window messages instead.
#pragma once
#include <cstdint>

class CMouse {
public:
    CMouse() = default;
    virtual ~CMouse() { ReleaseMouse(); }
    // Creates and acquires the device; 0 on success.
    int32_t CreateMouse(int foreground, int exclusive, int immediate);
    bool IsLeftDown();
    bool IsRightDown();
    void ReleaseMouse();

private:
    bool m_bAcquired = false;
};
