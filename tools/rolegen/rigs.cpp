#include "rigs.h"

#include <algorithm>
#include <cmath>

namespace rolegen {

using rolefile::Colour;
using rolefile::Desc;

namespace {
constexpr double kPi = 3.14159265358979323846;

Material FromColour(Colour c, double shine, double emissive) {
    Material m;
    m.r = c.r / 255.0;
    m.g = c.g / 255.0;
    m.b = c.b / 255.0;
    m.shine = shine;
    m.emissive = emissive;
    return m;
}

Prim Ell(V3 c, const M3& r, V3 radii, int mat) {
    Prim p;
    p.shape = Shape::Ellipsoid;
    p.a = c;
    p.r = r;
    p.size = radii;
    p.mat = mat;
    return p;
}
Prim Box(V3 c, const M3& r, V3 half, int mat) {
    Prim p;
    p.shape = Shape::Box;
    p.a = c;
    p.r = r;
    p.size = half;
    p.mat = mat;
    return p;
}
Prim Cap(V3 a, V3 b, double r, int mat) {
    Prim p;
    p.shape = Shape::Capsule;
    p.a = a;
    p.b = b;
    p.ra = p.rb = r;
    p.mat = mat;
    return p;
}
Prim Cone(V3 a, V3 b, double ra, double rb, int mat) {
    Prim p;
    p.shape = Shape::Cone;
    p.a = a;
    p.b = b;
    p.ra = ra;
    p.rb = rb;
    p.mat = mat;
    return p;
}

// Keyframe interpolation of plain pose records (all fields double).
template <class P>
P Mix(const P& a, const P& b, double t) {
    static_assert(sizeof(P) % sizeof(double) == 0);
    P r;
    const double* pa = reinterpret_cast<const double*>(&a);
    const double* pb = reinterpret_cast<const double*>(&b);
    double* pr = reinterpret_cast<double*>(&r);
    for (size_t i = 0; i < sizeof(P) / sizeof(double); ++i) pr[i] = pa[i] + (pb[i] - pa[i]) * t;
    return r;
}

// Pose along a list of keys spread evenly over u in [0, 1].
template <class P>
P Keys(const std::vector<P>& keys, double u) {
    if (keys.size() == 1) return keys[0];
    double x = std::clamp(u, 0.0, 1.0) * static_cast<double>(keys.size() - 1);
    size_t i = std::min(static_cast<size_t>(x), keys.size() - 2);
    double t = x - static_cast<double>(i);
    t = t * t * (3 - 2 * t);
    return Mix(keys[i], keys[i + 1], t);
}

// ---------------------------------------------------------------- humanoid

struct HPose {
    double lift = 0;            // extra pelvis height (flight in a run)
    double fall = 0;            // whole body tipped backward about the heels (radians)
    double slide = 0;           // whole body moved forward (+z) while falling
    double lean = 0.03;         // torso pitch, forward positive
    double twist = 0;           // torso yaw
    double tilt = 0;            // torso roll
    double hip[2] = {0, 0};     // 0 right, 1 left; forward positive
    double spread[2] = {0.04, 0.04};
    double knee[2] = {0.06, 0.06};
    double toe[2] = {0, 0};     // foot pitch, toe down positive
    double sh[2] = {0.05, 0.05};
    double shOut[2] = {0.14, 0.14};
    double elbow[2] = {0.25, 0.25};
    double wrist = 1.0;         // weapon angle in the right hand: 0 forward, pi/2 down the forearm
    double pole = 0.06;         // spear or staff pitch from upright toward forward
    double headPitch = 0, headYaw = 0;
    double cloak = 0.1;         // cloak swing backward
    double breath = 0;          // chest rise
};

const double kThigh = 11.5, kShin = 11.5, kAnkle = 2.0;

double LegReach(double hip, double knee) { return kThigh * std::cos(hip) + kShin * std::cos(hip - knee); }

struct Gear {
    bool sword, spear, staff, shield, cloak, hood, hat, helm, robe, skirt, apron, satchel, pack, tabard, beard,
        hairLong, hairShort, bald, embers, belt, boots, pauldrons, horns, scarf, knife, hammer, eyesGlow;
};

Gear ReadGear(const Desc& d) {
    Gear g{};
    g.sword = d.HasGear("sword");
    g.spear = d.HasGear("spear");
    g.staff = d.HasGear("staff");
    g.shield = d.HasGear("shield");
    g.cloak = d.HasGear("cloak") || d.HasGear("cape");
    g.hood = d.HasGear("hood");
    g.hat = d.HasGear("hat");
    g.helm = d.HasGear("helm");
    g.robe = d.HasGear("robe");
    g.skirt = d.HasGear("skirt");
    g.apron = d.HasGear("apron");
    g.satchel = d.HasGear("satchel");
    g.pack = d.HasGear("pack");
    g.tabard = d.HasGear("tabard");
    g.beard = d.HasGear("beard");
    g.hairLong = d.HasGear("hair_long");
    g.hairShort = d.HasGear("hair_short");
    g.bald = d.HasGear("bald");
    g.embers = d.HasGear("embers");
    g.belt = d.HasGear("belt");
    g.boots = d.HasGear("boots");
    g.pauldrons = d.HasGear("pauldrons");
    g.horns = d.HasGear("horns");
    g.scarf = d.HasGear("scarf");
    g.knife = d.HasGear("knife");
    g.hammer = d.HasGear("hammer");
    g.eyesGlow = d.HasGear("eyes_glow");
    return g;
}

HPose HumanPose(const Desc& d, const Gear& g, const std::string& action, int k, int n) {
    const double t = n > 0 ? static_cast<double>(k) / n : 0.0;  // cyclic phase
    const double u = n > 1 ? static_cast<double>(k) / (n - 1) : 0.0;  // one-shot progress
    const double ph = 2 * kPi * t;
    const bool longSkirt = g.robe;
    HPose p;
    if (g.spear || g.staff) {
        p.sh[0] = 0.35;
        p.elbow[0] = 1.2;
    }
    if (g.shield) {
        p.sh[1] = 0.45;
        p.elbow[1] = 1.3;
        p.shOut[1] = 0.25;
    }
    if (action == "stand") {
        double b = std::sin(ph);
        p.breath = 0.5 * (1 - std::cos(ph));
        p.lean += -0.015 * b;
        p.headPitch = 0.04 * std::sin(ph + 0.6);
        for (int s = 0; s < 2; ++s) {
            p.sh[s] += 0.035 * b;
            p.shOut[s] += 0.03 * (1 - std::cos(ph));
        }
        p.cloak = 0.1 + 0.03 * b;
        p.hip[1] = 0.06;
        p.hip[0] = -0.04;
        p.wrist = 1.15;
    } else if (action == "walk" || action == "run") {
        const bool run = action == "run";
        double A = run ? 0.72 : (longSkirt ? 0.28 : 0.42);
        double hipL = A * std::sin(ph);
        p.hip[1] = hipL;
        p.hip[0] = -hipL;
        for (int s = 0; s < 2; ++s) {
            double c = std::cos(s == 1 ? ph : ph + kPi);  // > 0 while the leg swings forward
            double sw = std::max(0.0, c);
            p.knee[s] = run ? 0.3 + 1.45 * std::pow(sw, 1.2) : 0.08 + 0.8 * std::pow(sw, 1.5);
            // Push off with the toe as the leg trails behind.
            double trail = std::max(0.0, -(s == 1 ? std::sin(ph) : -std::sin(ph)));
            p.toe[s] = (run ? 0.5 : 0.3) * trail * std::max(0.0, -c + 0.3);
        }
        double armA = run ? 0.95 : 0.55;
        p.sh[1] = -armA * std::sin(ph) + (run ? 0.15 : 0.05);
        p.sh[0] = armA * std::sin(ph) + (run ? 0.15 : 0.05);
        p.elbow[0] = p.elbow[1] = run ? 1.45 : 0.35 + 0.15 * std::sin(ph);
        if (g.sword || g.knife || g.hammer) {
            p.sh[0] = 0.45 * armA * std::sin(ph) + (run ? 0.3 : 0.1);
            p.wrist = run ? 1.2 : 1.35;
        }
        if (g.spear || g.staff) {
            p.sh[0] = 0.35 + 0.12 * std::sin(ph);
            p.elbow[0] = 1.2;
        }
        if (g.shield) {
            p.sh[1] = 0.45;
            p.elbow[1] = 1.3;
        }
        p.twist = (run ? 0.12 : 0.08) * std::sin(ph);
        p.lean = run ? 0.24 : 0.06;
        p.lift = run ? 1.6 * std::pow(std::sin(ph), 2) : 0;
        p.cloak = run ? 0.55 + 0.1 * std::sin(2 * ph) : 0.16 + 0.05 * std::sin(2 * ph);
        p.headPitch = run ? -0.12 : 0;
        p.pole = run ? 0.35 : 0.12;
    } else if (action == "fight") {
        HPose a = p, b = p, c = p, dd = p, e = p;
        const bool thrust = g.spear || g.staff;
        // Ready stance: left foot forward, weapon raised.
        a.hip[1] = 0.3;
        a.hip[0] = -0.25;
        a.knee[0] = a.knee[1] = 0.25;
        a.sh[0] = 0.4;
        a.elbow[0] = 0.8;
        a.wrist = 0.6;
        a.lean = 0.08;
        if (thrust) {
            a.sh[0] = 0.15;
            a.elbow[0] = 1.5;
            a.pole = 1.45;
        }
        // Wind-up: weapon drawn back over the shoulder.
        b = a;
        b.sh[0] = thrust ? -0.25 : 2.6;
        b.elbow[0] = thrust ? 1.7 : 1.0;
        b.wrist = 1.4;
        b.shOut[0] = 0.35;
        b.twist = -0.4;
        b.lean = -0.06;
        b.sh[1] = 0.5;
        b.shOut[1] = 0.35;
        // Peak.
        c = b;
        c.sh[0] = thrust ? -0.35 : 3.0;
        c.elbow[0] = thrust ? 1.8 : 1.1;
        c.wrist = 1.3;
        c.shOut[0] = 0.4;
        c.twist = -0.5;
        // The blow: fast, body thrown forward onto the front foot.
        dd = a;
        dd.sh[0] = thrust ? 1.5 : 1.0;
        dd.elbow[0] = 0.08;
        dd.wrist = thrust ? 0.0 : 1.45;
        dd.twist = 0.35;
        dd.lean = 0.3;
        dd.hip[1] = 0.55;
        dd.knee[1] = 0.55;
        dd.hip[0] = -0.4;
        dd.knee[0] = 0.2;
        dd.sh[1] = -0.3;
        dd.cloak = 0.4;
        // Follow through.
        e = dd;
        e.sh[0] = thrust ? 1.45 : 0.35;
        e.wrist = thrust ? 0.0 : 1.5;
        e.twist = 0.45;
        e.lean = 0.32;
        if (thrust) {
            a.pole = b.pole = c.pole = dd.pole = e.pole = 1.5;
        }
        if (g.shield) {
            for (HPose* q : {&a, &b, &c, &dd, &e}) {
                q->sh[1] = 0.6;
                q->elbow[1] = 1.2;
                q->shOut[1] = 0.3;
            }
        }
        std::vector<HPose> keys = {a, c, dd, e, a};
        if (n >= 6) keys = {a, b, c, dd, e, a};
        // Exact keys on each step: the strike lands on a frame of its own.
        double x = u * static_cast<double>(keys.size() - 1);
        size_t i = std::min(static_cast<size_t>(x), keys.size() - 2);
        p = Mix(keys[i], keys[i + 1], x - static_cast<double>(i));
    } else if (action == "die") {
        HPose a = p;
        a.lean = -0.3;
        a.headPitch = -0.35;
        a.sh[0] = a.sh[1] = -0.35;
        a.shOut[0] = a.shOut[1] = 0.45;
        a.elbow[0] = a.elbow[1] = 0.5;
        a.hip[0] = -0.1;
        a.hip[1] = 0.15;
        a.cloak = 0.3;
        HPose b = a;  // knees give way
        b.hip[0] = b.hip[1] = 0.75;
        b.knee[0] = b.knee[1] = 1.35;
        b.lean = 0.25;
        b.headPitch = 0.3;
        b.sh[0] = b.sh[1] = 0.1;
        b.shOut[0] = b.shOut[1] = 0.25;
        b.slide = 2;
        HPose c = b;  // toppling backward
        c.fall = 0.5;
        c.lean = -0.1;
        c.hip[0] = c.hip[1] = 0.6;
        c.knee[0] = c.knee[1] = 1.1;
        c.slide = 10;
        c.sh[0] = c.sh[1] = 0.4;
        c.shOut[0] = c.shOut[1] = 0.6;
        c.cloak = 0.5;
        HPose dd = c;
        dd.fall = 1.15;
        dd.hip[0] = dd.hip[1] = 0.5;
        dd.knee[0] = dd.knee[1] = 0.8;
        dd.slide = 21;
        dd.headPitch = -0.1;
        dd.sh[0] = dd.sh[1] = 0.3;
        dd.shOut[0] = dd.shOut[1] = 0.8;
        dd.cloak = 0.3;
        dd.wrist = 1.3;
        HPose e = dd;  // lying on the back
        e.fall = kPi / 2 - 0.02;
        e.lean = -0.05;
        e.hip[0] = 0.45;
        e.hip[1] = 0.2;
        e.knee[0] = 0.7;
        e.knee[1] = 0.25;
        e.spread[0] = e.spread[1] = 0.18;
        e.slide = 27;
        e.headPitch = 0.15;
        e.sh[0] = 0.2;
        e.sh[1] = -0.1;
        e.shOut[0] = 1.05;
        e.shOut[1] = 0.85;
        e.elbow[0] = e.elbow[1] = 0.3;
        e.cloak = 0.02;
        e.wrist = 1.55;  // the blade lies along the arm on the ground
        std::vector<HPose> keys = {a, b, c, dd, e};
        p = Keys(keys, u);
        if (u >= 1.0) p = e;
    }
    return p;
}

struct Mats {
    int skin, hair, shirt, sleeve, trousers, boots, cloak, hood, hat, metal, wood, belt, apron, satchel, pack,
        tabard, shield, scarf, dark, eyes, bone, plate, trim, ember, roll, white, lips;
};

Mats MakeMats(const Desc& d, Palette& pal) {
    Mats m{};
    Colour skin{210, 164, 124};
    m.skin = pal.Get(d, "skin", skin);
    m.hair = pal.Get(d, "hair", {80, 60, 44});
    m.shirt = pal.Get(d, "shirt", {140, 120, 90});
    m.sleeve = pal.Get(d, "sleeve", d.Col("shirt", {140, 120, 90}));
    m.trousers = pal.Get(d, "trousers", {90, 80, 66});
    m.boots = pal.Get(d, "boots", {70, 50, 36});
    m.cloak = pal.Get(d, "cloak", {100, 100, 110});
    m.hood = pal.Get(d, "hood", d.Col("cloak", d.Col("scarf", {100, 100, 110})));
    m.hat = pal.Get(d, "hat", {180, 150, 90});
    m.metal = pal.Get(d, "metal", {180, 184, 192}, 0.55);
    m.wood = pal.Get(d, "wood", {100, 70, 44});
    m.belt = pal.Get(d, "belt", {60, 44, 30});
    m.apron = pal.Get(d, "apron", {110, 76, 48});
    m.satchel = pal.Get(d, "satchel", {140, 100, 60});
    m.pack = pal.Get(d, "pack", {130, 100, 66});
    m.tabard = pal.Get(d, "tabard", {140, 40, 36});
    m.shield = pal.Get(d, "shield", {120, 40, 36});
    m.scarf = pal.Get(d, "scarf", {180, 160, 120});
    m.dark = pal.Get(d, "dark", {34, 26, 30});
    m.eyes = pal.Get(d, "eyes", {40, 30, 30}, 0, d.HasGear("eyes_glow") ? 1.0 : 0.0);
    m.bone = pal.Get(d, "bone", {216, 208, 186});
    m.plate = pal.Get(d, "plate", {70, 68, 74}, 0.22);
    m.trim = pal.Get(d, "trim", {120, 110, 96}, 0.2);
    m.ember = pal.Get(d, "ember", {255, 140, 40}, 0, 1.0);
    m.roll = pal.Get(d, "roll", {110, 120, 90});
    m.white = pal.Get(d, "white", {236, 230, 220});
    m.lips = pal.Get(d, "lips", {140, 70, 62});
    return m;
}

void BuildHumanoid(const Desc& d, const std::string& action, int k, int n, Palette& pal, std::vector<Prim>& out) {
    const Gear g = ReadGear(d);
    const bool bony = d.rig == "bony";
    const bool knight = d.rig == "knight";
    const Mats m = MakeMats(d, pal);
    HPose p = HumanPose(d, g, action, k, n);

    // Pelvis height so that the lower foot rests on the ground.
    double reach = std::max(LegReach(p.hip[0], p.knee[0]), LegReach(p.hip[1], p.knee[1]));
    double pelvisY = 1.0 + kAnkle + reach + p.lift;
    // Whole-body fall about the heels, lifted so the back rests on the ground.
    Xf root;
    {
        V3 pivot{0, 0, -3};
        M3 r = RotX(-p.fall);
        double lift = 4.6 * std::sin(std::min(p.fall, kPi / 2));
        root.r = r;
        root.o = pivot - r * pivot + V3{0, lift, p.slide};
    }
    Xf pelvis = root.Child({0, pelvisY, 0}, M3{});
    Xf torso = pelvis.Child({0, 2, 0}, RotX(p.lean) * RotY(p.twist) * RotZ(p.tilt));
    Xf head = torso.Child({0, 17.2 + 0.25 * p.breath, 0.3}, RotX(p.headPitch - p.lean * 0.5) * RotY(p.headYaw));

    const int cloth = bony ? m.bone : (knight ? m.plate : m.shirt);
    const int legMat = bony ? m.bone : (knight ? m.plate : m.trousers);
    const int armMat = bony ? m.bone : (knight ? m.plate : m.sleeve);

    // Torso.
    if (bony) {
        out.push_back(Cap(torso.P({0, -1, -0.5}), torso.P({0, 16, -0.8}), 1.3, m.bone));  // spine
        for (int r = 0; r < 4; ++r) {
            double y = 13.5 - r * 2.6, w = 5.6 - r * 0.5;
            out.push_back(Cap(torso.P({-w, y, -0.5}), torso.P({-w * 0.75, y - 0.6, 3.0}), 0.75, m.bone));
            out.push_back(Cap(torso.P({w, y, -0.5}), torso.P({w * 0.75, y - 0.6, 3.0}), 0.75, m.bone));
            out.push_back(Cap(torso.P({-w * 0.75, y - 0.6, 3.0}), torso.P({w * 0.75, y - 0.6, 3.0}), 0.7, m.bone));
        }
        out.push_back(Cap(torso.P({-7.5, 15, 0}), torso.P({7.5, 15, 0}), 1.1, m.bone));  // collar bones
        out.push_back(Ell(pelvis.P({0, 0.5, 0}), pelvis.r, {4.8, 2.4, 2.6}, m.bone));
    } else {
        out.push_back(Ell(torso.P({0, 6, 0}), torso.r, {6.3, 7.2, 4.3}, cloth));
        out.push_back(Ell(torso.P({0, 11.2 + 0.2 * p.breath, 0.3}), torso.r, {7.9, 6.0, 4.9 + 0.15 * p.breath}, cloth));
        out.push_back(Ell(pelvis.P({0, 0.6, 0}), pelvis.r, {6.4, 4.4, 4.3}, legMat));
        out.push_back(Cap(torso.P({0, 15, 0.2}), torso.P({0, 18.4, 0.4}), 2.3, knight ? m.plate : m.skin));
        if (g.belt || knight) out.push_back(Ell(torso.P({0, 0.7, 0}), torso.r, {6.9, 1.5, 4.7}, knight ? m.trim : m.belt));
    }
    if (knight) {
        out.push_back(Ell(torso.P({0, 12, 2.0}), torso.r, {6.4, 4.6, 3.6}, m.plate));  // breastplate
        out.push_back(Cone(pelvis.P({0, 2, 0}), pelvis.P({0, -9, 0}), 7.4, 8.8, m.plate));  // tassets
        if (g.embers) {
            out.push_back(Ell(torso.P({0, 9.5, 4.6}), torso.r, {2.0, 3.8, 1.1}, m.ember));
            out.push_back(Box(torso.P({-2.2, 11.5, 5.0}), torso.r * RotZ(0.7), {0.45, 2.4, 0.6}, m.ember));
            out.push_back(Box(torso.P({2.0, 7.2, 5.0}), torso.r * RotZ(-0.5), {0.45, 2.0, 0.6}, m.ember));
            out.push_back(Ell(torso.P({-3.2, 13.4, 5.0}), torso.r, {1.0, 0.8, 0.8}, m.ember));
            out.push_back(Ell(torso.P({3.0, 5.5, 4.5}), torso.r, {0.9, 1.2, 0.8}, m.ember));
            out.push_back(Ell(torso.P({0, 0.7, 4.9}), torso.r, {1.8, 0.8, 0.8}, m.ember));
        }
    }
    // Clothing over the torso.
    if (g.apron) out.push_back(Box(torso.P({0, 2.5, 4.5}), torso.r, {5.6, 9.5, 0.5}, m.apron));
    if (g.tabard) {
        out.push_back(Box(torso.P({0, 3.5, 4.7}), torso.r, {5.2, 11, 0.45}, m.tabard));
        out.push_back(Box(torso.P({0, 3.5, -4.6}), torso.r, {5.2, 11, 0.45}, m.tabard));
        out.push_back(Ell(torso.P({0, 9, 5.1}), torso.r, {1.8, 2.2, 0.5}, m.metal));
    }
    // Long hems sway with the hips and swing out in front of the stepping leg.
    const V3 hem{-16.0 * p.twist, 0, 2.2 * std::max(std::fabs(p.hip[0]), std::fabs(p.hip[1]))};
    if (g.robe) out.push_back(Cone(pelvis.P({0, 6, 0}), pelvis.P(V3{0, -23, 0} + hem), 6.4, 10.2, m.shirt));
    if (g.skirt) out.push_back(Cone(pelvis.P({0, 3, 0}), pelvis.P(V3{0, -19.5, 0} + hem), 6.6, 9.6, m.trousers));
    if (g.scarf) out.push_back(Ell(torso.P({0, 15.2, 0.3}), torso.r, {7.4, 3.0, 5.4}, m.scarf));
    if (g.satchel) {
        out.push_back(Box(pelvis.P({-6.8, 1.5, 1.0}), pelvis.r * RotY(0.15), {1.8, 3.4, 3.4}, m.satchel));
        out.push_back(Cap(torso.P({5.8, 15.5, 2.8}), torso.P({-5.5, 1.0, 4.2}), 0.8, m.satchel));
        out.push_back(Cap(torso.P({5.8, 15.5, -2.8}), torso.P({-5.5, 1.0, -4.2}), 0.8, m.satchel));
    }
    if (g.pack) {
        out.push_back(Box(torso.P({0, 8.5, -8.0}), torso.r, {6.6, 8.0, 3.6}, m.pack));
        out.push_back(Cap(torso.P({-7.5, 18.0, -7.4}), torso.P({7.5, 18.0, -7.4}), 2.7, m.roll));
        out.push_back(Box(torso.P({0, 5.0, -11.6}), torso.r, {4.2, 3.0, 0.8}, m.pack));  // pocket
        out.push_back(Cap(torso.P({-4.2, 15.5, 3.6}), torso.P({-4.5, 3.0, 4.2}), 0.7, m.belt));
        out.push_back(Cap(torso.P({4.2, 15.5, 3.6}), torso.P({4.5, 3.0, 4.2}), 0.7, m.belt));
    }
    if (g.cloak) {
        // Hangs from the shoulders and keeps near vertical whatever the torso does.
        int mat = m.cloak;
        Xf cl = torso.Child({0, 15.4, -4.4}, RotX(-p.lean + p.cloak));
        double len = knight ? 27 : 24;
        // Three panels: the back and two sides that wrap forward and flare at the hem.
        out.push_back(Box(cl.P({0, -len / 2, -0.6}), cl.r, {5.2, len / 2, 0.8}, mat));
        for (int s = -1; s <= 1; s += 2) {
            M3 side = cl.r * RotY(s * 0.55) * RotZ(s * 0.07);
            out.push_back(Box(cl.P({s * 7.4, -len / 2, 1.4}), side, {3.2, len / 2, 0.75}, mat));
        }
        out.push_back(Box(cl.P({0, -len + 0.8, -0.9}), cl.r, {5.6, 0.8, 0.9}, m.dark));  // worn hem
        if (!g.hood) out.push_back(Ell(torso.P({0, 14.6, -0.6}), torso.r, {8.9, 3.4, 5.6}, mat));
        else out.push_back(Ell(torso.P({0, 14.8, -0.4}), torso.r, {8.6, 3.2, 5.5}, m.hood));
    }
    if (g.pauldrons) {
        out.push_back(Ell(torso.P({-8.8, 15.2, 0}), torso.r * RotZ(-0.35), {5.4, 3.6, 5.4}, m.plate));
        out.push_back(Ell(torso.P({8.8, 15.2, 0}), torso.r * RotZ(0.35), {5.4, 3.6, 5.4}, m.plate));
        out.push_back(Ell(torso.P({-9.4, 17.4, 0}), torso.r * RotZ(-0.35), {3.0, 1.0, 3.4}, m.trim));
        out.push_back(Ell(torso.P({9.4, 17.4, 0}), torso.r * RotZ(0.35), {3.0, 1.0, 3.4}, m.trim));
    }

    // Head.
    if (bony) {
        out.push_back(Ell(head.P({0, 5.2, 0.5}), head.r, {4.7, 5.2, 5.0}, m.bone));
        out.push_back(Box(head.P({0, 1.3, 2.2}), head.r * RotX(0.1), {3.0, 1.3, 2.6}, m.bone));
        for (int s = -1; s <= 1; s += 2) {
            out.push_back(Ell(head.P({s * 1.9, 5.2, 4.4}), head.r, {1.4, 1.5, 1.0}, m.dark));
            out.push_back(Ell(head.P({s * 1.9, 5.1, 4.9}), head.r, {0.6, 0.6, 0.6}, m.eyes));
        }
    } else if (knight) {
        out.push_back(Ell(head.P({0, 5.6, 0.4}), head.r, {6.3, 7.2, 6.6}, m.plate));
        out.push_back(Box(head.P({0, 5.4, 6.2}), head.r, {4.2, 0.75, 1.0}, m.dark));
        out.push_back(Ell(head.P({0, 12.2, 0.4}), head.r, {1.2, 1.4, 5.4}, m.trim));  // crest
        for (int s = -1; s <= 1; s += 2) out.push_back(Ell(head.P({s * 2.0, 5.4, 7.1}), head.r, {0.95, 0.5, 0.4}, m.eyes));
        if (g.horns)
            for (int s = -1; s <= 1; s += 2) {
                out.push_back(Cone(head.P({s * 5.0, 8.5, 0.6}), head.P({s * 8.4, 12.0, 1.2}), 1.9, 1.2, m.trim));
                out.push_back(Cone(head.P({s * 8.4, 12.0, 1.2}), head.P({s * 9.0, 16.0, 2.4}), 1.2, 0.2, m.trim));
            }
    } else {
        out.push_back(Ell(head.P({0, 5.0, 0.4}), head.r, {5.5, 6.1, 5.7}, m.skin));
        out.push_back(Ell(head.P({0, 4.0, 6.0}), head.r, {0.9, 1.2, 0.9}, m.skin));  // nose
        const bool detail = d.HasGear("detail");  // close-up portraits
        for (int s = -1; s <= 1; s += 2) {
            if (detail) {
                out.push_back(Ell(head.P({s * 2.2, 5.5, 5.0}), head.r, {1.25, 0.85, 0.7}, m.white));
                out.push_back(Ell(head.P({s * 2.15, 5.6, 5.45}), head.r, {0.6, 0.72, 0.5}, m.eyes));
                out.push_back(Box(head.P({s * 2.3, 7.1, 5.0}), head.r * RotZ(s * 0.07), {1.5, 0.32, 0.6}, m.hair));
            } else {
                out.push_back(Ell(head.P({s * 2.2, 5.4, 5.3}), head.r, {0.85, 1.05, 0.6}, m.eyes));
            }
            out.push_back(Ell(head.P({s * 5.5, 4.8, 0.6}), head.r, {0.9, 1.6, 1.2}, m.skin));  // ears
        }
        if (detail) out.push_back(Ell(head.P({0, 2.2, 5.0}), head.r, {1.6, 0.42, 0.6}, m.lips));
        if (g.hairShort) out.push_back(Ell(head.P({0, 6.9, -0.9}), head.r, {5.95, 5.4, 6.0}, m.hair));
        if (g.hairLong) {
            out.push_back(Ell(head.P({0, 6.9, -0.9}), head.r, {6.0, 5.5, 6.1}, m.hair));
            out.push_back(Ell(head.P({0, 1.5, -2.8}), head.r, {5.6, 7.5, 3.6}, m.hair));
        }
        if (g.beard) {
            out.push_back(Ell(head.P({0, 1.6, 3.0}), head.r * RotX(0.2), {4.7, 4.3, 3.4}, m.hair));
            out.push_back(Ell(head.P({0, 4.6, -0.6}), head.r, {5.7, 2.6, 5.6}, m.hair));  // fringe at the back
        }
        if (g.hood) {
            out.push_back(Ell(head.P({0, 5.9, -1.3}), head.r, {6.9, 7.4, 6.9}, m.hood));
            out.push_back(Ell(head.P({0, 3.5, -4.2}), head.r, {5.6, 7.0, 4.4}, m.hood));
        }
        if (g.hat) {
            out.push_back(Cone(head.P({0, 9.2, 0.2}), head.P({0, 9.9, 0.2}), 10.0, 9.6, m.hat));
            out.push_back(Cone(head.P({0, 9.5, 0.0}), head.P({0, 14.0, -0.3}), 6.1, 4.4, m.hat));
            out.push_back(Cone(head.P({0, 9.9, 0.0}), head.P({0, 11.0, -0.1}), 6.2, 5.9, m.belt));  // band
        }
        if (g.helm) {
            out.push_back(Ell(head.P({0, 7.0, 0.1}), head.r, {6.3, 5.6, 6.4}, m.metal));
            out.push_back(Cone(head.P({0, 5.8, 0.1}), head.P({0, 6.8, 0.1}), 7.0, 6.6, m.metal));
            out.push_back(Box(head.P({0, 5.2, 6.2}), head.r, {0.6, 2.2, 0.6}, m.metal));
        }
    }

    // Arms: 0 right (-x), 1 left (+x).
    Xf hand[2], fore[2];
    for (int s = 0; s < 2; ++s) {
        double sx = s == 1 ? 1.0 : -1.0;
        double sw = knight ? 9.0 : (bony ? 7.0 : 8.2);
        Xf sh = torso.Child({sx * sw, 14.2, 0}, RotZ(sx * p.shOut[s]) * RotX(-p.sh[s]));
        Xf el = sh.Child({0, -10, 0}, RotX(-p.elbow[s]));
        fore[s] = el;
        hand[s] = el.Child({0, -9.6, 0.2}, M3{});
        double ru = bony ? 1.1 : (knight ? 3.1 : 2.5), rf = bony ? 1.0 : (knight ? 2.8 : 2.2);
        out.push_back(Cap(sh.o, el.o, ru, armMat));
        out.push_back(Cap(el.o, el.P({0, -8.6, 0}), rf, armMat));
        if (bony) {
            out.push_back(Ell(el.o, el.r, {1.5, 1.5, 1.5}, m.bone));
            out.push_back(Ell(hand[s].o, el.r, {1.6, 1.9, 1.2}, m.bone));
        } else if (knight) {
            out.push_back(Ell(el.o, el.r, {3.2, 3.2, 3.2}, m.trim));
            out.push_back(Ell(el.P({0, -7.6, 0}), el.r, {3.3, 2.2, 3.3}, m.plate));  // gauntlet cuff
            out.push_back(Ell(hand[s].o, el.r, {2.8, 2.8, 2.8}, m.plate));
            if (g.embers) out.push_back(Ell(el.P({0, 0, 2.6}), el.r, {1.0, 1.0, 0.8}, m.ember));
        } else {
            out.push_back(Ell(hand[s].o, el.r, {2.3, 2.5, 2.2}, m.skin));
        }
    }

    // Legs.
    for (int s = 0; s < 2; ++s) {
        double sx = s == 1 ? 1.0 : -1.0;
        Xf hp = pelvis.Child({sx * (bony ? 2.8 : 3.8), -1, 0}, RotZ(sx * p.spread[s]) * RotX(-p.hip[s]));
        Xf kn = hp.Child({0, -kThigh, 0}, RotX(p.knee[s]));
        Xf an = kn.Child({0, -kShin, 0}, RotX(p.hip[s] - p.knee[s] + p.toe[s]));
        double rt = bony ? 1.2 : (knight ? 3.5 : 3.1), rs = bony ? 1.1 : (knight ? 3.1 : 2.6);
        out.push_back(Cap(hp.o, kn.o, rt, legMat));
        out.push_back(Cap(kn.o, an.o, rs, legMat));
        if (bony) {
            out.push_back(Ell(kn.o, kn.r, {1.5, 1.5, 1.5}, m.bone));
            out.push_back(Box(an.P({0, -1.0, 1.6}), an.r, {1.3, 0.8, 2.8}, m.bone));
        } else {
            int bm = knight ? m.plate : m.boots;
            if (g.boots || knight) out.push_back(Cap(kn.P({0, -5.5, 0}), an.o, rs + 0.35, bm));
            if (knight) out.push_back(Ell(kn.o, kn.r, {3.6, 3.2, 3.8}, m.trim));
            if (knight && g.embers) out.push_back(Ell(kn.P({0, 0, 3.4}), kn.r, {1.0, 1.0, 0.8}, m.ember));
            out.push_back(Box(an.P({0, -1.1, 1.6}), an.r, {2.3, 1.2, 3.8}, g.boots || knight ? bm : m.boots));
        }
    }

    // What the right hand holds.
    const Xf& rh = hand[0];
    if (g.sword || g.knife || g.hammer) {
        Xf w = fore[0].Child({0, -9.6, 0.2}, RotX(p.wrist + kPi / 2));
        if (g.hammer) {
            out.push_back(Cap(w.P({0, -2.5, 0}), w.P({0, 11, 0}), 0.8, m.wood));
            out.push_back(Box(w.P({0, 11, 0.5}), w.r, {1.6, 1.8, 3.2}, m.metal));
        } else {
            double len = g.knife ? 6 : (knight ? 11.5 : 8.5), wid = knight ? 1.7 : 1.15;
            out.push_back(Cap(w.P({0, -2.2, 0}), w.P({0, 1.6, 0}), knight ? 1.1 : 0.8, knight ? m.dark : m.belt));
            out.push_back(Box(w.P({0, 2.1, 0}), w.r, {0.7, 0.6, knight ? 4.2 : 3.0}, m.metal));
            out.push_back(Box(w.P({0, 2.6 + len, 0}), w.r, {0.45, len, wid}, m.metal));
            if (knight && g.embers) out.push_back(Box(w.P({0, 2.6 + len, 0}), w.r, {0.5, len * 0.85, 0.35}, m.ember));
        }
    }
    if (g.spear || g.staff) {
        V3 dir = root.r * (RotX(p.lean * 0.5 + p.pole) * V3{0, 1, 0});
        if (action == "fight") dir = torso.r * (RotX(p.pole) * V3{0, 1, 0});
        V3 base = rh.o - dir * (g.spear ? 14 : 23);
        V3 tip = rh.o + dir * (g.spear ? 24 : 10);
        out.push_back(Cap(base, tip, 0.8, m.wood));
        if (g.spear) out.push_back(Cone(tip, tip + dir * 5.5, 1.6, 0.1, m.metal));
        else out.push_back(Ell(tip, root.r, {1.6, 1.6, 1.6}, m.wood));
    }
    if (g.shield) {
        V3 c = hand[1].o + torso.r * V3{0.5, 2.5, 2.2};
        out.push_back(Ell(c, torso.r * RotY(0.5), {6.4, 7.2, 1.0}, m.shield));
        out.push_back(Ell(c + torso.r * (RotY(0.5) * V3{0, 0, 0.9}), torso.r * RotY(0.5), {1.8, 1.8, 0.8}, m.metal));
    }
}

// ---------------------------------------------------------------- quadruped

struct QPose {
    double lift = 0;
    double pitch = 0;     // body pitch, nose down positive
    double roll = 0;      // lying on the side
    double slide = 0;
    double leg[4] = {0, 0, 0, 0};   // swing forward, 0 LF, 1 RF, 2 LH, 3 RH
    double bend[4] = {0.1, 0.1, 0.1, 0.1};
    double neck = 0;      // head raised positive
    double jaw = 0;
    double tail = 0.3;    // tail raised
    double tailSide = 0;
    double breath = 0;
    double crouch = 0;
};

QPose WolfPose(const std::string& action, int k, int n) {
    const double t = n > 0 ? static_cast<double>(k) / n : 0.0;
    const double u = n > 1 ? static_cast<double>(k) / (n - 1) : 0.0;
    const double ph = 2 * kPi * t;
    QPose p;
    if (action == "stand") {
        p.breath = 0.5 * (1 - std::cos(ph));
        p.tailSide = 0.18 * std::sin(ph);
        p.neck = 0.05 * std::sin(ph);
    } else if (action == "walk") {
        const double off[4] = {0.0, 0.5, 0.75, 0.25};
        for (int i = 0; i < 4; ++i) {
            double a = ph + 2 * kPi * off[i];
            p.leg[i] = 0.42 * std::sin(a);
            p.bend[i] = 0.1 + 0.7 * std::max(0.0, std::cos(a));
        }
        p.neck = -0.05 + 0.04 * std::sin(2 * ph);
        p.tailSide = 0.12 * std::sin(ph);
        p.lift = 0.4 * std::sin(2 * ph);
    } else if (action == "run") {
        const double off[4] = {0.0, 0.08, 0.5, 0.58};
        for (int i = 0; i < 4; ++i) {
            double a = ph + 2 * kPi * off[i];
            p.leg[i] = 0.8 * std::sin(a);
            p.bend[i] = 0.2 + 1.1 * std::max(0.0, std::cos(a));
        }
        p.pitch = 0.12 * std::sin(ph + 0.8);
        p.lift = 1.5 + 1.5 * std::sin(ph - 0.6);
        p.neck = -0.2;
        p.tail = 0.1;
    } else if (action == "fight") {
        QPose a = p, b = p, c = p, d = p, e = p;
        a.crouch = 2.5;
        a.neck = -0.15;
        a.leg[2] = a.leg[3] = -0.2;
        a.tail = 0.1;
        b = a;
        b.crouch = 4.0;
        b.slide = -3;
        b.pitch = -0.08;
        b.leg[0] = b.leg[1] = 0.25;
        b.jaw = 0.3;
        c = b;  // leap
        c.crouch = 0;
        c.lift = 3;
        c.slide = 6;
        c.pitch = 0.1;
        c.leg[0] = c.leg[1] = 0.9;
        c.leg[2] = c.leg[3] = -0.7;
        c.neck = -0.1;
        c.jaw = 0.9;
        d = c;  // the bite
        d.lift = 0.5;
        d.slide = 8;
        d.pitch = 0.22;
        d.neck = -0.45;
        d.jaw = 0.15;
        d.leg[0] = d.leg[1] = 0.5;
        d.bend[0] = d.bend[1] = 0.5;
        e = d;
        e.slide = 4;
        e.pitch = 0.1;
        e.neck = -0.2;
        e.jaw = 0.5;
        e.lift = 0;
        std::vector<QPose> keys = {a, b, c, d, e, a};
        double x = u * 5.0;
        size_t i = std::min(static_cast<size_t>(x), size_t{4});
        p = Mix(keys[i], keys[i + 1], x - static_cast<double>(i));
    } else if (action == "die") {
        QPose a = p, b = p, c = p, d = p;
        a.neck = 0.35;
        a.jaw = 0.6;
        a.pitch = -0.1;
        a.leg[0] = a.leg[1] = 0.3;
        b = a;
        b.crouch = 5;
        b.roll = 0.35;
        b.neck = 0;
        b.bend[0] = b.bend[1] = b.bend[2] = b.bend[3] = 0.9;
        c = b;
        c.roll = 1.1;
        c.crouch = 6;
        c.neck = -0.1;
        d = c;  // on its side, legs loose
        d.roll = kPi / 2;
        d.crouch = 0;
        d.lift = 0;
        d.neck = -0.25;
        d.jaw = 0.25;
        d.tail = -0.1;
        for (int i = 0; i < 4; ++i) {
            d.leg[i] = (i < 2 ? 0.5 : -0.4);
            d.bend[i] = 0.25;
        }
        std::vector<QPose> keys = {a, b, c, d, d};
        p = Keys(keys, u);
        if (u >= 1.0) p = d;
    }
    return p;
}

void BuildWolf(const Desc& d, const std::string& action, int k, int n, Palette& pal, std::vector<Prim>& out) {
    const int fur = pal.Get(d, "fur", {118, 112, 106});
    const int belly = pal.Get(d, "belly", {170, 162, 150});
    const int dark = pal.Get(d, "dark", {70, 64, 60});
    const int eyes = pal.Get(d, "eyes", {230, 200, 80}, 0, 0.6);
    const int nose = pal.Get(d, "nose", {30, 26, 28});
    const int mouth = pal.Get(d, "mouth", {120, 40, 44});
    QPose p = WolfPose(action, k, n);
    const double legLen = 15.0;
    // Lying on the side: roll about the body axis, body resting on its flank.
    // Rolls about the body's own axis, then sinks until the flank rests on the ground.
    Xf root;
    const double sr = std::sin(std::min(p.roll, kPi / 2));
    const V3 axis{0, 17.5, 0};
    root.r = RotZ(p.roll);
    root.o = axis - root.r * axis + V3{0, -11.0 * sr, p.slide};
    double by = legLen + 1.0 + p.lift - p.crouch;
    Xf body = root.Child({0, by, -2}, RotX(p.pitch));
    // Body, chest, belly, dark saddle.
    out.push_back(Ell(body.P({0, 2.5, -1}), body.r, {5.6, 5.8 + 0.2 * p.breath, 12.5}, fur));
    out.push_back(Ell(body.P({0, 2.8, 8}), body.r, {6.3, 7.2 + 0.3 * p.breath, 7.0}, fur));
    out.push_back(Ell(body.P({0, 0.2, 2}), body.r, {4.6, 4.4, 10}, belly));
    out.push_back(Ell(body.P({0, 6.0, -1.5}), body.r, {4.2, 2.8, 10.5}, dark));
    out.push_back(Ell(body.P({0, 5.5, 11}), body.r, {6.3, 6.8, 5.2}, fur));  // mane
    // Neck and head.
    Xf neck = body.Child({0, 5.0, 12}, RotX(-0.75 - p.neck));
    out.push_back(Cap(neck.o, neck.P({0, 0, 6.5}), 3.8, fur));
    Xf head = neck.Child({0, 0, 7.5}, RotX(0.75 + p.neck * 0.3));
    out.push_back(Ell(head.P({0, 0.5, 0}), head.r, {4.4, 4.0, 4.6}, fur));
    out.push_back(Cap(head.P({0, -0.6, 2.5}), head.P({0, -1.2, 8.2}), 2.1, fur));  // snout
    out.push_back(Ell(head.P({0, -0.3, 9.6}), head.r, {1.1, 1.0, 0.9}, nose));
    Xf jaw = head.Child({0, -2.0, 2.0}, RotX(p.jaw * 0.6));
    out.push_back(Cap(jaw.o, jaw.P({0, -0.3, 5.8}), 1.3, belly));
    if (p.jaw > 0.2) out.push_back(Ell(head.P({0, -1.6, 5.0}), head.r, {1.3, 0.8, 2.8}, mouth));
    for (int s = -1; s <= 1; s += 2) {
        out.push_back(Cone(head.P({s * 2.4, 3.0, -0.8}), head.P({s * 2.8, 7.2, -1.6}), 1.9, 0.2, dark));
        out.push_back(Ell(head.P({s * 2.0, 1.4, 3.4}), head.r, {0.8, 0.7, 0.6}, eyes));
    }
    // Tail.
    Xf tl = body.Child({0, 4.5, -13}, RotY(p.tailSide) * RotX(2.55 - p.tail));
    out.push_back(Cap(tl.o, tl.P({0, 0, 7}), 2.2, fur));
    Xf tl2 = tl.Child({0, 0, 7}, RotX(-0.25));
    out.push_back(Cap(tl2.o, tl2.P({0, 0, 6}), 2.0, fur));
    out.push_back(Ell(tl2.P({0, 0, 6.4}), tl2.r, {1.9, 1.9, 2.4}, dark));
    // Legs: 0 LF, 1 RF, 2 LH, 3 RH.
    for (int i = 0; i < 4; ++i) {
        double sx = (i % 2 == 0) ? 1.0 : -1.0;
        bool front = i < 2;
        V3 at{sx * 3.4, 0.5, front ? 9.0 : -9.5};
        Xf up = body.Child(at, RotX(-p.pitch) * RotX(-p.leg[i]));
        double l1 = 7.5, l2 = 7.0;
        Xf lo = up.Child({0, -l1, 0}, RotX(front ? p.bend[i] : -p.bend[i]));
        if (!front) out.push_back(Ell(up.P({0, -2.0, 0.5}), up.r, {2.6, 4.5, 3.8}, fur));  // haunch
        out.push_back(Cap(up.o, lo.o, front ? 2.0 : 2.2, fur));
        out.push_back(Cap(lo.o, lo.P({0, -l2, 0}), 1.4, front ? fur : dark));
        out.push_back(Ell(lo.P({0, -l2, 0.9}), lo.r * RotX(front ? -p.bend[i] : p.bend[i]), {1.7, 1.1, 2.3}, dark));
    }
}

}  // namespace

int Palette::Get(const Desc& d, const std::string& key, Colour fallback, double shine, double emissive) {
    mats.push_back(FromColour(d.Col(key, fallback), shine, emissive));
    return static_cast<int>(mats.size()) - 1;
}

void BuildFigure(const Desc& d, const std::string& action, int k, int n, Palette& pal, std::vector<Prim>& prims) {
    prims.clear();
    pal.mats.clear();
    if (d.rig == "quadruped")
        BuildWolf(d, action, k, n, pal, prims);
    else
        BuildHumanoid(d, action, k, n, pal, prims);
}

}  // namespace rolegen
