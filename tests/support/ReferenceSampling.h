/// \file
/// Samples of pictures by kernels, in double precision, and averages of pictures.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "tests/support/TestImage.h"
#include "tests/support/TestScene.h"

/// The colour of a picture at a place in texels, 0.5 in the middle of the first one; beyond its edges it goes
/// on as they are. Channels 0..1; negative lobes are limited at the end.
FColour SampleReference(const STestImage& sPicture, double x, double y, ESampling eSampling);

/// The mean of every nFactor x nFactor pixels.
STestImage BoxAverage(const STestImage& sPicture, int nFactor);
