/// \file
/// The generator's way to a lens's table. Inside the library only.
#pragma once

#include "dewarp/lenses/GivenLens.h"

/// Writes the lens's nAngleEntries radii to pTheta2r. Stops the program when the lens's rows do not bracket
/// an angle: an impossible state, as FindLensFault lets no such lens in.
void FillTheta2r(const SGivenLens& rLens, float* pTheta2r);
