#pragma once

// Arithmetic for the samples' textures and animations: sums, products and square roots alone, which every
// machine rounds alike.

// The sine of an angle given in turns.
double SineOfTurns(double turns);
double CosineOfTurns(double turns);

// Smooth random values from 0 to 1 over a plane, four octaves of it. With a period the values come round
// along y.
double GetFractalNoise(double x, double y, int period, unsigned seed);
