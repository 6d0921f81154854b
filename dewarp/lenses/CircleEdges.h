/// \file
/// Where light begins in a small picture, seen from the frame's edges.
#pragma once

#include "dewarp/lenses/CircleFit.h"
#include "dewarp/lenses/CirclePicture.h"

#include <vector>

/// Goes inward along all columns and rows, from both ends, to the first place brighter than fThreshold; lines
/// that begin bright have none. Every point of a round rim is seen by one of them. Units: small pixels, their
/// centres at halves. Thread: any. Fails: only for want of memory.
std::vector<SRimPoint> FindFirstLight(const SSmallPicture& rPicture, double fThreshold);
