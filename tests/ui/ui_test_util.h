// Shared helpers of the UI tests: a recording text sink with fixed glyph widths,
// a real display with the project's font, and a small bitmap pack on disk.
#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "media/graph.h"
#include "media/text.h"
#include "resources/vrn_writer.h"
#include "ui/richtext.h"

struct SRecordedRun {
    std::string text;
    int32_t x, y;
    COLORREF color;
    bool centred;
};

// Every byte is 10 pixels wide.
class CRecordingSink : public IRichTextSink {
public:
    int32_t MeasureRun(const char* run) override { return int32_t(std::string(run).size()) * 10; }
    void DrawRun(const char* run, int32_t x, int32_t y, COLORREF color, bool centred) override {
        runs.push_back({run, x, y, color, centred});
    }
    // The text of all runs drawn at one y, joined.
    std::string LineAt(int32_t y) const {
        std::string s;
        for (const auto& r : runs)
            if (r.y == y) s += r.text;
        return s;
    }
    std::vector<SRecordedRun> runs;
};

// A 24-bit bottom-up BMP of one colour.
inline std::vector<uint8_t> MakeBmp(int32_t w, int32_t h, uint8_t r, uint8_t g, uint8_t b) {
    const uint32_t stride = (uint32_t(w) * 3 + 3) & ~3u;
    const uint32_t size = 54 + stride * uint32_t(h);
    std::vector<uint8_t> f(size, 0);
    auto put32 = [&](size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i) f[at + size_t(i)] = uint8_t(v >> (8 * i));
    };
    f[0] = 'B';
    f[1] = 'M';
    put32(2, size);
    put32(10, 54);
    put32(14, 40);
    put32(18, uint32_t(w));
    put32(22, uint32_t(h));
    f[26] = 1;
    f[28] = 24;
    put32(34, stride * uint32_t(h));
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            uint8_t* p = &f[54 + size_t(y) * stride + size_t(x) * 3];
            p[0] = b;
            p[1] = g;
            p[2] = r;
        }
    return f;
}

// A display with surfaces and the font, and pack 1 ("ui") pointing at a small
// archive written into the working directory.
class CTestDisplay {
public:
    CTestDisplay() {
        CTextCache::SetFontPath("/usr/share/fonts/truetype/wqy/wqy-microhei.ttc");  // the game font
        graph = std::make_unique<CGraph>();
        graph->Init(1);
        std::vector<SVrnInput> entries;
        entries.push_back({"btn.bmp", MakeBmp(200, 44, 40, 80, 120)});
        entries.push_back({"btn_h.bmp", MakeBmp(200, 44, 200, 200, 40)});
        entries.push_back({"small.bmp", MakeBmp(28, 28, 0, 0, 255)});
        entries.push_back({"bosskey.bmp", MakeBmp(640, 480, 10, 20, 30)});
        std::vector<uint8_t> image;
        std::string error;
        if (BuildVrnArchive(entries, VRN_COMPRESS_NEVER, &image, &error)) {
            if (FILE* f = std::fopen("ui_test_pack.vrn", "wb")) {
                std::fwrite(image.data(), 1, image.size(), f);
                std::fclose(f);
            }
        }
        graph->SetPackPath(1, "ui_test_pack.vrn");
    }
    std::unique_ptr<CGraph> graph;
};
