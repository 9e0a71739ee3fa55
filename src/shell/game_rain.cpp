// CGame: rain, a screen-space effect of streaks sliding down and to the left.
#include <cstdlib>

#include "characters/random.h"
#include "media/graph.h"
#include "base/debug.h"
#include "shell/game.h"

void CGame::StartRain() {
    if (e_brain) return;
    CRandom random(0);
    m_nRainNumber = random.Range(150) + 50;
    m_vecRainDrops.assign(size_t(m_nRainNumber) * 2, 0);
    // Only drops 0 .. ceil(N / 2) - 1 exist: the table is walked as a flat list
    // of values, pair by pair, for value indices below N.
    for (int32_t i = 0; i < m_nRainNumber; i += 2) {
        m_vecRainDrops[size_t(i) + 1] = uint16_t(rand() % 480);
        m_vecRainDrops[size_t(i)] = uint16_t(rand() % 640);
    }
    e_brain = 1;
    DebugOut("start to rain:rain num=%d\n", m_nRainNumber);
}

void CGame::DrawRain(int target) {
    if (!e_brain) return;
    int surf = target > 0 ? SURF_TEMP : SURF_BUFFER;
    for (int32_t i = 0; i < m_nRainNumber && size_t(i) + 1 < m_vecRainDrops.size(); i += 2) {
        uint16_t& x = m_vecRainDrops[size_t(i)];
        uint16_t& y = m_vecRainDrops[size_t(i) + 1];
        x = uint16_t(x - 19);
        if (x == 0 || x >= 641) {
            x = uint16_t(rand() % 1280);
            if (x > 640) {
                x = 640;
                y = uint16_t(rand() % 480);
            } else {
                y = 0;
            }
        }
        y = uint16_t(y + 19);
        if (y >= 480) y = 0;
        int x1 = x - 8 < 0 ? 0 : x - 8;
        int y1 = y + 8 > 480 ? 480 : y + 8;
        COLORREF c = (rand() & 1) ? RGB(255, 255, 255) : RGB(200, 200, 200);
        m_pGraph->DrawLine(surf, x, y, x1, y1, c);
    }
}
