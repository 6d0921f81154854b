/// \file
/// From a rim that a small picture suggests to the rim that the frame itself shows.
#pragma once

#include "dewarp/lenses/CircleJudge.h"

/// A rim that the small picture suggests, in pixels of the frame: a circle or an ellipse through the places
/// where it becomes brighter than fThreshold. Thread: any. Fails: sFit.bGood is false where nothing round is
/// suggested.
STracedRim SuggestRim(const SSmallPicture& rPicture, double fThreshold, bool bEllipse);

/// Follows a suggested rim in the frame, until it lies where the light ends.
/// Thread: any. Fails: sFit.bGood is false where there is no rim.
void TraceRim(const SLumaPlane& rPlane, const SSmallPicture& rPicture, const SSurround& rSurround,
              STracedRim& rTraced);
