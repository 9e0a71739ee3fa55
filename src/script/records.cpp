#include "script/records.h"

#include <climits>
#include <cstdio>

#include "base/debug.h"
#include "base/gbk.h"
#include "base/message_line_hook.h"

namespace {

int32_t Clamp32(int64_t v) { return v > INT32_MAX ? INT32_MAX : v < INT32_MIN ? INT32_MIN : int32_t(v); }

int32_t Lookup(const std::map<std::string, int32_t>& map, const char* key) {
    if (!key) return 0;
    auto it = map.find(key);
    return it == map.end() ? 0 : it->second;
}

// A GBK template with one or two "%s" places, each filled with arg.
std::string Fill(const char* templ, const char* arg) {
    const int n = std::snprintf(nullptr, 0, templ, arg, arg);
    if (n <= 0) return std::string();
    std::string out(size_t(n) + 1, '\0');
    std::snprintf(out.data(), out.size(), templ, arg, arg);
    out.resize(size_t(n));
    return out;
}

}  // namespace

void CPlayerRecords::AddNote(const char* text) {
    m_vecNotes.insert(m_vecNotes.begin(), std::string("* ") + (text ? text : ""));
}

void CPlayerRecords::AddHonor(const char* text) { m_vecHonours.emplace_back(text ? text : ""); }

int CPlayerRecords::ChangeFaction(const char* name, int join) {
    if (!name) return 0;
    for (std::string& f : m_vecFactions) {
        // An emptied entry never equals a faction name.
        if (f.empty() || f != name) continue;
        if (join) return 0;
        f.clear();
        return 1;
    }
    if (!join) return 0;
    m_vecFactions.emplace_back(name);
    return 1;
}

void CPlayerRecords::ChangeFactionEnmity(const char* faction, int32_t amount, int raise) {
    if (!faction) return;
    int32_t& value = m_mapEnmity[faction];
    const int32_t old = value;
    if (raise) {
        value = Clamp32(int64_t(old) + amount);
        if (old < kEnmityThreshold && value >= kEnmityThreshold) {
            ShowGameMessage(Fill(GbkText("我与%s结怨，以后可要多多提防"), faction).c_str());
            AddNote(Fill(GbkText("我与<2%s/>结怨，现在%s的人见到我就会来找我的麻烦，以后可要多多提防了"), faction).c_str());
        }
    } else {
        value = Clamp32(int64_t(old) - amount);
        if (old >= kEnmityThreshold && value < kEnmityThreshold) {
            ShowGameMessage(Fill(GbkText("我与%s和解，不过最近还是少去惹他们为好"), faction).c_str());
            AddNote(Fill(GbkText("我与<2%s/>和解，不用再担心%s的人见我就找我的麻烦，不过最近还是少去惹他们为好"),
                         faction).c_str());
        }
    }
    DebugOut("%s's enmity:%d\n", faction, value);
}

int32_t CPlayerRecords::Enmity(const char* faction) const { return Lookup(m_mapEnmity, faction); }

void CPlayerRecords::ChangeGirlLove(const char* name, int32_t amount, int raise) {
    if (!name) return;
    int32_t& value = m_mapAffection[name];
    value = Clamp32(int64_t(value) + (raise ? int64_t(amount) : -int64_t(amount)));
    DebugOut("%s's love degree:%d\n", name, value);
}

int32_t CPlayerRecords::GetGirlLove(const char* name) const { return Lookup(m_mapAffection, name); }

int32_t CPlayerRecords::GetVIPInfo(const char* key) const { return Lookup(m_mapVip, key); }

void CPlayerRecords::SetVIPInfo(const char* key, int32_t value) {
    if (key) m_mapVip[key] = value;
}

void CPlayerRecords::ClearForNewGame() {
    m_vecNotes.clear();
    m_vecHonours.clear();
    // A new game starts without the factions of the game played before.
    m_vecFactions.clear();
    m_mapEnmity.clear();
    m_mapAffection.clear();
    m_mapVip.clear();
}
