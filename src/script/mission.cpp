#include "script/mission.h"

#include <climits>
#include <cstring>

#include "base/debug.h"
#include "base/log.h"
#include "items/database.h"
#include "items/item_pack.h"

namespace {

int32_t Clamp32(int64_t v) { return v > INT32_MAX ? INT32_MAX : v < INT32_MIN ? INT32_MIN : int32_t(v); }

void PutLe32(uint8_t* p, int32_t v) {
    const uint32_t u = uint32_t(v);
    p[0] = uint8_t(u);
    p[1] = uint8_t(u >> 8);
    p[2] = uint8_t(u >> 16);
    p[3] = uint8_t(u >> 24);
}

int32_t GetLe32(const uint8_t* p) {
    return int32_t(uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24);
}

// Copies text into a field of N bytes, always terminated. A text too long for
// the field is cut before the character that does not fit whole (a GBK
// character is a lead byte 0x81..0xFE and one more byte).
template <size_t N>
void PutText(char (&field)[N], const std::string& text) {
    std::memset(field, 0, N);
    size_t len = 0;
    while (len < text.size()) {
        const uint8_t c = uint8_t(text[len]);
        const size_t step = (c >= 0x81 && c <= 0xFE && len + 1 < text.size()) ? 2 : 1;
        if (len + step > N - 1) break;
        len += step;
    }
    std::memcpy(field, text.data(), len);
}

template <size_t N>
std::string GetText(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

}  // namespace

void EncodeMissionRecord(const SMissionRecord& r, uint8_t* out) {
    std::memcpy(out + 0, r.szName, sizeof r.szName);
    std::memcpy(out + 100, r.szText, sizeof r.szText);
    PutLe32(out + 200, r.nDone);
    PutLe32(out + 204, r.nKind);
    std::memcpy(out + 208, r.szTarget, sizeof r.szTarget);
    PutLe32(out + 260, r.nRequired);
    PutLe32(out + 264, r.nCurrent);
    PutLe32(out + 268, r.nAutoComplete);
    PutLe32(out + 272, r.nTag);
}

SMissionRecord DecodeMissionRecord(const uint8_t* in) {
    SMissionRecord r;
    std::memcpy(r.szName, in + 0, sizeof r.szName);
    std::memcpy(r.szText, in + 100, sizeof r.szText);
    r.nDone = GetLe32(in + 200);
    r.nKind = GetLe32(in + 204);
    std::memcpy(r.szTarget, in + 208, sizeof r.szTarget);
    r.nRequired = GetLe32(in + 260);
    r.nCurrent = GetLe32(in + 264);
    r.nAutoComplete = GetLe32(in + 268);
    r.nTag = GetLe32(in + 272);
    return r;
}

// ---- CMission ----

int32_t CMission::Check() {
    if (m_nDone == 1) return MISSION_WAS_DONE;
    if (m_nCurrent < m_nRequired) return MISSION_OPEN;
    m_nDone = 1;
    m_nCurrent = 0;
    return m_nTag == 1 ? MISSION_COMPLETED_TAGGED : MISSION_COMPLETED;
}

std::string CMission::Description() const {
    std::string out = "* " + m_strText;
    if (m_nDone) return out + "<4(Done)/>";
    int64_t remaining = int64_t(m_nRequired) - m_nCurrent;
    if (remaining < 0) remaining = 0;
    const std::string count = std::to_string(remaining);
    switch (m_nKind) {
    case MISSION_GET_ITEMS: out += "(need to get <2" + count + "/> " + m_strTarget + " yet)"; break;
    case MISSION_KILL_NAMED: out += "(need to kill <2" + count + "/> " + m_strTarget + " yet)"; break;
    case MISSION_KILL_ANY: out += "(need to kill <2" + count + "/> enemy)"; break;
    default: break;
    }
    return out;
}

// ---- CMissionSystem ----

CMissionSystem::CMissionSystem() : m_pLog(std::make_unique<CLog>("GameEngine.log", false)) {}

CMissionSystem::~CMissionSystem() = default;

int CMissionSystem::AddMission(const char* name, const char* text, int32_t kind, const char* target,
                               int32_t required, int32_t autoComplete, int32_t tag) {
    const std::string key = name ? name : "";
    for (const CMission& m : m_vecMissions)
        if (m.m_strName == key) {
            m_pLog->Write("add mission %s failed,mission name should not be repeated!", key.c_str());
            return 0;
        }
    CMission m;
    m.m_strName = key;
    m.m_strText = text ? text : "";
    m.m_nKind = kind;
    m.m_strTarget = target ? target : "";
    m.m_nRequired = required;
    m.m_nAutoComplete = autoComplete;
    m.m_nTag = tag;
    m_vecMissions.push_back(std::move(m));
    return 1;
}

int CMissionSystem::AddMissionCountingBag(const char* name, const char* text, int32_t kind, const char* target,
                                          int32_t required, int32_t autoComplete, int32_t tag,
                                          const CItemPack* bag) {
    if (!AddMission(name, text, kind, target, required, autoComplete, tag)) return 0;
    if (kind != MISSION_GET_ITEMS || !bag || !target || !g_pItemDB) return 1;
    const int32_t id = g_pItemDB->FindByName(target);
    if (id < 1) return 1;
    for (int32_t n = bag->CountOf(id); n > 0; --n) OnProgress(target, 0);
    return 1;
}

void CMissionSystem::AddMissionRecord(const SMissionRecord& r) {
    CMission m;
    m.m_strName = GetText(r.szName);
    m.m_strText = GetText(r.szText);
    m.m_nDone = r.nDone;
    m.m_nKind = r.nKind;
    m.m_strTarget = GetText(r.szTarget);
    m.m_nRequired = r.nRequired;
    m.m_nCurrent = r.nCurrent;
    m.m_nAutoComplete = r.nAutoComplete;
    m.m_nTag = r.nTag;
    m_vecMissions.push_back(std::move(m));
}

SMissionRecord CMissionSystem::GetMissionRecord(int32_t index) const {
    SMissionRecord r;
    std::memset(&r, 0, sizeof r);
    if (index < 0 || size_t(index) >= m_vecMissions.size()) return r;
    const CMission& m = m_vecMissions[size_t(index)];
    PutText(r.szName, m.m_strName);
    PutText(r.szText, m.m_strText);
    r.nDone = m.m_nDone;
    r.nKind = m.m_nKind;
    PutText(r.szTarget, m.m_strTarget);
    r.nRequired = m.m_nRequired;
    r.nCurrent = m.m_nCurrent;
    r.nAutoComplete = m.m_nAutoComplete;
    r.nTag = m.m_nTag;
    return r;
}

int32_t CMissionSystem::GetMissionCount() const {
    DebugOut("get mission count.\n");
    return int32_t(m_vecMissions.size());
}

int32_t CMissionSystem::FindMission(const char* name) const {
    if (!name) return -1;
    for (size_t i = 0; i < m_vecMissions.size(); ++i)
        if (m_vecMissions[i].m_strName == name) return int32_t(i);
    return -1;
}

int32_t CMissionSystem::CheckMission(const char* name) {
    const int32_t i = FindMission(name);
    return i < 0 ? MISSION_NONE : m_vecMissions[size_t(i)].Check();
}

int32_t CMissionSystem::GetMissionObjCount(const char* name) const {
    const int32_t i = FindMission(name);
    return i < 0 ? 0 : m_vecMissions[size_t(i)].m_nCurrent;
}

int CMissionSystem::OnProgress(const char* name, int anyFlag) {
    const char* given = name ? name : "";
    int advanced = 0;
    for (CMission& m : m_vecMissions) {
        // "Kill any" missions see every reported event under the empty name.
        const char* n = (m.m_nKind == MISSION_KILL_ANY && anyFlag) ? "" : given;
        if (m.m_strTarget != n) continue;
        m.m_nCurrent = Clamp32(int64_t(m.m_nCurrent) + 1);
        advanced = 1;
        if (m.m_nAutoComplete) m.Check();
    }
    return advanced;
}

void CMissionSystem::OnLose(const char* name) {
    const char* given = name ? name : "";
    for (CMission& m : m_vecMissions)
        if (m.m_strTarget == given) m.m_nCurrent = Clamp32(int64_t(m.m_nCurrent) - 1);
}

std::vector<std::string> CMissionSystem::GetMissionTexts() const {
    std::vector<std::string> out;
    out.reserve(m_vecMissions.size());
    for (int pass = 0; pass < 2; ++pass)
        for (size_t i = m_vecMissions.size(); i-- > 0;)
            if ((m_vecMissions[i].m_nDone != 0) == (pass == 1)) out.push_back(m_vecMissions[i].Description());
    return out;
}
