// Movement: facing, starting a walk, the probe point, the walk handler and the
// cheap movement of roles outside the view. No path finding: roles go straight.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "characters/role.h"
#include "base/debug.h"

int32_t CRole::s_nWalkCounter = 0;

namespace {
constexpr double kSector15 = 0.26179938333333336;  // 15 degrees with pi = 3.1415926
constexpr double kSector75 = 1.3089969166666666;   // 75 degrees
bool IsMoving(const char* state) { return std::strcmp(state, "walk") == 0 || std::strcmp(state, "run") == 0; }
}  // namespace

void CRole::FaceTo(double tx, double ty) {
    const double x = m_x, y = m_y;
    if (tx == x && ty == y) return;
    const double a = tx == x ? 1.5707963267948966 : std::fabs(std::atan((ty - y) / (tx - x)));
    if (a <= kSector15) {
        m_nDir = tx > x ? 3 : 7;
    } else if (a < kSector75) {
        if (tx > x && ty < y) m_nDir = 2;
        else if (tx > x && ty > y) m_nDir = 4;
        else m_nDir = ty <= y ? 8 : 6;
    } else if (a > kSector75) {
        m_nDir = ty >= y ? 5 : 1;
    }
}

int CRole::WalkTo(int32_t x, int32_t y, const char* mode) {
    if (std::strcmp(m_szState, "fight") == 0) return 0;
    m_nTargetX = x;
    m_nTargetY = y;
    FaceTo(x, y);
    if (m_nNpcId == 0 && m_nMp == 0 && std::strcmp(mode, "run") == 0) mode = "walk";
    if (std::strcmp(mode, m_szState) != 0 || m_nNpcId != 0) {
        SetAction(m_nDir, mode, 0);
        m_nStep = 0;
    }
    return 1;
}

SPoint CRole::GetStepPoint(const char* state) const {
    if (!IsMoving(state)) return SPoint{-1, -1};
    const double dx = double(m_nTargetX) - m_x, dy = double(m_nTargetY) - m_y;
    const double d = std::sqrt(dx * dx + dy * dy);
    if (d == 0.0) return SPoint{m_x, m_y + 32};
    return SPoint{int32_t(m_x + 6.0 * dx / d), int32_t(m_y + 6.0 * dy / d + 32.0)};
}

SPoint CRole::WanderPoint() const {
    const int r2 = std::rand() % 1400;
    const int r1 = std::rand() % 1400;
    return SPoint{m_x - 200 + r1, m_y + 200 - r2};
}

void CRole::WalkTick(int p, uint32_t stepWord) {
    // Chasing a fight target and the healing skill need a current skill; they
    // are handled by combat before the plain walk below.
    const bool hero = m_nNpcId == 0;
    if (hero && m_nMp == 0 && std::strcmp(m_szState, "run") == 0) {
        WalkTo(m_nTargetX, m_nTargetY, "walk");
        return;
    }
    if ((stepWord & 0xFFFF) != 0) {
        const int32_t dx = m_nTargetX - m_x, dy = m_nTargetY - m_y;
        if (std::abs(dx) <= p && std::abs(dy) <= p) {
            if (hero) {
                SetAction(m_nDir, "stand", 0);
                DebugOut("get there,stand!\n");
            } else {
                const SPoint w = WanderPoint();
                WalkTo(w.x, w.y, "walk");
            }
            return;
        }
        s_nWalkCounter += 1;
        if (hero && s_nWalkCounter % 40 == 0 && std::strcmp(m_szState, "run") == 0) {
            m_nMp = m_nMp > 0 ? m_nMp - 1 : 0;
            s_nWalkCounter = 40;
        }
        StepToward(dx, dy, p);
        DrawFrame(m_nStep);
        return;
    }
    // Blocked. Walking into the fight target starts the blow (combat); the hero
    // otherwise stops, an NPC wanders off or walks around the obstacle.
    if (hero) {
        SetAction(m_nDir, "stand", 0);
        DebugOut("get block,stand!\n");
        return;
    }
    if (!m_pFightTarget || m_pFightTarget->IsDead()) {
        const SPoint w = WanderPoint();
        WalkTo(w.x, w.y, "walk");
        return;
    }
    static const int kDetour[8][2] = {{-100, 0}, {-100, -100}, {0, -100}, {100, -100},
                                      {100, 0},  {100, 100},   {0, 100},  {-100, 100}};
    if (m_nDir >= 1 && m_nDir <= 8) {
        const int d = m_nDir - 1;
        WalkTo(m_x + kDetour[d][0], m_y + kDetour[d][1], "walk");
    }
    m_nDetour = 4;
}

void CRole::SimpleStep(int32_t crossable, int p) {
    if (!IsMoving(m_szState)) return;
    if (crossable == 0) {
        const SPoint w = WanderPoint();
        SetWalk(w.x, w.y, "walk");
        return;
    }
    const int32_t dx = m_nTargetX - m_x, dy = m_nTargetY - m_y;
    if (std::abs(dx) <= p && std::abs(dy) <= p) {
        std::strcpy(m_szState, "stand");
        return;
    }
    StepToward(dx, dy, p);
}

// Moves p pixels along (dx, dy), each coordinate truncated toward zero, and
// advances the step of the current action, wrapping after its last frame.
void CRole::StepToward(int32_t dx, int32_t dy, int p) {
    const double d = std::sqrt(double(dx) * dx + double(dy) * dy);
    if (d >= 0.1) {
        m_x = int32_t(double(m_x) + double(dx) * p / d);
        m_y = int32_t(double(m_y) + double(dy) * p / d);
    }
    const int a = FindAction(m_szState);
    const int n = a >= 0 ? m_actions[size_t(a)].framesPerDir : 1;
    m_nStep += 1;
    if (m_nStep > n - 1) m_nStep = 0;
}

void CRole::SetWalk(int32_t x, int32_t y, const char* mode) {
    const int f = FrameIndex(FindAction(mode), m_nDir, 0);
    if (f >= 0) m_nFrame = f;
    m_nTargetX = x;
    m_nTargetY = y;
    FaceTo(x, y);
    std::snprintf(m_szState, sizeof m_szState, "%s", mode);
    m_nStep = 0;
}
