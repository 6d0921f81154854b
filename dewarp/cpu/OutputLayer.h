/// \file
/// The output overlay as it lies over the picture.
#pragma once

#include "dewarp/cpu/RunLayer.h"

class COverlayImage;

/// Stretches an overlay image over a target of that size. Whoever blends it sets the whole picture's alpha
/// to 255 as well. Units: pixels. Thread: any, serialised by the host. Fails: throws for lack of memory.
void BuildOutputLayer(const COverlayImage& rImage, int nTargetWidth, int nTargetHeight, bool bLinear,
                      const SLayerFormat& rFormat, CRunLayer& rLayer);
