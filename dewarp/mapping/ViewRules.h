/// \file
/// What is drawn of a decided view's triangles, and what they are seen against: one set of rules for whoever
/// draws them and whoever is asked about them.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/mapping/Projection.h"
#include "dewarp/mapping/ScreenTriangle.h"
#include "dewarp/records/SGRect.h"

/// True when a mesh's vertices are a fan round the first one; otherwise each three are a triangle.
bool IsFan(const SMeshKey& rMesh);

/// Whether two decisions show the same places of a frame at the same pixels.
bool ShowSamePlaces(const SFrameDecision& rA, const SFrameDecision& rB);

/// Size of the frame and its mirrors, as the decision shows it.
SFrameShape FrameShapeOf(const SFrameDecision& rDecision);

/// What two rectangles share; without a width or height when they share nothing.
SGRect CommonRect(const SGRect& rA, const SGRect& rB);
/// The pixels of the target that a part may draw: its own place inside the target and the bands.
SGRect PartRect(const SViewPart& rPart, const SFrameDecision& rDecision);

/// What the decision's bands leave of triangles.
SCuts CutsOf(const SClipBands& rBands, const SFrameShape& rFrame);
/// Whether something is cut away from a triangle. bGone: all of it.
bool IsCut(const SScreenTriangle& rTriangle, const SCuts& rCuts, bool& bGone);
