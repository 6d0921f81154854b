/// \file
/// What panes are drawn on.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SFrameTarget.h"
#include "dewarp/records/SGRect.h"

#include <span>

/// A rectangle of a target as a target of its own. Of YUV the corner must be even.
SFrameTarget PartOf(const SFrameTarget& rTarget, const SGRect& rRect);

/// Whether some chroma of a YUV target would belong to two panes, or to a pane and the gap beside it.
bool SharesChroma(std::span<const SPlacedView> oViews, int nWidth, int nHeight);

/// Fills rectangles of a target with one colour. Owns: nothing. Thread: any. Fails: never.
class CPaneGround
{
public:
    /// nColor: 0xRRGGBBAA; YUV, of a space and range in force, has no alpha.
    CPaneGround(const SFrameTarget& rTarget, unsigned int nColor, EYUVSpace eSpace, EYUVRange eRange);
    /// Of YUV: all chroma that a rectangle touches.
    void Fill(const SGRect& rRect) const;

private:
    const SFrameTarget& m_rTarget;
    unsigned char m_anPixel[4] = {}; ///< in the target's order
    unsigned char m_anYUV[3] = {};
};
