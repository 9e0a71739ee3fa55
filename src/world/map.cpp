// Map files, the cell questions and the exit/script registries.
#include "world/map.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include <nlohmann/json.hpp>

#include "base/byte_reader.h"
#include "resources/ini.h"
#include "base/debug.h"
#include "base/gbk.h"
#include "base/log.h"
#include "base/message_box.h"

CMap::CMap() : m_pLog(std::make_unique<CLog>("GameEngine.log", false)) {}

CMap::~CMap() = default;

void CMap::LoadRegistries(const char* archivePath) {
    m_pScriptIni = std::make_unique<CIni>("scripts.ini", archivePath);
    if (m_pScriptIni->IsFailed()) m_pScriptIni.reset();
    m_pMapIni = std::make_unique<CIni>("maps.ini", archivePath);
    if (m_pMapIni->IsFailed()) m_pMapIni.reset();
    m_labels.clear();
    int32_t count = m_pMapIni ? m_pMapIni->GetInt("count", "count") : 0;
    for (int32_t k = 1; k <= count; ++k) {
        char key[16];
        std::snprintf(key, sizeof key, "%d", k);
        m_labels.push_back(m_pMapIni->GetString("comment", key));
    }
}

void CMap::SetRegistries(const std::string& mapsIni, const std::string& scriptsIni) {
    m_pScriptIni.reset();
    m_pMapIni.reset();
    m_labels.clear();
    if (!scriptsIni.empty()) {
        m_pScriptIni = std::make_unique<CIni>();
        if (!m_pScriptIni->OpenText(scriptsIni)) m_pScriptIni.reset();
    }
    if (!mapsIni.empty()) {
        m_pMapIni = std::make_unique<CIni>();
        if (!m_pMapIni->OpenText(mapsIni)) m_pMapIni.reset();
    }
    int32_t count = m_pMapIni ? m_pMapIni->GetInt("count", "count") : 0;
    for (int32_t k = 1; k <= count; ++k) {
        char key[16];
        std::snprintf(key, sizeof key, "%d", k);
        m_labels.push_back(m_pMapIni->GetString("comment", key));
    }
}

bool CMap::Load(const char* path, std::vector<SMapNpc>* npcs) {
    if (!path) return false;
    std::vector<uint8_t> bytes;
    std::string error;
    const EFileRead got = ReadFileBytes(path, MAP_FILE_MAX_BYTES, bytes, &error);
    if (got == EFileRead::Missing) return false;
    if (got != EFileRead::Ok) {
        m_pLog->Write("map file %s, open failed!", error.c_str());
        return false;
    }
    return LoadBytes(bytes.data(), bytes.size(), path, npcs);
}

bool CMap::LoadBytes(const uint8_t* data, size_t size, const char* name, std::vector<SMapNpc>* npcs) {
    CByteReader in(data, size, name ? name : "");
    SMapFile map;
    switch (ReadMapFile(in, map)) {
    case EMapFileRead::NotAMap:
        MessageBox(GbkText("你所选择的.map文件不是本游戏支持的地图文件。"), "ERROR", MB_NOICON);
        m_pLog->Write("it is not the correct map file,open failed!");
        return false;
    case EMapFileRead::Damaged:
        m_pLog->Write("map file %s, open failed!", in.Error().c_str());
        return false;
    case EMapFileRead::Ok:
        break;
    }
    m_pLog->Write("Open map file ok,start to load it!");
    m_header = map.header;
    m_cells = std::move(map.cells);
    m_objects = std::move(map.objects);
    if (npcs) *npcs = std::move(map.npcs);
    return true;
}

void CMap::Unload() {
    m_cells.clear();
    m_cells.shrink_to_fit();
    m_objects.clear();
}

void CMap::GetHeader(uint32_t out[23]) const { std::memcpy(out, &m_header, sizeof m_header); }

SPoint CMap::GetCellPoint(int32_t i, int32_t j) const {
    const int32_t n = int32_t(m_cells.empty() ? 0 : m_header.size);
    if (i < 0 || j < 0 || i >= n || j >= n) return SPoint{-1, -1};
    const SMapCell& c = m_cells[size_t(i) * size_t(n) + size_t(j)];
    return SPoint{c.x, c.y};
}

SPoint CMap::PointToCell(int32_t px, int32_t py) const {
    constexpr double kPi = 3.1415926;
    constexpr double kHalfPi = 1.5707963;
    const double x = px, y = py;
    const double ox = m_ptOrigin.x, oy = m_ptOrigin.y;
    const double a = std::atan(0.5);
    const double t = std::tan(kPi - a);
    double d1 = std::fabs((y - x * t) - oy + ox * t) / std::sqrt(t * t + 1.0);
    const double dx = x - ox, dy = y - oy;
    const double r = std::sqrt(dy * dy + dx * dx);
    double d2sq = r * r - d1 * d1;
    double d2 = std::sqrt(d2sq > 0.0 ? d2sq : 0.0);
    const bool right = x > ox, left = x < ox;
    const double angRight = right ? std::atan(dy / dx) : 0.0;
    const double angLeft = left ? std::atan(dy / (ox - x)) : 0.0;
    if (right && angRight < kHalfPi - a) d2 = -d2;
    if (left && angLeft < a) d1 = -d1;
    const double u = d2 + d1 / std::tan(2.0 * a);
    const double v = d1 / std::sin(2.0 * a);
    const double e = 32.0 / std::cos(a);
    int32_t first = int32_t(std::trunc(std::trunc(v) / e));
    if (left && angLeft < a) first -= 1;
    int32_t second = int32_t(std::trunc(std::trunc(u) / e));
    if (right && angRight < a) second -= 1;
    return SPoint{first, second};
}

const SMapCell* CMap::CellAtPoint(int32_t x, int32_t y) const {
    if (m_cells.empty()) return nullptr;
    SPoint c = PointToCell(x, y);
    const int32_t n = m_header.size;
    if (c.x < 0 || c.y < 0 || c.x >= n || c.y >= n) return nullptr;
    return &m_cells[size_t(c.x) * size_t(n) + size_t(c.y)];
}

int32_t CMap::GetCross(int32_t x, int32_t y) const {
    if (x == -1) return 0;
    const SMapCell* c = CellAtPoint(x, y);
    return c ? c->cross : 0;
}

bool CMap::GetCellScript(std::string& out, int32_t x, int32_t y) const {
    if (x < 0 || y < 0) return false;
    const SMapCell* c = CellAtPoint(x, y);
    if (!c || c->script == 0 || !m_pScriptIni) return false;
    DebugOut("script id:%d\n", c->script);
    char key[8];
    std::snprintf(key, sizeof key, "%d", c->script);
    out = m_pScriptIni->GetString("name", key);
    return true;
}

bool CMap::GetCellExit(std::string& out, int32_t x, int32_t y) const {
    if (x < 0 || y < 0) return false;
    const SMapCell* c = CellAtPoint(x, y);
    if (!c || c->exit == 0 || !m_pMapIni) return false;
    char key[8];
    std::snprintf(key, sizeof key, "%d", c->exit);
    out = m_pMapIni->GetString("name", key);
    return true;
}

bool CMap::GetCellLabel(std::string& out, int32_t x, int32_t y) const {
    if (x < 0 || y < 0) return false;
    const SMapCell* c = CellAtPoint(x, y);
    if (!c || c->exit == 0 || !m_pMapIni) return false;
    if (size_t(c->exit) > m_labels.size()) return false;
    out = m_labels[c->exit - 1];
    return true;
}

void CMap::WriteState(StateJson& out) const {
    out["map"] = StateText(m_header.fileName, sizeof m_header.fileName);
    out["map_name"] = StateText(m_header.displayName, sizeof m_header.displayName);
}
