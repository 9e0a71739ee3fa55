// Interface building blocks shared by the panel, button, item and skill painters:
// carved wooden frames with iron corners, recessed fields, item slots, bar troughs
// and stone plaques, all lit from the upper left.
#pragma once
#include "canvas.h"
#include "noise.h"

namespace art {

// Dark oak frame of the given border width around (x, y, w, h).
void WoodFrame(Img& im, int x, int y, int w, int h, int border, uint32_t seed);
// Recessed field (shadow along its upper-left inner edge).
void Inset(Img& im, int x, int y, int w, int h, Col base, uint32_t seed, float grain = 0.08f);
// Parchment field with darkened rim.
void Parchment(Img& im, int x, int y, int w, int h, uint32_t seed);
// A 32 x 32 item slot whose inside starts at (x, y); its rim lies around it.
void Slot(Img& im, int x, int y, int size = 32);
// Trough for a value bar, inside (x, y, w, h), with a bronze rim around it.
void BarFrame(Img& im, int x, int y, int w, int h);
// Iron rivet.
void Rivet(Img& im, float x, float y, float r = 2.2f);
// Stone plaque filling (x, y, w, h); hot = hovered (warmer, ember-lit rim).
void Plaque(Img& im, int x, int y, int w, int h, bool hot, uint32_t seed);
// Rounded dark-metal button face for small buttons.
void RoundButton(Img& im, float cx, float cy, float r, bool hot);

}  // namespace art
