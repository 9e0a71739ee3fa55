// Display costs per frame: the composition of the three map layers into the back
// buffer, the role-layer clear, the whole-screen pixel effects and cached text.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "media/graph.h"
#include "media/text.h"

namespace {

// One display for all benchmarks, with layers that look like a map: the role and
// object layers mostly transparent with scattered opaque runs.
CGraph& Display() {
    static CGraph* graph = [] {
        const std::string font = std::string(ASHEN_GAME_DIR) + "/data/seguibk.ttf";
        CTextCache::SetFontPath(std::filesystem::exists(font)
                                    ? font.c_str()
                                    : "/usr/share/fonts/truetype/droid/DroidSansFallbackFull.ttf");
        auto* g = new CGraph;
        if (!g->Init(1)) {
            fprintf(stderr, "display init failed\n");
            std::abort();
        }
        uint32_t seed = 12345;
        auto rnd = [&seed] {
            seed = seed * 1664525u + 1013904223u;
            return seed >> 8;
        };
        for (int s = SURF_GROUND; s <= SURF_OBJECT; ++s) {
            CSurface& surf = *g->GetSurface(s);
            for (int y = 0; y < surf.height; ++y) {
                uint16_t* row = surf.Row(y);
                for (int x = 0; x < surf.width; ++x) {
                    const uint16_t v = uint16_t(rnd());
                    // Ground opaque; role ~85% and objects ~60% transparent, in runs.
                    const int cut = s == SURF_ROLE ? 85 : 60;
                    row[x] = (s != SURF_GROUND && ((x / 16 + y / 8 * 7) % 100) < cut) ? KEY565 : uint16_t(v & 0xF7DF);
                }
            }
        }
        return g;
    }();
    return *graph;
}

void ComposeLayers(CGraph& g, int camX, int camY) {
    g.BltClipped(SURF_BUFFER, SCREEN_W, SCREEN_H, SURF_GROUND, BLT_WAIT, 0, 0, camX, camY, SCREEN_W, SCREEN_H);
    g.BltClipped(SURF_BUFFER, SCREEN_W, SCREEN_H, SURF_ROLE, BLT_WAIT_SRCKEY, 0, 0, camX, camY, SCREEN_W,
                 SCREEN_H);
    g.BltClipped(SURF_BUFFER, SCREEN_W, SCREEN_H, SURF_OBJECT, BLT_WAIT_SRCKEY, 0, 0, camX, camY, SCREEN_W,
                 SCREEN_H);
}

void BM_ComposeFrame(benchmark::State& state) {
    CGraph& g = Display();
    int i = 0;
    for (auto _ : state) {
        const int camX = 100 + (i * 7) % 1800, camY = 50 + (i * 3) % 1000;
        ComposeLayers(g, camX, camY);
        benchmark::DoNotOptimize(g.GetSurface(SURF_BUFFER)->pixels.data());
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ComposeFrame)->Unit(benchmark::kMicrosecond);

// Clearing the role layer around the view, as each playing frame does.
void BM_ClearRoleLayer(benchmark::State& state) {
    CGraph& g = Display();
    for (auto _ : state) {
        g.ClearRoleLayer(1000, 500);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_ClearRoleLayer)->Unit(benchmark::kMicrosecond);

void BM_OpaqueCopyOnly(benchmark::State& state) {
    CGraph& g = Display();
    for (auto _ : state) {
        g.BltClipped(SURF_BUFFER, SCREEN_W, SCREEN_H, SURF_GROUND, BLT_WAIT, 0, 0, 900, 600, SCREEN_W, SCREEN_H);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_OpaqueCopyOnly)->Unit(benchmark::kMicrosecond);

void BM_KeyedCopyOnly(benchmark::State& state) {
    CGraph& g = Display();
    for (auto _ : state) {
        g.BltClipped(SURF_BUFFER, SCREEN_W, SCREEN_H, SURF_OBJECT, BLT_WAIT_SRCKEY, 0, 0, 900, 600, SCREEN_W,
                     SCREEN_H);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_KeyedCopyOnly)->Unit(benchmark::kMicrosecond);

// Effects over the whole back buffer; the frame is recomposed outside the timing
// so each run starts from the same picture.
template <typename Effect>
void RunEffect(benchmark::State& state, Effect effect) {
    CGraph& g = Display();
    for (auto _ : state) {
        state.PauseTiming();
        ComposeLayers(g, 640, 480);
        state.ResumeTiming();
        effect(g);
        benchmark::ClobberMemory();
    }
}

void BM_GrayRect(benchmark::State& s) { RunEffect(s, [](CGraph& g) { g.GrayRect(1, 0, 0, 640, 480); }); }
void BM_DarkenRect(benchmark::State& s) { RunEffect(s, [](CGraph& g) { g.DarkenRect(1, 0, 0, 640, 480, 12); }); }
void BM_BrightenRect(benchmark::State& s) { RunEffect(s, [](CGraph& g) { g.BrightenRect(1, 0, 0, 640, 480); }); }
void BM_HalfTintBlack(benchmark::State& s) {
    RunEffect(s, [](CGraph& g) { g.HalfTintRect(1, 0, 0, 640, 480, 1); });
}
void BM_HalfTintWhite(benchmark::State& s) {
    RunEffect(s, [](CGraph& g) { g.HalfTintRect(1, 0, 0, 640, 480, 0); });
}
BENCHMARK(BM_GrayRect)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DarkenRect)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BrightenRect)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HalfTintBlack)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HalfTintWhite)->Unit(benchmark::kMicrosecond);

// A panel's worth of outlined text lines, all cache hits after the first frame.
void BM_DrawTextCached(benchmark::State& state) {
    CGraph& g = Display();
    static const char* lines[4] = {"Ashen Oath", "HP 120/120", "MP 35/40", "Level 7"};
    for (auto _ : state) {
        for (int i = 0; i < 4; ++i) {
            const int y = 20 + 24 * i;
            g.DrawText(lines[i], 19, y, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 0));
            g.DrawText(lines[i], 21, y, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 0));
            g.DrawText(lines[i], 20, y - 1, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 0));
            g.DrawText(lines[i], 20, y + 1, SURF_BUFFER, TA_LEFT_TOP, RGB(0, 0, 0));
            g.DrawText(lines[i], 20, y, SURF_BUFFER, TA_LEFT_TOP, RGB(255, 255, 255));
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DrawTextCached)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
