// dbc <items.tsv> <skills.tsv> <out-dir>: compiles the readable item and skill
// tables into <out-dir>/data/items.itm and <out-dir>/data/skill.skl.
//
// Tables are UTF-8, tab-separated, '#' lines are comments, the first other
// line names the columns. Texts are converted to GBK and must fit their
// fields with the terminating zero; a row that does not fit is refused with
// its file, line and name, and nothing is written.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "items/database_file.h"
#include "base/gbk.h"

namespace fs = std::filesystem;

namespace {

struct STable {
    std::string file;
    std::vector<std::string> columns;
    struct Row {
        int line = 0;
        std::vector<std::string> cells;
    };
    std::vector<Row> rows;
};

std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> out;
    size_t start = 0;
    for (;;) {
        size_t tab = line.find('\t', start);
        out.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos) break;
        start = tab + 1;
    }
    return out;
}

bool ReadTable(const std::string& path, STable* t) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "dbc: cannot read %s\n", path.c_str());
        return false;
    }
    t->file = path;
    std::string line;
    int n = 0;
    while (std::getline(in, line)) {
        ++n;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        if (t->columns.empty()) {
            t->columns = Split(line);
            continue;
        }
        STable::Row r;
        r.line = n;
        r.cells = Split(line);
        t->rows.push_back(std::move(r));
    }
    if (t->columns.empty()) {
        std::fprintf(stderr, "dbc: %s has no header line\n", path.c_str());
        return false;
    }
    return true;
}

// Reads the cells of one row by column name and reports the first problem.
class CRowReader {
public:
    CRowReader(const STable& t, const STable::Row& r) : m_table(t), m_row(r) {
        m_name = Cell("name");
    }
    bool Ok() const { return m_ok; }

    std::string Cell(const char* column) {
        for (size_t i = 0; i < m_table.columns.size(); ++i)
            if (m_table.columns[i] == column) {
                if (i < m_row.cells.size()) return m_row.cells[i];
                break;
            }
        Fail(std::string("missing column ") + column);
        return std::string();
    }
    int32_t Int(const char* column, long lo, long hi) {
        std::string s = Cell(column);
        if (!m_ok) return 0;
        char* end = nullptr;
        long v = std::strtol(s.c_str(), &end, 10);
        if (s.empty() || *end != '\0' || v < lo || v > hi) {
            Fail(std::string(column) + " \"" + s + "\" is not a whole number from " + std::to_string(lo) + " to " +
                 std::to_string(hi));
            return 0;
        }
        return int32_t(v);
    }
    // Copies the text as GBK into a field of `size` bytes (terminator included).
    void Text(const char* column, char* field, size_t size, bool required) {
        std::string utf8 = Cell(column);
        if (!m_ok) return;
        std::string gbk = Utf8ToGbk(utf8);
        if (GbkToUtf8(gbk) != utf8) {
            Fail(std::string(column) + " \"" + utf8 + "\" cannot be written in GBK");
        } else if (gbk.size() + 1 > size) {
            Fail(std::string(column) + " \"" + utf8 + "\" is " + std::to_string(gbk.size()) + " bytes, at most " +
                 std::to_string(size - 1) + " fit");
        } else if (required && gbk.empty()) {
            Fail(std::string(column) + " is empty");
        } else {
            std::memcpy(field, gbk.data(), gbk.size());
        }
    }
    void Fail(const std::string& why) {
        if (!m_ok) return;
        m_ok = false;
        std::fprintf(stderr, "%s:%d: row \"%s\": %s\n", m_table.file.c_str(), m_row.line, m_name.c_str(), why.c_str());
    }

private:
    const STable& m_table;
    const STable::Row& m_row;
    std::string m_name;
    bool m_ok = true;
};

bool CompileItems(const STable& t, std::vector<SItemInfo>* out) {
    bool ok = true;
    for (const auto& row : t.rows) {
        SItemInfo it;
        std::memset(&it, 0, sizeof it);
        CRowReader r(t, row);
        r.Text("name", it.szName, sizeof it.szName, true);
        it.nType = r.Int("type", 0, 8);
        it.nPrice = r.Int("price", 0, 100000000);
        it.nLevel = r.Int("level", 0, 1000);
        it.nHp = r.Int("hp", -100000, 100000);
        it.nMp = r.Int("mp", -100000, 100000);
        it.nExp = r.Int("exp", -100000000, 100000000);
        it.nAttack = r.Int("attack", -100000, 100000);
        it.nDefence = r.Int("defence", -100000, 100000);
        it.nMoral = r.Int("moral", -100000, 100000);
        it.nHitRate = r.Int("hitrate", -100, 100);
        it.nMaxHp = r.Int("maxhp", -100000, 100000);
        it.nMaxMp = r.Int("maxmp", -100000, 100000);
        r.Text("picture", it.szPicture, sizeof it.szPicture, true);
        r.Text("desc", it.szDesc, sizeof it.szDesc, false);
        r.Text("remark", it.szRemark, sizeof it.szRemark, false);
        for (const SItemInfo& prev : *out)
            if (std::strcmp(prev.szName, it.szName) == 0) r.Fail("the name is used by an earlier row");
        ok = ok && r.Ok();
        out->push_back(it);
    }
    return ok;
}

bool CompileSkills(const STable& t, std::vector<SSkillInfo>* out) {
    bool ok = true;
    for (const auto& row : t.rows) {
        SSkillInfo s;
        std::memset(&s, 0, sizeof s);
        CRowReader r(t, row);
        r.Text("name", s.szName, sizeof s.szName, true);
        s.nKind = r.Int("kind", 0, 1);
        s.nRange = r.Int("range", 0, 3200);
        s.nDamage = r.Int("damage", 0, 1000000);
        s.nMaxLevel = r.Int("maxlevel", 1, 100);
        s.nGrowth = r.Int("growth", 0, 1000);
        s.nMpCost = r.Int("mp", 0, 100000);
        std::string key = r.Cell("key");
        if (r.Ok() && (key.size() != 1 || !((key[0] >= 'A' && key[0] <= 'Z')))) r.Fail("key \"" + key + "\" must be one upper-case letter");
        s.cKey = key.empty() ? 0 : key[0];
        r.Text("sound", s.szSound, sizeof s.szSound, true);
        r.Text("icon", s.szIcon, sizeof s.szIcon, true);
        s.nFrameCount = r.Int("nframes", 0, 20);
        std::string pattern = r.Cell("frames");
        if (r.Ok() && s.nFrameCount > 0 && (pattern.find("%d") == std::string::npos ||
                                            pattern.find('%') != pattern.rfind('%')))
            r.Fail("frames \"" + pattern + "\" needs exactly one %d");
        for (int f = 0; r.Ok() && f < s.nFrameCount; ++f) {
            char name[64];
            std::snprintf(name, sizeof name, pattern.c_str(), f);
            if (std::strlen(name) + 1 > sizeof s.szFrames[f])
                r.Fail(std::string("frame name \"") + name + "\" does not fit 14 bytes");
            else
                std::memcpy(s.szFrames[f], name, std::strlen(name));
        }
        r.Text("desc", s.szDesc, sizeof s.szDesc, false);
        for (const SSkillInfo& prev : *out) {
            if (std::strcmp(prev.szName, s.szName) == 0) r.Fail("the name is used by an earlier row");
            if (prev.cKey == s.cKey) r.Fail(std::string("key ") + s.cKey + " is used by " + prev.szName);
        }
        ok = ok && r.Ok();
        out->push_back(s);
    }
    if (ok && out->empty()) {
        std::fprintf(stderr, "%s: no skills (skill 1 is the basic blow and must exist)\n", t.file.c_str());
        ok = false;
    }
    return ok;
}

template <class T>
bool WriteDb(const fs::path& path, uint32_t magic, const std::vector<T>& records) {
    // The count word after the magic is not read by the game; handy for tools.
    const std::vector<uint8_t> bytes = DatabaseBytes(magic, records);
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    fs::path tmp = path;
    tmp += ".tmp";
    {
        std::ofstream o(tmp, std::ios::binary | std::ios::trunc);
        o.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        if (!o) return false;
    }
    fs::rename(tmp, path, ec);
    return !ec;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: dbc <items.tsv> <skills.tsv> <out-dir>\n");
        return 2;
    }
    STable items, skills;
    if (!ReadTable(argv[1], &items) || !ReadTable(argv[2], &skills)) return 1;
    std::vector<SItemInfo> itemRecs;
    std::vector<SSkillInfo> skillRecs;
    const bool okItems = CompileItems(items, &itemRecs);
    const bool okSkills = CompileSkills(skills, &skillRecs);
    if (!okItems || !okSkills) return 1;
    if (itemRecs.size() > kDbMaxRecords || skillRecs.size() > kDbMaxRecords) {
        std::fprintf(stderr, "dbc: a database holds at most %zu records\n", kDbMaxRecords);
        return 1;
    }
    // Books teach the skill of the same name.
    for (const SItemInfo& it : itemRecs) {
        if (it.nType != ITEM_BOOK) continue;
        bool found = false;
        for (const SSkillInfo& s : skillRecs) found = found || std::strcmp(s.szName, it.szName) == 0;
        if (!found) {
            std::fprintf(stderr, "%s: book \"%s\" names no skill\n", argv[1], GbkToUtf8(it.szName).c_str());
            return 1;
        }
    }
    const fs::path out = argv[3];
    if (!WriteDb(out / "data" / "items.itm", kItemDbMagic, itemRecs) ||
        !WriteDb(out / "data" / "skill.skl", kSkillDbMagic, skillRecs)) {
        std::fprintf(stderr, "dbc: cannot write into %s\n", argv[3]);
        return 1;
    }
    return 0;
}
