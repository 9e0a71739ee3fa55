// rolegen: paints the character frames and portraits.
//
//   rolegen STAGE_DIR ROLES_DIR [LOOK... | faces]
//
// For every role description ROLES_DIR/*.txt (or only the named looks) it writes
// STAGE_DIR/role/<look>/<action><dir>_<k>.bmp for the eight directions, and for
// every line of ROLES_DIR/faces/portraits.txt STAGE_DIR/face/<name>.bmp (all
// looks and faces without names; "faces" names the portraits).
// Output is deterministic: no clocks, no randomness, fixed iteration order.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "bmp.h"
#include "rigs.h"

namespace fs = std::filesystem;
using namespace rolegen;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kElevation = kPi / 6;  // 30 degrees: ground diamonds come out 2:1
// Model units to pixels: the standard figure (56 units) comes out about 48 pixels
// from crown to soles, a tile and a half.
constexpr double kPixelsPerUnit = 0.86;

// Facing of direction d (1 = up, clockwise) turned into the yaw of the model:
// a screen direction (sx, sy) is the ground direction (sx, 2 sy) seen from above.
double DirectionYaw(int d) {
    static const int sx[8] = {0, 1, 1, 1, 0, -1, -1, -1};
    static const int sy[8] = {-1, -1, 0, 1, 1, 1, 0, -1};
    return std::atan2(static_cast<double>(sx[d - 1]), 2.0 * sy[d - 1]);
}

bool RenderLook(const rolefile::Desc& d, const fs::path& stage, int& border) {
    fs::path dir = stage / "role" / d.look;
    fs::create_directories(dir);
    Renderer r;
    Palette pal;
    std::vector<Prim> prims;
    Image img;
    Camera cam;
    cam.scale = d.scale * kPixelsPerUnit;
    cam.originX = d.footX;
    cam.originY = d.footY;
    for (size_t a = 0; a < d.actions.size(); ++a) {
        const auto& act = d.actions[a];
        for (int k = 0; k < act.frames; ++k) {
            BuildFigure(d, act.name, k, act.frames, pal, prims);
            for (int dirn = 1; dirn <= rolefile::kDirections; ++dirn) {
                cam.view = RotX(kElevation) * RotY(DirectionYaw(dirn));
                img.Reset(d.width, d.height);
                border += r.Render(prims, pal.mats, cam, img);
                std::string name = act.name + std::to_string(dirn) + "_" + std::to_string(k) + ".bmp";
                if (!WriteBmp24((dir / name).string(), img)) {
                    std::fprintf(stderr, "rolegen: cannot write %s\n", (dir / name).c_str());
                    return false;
                }
            }
        }
    }
    return true;
}

// ---------------------------------------------------------------- portraits

struct FaceLine {
    std::string name, look;
    std::vector<std::string> opts;
    int line = 0;
};

void Lerp3(double* o, const double* a, const double* b, double t) {
    for (int i = 0; i < 3; ++i) o[i] = a[i] + (b[i] - a[i]) * t;
}

bool RenderFace(const FaceLine& f, rolefile::Desc d, const fs::path& stage, std::string& err) {
    // Options: +gear, -gear, colour:key:r,g,b, bg:r,g,b
    double bg[3] = {0.30, 0.24, 0.20};
    for (const std::string& o : f.opts) {
        if (o.size() > 1 && o[0] == '+') {
            d.gear.push_back(o.substr(1));
        } else if (o.size() > 1 && o[0] == '-') {
            d.gear.erase(std::remove(d.gear.begin(), d.gear.end(), o.substr(1)), d.gear.end());
        } else if (o.rfind("colour:", 0) == 0 || o.rfind("bg:", 0) == 0) {
            bool isBg = o[0] == 'b';
            std::string rest = o.substr(isBg ? 3 : 7);
            std::string key;
            if (!isBg) {
                auto c = rest.find(':');
                if (c == std::string::npos) return err = "bad colour option '" + o + "'", false;
                key = rest.substr(0, c);
                rest = rest.substr(c + 1);
            }
            int r, g, b;
            if (std::sscanf(rest.c_str(), "%d,%d,%d", &r, &g, &b) != 3 || r < 0 || g < 0 || b < 0 || r > 255 ||
                g > 255 || b > 255)
                return err = "bad colour option '" + o + "'", false;
            if (isBg) {
                bg[0] = r / 255.0;
                bg[1] = g / 255.0;
                bg[2] = b / 255.0;
            } else {
                d.colours[key] = {r, g, b};
            }
        } else {
            return err = "unknown option '" + o + "'", false;
        }
    }
    // Portraits: a close bust with finer features and no weapon in front of the face.
    d.gear.push_back("detail");
    for (const char* w : {"spear", "staff", "sword", "knife", "hammer", "shield"})
        d.gear.erase(std::remove(d.gear.begin(), d.gear.end(), std::string(w)), d.gear.end());
    const int W = 80, H = 80;
    Renderer r;
    Palette pal;
    std::vector<Prim> prims;
    BuildFigure(d, "stand", 0, 4, pal, prims);
    Camera cam;
    cam.view = RotX(0.16) * RotY(0.5);
    cam.scale = 3.3;
    cam.bands = 7;
    cam.ambient = 0.46;
    double headY = d.rig == "knight" ? 54.0 : 52.0;
    V3 hc = cam.view * V3{0, headY, 0} * cam.scale;
    cam.originX = 38 - hc.x;
    cam.originY = 36 + hc.y;
    Image fig;
    fig.Reset(W, H);
    r.Render(prims, pal.mats, cam, fig);
    Image out;
    out.Reset(W, H);
    const double rim[3] = {0.55, 0.42, 0.22}, rimDark[3] = {0.18, 0.12, 0.08};
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            uint8_t* o = out.At(x, y);
            const uint8_t* s = fig.At(x, y);
            double c[3];
            // Background: lit from the upper left, darker toward the corners.
            double dx = (x - 30.0) / 60.0, dy = (y - 24.0) / 60.0;
            double v = std::clamp(1.15 - std::sqrt(dx * dx + dy * dy) * 0.9, 0.45, 1.1);
            for (int ch = 0; ch < 3; ++ch) c[ch] = bg[ch] * v;
            if (s[3])
                for (int ch = 0; ch < 3; ++ch) c[ch] = s[ch] / 255.0;
            // Frame: 4 px bevelled border.
            int e = std::min({x, y, W - 1 - x, H - 1 - y});
            if (e == 0) {
                for (int ch = 0; ch < 3; ++ch) c[ch] = 0.08;
            } else if (e <= 3) {
                bool lit = (x < W - 1 - e) && (y < H - 1 - e) && (x <= y || x + y < W);
                double t = e == 2 ? 1.0 : 0.7;
                Lerp3(c, rimDark, rim, lit ? t : t * 0.55);
            } else if (e == 4) {
                for (int ch = 0; ch < 3; ++ch) c[ch] *= 0.55;
            }
            for (int ch = 0; ch < 3; ++ch) o[ch] = static_cast<uint8_t>(std::clamp(c[ch] * 255.0 + 0.5, 0.0, 255.0));
            if (o[0] >= 200 && o[2] >= 200 && o[1] < 72) o[1] = 72;
            o[3] = 255;
        }
    fs::create_directories(stage / "face");
    if (!WriteBmp24((stage / "face" / (f.name + ".bmp")).string(), out)) return err = "cannot write", false;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: rolegen STAGE_DIR ROLES_DIR [LOOK...]\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    fs::path stage = argv[1], roles = argv[2];
    std::vector<std::string> only(argv + 3, argv + argc);
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(roles))
        if (e.is_regular_file() && e.path().extension() == ".txt") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    std::map<std::string, rolefile::Desc> looks;
    int failures = 0;
    for (const auto& f : files) {
        rolefile::Desc d;
        std::string errors;
        if (!rolefile::LoadDesc(f.string(), d, errors)) {
            std::fputs(errors.c_str(), stderr);
            ++failures;
            continue;
        }
        looks[d.look] = d;
        if (!only.empty() && std::find(only.begin(), only.end(), d.look) == only.end()) continue;
        int border = 0;
        if (!RenderLook(d, stage, border)) ++failures;
        if (border > 0) std::printf("rolegen: %s: %d figure pixels on the frame border\n", d.look.c_str(), border);
    }
    // Portraits.
    fs::path faces = roles / "faces" / "portraits.txt";
    std::ifstream in(faces);
    std::string raw;
    int lineNo = 0;
    const bool faceList = only.empty() || std::find(only.begin(), only.end(), "faces") != only.end();
    while (faceList && in && std::getline(in, raw)) {
        ++lineNo;
        auto hash = raw.find('#');
        if (hash != std::string::npos) raw.resize(hash);
        std::istringstream ls(raw);
        std::vector<std::string> w;
        for (std::string t; ls >> t;) w.push_back(t);
        if (w.empty()) continue;
        FaceLine fl;
        fl.line = lineNo;
        if (w.size() < 3 || w[0] != "face") {
            std::fprintf(stderr, "%s:%d: expected 'face NAME LOOK [options]'\n", faces.c_str(), lineNo);
            ++failures;
            continue;
        }
        fl.name = w[1];
        fl.look = w[2];
        fl.opts.assign(w.begin() + 3, w.end());
        auto it = looks.find(fl.look);
        std::string err;
        if (it == looks.end()) err = "unknown look '" + fl.look + "'";
        else if (fl.name.size() + 4 > 31 || !rolefile::ValidName(fl.name)) err = "bad face name '" + fl.name + "'";
        if (err.empty() && RenderFace(fl, it->second, stage, err)) continue;
        std::fprintf(stderr, "%s:%d: %s\n", faces.c_str(), lineNo, err.c_str());
        ++failures;
    }
    double secs = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("rolegen: %.1f s\n", secs);
    return failures ? 1 : 0;
}
