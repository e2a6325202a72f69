// Keeps the crossover finite whatever a host does: a design that stays
// stable at any sample rate, and a way back from a non-finite input. Both
// plug-in editions call these around the engine.
#pragma once

#include "Decoder.h"

// Designs the crossover for the engine's rate and frequency. Where the
// pre-warped tangent would run off to infinity (the crossover near half the
// rate, or a rate of 0 or below) the filters are designed for the nearest
// rate that keeps the crossover below 0.45 of it; the engine's fields keep
// what the host and the user asked for.
void designCrossover(Decoder& decoder);

// Clears the crossover's history when a non-finite sample has entered it,
// which would otherwise stay there for good; a finite history is left alone.
void recoverCrossover(Decoder& decoder);
