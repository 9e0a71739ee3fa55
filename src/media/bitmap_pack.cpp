// CGraph's bitmap packs and picture caches: raw BMP files read from the
// numbered pack archives, cached under "%d%s" keys and decoded onto surfaces.
#include <cstdio>
#include <string>

#include "media/graph.h"
#include "resources/bmp.h"
#include "resources/vrn_file.h"
#include "base/debug.h"
#include "base/log.h"

namespace {

// The "%d%s" cache key, built in one reused buffer: drawing a cached picture
// every frame allocates nothing once the buffer has grown.
const std::string& CacheKey(int pack, const char* name) {
    static std::string key;
    char num[16];
    std::snprintf(num, sizeof num, "%d", pack);
    key.assign(num);
    key.append(name);
    return key;
}

bool ValidCache(int cache) { return cache >= 0 && cache < BMP_CACHE_COUNT; }

}  // namespace

void CGraph::SetPackPath(int pack, const char* path) {
    if (pack < 0 || pack >= PACK_COUNT) return;
    std::snprintf(m_szPackPath[pack], sizeof m_szPackPath[pack], "%s", path ? path : "");
    // A changed path must be opened anew even for the same pack number, and
    // its pictures looked for again.
    if (pack == m_nOpenPack) m_nOpenPack = -1;
    m_bPackFailed[pack] = false;
    m_missingPictures.clear();
    m_badPictures.clear();
}

void CGraph::LogPictureLine(const char* line) {
    DebugOut("%s\n", line);
    if (m_pLog)
        m_pLog->Write("%s", line);
    else
        CLog("GameEngine.log", false).Write("%s", line);
}

bool CGraph::LoadBitmapData(int pack, const char* name, int cache) {
    if (!name || !ValidCache(cache) || pack < 0 || pack >= PACK_COUNT) return false;
    const std::string& probe = CacheKey(pack, name);
    if (m_cache[cache].count(probe) || m_missingPictures.count(probe)) return false;
    const std::string key = probe;  // a copy only for a picture read now

    if (!m_pPackReader) m_pPackReader = std::make_unique<CVRN_File>();
    if (pack != m_nOpenPack && !m_bPackFailed[pack]) {
        ++m_nPackOpens;
        if (!m_szPackPath[pack][0]) {
            // No archive named for this pack: say which key is missing instead
            // of failing to open a file without a name.
            char line[160];
            std::snprintf(line, sizeof line, "picture pack %d has no archive: [MDfile] %s is empty in game.ini", pack,
                          PACK_KEYS[pack]);
            LogPictureLine(line);
            std::fprintf(stderr, "ashen-oath: %s\n", line);
            m_bPackFailed[pack] = true;
            m_pPackReader->Close();
            m_nOpenPack = -1;
        } else if (m_pPackReader->Open(m_szPackPath[pack])) {
            m_nOpenPack = pack;
        } else {
            m_pPackReader->Close();  // a missing pack finds nothing; its message was shown once
            m_bPackFailed[pack] = true;
            m_nOpenPack = -1;
        }
    }
    if (pack != m_nOpenPack || !m_pPackReader->FindEntry(name) || m_pPackReader->Current()->IsDir()) {
        char line[512];
        std::snprintf(line, sizeof line, "can not find (bmp:)%s in (epk:)%s", name, m_szPackPath[pack]);
        LogPictureLine(line);
        m_missingPictures.insert(key);
        return false;
    }
    const int32_t size = m_pPackReader->GetSize();
    std::vector<uint8_t> bytes(size_t(size > 0 ? size : 0), 0);
    if (size > 0 && !m_pPackReader->Read(bytes.data(), size)) {
        m_missingPictures.insert(key);  // the reader logged it
        return false;
    }
    m_cache[cache].emplace(key, std::move(bytes));
    return true;
}

bool CGraph::DrawBitmapData(int pack, const char* name, int surf, int32_t x, int32_t y, int cache) {
    if (!name || !ValidCache(cache)) return false;
    const std::string& key = CacheKey(pack, name);
    auto it = m_cache[cache].find(key);
    if (it == m_cache[cache].end()) return false;
    CSurface* s = GetSurface(surf);
    if (!s || !s->Valid()) return false;
    const std::vector<uint8_t>& bmp = it->second;
    if (!BmpDecodeTo565(bmp.data(), bmp.size(), s->pixels.data(), s->width, s->height, s->width, x, y)) {
        if (m_badPictures.insert(key).second) {
            char line[512];
            std::snprintf(line, sizeof line, "bad bitmap (bmp:)%s in (epk:)%s", name, GetPackPath(pack));
            LogPictureLine(line);
        }
        return false;
    }
    return true;
}

bool CGraph::LoadBitmapToSurface(int pack, const char* name, int surf, int32_t x, int32_t y, int cache) {
    LoadBitmapData(pack, name, cache);
    return DrawBitmapData(pack, name, surf, x, y, cache);
}

bool CGraph::GetBitmapSize(int pack, const char* name, int32_t* width, int32_t* height) {
    if (!name) return false;
    LoadBitmapData(pack, name, BMP_CACHE_MAP);
    auto it = m_cache[BMP_CACHE_MAP].find(CacheKey(pack, name));
    if (it == m_cache[BMP_CACHE_MAP].end()) return false;
    int32_t w = 0, h = 0;
    if (!BmpGetSize(it->second.data(), it->second.size(), &w, &h)) return false;
    if (width) *width = w;
    if (height) *height = h;
    return true;
}

bool CGraph::DrawBitmap(int pack, const char* name, int surf, int32_t x, int32_t y) {
    const bool drawn = LoadBitmapToSurface(pack, name, SURF_ROLE, 0, 0, BMP_CACHE_MAP);
    int32_t w = 0, h = 0;
    const bool sized = GetBitmapSize(pack, name, &w, &h);
    if (!drawn || !sized) return false;
    SRect r;
    r.left = 0, r.top = 0, r.right = w, r.bottom = h;
    return BltFast(surf, x, y, SURF_ROLE, r, BLT_WAIT_SRCKEY);
}

void CGraph::FreeBitmapCache(int cache) {
    if (ValidCache(cache)) m_cache[cache].clear();
}
