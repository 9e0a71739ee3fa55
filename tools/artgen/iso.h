// Isometric painting helpers: points on the ground grid (u along the first cell
// index, v along the second, both in cells; z up in pixels) projected to the 64 x 32
// cell lattice, and flat faces painted with a shader over the face's own (s, t).
#pragma once
#include <functional>
#include <vector>

#include "canvas.h"

namespace art {

struct V3 {
    float u = 0, v = 0, z = 0;
};
inline V3 operator+(V3 a, V3 b) { return {a.u + b.u, a.v + b.v, a.z + b.z}; }
inline V3 operator*(V3 a, float s) { return {a.u * s, a.v * s, a.z * s}; }

struct Iso {
    float ox = 0, oy = 0;  // picture position of the ground point (0, 0, 0)
    bool swap = false;     // exchange the two ground axes (turns a building to face the other way)
    float X(V3 p) const { return swap ? ox + 32.f * (p.v - p.u) : ox + 32.f * (p.u - p.v); }
    float Y(V3 p) const { return oy + 16.f * (p.u + p.v) - p.z; }
};

using FaceShader = std::function<Col(float s, float t)>;

// Paints the polygon pts (in 3D, all on the plane o + s*ds + t*dt) with fill(s, t)
// and a dark outline of width ow (0 for none).
void Face(Img& im, const Iso& iso, const std::vector<V3>& pts, V3 o, V3 ds, V3 dt,
          const FaceShader& fill, Col outline, float ow = 1.f);
// The parallelogram o, o+ds, o+ds+dt, o+dt.
inline void Quad(Img& im, const Iso& iso, V3 o, V3 ds, V3 dt, const FaceShader& fill,
                 Col outline, float ow = 1.f) {
    Face(im, iso, {o, o + ds, o + ds + dt, o + dt}, o, ds, dt, fill, outline, ow);
}

// Screen-space polygon with an outline; fill gets pixel coordinates.
void Poly(Img& im, const std::vector<float>& xy, const std::function<Col(float, float)>& fill,
          Col outline, float ow = 1.f);

Img MirrorX(const Img& im);

}  // namespace art
