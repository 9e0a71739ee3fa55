// rolesheet: contact sheets of the generated characters for review.
//
//   rolesheet STAGE_DIR ROLES_DIR OUT_DIR [SCALE [ACTION]]
//
// Writes OUT_DIR/roles_<look>.png (every frame: one row per action and direction,
// steps left to right), OUT_DIR/roles_overview.png (first standing frame of every
// look in the eight directions) and OUT_DIR/faces.png, on a grass-coloured ground.

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "bmp.h"
#include "resources/png_file.h"
#include "role_desc.h"

namespace fs = std::filesystem;
using namespace rolegen;

namespace {

bool WritePng(const std::string& path, const Image& img) {
    std::vector<uint8_t> rgb(static_cast<size_t>(img.w) * img.h * 3);
    for (int y = 0; y < img.h; ++y)
        for (int x = 0; x < img.w; ++x)
            for (int c = 0; c < 3; ++c) rgb[(static_cast<size_t>(y) * img.w + x) * 3 + c] = img.At(x, y)[c];
    return WritePngFile(path.c_str(), img.w, img.h, 3, rgb.data());
}

struct Sheet {
    Image img;
    int scale = 1;
    void Init(int w, int h, int s) {
        scale = s;
        img.Reset(w * s, h * s);
        for (int y = 0; y < img.h; ++y)
            for (int x = 0; x < img.w; ++x) {
                uint8_t* p = img.At(x, y);
                bool odd = ((x / s / 32) + (y / s / 16)) % 2;
                p[0] = odd ? 92 : 86;
                p[1] = odd ? 116 : 110;
                p[2] = odd ? 64 : 60;
                p[3] = 255;
            }
    }
    void Blit(const Image& src, int ox, int oy, bool frame) {
        for (int y = 0; y < src.h; ++y)
            for (int x = 0; x < src.w; ++x) {
                const uint8_t* s = src.At(x, y);
                bool edge = frame && (x == 0 || y == 0);
                if (!s[3] && !edge) continue;
                for (int sy = 0; sy < scale; ++sy)
                    for (int sx = 0; sx < scale; ++sx) {
                        int X = (ox + x) * scale + sx, Y = (oy + y) * scale + sy;
                        if (X >= img.w || Y >= img.h) continue;
                        uint8_t* d = img.At(X, Y);
                        if (s[3]) {
                            d[0] = s[0];
                            d[1] = s[1];
                            d[2] = s[2];
                        } else {
                            d[0] = d[1] = d[2] = 70;
                        }
                    }
            }
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: rolesheet STAGE_DIR ROLES_DIR OUT_DIR [SCALE]\n");
        return 2;
    }
    fs::path stage = argv[1], roles = argv[2], out = argv[3];
    int scale = argc > 4 ? std::clamp(std::atoi(argv[4]), 1, 4) : 1;
    std::string onlyAction = argc > 5 ? argv[5] : "";
    fs::create_directories(out);
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(roles))
        if (e.is_regular_file() && e.path().extension() == ".txt") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    std::vector<rolefile::Desc> looks;
    for (const auto& f : files) {
        rolefile::Desc d;
        std::string err;
        if (rolefile::LoadDesc(f.string(), d, err)) looks.push_back(d);
        else std::fputs(err.c_str(), stderr);
    }
    int missing = 0;
    int ovW = 0, ovH = 0;
    for (const auto& d : looks) {
        ovW = std::max(ovW, d.width * 8);
        ovH += d.height;
        int cols = 0, rows = 0;
        for (const auto& a : d.actions) {
            if (!onlyAction.empty() && a.name != onlyAction) continue;
            cols = std::max(cols, a.frames);
            rows += 8;
        }
        Sheet s;
        s.Init(cols * d.width, rows * d.height, scale);
        int row = 0;
        for (const auto& a : d.actions)
            for (int dir = 1; dir <= 8 && (onlyAction.empty() || a.name == onlyAction); ++dir, ++row)
                for (int k = 0; k < a.frames; ++k) {
                    Image f;
                    fs::path p = stage / "role" / d.look / (a.name + std::to_string(dir) + "_" + std::to_string(k) + ".bmp");
                    if (!ReadBmp24(p.string(), f)) {
                        ++missing;
                        continue;
                    }
                    s.Blit(f, k * d.width, row * d.height, true);
                }
        if (rows == 0) continue;
        std::string suffix = onlyAction.empty() ? "" : "_" + onlyAction;
        WritePng((out / ("roles_" + d.look + suffix + ".png")).string(), s.img);
    }
    Sheet ov;
    ov.Init(ovW, ovH, scale);
    int y = 0;
    for (const auto& d : looks) {
        for (int dir = 1; dir <= 8; ++dir) {
            Image f;
            if (ReadBmp24((stage / "role" / d.look / ("stand" + std::to_string(dir) + "_0.bmp")).string(), f))
                ov.Blit(f, (dir - 1) * d.width, y, true);
        }
        y += d.height;
    }
    WritePng((out / "roles_overview.png").string(), ov.img);
    std::vector<fs::path> faces;
    if (fs::exists(stage / "face"))
        for (const auto& e : fs::directory_iterator(stage / "face")) faces.push_back(e.path());
    std::sort(faces.begin(), faces.end());
    Sheet fs_;
    fs_.Init(std::max<int>(1, static_cast<int>(std::min<size_t>(faces.size(), 7))) * 84, static_cast<int>((faces.size() + 6) / 7) * 84 + 1, scale);
    for (size_t i = 0; i < faces.size(); ++i) {
        Image f;
        if (ReadBmp24(faces[i].string(), f)) fs_.Blit(f, static_cast<int>(i % 7) * 84 + 2, static_cast<int>(i / 7) * 84 + 2, false);
    }
    WritePng((out / "faces.png").string(), fs_.img);
    if (missing) std::fprintf(stderr, "rolesheet: %d frames missing\n", missing);
    return missing ? 1 : 0;
}
