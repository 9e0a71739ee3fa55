// Everything one run of the generator produces, kept in memory until it is written:
// pictures (converted to 24-bit pixels) and plain files, each under a path relative
// to the stage directory. Pictures carry a group name for the contact sheets.
#pragma once
#include <string>
#include <vector>

#include "canvas.h"

namespace art {

struct Picture {
    std::string group;  // contact sheet group: ui, items, skill, tiles, objects
    std::string path;   // relative to the stage directory, '/' separated
    int w = 0, h = 0;
    std::vector<uint8_t> rgb;
    bool reviewOnly = false;  // contact sheets only, never written to the stage
};

struct TextFile {
    std::string path;  // relative to the stage directory, or absolute when it starts with '/'
    std::vector<uint8_t> bytes;
};

struct Output {
    std::vector<Picture> pictures;
    std::vector<TextFile> files;

    const Picture& AddPicture(const std::string& group, const std::string& path, const Img& im) {
        pictures.push_back({group, path, im.w, im.h, ToRgb8(im)});
        return pictures.back();
    }
    void AddReview(const std::string& group, const std::string& name, const Img& im) {
        pictures.push_back({group, name, im.w, im.h, ToRgb8(im), true});
    }
    void AddText(const std::string& path, const std::string& text) {
        files.push_back({path, std::vector<uint8_t>(text.begin(), text.end())});
    }
    void AddBytes(const std::string& path, std::vector<uint8_t> bytes) {
        files.push_back({path, std::move(bytes)});
    }
};

// Generators, one per family of pictures.
void GenTiles(Output& out, const std::string& tilesetDir);
void GenObjects(Output& out, const std::string& tilesetDir);
void GenUi(Output& out);
void GenItems(Output& out);
void GenSkills(Output& out);
void GenCursor(Output& out);

}  // namespace art
