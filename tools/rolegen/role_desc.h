// Role descriptions and the binary role animation file.
//
// A role description (content/roles/<look>.txt) is a UTF-8 text of "key values"
// lines; '#' starts a comment. It names the look (its frame folder in the role
// pack), the role file, the frame size, the actions with their frames per
// direction, and the recipe the character generator paints the frames from
// (rig, colours, gear). The role compiler turns it into the binary file the
// engine reads: a 2532-byte header, one 3188-byte record per action and one
// 44-byte record per frame, little-endian. Each action owns 8 * n consecutive
// frames, direction by direction (1 = up, clockwise), so frame (a, d, k) is
// first(a) + (d - 1) * n(a) + k.
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

namespace rolefile {

constexpr int kHeaderSize = 2532;
constexpr int kActionSize = 3188;
constexpr int kFrameSize = 44;
constexpr int kMagic = 8077;
constexpr int kHeaderFrameCount = 24;
constexpr int kHeaderActionCount = 28;
constexpr int kActionName = 4;
constexpr int kActionNameMax = 52;  // bytes including the terminating NUL
constexpr int kActionFrames = 56;
constexpr int kActionFirst = 3184;
constexpr int kFrameWidth = 4;
constexpr int kFrameHeight = 8;
constexpr int kFrameName = 12;
constexpr int kFrameNameMax = 32;  // bytes including the terminating NUL
constexpr int kDirections = 8;

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

inline void Put32(std::vector<uint8_t>& b, size_t at, int32_t v) {
    uint32_t u = static_cast<uint32_t>(v);
    for (int i = 0; i < 4; ++i) b[at + i] = static_cast<uint8_t>(u >> (8 * i));
}

inline int32_t Get32(const std::vector<uint8_t>& b, size_t at) {
    uint32_t u = 0;
    for (int i = 0; i < 4; ++i) u |= static_cast<uint32_t>(b[at + i]) << (8 * i);
    return static_cast<int32_t>(u);
}

inline void PutText(std::vector<uint8_t>& b, size_t at, const std::string& s, size_t field) {
    size_t n = s.size() < field - 1 ? s.size() : field - 1;
    std::memcpy(b.data() + at, s.data(), n);
}

// The binary role file of a parsed description. The fields the engine does not
// read hold: the look name in header bytes 4..23, and each record's own index in
// its first word.
inline std::vector<uint8_t> BuildRoleFile(const Desc& d) {
    const int A = static_cast<int>(d.actions.size());
    const int F = d.FrameCount();
    std::vector<uint8_t> b(static_cast<size_t>(kHeaderSize + A * kActionSize + F * kFrameSize), 0);
    Put32(b, 0, kMagic);
    PutText(b, 4, d.look, 20);
    Put32(b, kHeaderFrameCount, F);
    Put32(b, kHeaderActionCount, A);
    for (int a = 0; a < A; ++a) {
        size_t at = static_cast<size_t>(kHeaderSize + a * kActionSize);
        Put32(b, at, a);
        PutText(b, at + kActionName, d.actions[a].name, kActionNameMax);
        Put32(b, at + kActionFrames, d.actions[a].frames);
        Put32(b, at + kActionFirst, d.FirstFrame(a));
    }
    size_t frames = static_cast<size_t>(kHeaderSize + A * kActionSize);
    for (int a = 0; a < A; ++a)
        for (int dir = 1; dir <= kDirections; ++dir)
            for (int k = 0; k < d.actions[a].frames; ++k) {
                int idx = d.FrameIndex(a, dir, k);
                size_t at = frames + static_cast<size_t>(idx) * kFrameSize;
                Put32(b, at, idx);
                Put32(b, at + kFrameWidth, d.width);
                Put32(b, at + kFrameHeight, d.height);
                PutText(b, at + kFrameName, d.FrameName(a, dir, k), kFrameNameMax);
            }
    return b;
}

// A role file read back and checked: every count, index and name is validated
// against the bytes actually present.
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

inline bool ReadField(const std::vector<uint8_t>& b, size_t at, size_t field, std::string& out) {
    for (size_t i = 0; i < field; ++i)
        if (b[at + i] == 0) {
            out.assign(reinterpret_cast<const char*>(b.data() + at), i);
            return true;
        }
    return false;  // not terminated inside its field
}

inline bool ParseRoleFile(const std::vector<uint8_t>& b, RoleFile& out, std::string& error) {
    out = RoleFile{};
    if (b.size() < static_cast<size_t>(kHeaderSize)) return error = "shorter than the header", false;
    if (Get32(b, 0) != kMagic) return error = "bad magic", false;
    int64_t F = Get32(b, kHeaderFrameCount), A = Get32(b, kHeaderActionCount);
    if (F < 0 || A < 0) return error = "negative count", false;
    if (static_cast<int64_t>(b.size()) != kHeaderSize + A * kActionSize + F * kFrameSize)
        return error = "size does not match the counts", false;
    for (int64_t a = 0; a < A; ++a) {
        size_t at = static_cast<size_t>(kHeaderSize + a * kActionSize);
        ReadAction ra;
        if (!ReadField(b, at + kActionName, kActionNameMax, ra.name)) return error = "action name not terminated", false;
        ra.frames = Get32(b, at + kActionFrames);
        ra.first = Get32(b, at + kActionFirst);
        if (ra.frames < 1 || ra.first < 0 || static_cast<int64_t>(ra.first) + int64_t{kDirections} * ra.frames > F)
            return error = "action '" + ra.name + "' frames outside the frame table", false;
        out.actions.push_back(ra);
    }
    size_t frames = static_cast<size_t>(kHeaderSize + A * kActionSize);
    for (int64_t f = 0; f < F; ++f) {
        size_t at = frames + static_cast<size_t>(f) * kFrameSize;
        ReadFrame rf;
        rf.width = Get32(b, at + kFrameWidth);
        rf.height = Get32(b, at + kFrameHeight);
        if (!ReadField(b, at + kFrameName, kFrameNameMax, rf.name)) return error = "frame name not terminated", false;
        out.frames.push_back(rf);
    }
    return true;
}

}  // namespace rolefile
