// Role descriptions, and the role animation file built from them.
//
// A role description (content/roles/<look>.txt) is a UTF-8 text of "key values"
// lines; '#' starts a comment. It names the look (its frame folder in the role
// pack), the role file, the frame size, the actions with their frames per
// direction, and the recipe the character generator paints the frames from
// (rig, colours, gear). The role compiler turns it into the binary file the
// engine reads; its records are those of characters/role_file.h, the one
// definition the engine and the tools share.
//
// Header-only so that the tools and the tests share one implementation.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "characters/role_file.h"

namespace rolefile {

constexpr int kActionNameMax = int(sizeof(SRoleAction::name));   // bytes including the terminating NUL
constexpr int kFrameNameMax = int(sizeof(SRoleFrame::bitmap));   // bytes including the terminating NUL
constexpr int kDirections = ROLE_DIRECTIONS;

struct Colour {
    int r = 0, g = 0, b = 0;
};

struct Action {
    std::string name;
    int frames = 0;  // frames per direction
    int line = 0;
};

struct Desc {
    std::string source;      // file the description came from (for messages)
    std::string look;        // frame folder in the role pack
    std::string file;        // role file name under data\ (e.g. "role.pmg")
    std::string rig;         // humanoid, quadruped, bony, knight
    int width = 0, height = 0;
    int footX = -1, footY = -1;  // where the feet stand in every frame
    double scale = 1.0;          // body size relative to the standard figure
    std::vector<Action> actions;
    std::map<std::string, Colour> colours;
    std::vector<std::string> gear;

    bool HasGear(const std::string& g) const {
        for (const auto& x : gear)
            if (x == g) return true;
        return false;
    }
    Colour Col(const std::string& key, Colour fallback) const {
        auto it = colours.find(key);
        return it == colours.end() ? fallback : it->second;
    }
    int FirstFrame(size_t action) const {
        int first = 0;
        for (size_t i = 0; i < action && i < actions.size(); ++i) first += kDirections * actions[i].frames;
        return first;
    }
    int FrameCount() const { return FirstFrame(actions.size()); }
    // Frame number of action a, direction d (1..8), step k.
    int FrameIndex(size_t a, int d, int k) const { return FirstFrame(a) + (d - 1) * actions[a].frames + k; }
    // Name of that frame's bitmap in the role pack: "<look>\<action><d>_<k>.bmp".
    std::string FrameName(size_t a, int d, int k) const {
        return look + "\\" + actions[a].name + std::to_string(d) + "_" + std::to_string(k) + ".bmp";
    }
};

inline bool IsNameChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.';
}

inline bool ValidName(const std::string& s) {
    if (s.empty()) return false;
    for (char c : s)
        if (!IsNameChar(c)) return false;
    return true;
}

// Parses a description. On failure returns false and appends "file:line: message"
// lines to errors; every problem found is reported, not only the first.
inline bool ParseDesc(const std::string& text, const std::string& source, Desc& out, std::string& errors) {
    out = Desc{};
    out.source = source;
    bool ok = true;
    auto fail = [&](int line, const std::string& msg) {
        errors += source + ":" + std::to_string(line) + ": " + msg + "\n";
        ok = false;
    };
    static const char* kKnownGear[] = {"sword", "spear", "staff", "shield", "cloak", "hood", "hat", "helm",
                                       "robe", "skirt", "apron", "satchel", "pack", "tabard", "beard", "hair_long",
                                       "hair_short", "bald", "embers", "belt", "boots", "pauldrons", "horns",
                                       "tail", "mane", "scarf", "knife", "hammer", "cape", "eyes_glow"};
    std::istringstream in(text);
    std::string raw;
    int lineNo = 0;
    int sizeLine = 0;
    while (std::getline(in, raw)) {
        ++lineNo;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        auto hash = raw.find('#');
        if (hash != std::string::npos) raw.resize(hash);
        std::istringstream ls(raw);
        std::vector<std::string> w;
        for (std::string t; ls >> t;) w.push_back(t);
        if (w.empty()) continue;
        const std::string& key = w[0];
        auto toInt = [&](const std::string& s, int lo, int hi, int& v) {
            char* end = nullptr;
            long x = std::strtol(s.c_str(), &end, 10);
            if (s.empty() || *end != '\0' || x < lo || x > hi) {
                fail(lineNo, "'" + s + "' is not a number from " + std::to_string(lo) + " to " + std::to_string(hi));
                return false;
            }
            v = static_cast<int>(x);
            return true;
        };
        auto want = [&](size_t n) {
            if (w.size() != n + 1) {
                fail(lineNo, "'" + key + "' takes " + std::to_string(n) + " value" + (n == 1 ? "" : "s"));
                return false;
            }
            return true;
        };
        if (key == "look") {
            if (!want(1)) continue;
            if (!ValidName(w[1])) fail(lineNo, "look name '" + w[1] + "' may hold only letters, digits, '_', '-', '.'");
            out.look = w[1];
        } else if (key == "file") {
            if (!want(1)) continue;
            if (!ValidName(w[1]) || w[1].size() > 31)
                fail(lineNo, "role file name '" + w[1] + "' must be 1 to 31 plain characters");
            out.file = w[1];
        } else if (key == "rig") {
            if (!want(1)) continue;
            if (w[1] != "humanoid" && w[1] != "quadruped" && w[1] != "bony" && w[1] != "knight")
                fail(lineNo, "unknown rig '" + w[1] + "' (humanoid, quadruped, bony, knight)");
            out.rig = w[1];
        } else if (key == "size") {
            if (!want(2)) continue;
            toInt(w[1], 8, 512, out.width);
            toInt(w[2], 8, 512, out.height);
            sizeLine = lineNo;
        } else if (key == "foot") {
            if (!want(2)) continue;
            toInt(w[1], 0, 511, out.footX);
            toInt(w[2], 0, 511, out.footY);
        } else if (key == "scale") {
            if (!want(1)) continue;
            char* end = nullptr;
            double s = std::strtod(w[1].c_str(), &end);
            if (*end != '\0' || !(s >= 0.25 && s <= 4.0))
                fail(lineNo, "scale '" + w[1] + "' must be from 0.25 to 4");
            else
                out.scale = s;
        } else if (key == "action") {
            if (!want(2)) continue;
            Action a;
            a.name = w[1];
            a.line = lineNo;
            if (a.name.size() >= kActionNameMax)
                fail(lineNo, "action name '" + a.name + "' is " + std::to_string(a.name.size()) +
                                 " bytes; at most " + std::to_string(kActionNameMax - 1) + " fit");
            else if (!ValidName(a.name))
                fail(lineNo, "action name '" + a.name + "' may hold only letters, digits, '_', '-', '.'");
            if (!toInt(w[2], 1, 256, a.frames)) continue;
            for (const auto& b : out.actions)
                if (b.name == a.name) fail(lineNo, "action '" + a.name + "' is declared twice");
            out.actions.push_back(a);
        } else if (key == "colour") {
            if (!want(4)) continue;
            Colour c;
            if (toInt(w[2], 0, 255, c.r) && toInt(w[3], 0, 255, c.g) && toInt(w[4], 0, 255, c.b)) {
                if (c.r >= 240 && c.g <= 24 && c.b >= 240)
                    fail(lineNo, "colour '" + w[1] + "' is too close to the transparent magenta");
                out.colours[w[1]] = c;
            }
        } else if (key == "gear") {
            if (w.size() < 2) {
                fail(lineNo, "'gear' needs at least one item");
                continue;
            }
            for (size_t i = 1; i < w.size(); ++i) {
                bool known = false;
                for (const char* g : kKnownGear) known = known || w[i] == g;
                if (!known)
                    fail(lineNo, "unknown gear '" + w[i] + "'");
                else
                    out.gear.push_back(w[i]);
            }
        } else {
            fail(lineNo, "unknown key '" + key + "'");
        }
    }
    if (out.look.empty()) fail(lineNo, "no 'look' line");
    if (out.file.empty()) fail(lineNo, "no 'file' line");
    if (out.rig.empty()) fail(lineNo, "no 'rig' line");
    if (out.width == 0 || out.height == 0) fail(lineNo, "no 'size' line");
    if (out.actions.empty()) fail(lineNo, "no 'action' line");
    if (out.footX < 0) {
        out.footX = out.width / 2;
        out.footY = out.height - 8;
    } else if (out.width > 0 && (out.footX >= out.width || out.footY >= out.height)) {
        fail(sizeLine, "the foot point lies outside the frame");
    }
    // Every frame name must fit its 32-byte field with the terminating NUL.
    for (const auto& a : out.actions) {
        if (out.look.empty() || a.frames < 1) continue;
        std::string longest = out.look + "\\" + a.name + "8_" + std::to_string(a.frames - 1) + ".bmp";
        if (longest.size() >= kFrameNameMax)
            fail(a.line, "frame name '" + longest + "' is " + std::to_string(longest.size()) + " bytes; at most " +
                             std::to_string(kFrameNameMax - 1) + " fit");
    }
    return ok;
}

inline bool LoadDesc(const std::string& path, Desc& out, std::string& errors) {
    std::ifstream f(path, std::ios::binary);
    if (!f) {
        errors += path + ": cannot open\n";
        return false;
    }
    std::stringstream ss;
    ss << f.rdbuf();
    return ParseDesc(ss.str(), path, out, errors);
}

// Copies a text into a fixed field, cut so that the terminating NUL fits.
inline void PutText(char* field, size_t size, const std::string& s) {
    const size_t n = s.size() < size - 1 ? s.size() : size - 1;
    std::memcpy(field, s.data(), n);
}

// The role file of a parsed description. The fields the engine does not read
// hold: the look name in header bytes 4..23, and each record's own index in its
// first word.
inline SRoleFile BuildRole(const Desc& d) {
    SRoleFile f;
    f.header.magic = ROLE_FILE_MAGIC;
    PutText(reinterpret_cast<char*>(f.header.unused1), sizeof f.header.unused1, d.look);
    f.actions.resize(d.actions.size(), SRoleAction{});
    for (size_t a = 0; a < d.actions.size(); ++a) {
        SRoleAction& ra = f.actions[a];
        ra.unused1 = int32_t(a);
        PutText(ra.name, sizeof ra.name, d.actions[a].name);
        ra.framesPerDir = d.actions[a].frames;
        ra.firstFrame = d.FirstFrame(a);
    }
    f.frames.resize(size_t(d.FrameCount()), SRoleFrame{});
    for (size_t a = 0; a < d.actions.size(); ++a)
        for (int dir = 1; dir <= kDirections; ++dir)
            for (int k = 0; k < d.actions[a].frames; ++k) {
                const int idx = d.FrameIndex(a, dir, k);
                SRoleFrame& fr = f.frames[size_t(idx)];
                fr.unused = idx;
                fr.width = d.width;
                fr.height = d.height;
                PutText(fr.bitmap, sizeof fr.bitmap, d.FrameName(a, dir, k));
            }
    return f;
}

inline std::vector<uint8_t> BuildRoleFile(const Desc& d) { return RoleFileBytes(BuildRole(d)); }

// A role file read back with the tools' strict checks (characters/role_file.h):
// every count, index and name is validated against the bytes actually present.
struct ReadAction {
    std::string name;
    int frames = 0, first = 0;
};
struct ReadFrame {
    int width = 0, height = 0;
    std::string name;
};
struct RoleFile {
    std::vector<ReadAction> actions;
    std::vector<ReadFrame> frames;
};

inline bool ParseRoleFile(const std::vector<uint8_t>& b, RoleFile& out, std::string& error) {
    out = RoleFile{};
    CByteReader in(b);
    SRoleFile f;
    if (!ReadRoleFile(in, f, ERoleCheck::Strict)) {
        error = in.Reason();
        return false;
    }
    for (const SRoleAction& a : f.actions) out.actions.push_back(ReadAction{a.name, a.framesPerDir, a.firstFrame});
    for (const SRoleFrame& fr : f.frames) out.frames.push_back(ReadFrame{fr.width, fr.height, fr.bitmap});
    return true;
}

}  // namespace rolefile
