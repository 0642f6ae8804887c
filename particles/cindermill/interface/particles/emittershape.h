#pragma once

class TEffectNode;
class TVector4;

// Draws where and how the particles of an emitting node start, as far as it does not depend on what is wired
// in: the place, the surface, the cone of their velocities. Nothing for other nodes. Bind the line program
// around it.
void DrawEmitterShape(const TEffectNode& node, const TVector4& colour);
