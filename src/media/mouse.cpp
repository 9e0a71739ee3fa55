#include "media/mouse.h"

#include "media/window.h"

int32_t CMouse::CreateMouse(int, int, int) {
    ReleaseMouse();
    m_bAcquired = true;
    return 0;
}

bool CMouse::IsLeftDown() { return m_bAcquired && platform::IsButtonDown(0); }
bool CMouse::IsRightDown() { return m_bAcquired && platform::IsButtonDown(1); }
void CMouse::ReleaseMouse() { m_bAcquired = false; }
