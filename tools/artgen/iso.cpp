#include "iso.h"

namespace art {

void Poly(Img& im, const std::vector<float>& xy, const std::function<Col(float, float)>& fill,
          Col outline, float ow) {
    float x0 = 1e9f, y0 = 1e9f, x1 = -1e9f, y1 = -1e9f;
    for (size_t i = 0; i < xy.size(); i += 2) {
        x0 = std::min(x0, xy[i]); x1 = std::max(x1, xy[i]);
        y0 = std::min(y0, xy[i + 1]); y1 = std::max(y1, xy[i + 1]);
    }
    Paint(im, x0 - 1, y0 - 1, x1 + 1, y1 + 1,
          [&](float x, float y) { return SdPoly(x, y, xy); },
          [&](float x, float y, float d) {
              if (ow > 0 && d > -ow) return outline;
              return fill(x, y);
          });
}

void Face(Img& im, const Iso& iso, const std::vector<V3>& pts, V3 o, V3 ds, V3 dt,
          const FaceShader& fill, Col outline, float ow) {
    std::vector<float> xy;
    for (const V3& p : pts) { xy.push_back(iso.X(p)); xy.push_back(iso.Y(p)); }
    // Screen = O + s * A + t * B; solve for (s, t).
    float Ox = iso.X(o), Oy = iso.Y(o);
    float ax = iso.X(o + ds) - Ox, ay = iso.Y(o + ds) - Oy;
    float bx = iso.X(o + dt) - Ox, by = iso.Y(o + dt) - Oy;
    float det = ax * by - bx * ay;
    if (std::fabs(det) < 1e-6f) return;
    Poly(im, xy,
         [&](float x, float y) {
             float px = x - Ox, py = y - Oy;
             float s = (px * by - bx * py) / det, t = (ax * py - px * ay) / det;
             return fill(s, t);
         },
         outline, ow);
}

Img MirrorX(const Img& im) {
    Img out(im.w, im.h);
    for (int y = 0; y < im.h; ++y)
        for (int x = 0; x < im.w; ++x) out.Set(im.w - 1 - x, y, im.Get(x, y), im.A(x, y));
    return out;
}

}  // namespace art
