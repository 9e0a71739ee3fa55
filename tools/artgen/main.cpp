// artgen: paints every environment and interface picture of the game.
//
//   artgen --recipes DIR --stage DIR [--tilesets DIR] [--contact DIR]
//
// --recipes   content/art: captions and the tile type table.
// --stage     writes the pictures into the pack folders of the stage directory
//             (ui/, items/, skill/, tiles/), tiles.ini into ini/, the cursor into
//             loose/data/ and the manifests for the map compiler into manifest/.
// --tilesets  also writes the Tiled tilesets and their PNG previews there.
// --contact   also writes PNG contact sheets of every picture there.
#include <cstdio>
#include <cstring>
#include <string>

#include "output.h"
#include "recipes.h"
#include "text.h"

using namespace art;

namespace {

void ContactSheets(const Output& out, const std::string& dir) {
    MakeDirs(dir);
    const char* groups[] = {"scene", "ui", "items", "skill", "tiles", "objects"};
    for (const char* g : groups) {
        // Small pictures are shown twice as large so their pixels can be judged.
        const int maxW = 1280, maxH = 1400, gap = 6;
        int sheetNo = 0;
        Img sheet(maxW, maxH);
        sheet.Fill(Hex(0x30343A));
        int x = gap, y = gap, rowH = 0;
        bool any = false;
        auto flush = [&]() {
            if (!any) return;
            char name[256];
            std::snprintf(name, sizeof name, "%s/%s_%d.png", dir.c_str(), g, sheetNo++);
            WritePng(name, sheet.w, sheet.h, ToRgb8(sheet), false);
            sheet.Fill(Hex(0x30343A));
            any = false;
        };
        for (const Picture& p : out.pictures) {
            if (p.group != g) continue;
            int s = (p.w <= 96 && p.h <= 96 && std::string(g) != "objects") ? (p.w <= 64 ? 3 : 2) : 1;
            int w = p.w * s, h = p.h * s;
            if (x + w + gap > maxW) { x = gap; y += rowH + gap; rowH = 0; }
            if (y + h + gap > maxH) { flush(); x = gap; y = gap; rowH = 0; }
            for (int yy = 0; yy < h; ++yy)
                for (int xx = 0; xx < w; ++xx) {
                    const uint8_t* c = &p.rgb[(size_t(yy / s) * p.w + xx / s) * 3];
                    if (c[0] == 255 && c[1] == 0 && c[2] == 255) continue;
                    if (sheet.In(x + xx, y + yy))
                        sheet.Set(x + xx, y + yy, {c[0] / 255.f, c[1] / 255.f, c[2] / 255.f});
                }
            any = true;
            x += w + gap;
            rowH = std::max(rowH, h);
        }
        flush();
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string stage, tilesets, contact, recipes;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        if (i + 1 < argc && a == "--stage") stage = argv[++i];
        else if (i + 1 < argc && a == "--recipes") recipes = argv[++i];
        else if (i + 1 < argc && a == "--tilesets") tilesets = argv[++i];
        else if (i + 1 < argc && a == "--contact") contact = argv[++i];
        else {
            std::fprintf(stderr, "usage: artgen --recipes DIR --stage DIR [--tilesets DIR] [--contact DIR]\n");
            return 2;
        }
    }
    if (stage.empty() || recipes.empty()) {
        std::fprintf(stderr, "artgen: --recipes and --stage are required\n");
        return 2;
    }
    std::string error;
    if (!LoadRecipes(recipes, error)) {
        std::fprintf(stderr, "artgen: %s\n", error.c_str());
        return 1;
    }
    if (!TextInit()) {
        std::fprintf(stderr, "artgen: cannot start the font renderer\n");
        return 1;
    }
    if (!tilesets.empty()) MakeDirs(tilesets + "/objects");
    Output out;
    GenTiles(out, tilesets);
    GenObjects(out, tilesets);
    GenUi(out);
    GenItems(out);
    GenSkills(out);
    GenCursor(out);
    TextQuit();

    bool ok = true;
    for (const Picture& p : out.pictures) {
        if (p.reviewOnly) continue;
        std::string path = stage + "/" + p.path;
        MakeDirs(path.substr(0, path.rfind('/')));
        ok = WriteFile(path, EncodeBmp(p.w, p.h, p.rgb)) && ok;
    }
    for (const TextFile& f : out.files) {
        std::string path = f.path[0] == '/' ? f.path : stage + "/" + f.path;
        MakeDirs(path.substr(0, path.rfind('/')));
        ok = WriteFile(path, f.bytes) && ok;
    }
    if (!contact.empty()) ContactSheets(out, contact);
    if (!ok) {
        std::fprintf(stderr, "artgen: could not write every file under %s\n", stage.c_str());
        return 1;
    }
    std::printf("artgen: %zu pictures, %zu files\n", out.pictures.size(), out.files.size());
    return 0;
}
