// The character rigs: a humanoid (also in a bony and an armoured variant) and a
// quadruped, posed by keyframed cycles for the actions stand, walk, run, fight
// and die, and built into renderer primitives.
#pragma once

#include <string>
#include <vector>

#include "render.h"
#include "role_desc.h"

namespace rolegen {

// Materials of a look, from its colours (with defaults for missing ones).
struct Palette {
    std::vector<Material> mats;
    int Get(const rolefile::Desc& d, const std::string& key, rolefile::Colour fallback, double shine = 0,
            double emissive = 0);
};

// Builds the figure of look d doing action (step k of n steps) into prims;
// materials are appended to pal as needed. Model space: feet at the origin,
// y up, facing +z, one unit about one pixel at scale 1.
void BuildFigure(const rolefile::Desc& d, const std::string& action, int k, int n, Palette& pal,
                 std::vector<Prim>& prims);

}  // namespace rolegen
