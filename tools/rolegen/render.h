// A small software renderer for characters made of primitives (ellipsoids,
// capsules, boxes, capped cones), seen by an orthographic camera. Each pixel is
// sampled 2 x 2; a pixel is solid when at least half its samples hit the figure,
// and its colour is the mean of the hit samples only, so edges against the
// transparent background stay hard. A one-pixel dark outline closes the
// silhouette and depth steps inside the figure are darkened to keep limbs apart.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace rolegen {

struct V3 {
    double x = 0, y = 0, z = 0;
};
inline V3 operator+(V3 a, V3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline V3 operator-(V3 a, V3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline V3 operator*(V3 a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline double Dot(V3 a, V3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline V3 Cross(V3 a, V3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline double Len(V3 a) { return std::sqrt(Dot(a, a)); }
inline V3 Norm(V3 a) {
    double l = Len(a);
    return l > 1e-12 ? a * (1.0 / l) : V3{0, 1, 0};
}

// Rotation matrix stored by columns: the images of the x, y and z axes.
struct M3 {
    V3 c[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};
inline V3 operator*(const M3& m, V3 v) { return m.c[0] * v.x + m.c[1] * v.y + m.c[2] * v.z; }
inline M3 operator*(const M3& a, const M3& b) {
    M3 r;
    for (int i = 0; i < 3; ++i) r.c[i] = a * b.c[i];
    return r;
}
inline V3 MulT(const M3& m, V3 v) { return {Dot(m.c[0], v), Dot(m.c[1], v), Dot(m.c[2], v)}; }
M3 RotX(double a);  // positive turns +y toward +z
M3 RotY(double a);  // positive turns +z toward +x
M3 RotZ(double a);  // positive turns +x toward +y

// A placed frame: origin and orientation.
struct Xf {
    V3 o;
    M3 r;
    V3 P(V3 local) const { return o + r * local; }   // a point given in this frame
    Xf Child(V3 offset, const M3& rot) const { return {P(offset), r * rot}; }
};

enum class Shape { Ellipsoid, Capsule, Box, Cone };

struct Prim {
    Shape shape = Shape::Ellipsoid;
    V3 a, b;          // centre (ellipsoid, box) or the two ends (capsule, cone)
    M3 r;             // axes of an ellipsoid or box
    V3 size;          // radii of an ellipsoid, half sizes of a box
    double ra = 0, rb = 0;  // capsule radius (ra); cone radii at a and b
    int mat = 0;
};

struct Material {
    double r = 0.5, g = 0.5, b = 0.5;  // 0..1
    double emissive = 0;                // 0 shaded, 1 glowing
    double shine = 0;                   // specular strength (metal)
};

struct Camera {
    M3 view;             // model -> camera space (x right, y up, z toward viewer)
    double scale = 1.0;  // pixels per model unit
    double originX = 0, originY = 0;  // where the model origin lands in the picture
    V3 light{-0.55, 0.62, 0.56};      // toward the light, camera space (upper left)
    double ambient = 0.5;
    int bands = 5;                    // shading steps (0: smooth)
    bool outline = true;
};

// RGBA picture: a = 0 transparent, 255 solid.
struct Image {
    int w = 0, h = 0;
    std::vector<uint8_t> px;  // r, g, b, a per pixel, top row first
    void Reset(int width, int height) {
        w = width;
        h = height;
        px.assign(static_cast<size_t>(w) * h * 4, 0);
    }
    uint8_t* At(int x, int y) { return &px[(static_cast<size_t>(y) * w + x) * 4]; }
    const uint8_t* At(int x, int y) const { return &px[(static_cast<size_t>(y) * w + x) * 4]; }
};

class Renderer {
public:
    // Renders the primitives into img (which must already have its size). Returns
    // the number of solid pixels that touch the picture border (clipping check).
    int Render(const std::vector<Prim>& prims, const std::vector<Material>& mats, const Camera& cam, Image& img);

private:
    std::vector<float> depth_;
    std::vector<float> nx_, ny_, nz_;
    std::vector<int16_t> mat_;
    std::vector<float> pdepth_;
    std::vector<Prim> cam_;
};

}  // namespace rolegen
