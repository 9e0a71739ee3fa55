#include "characters/skill.h"

#include <cmath>
#include <cstring>

#include "media/graph.h"

namespace {
constexpr int kScratch = SURF_TILE;  // the same staging sheet the role frames use
constexpr int32_t kMaxAnimationFrames = 20;
constexpr int32_t kMaxPictureSide = 640;
}  // namespace

int32_t SkillDamageAt(const SSkillInfo& record, int32_t level) {
    double v = record.nDamage;
    const double factor = (100.0 + record.nGrowth);
    for (int32_t l = 1; l < level && record.nGrowth != 0; ++l) {
        v = v * factor / 100;
        // Past the 32-bit range, or shrunk below 1 for good: further levels
        // cannot bring it back.
        if (std::fabs(v) >= 2147483647.0) return v > 0 ? INT32_MAX : INT32_MIN;
        if (std::fabs(v) < 1.0 && std::fabs(factor) <= 100.0) return 0;
    }
    return int32_t(v);
}

CSkill::CSkill() { std::memset(&m_record, 0, sizeof m_record); }

int CSkill::Set(int32_t id, int32_t level) {
    if (id < 1) {
        m_nId = id;
        m_nLevel = 1;
        return 0;
    }
    if (m_bRunning) return 0;
    if (!g_pSkillDB || id > g_pSkillDB->Count()) return 0;
    m_nId = id;
    m_record = g_pSkillDB->Get(id);
    m_nLevel = level < m_record.nMaxLevel ? level : m_record.nMaxLevel;
    if (m_nLevel < 1) m_nLevel = 1;
    // The field need not be terminated inside the record.
    std::memcpy(m_szSound, m_record.szSound, sizeof m_record.szSound);
    m_szSound[sizeof m_record.szSound] = 0;
    return 1;
}

int32_t CSkill::Kind() const { return HasSkill() ? m_record.nKind : -1; }

int32_t CSkill::GetRange() const {
    if (!HasSkill()) return 0;
    return m_record.nRange == 0 ? 20 : m_record.nRange;
}

int32_t CSkill::Damage() const { return HasSkill() ? SkillDamageAt(m_record, m_nLevel) : 0; }

int32_t CSkill::Cost() const { return HasSkill() ? m_record.nMpCost : 0; }

const char* CSkill::SoundName() const { return HasSkill() ? m_szSound : ""; }

int32_t CSkill::FrameCount() const {
    const int32_t n = m_record.nFrameCount;
    return n < 0 ? 0 : n > kMaxAnimationFrames ? kMaxAnimationFrames : n;
}

void CSkill::StartAnimation(int32_t x, int32_t y) {
    if (!HasSkill() || FrameCount() < 1) return;
    m_nAnimX = x;
    m_nAnimY = y;
    m_bRunning = 1;
    m_nFrame = -1;
    DrawNextFrame();
}

int CSkill::DrawNextFrame() {
    ++m_nFrame;
    if (m_nFrame < FrameCount()) {
        DrawAnimationFrame(m_nFrame);
        return 1;
    }
    m_nFrame = -1;
    m_bRunning = 0;
    return 0;
}

void CSkill::DrawAnimationFrame(int32_t k) {
    if (!g_pGraph) return;
    char name[sizeof m_record.szFrames[0] + 1];
    std::memcpy(name, m_record.szFrames[k], sizeof m_record.szFrames[0]);
    name[sizeof m_record.szFrames[0]] = 0;
    int32_t w = 0, h = 0;
    if (!g_pGraph->GetBitmapSize(4, name, &w, &h)) return;
    if (w <= 0 || h <= 0 || w > kMaxPictureSide || h > kMaxPictureSide) return;
    CSurface* scratch = g_pGraph->GetSurface(kScratch);
    if (!scratch || scratch->width < w || scratch->height < h) return;
    const SRect area{0, 0, w, h};
    g_pGraph->FillRect(kScratch, &area, KEY565);
    if (!g_pGraph->DrawBitmapData(4, name, kScratch, 0, 0, 0)) return;
    g_pGraph->BltClipped(SURF_ROLE, WORLD_W, WORLD_H, kScratch, BLT_WAIT_SRCKEY, m_nAnimX - w / 2, m_nAnimY - h / 2,
                         0, 0, w, h);
}
