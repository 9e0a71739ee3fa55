// Shared kit of the map object painters (objects.cpp, places.cpp): the object
// definition with its manifest cells, the light direction, and the textures and
// shapes several objects are built from.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "iso.h"
#include "noise.h"
#include "output.h"

namespace art {
namespace obj {

extern const Col kInk;  // outline colour of every object

struct Cell {
    int di, dj;
};

struct ObjDef {
    std::string name;
    Img im;
    int ax = 0, ay = 0;  // base cell box inside the picture
    std::vector<Cell> block, ground, walk;
};

struct Blob {
    float x, y, r;
};

// Brightness of a face with the given outward normal (u, v, z); light from the upper left.
float Light(V3 n);
// Base cell box at (ax, ay): the ground point (0,0,0) is the top corner of that cell.
Iso IsoAt(int ax, int ay);
void Shadow(Img& im, float cx, float cy, float rx, float ry);
void Foliage(Img& im, std::vector<Blob> blobs, Col base, uint32_t seed, float crownCy, float crownR);
void Trunk(Img& im, float bx, float by, float topX, float topY, float rb, float rt, Col bark, uint32_t seed);
// Faceted boulder: a dome whose normal is snapped to a few facets; moss on top unless
// it lies in the dark (mines, burned ground).
void Boulder(Img& im, float cx, float cy, float rx, float ry, uint32_t seed, Col c, bool mossy = true);
Col Plaster(float x, float z, uint32_t seed);
Col StoneCourses(float x, float z, uint32_t seed, Col base);
Col Planks(float x, float z, uint32_t seed, Col base, float width = 5.f);
Col Thatch(float along, float down, uint32_t seed);
Col Slate(float along, float down, uint32_t seed, Col base);
// An upright cylinder standing on (cu, cv): r in pixels across, h tall.
void Cylinder(Img& im, const Iso& iso, float cu, float cv, float z0, float r, float h,
              const std::function<Col(float ang, float z, float light)>& side, Col top);
void Barrel(Img& im, const Iso& iso, float u, float v, uint32_t seed);
void Crate(Img& im, const Iso& iso, V3 o, float size, float h, uint32_t seed);
// A house of 3 x 2 cells (door on the face towards +v; swap turns it to face +u).
ObjDef House(const char* name, bool stone, uint32_t seed, bool swap = false);
// Bridge deck of n cells along u (or v), all of it lying flat on the ground.
ObjDef Bridge(bool alongV, int n);

// The objects of the places beyond the village (places.cpp), appended after the
// first set so the tile ids of the map sources stay.
void PlaceObjects(std::vector<ObjDef>& objs);

}  // namespace obj
}  // namespace art
