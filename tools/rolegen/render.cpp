#include "render.h"

#include <algorithm>
#include <limits>

namespace rolegen {

M3 RotX(double a) {
    double c = std::cos(a), s = std::sin(a);
    M3 m;
    m.c[1] = {0, c, s};
    m.c[2] = {0, -s, c};
    return m;
}

M3 RotY(double a) {
    double c = std::cos(a), s = std::sin(a);
    M3 m;
    m.c[0] = {c, 0, -s};
    m.c[2] = {s, 0, c};
    return m;
}

M3 RotZ(double a) {
    double c = std::cos(a), s = std::sin(a);
    M3 m;
    m.c[0] = {c, s, 0};
    m.c[1] = {-s, c, 0};
    return m;
}

namespace {

constexpr double kFar = 1e4;  // rays start at z = kFar and travel toward -z

// Each hit test returns the ray parameter (negative: miss) and the normal.
double HitEllipsoid(const Prim& p, V3 ro, V3 rd, V3& n) {
    V3 o = MulT(p.r, ro - p.a), d = MulT(p.r, rd);
    o = {o.x / p.size.x, o.y / p.size.y, o.z / p.size.z};
    d = {d.x / p.size.x, d.y / p.size.y, d.z / p.size.z};
    double a = Dot(d, d), b = Dot(o, d), c = Dot(o, o) - 1.0;
    double h = b * b - a * c;
    if (h < 0) return -1;
    double t = (-b - std::sqrt(h)) / a;
    V3 q = o + d * t;
    n = Norm(p.r * V3{q.x / p.size.x, q.y / p.size.y, q.z / p.size.z});
    return t;
}

double HitCapsule(const Prim& p, V3 ro, V3 rd, V3& n) {
    V3 ba = p.b - p.a, oa = ro - p.a;
    double baba = Dot(ba, ba), bard = Dot(ba, rd), baoa = Dot(ba, oa), rdoa = Dot(rd, oa), oaoa = Dot(oa, oa);
    double r = p.ra;
    double a = baba - bard * bard, b = baba * rdoa - baoa * bard, c = baba * oaoa - baoa * baoa - r * r * baba;
    double h = b * b - a * c;
    double t = -1;
    if (h >= 0 && a > 1e-9) {
        t = (-b - std::sqrt(h)) / a;
        double y = baoa + t * bard;
        if (y <= 0 || y >= baba) t = -1;
    }
    if (t < 0) {
        // The nearer of the two end spheres.
        double best = -1;
        for (const V3& cen : {p.a, p.b}) {
            V3 oc = ro - cen;
            double bb = Dot(rd, oc), cc = Dot(oc, oc) - r * r, hh = bb * bb - cc;
            if (hh < 0) continue;
            double tt = -bb - std::sqrt(hh);
            if (tt >= 0 && (best < 0 || tt < best)) best = tt;
        }
        t = best;
        if (t < 0) return -1;
    }
    V3 q = ro + rd * t, pa = q - p.a;
    double k = baba > 1e-12 ? std::clamp(Dot(pa, ba) / baba, 0.0, 1.0) : 0.0;
    n = Norm(pa - ba * k);
    return t;
}

double HitBox(const Prim& p, V3 ro, V3 rd, V3& n) {
    V3 o = MulT(p.r, ro - p.a), d = MulT(p.r, rd);
    double oa[3] = {o.x, o.y, o.z}, da[3] = {d.x, d.y, d.z}, sa[3] = {p.size.x, p.size.y, p.size.z};
    double tn = -std::numeric_limits<double>::infinity(), tf = std::numeric_limits<double>::infinity();
    int axis = 0;
    double sign = 1;
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(da[i]) < 1e-12) {
            if (oa[i] < -sa[i] || oa[i] > sa[i]) return -1;
            continue;
        }
        double t1 = (-sa[i] - oa[i]) / da[i], t2 = (sa[i] - oa[i]) / da[i];
        double s = -1;
        if (t1 > t2) {
            std::swap(t1, t2);
            s = 1;
        }
        if (t1 > tn) {
            tn = t1;
            axis = i;
            sign = s;
        }
        tf = std::min(tf, t2);
    }
    if (tn > tf || tf < 0) return -1;
    n = p.r.c[axis] * sign;
    return tn;
}

double HitCone(const Prim& p, V3 ro, V3 rd, V3& n) {
    V3 ba = p.b - p.a, oa = ro - p.a, ob = ro - p.b;
    double ra = p.ra, rb = p.rb;
    double m0 = Dot(ba, ba), m1 = Dot(oa, ba), m2 = Dot(rd, ba), m3 = Dot(rd, oa), m5 = Dot(oa, oa), m9 = Dot(ob, ba);
    if (m1 < 0) {
        V3 v = oa * m2 - rd * m1;
        if (Dot(v, v) < ra * ra * m2 * m2) {
            n = Norm(ba) * -1;
            return -m1 / m2;
        }
    } else if (m9 > 0) {
        double t = -m9 / m2;
        V3 v = ob + rd * t;
        if (Dot(v, v) < rb * rb) {
            n = Norm(ba);
            return t;
        }
    }
    double rr = ra - rb, hy = m0 + rr * rr;
    double k2 = m0 * m0 - m2 * m2 * hy;
    double k1 = m0 * m0 * m3 - m1 * m2 * hy + m0 * ra * (rr * m2);
    double k0 = m0 * m0 * m5 - m1 * m1 * hy + m0 * ra * (rr * m1 * 2.0 - m0 * ra);
    double h = k1 * k1 - k2 * k0;
    if (h < 0 || std::fabs(k2) < 1e-12) return -1;
    double t = (-k1 - std::sqrt(h)) / k2;
    double y = m1 + t * m2;
    if (y < 0 || y > m0) return -1;
    n = Norm((oa + rd * t) * (m0 * m0) + ba * (rr * ra * m0) - ba * (hy * y));
    return t;
}

// Camera-space bounds of a primitive on x and y.
void Bounds(const Prim& p, double& x0, double& x1, double& y0, double& y1) {
    double r;
    V3 lo, hi;
    switch (p.shape) {
    case Shape::Ellipsoid:
    case Shape::Box: {
        r = p.shape == Shape::Box ? Len(p.size) : std::max({p.size.x, p.size.y, p.size.z});
        lo = hi = p.a;
        break;
    }
    default:
        r = std::max(p.ra, p.rb);
        lo = {std::min(p.a.x, p.b.x), std::min(p.a.y, p.b.y), 0};
        hi = {std::max(p.a.x, p.b.x), std::max(p.a.y, p.b.y), 0};
        break;
    }
    x0 = lo.x - r;
    x1 = hi.x + r;
    y0 = lo.y - r;
    y1 = hi.y + r;
}

inline uint8_t ToByte(double v) { return static_cast<uint8_t>(std::clamp(v * 255.0 + 0.5, 0.0, 255.0)); }

}  // namespace

int Renderer::Render(const std::vector<Prim>& prims, const std::vector<Material>& mats, const Camera& cam, Image& img) {
    const int W = img.w, H = img.h, SW = W * 2, SH = H * 2;
    const size_t N = static_cast<size_t>(SW) * SH;
    depth_.assign(N, -std::numeric_limits<float>::infinity());
    nx_.assign(N, 0);
    ny_.assign(N, 0);
    nz_.assign(N, 0);
    mat_.assign(N, -1);

    // Into camera space, in pixels.
    cam_.resize(prims.size());
    const double s = cam.scale;
    for (size_t i = 0; i < prims.size(); ++i) {
        Prim q = prims[i];
        q.a = cam.view * q.a * s;
        q.b = cam.view * q.b * s;
        q.r = cam.view * q.r;
        q.size = q.size * s;
        q.ra *= s;
        q.rb *= s;
        cam_[i] = q;
    }

    const V3 rd{0, 0, -1};
    for (const Prim& p : cam_) {
        double x0, x1, y0, y1;
        Bounds(p, x0, x1, y0, y1);
        // Sample (i, j) sits at camera x = (i + 0.5) / 2 - originX, y = originY - (j + 0.5) / 2.
        int i0 = std::max(0, static_cast<int>(std::floor((x0 + cam.originX) * 2 - 0.5)));
        int i1 = std::min(SW - 1, static_cast<int>(std::ceil((x1 + cam.originX) * 2 - 0.5)));
        int j0 = std::max(0, static_cast<int>(std::floor((cam.originY - y1) * 2 - 0.5)));
        int j1 = std::min(SH - 1, static_cast<int>(std::ceil((cam.originY - y0) * 2 - 0.5)));
        for (int j = j0; j <= j1; ++j) {
            double y = cam.originY - (j + 0.5) / 2.0;
            for (int i = i0; i <= i1; ++i) {
                double x = (i + 0.5) / 2.0 - cam.originX;
                V3 ro{x, y, kFar}, n;
                double t;
                switch (p.shape) {
                case Shape::Ellipsoid: t = HitEllipsoid(p, ro, rd, n); break;
                case Shape::Capsule: t = HitCapsule(p, ro, rd, n); break;
                case Shape::Box: t = HitBox(p, ro, rd, n); break;
                default: t = HitCone(p, ro, rd, n); break;
                }
                if (t < 0) continue;
                float z = static_cast<float>(kFar - t);
                size_t k = static_cast<size_t>(j) * SW + i;
                if (z <= depth_[k]) continue;
                depth_[k] = z;
                if (n.z < 0) n = n * -1;  // seen from inside (open cone ends)
                nx_[k] = static_cast<float>(n.x);
                ny_[k] = static_cast<float>(n.y);
                nz_[k] = static_cast<float>(n.z);
                mat_[k] = static_cast<int16_t>(p.mat);
            }
        }
    }

    // Shade samples and resolve pixels.
    const V3 L = Norm(cam.light);
    const V3 Hv = Norm(L + V3{0, 0, 1});
    img.px.assign(static_cast<size_t>(W) * H * 4, 0);
    pdepth_.assign(static_cast<size_t>(W) * H, -std::numeric_limits<float>::infinity());
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            double acc[3] = {0, 0, 0};
            int hits = 0;
            float dmax = -std::numeric_limits<float>::infinity();
            for (int sj = 0; sj < 2; ++sj)
                for (int si = 0; si < 2; ++si) {
                    size_t k = static_cast<size_t>(y * 2 + sj) * SW + (x * 2 + si);
                    if (mat_[k] < 0) continue;
                    const Material& m = mats[static_cast<size_t>(mat_[k])];
                    V3 n{nx_[k], ny_[k], nz_[k]};
                    double diff = std::max(0.0, Dot(n, L));
                    double lum = cam.ambient + (1.0 - cam.ambient) * 1.15 * diff;
                    if (cam.bands > 0) lum = std::round(lum * cam.bands) / cam.bands;
                    double specular = m.shine > 0 ? m.shine * std::pow(std::max(0.0, Dot(n, Hv)), 36.0) : 0.0;
                    if (cam.bands > 0 && specular > 0) specular = std::round(specular * 3) / 3;
                    double shadow = std::max(0.0, 1.0 - lum);
                    double c[3] = {m.r, m.g, m.b};
                    double tint[3] = {0.16, 0.12, 0.26};  // shadows lean cool
                    for (int ch = 0; ch < 3; ++ch) {
                        double v = c[ch] * lum + tint[ch] * shadow * 0.35 + specular;
                        if (m.emissive > 0) v = v * (1 - m.emissive) + (c[ch] * (0.9 + 0.25 * n.z)) * m.emissive;
                        acc[ch] += v;
                    }
                    ++hits;
                    dmax = std::max(dmax, depth_[k]);
                }
            if (hits >= 2) {
                uint8_t* o = img.At(x, y);
                for (int ch = 0; ch < 3; ++ch) o[ch] = ToByte(acc[ch] / hits);
                o[3] = 255;
                pdepth_[static_cast<size_t>(y) * W + x] = dmax;
            }
        }

    if (cam.outline) {
        // Depth steps inside the figure: the farther side gets darker.
        const float step = static_cast<float>(2.5 * s);
        std::vector<uint8_t> dark(static_cast<size_t>(W) * H, 0);
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                if (img.At(x, y)[3] == 0) continue;
                float d = pdepth_[static_cast<size_t>(y) * W + x];
                const int dx[4] = {1, -1, 0, 0}, dy[4] = {0, 0, 1, -1};
                for (int q = 0; q < 4; ++q) {
                    int X = x + dx[q], Y = y + dy[q];
                    if (X < 0 || Y < 0 || X >= W || Y >= H || img.At(X, Y)[3] == 0) continue;
                    if (pdepth_[static_cast<size_t>(Y) * W + X] - d > step) dark[static_cast<size_t>(y) * W + x] = 1;
                }
            }
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x)
                if (dark[static_cast<size_t>(y) * W + x]) {
                    uint8_t* o = img.At(x, y);
                    for (int ch = 0; ch < 3; ++ch) o[ch] = static_cast<uint8_t>(o[ch] * 0.55);
                }
        // Outer outline: background pixels next to the figure.
        std::vector<uint8_t> snap = img.px;
        auto solid = [&](int X, int Y) { return X >= 0 && Y >= 0 && X < W && Y < H && snap[(static_cast<size_t>(Y) * W + X) * 4 + 3]; };
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) {
                if (solid(x, y)) continue;
                const int dx[4] = {1, -1, 0, 0}, dy[4] = {0, 0, 1, -1};
                int cnt = 0;
                double acc[3] = {0, 0, 0};
                for (int q = 0; q < 4; ++q)
                    if (solid(x + dx[q], y + dy[q])) {
                        const uint8_t* c = &snap[(static_cast<size_t>(y + dy[q]) * W + x + dx[q]) * 4];
                        for (int ch = 0; ch < 3; ++ch) acc[ch] += c[ch];
                        ++cnt;
                    }
                if (!cnt) continue;
                uint8_t* o = img.At(x, y);
                const double base[3] = {22, 17, 26};
                for (int ch = 0; ch < 3; ++ch) o[ch] = static_cast<uint8_t>(base[ch] + acc[ch] / cnt * 0.22);
                o[3] = 255;
            }
    }

    // Keep every solid colour well away from the transparent magenta.
    int border = 0;
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            uint8_t* o = img.At(x, y);
            if (!o[3]) continue;
            if (o[0] >= 200 && o[2] >= 200 && o[1] < 72) o[1] = 72;
            if (x == 0 || y == 0 || x == W - 1 || y == H - 1) ++border;
        }
    return border;
}

}  // namespace rolegen
