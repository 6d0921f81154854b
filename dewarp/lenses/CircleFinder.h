/// \file
/// Where the image circle of a fisheye lens lies in a frame, found in the picture itself: for frames that it
/// does not fill exactly.
#pragma once

#include "platform/Export.h"

#include <string>

/// How sure a found circle is.
enum ECircleCertainty : int
{
    CIRCLE_NONE,    ///< the picture shows none
    CIRCLE_LIKELY,  ///< one that a person should look at
    CIRCLE_CERTAIN, ///< one to work with
};

/// Where the light of a picture ends. Units: frame pixels, pixel centres at halves, so that a circle that
/// fills a square frame has half its side as centre and radius.
struct LUMOR_API SFoundCircle
{
    ECircleCertainty eCertainty = CIRCLE_NONE;
    double fCenterX = 0.0; ///< may lie outside of the frame
    double fCenterY = 0.0;
    double fRadiusX = 0.0; ///< both are the same unless the picture clearly shows an ellipse
    double fRadiusY = 0.0;
    bool bEllipse = false; ///< two radii, along the frame's sides: pixels that are not square
    std::string strReason; ///< in words, why there is none or why it is only likely; empty when it is certain
};

/// Looks for a round picture on dark, even ground: the light of a fisheye lens on a larger sensor. Its rim
/// may be cut by the frame, covered by text here and there, crossed by flares, dark over long parts, or fade.
/// At 150 pixels of radius and more, centre and radii are found to 0.2 % of the radius where the rim is sharp
/// and whole, else to 0.5 %.
///
/// A rim that is blurred over up to about eight pixels ends in the middle of the blur. One that fades over
/// more ends where nothing is left if it fades evenly; if it fades ever more slowly, the circle that is found
/// is too small by a part of that, and only likely. So is a soft rim of which it cannot be said which it is.
///
/// Other round things on evenly dark ground - a plate, a wheel, the moon - look the same. They are likely at
/// most, because the light along their rim hardly changes; a fisheye picture of an even scene is only likely
/// for that reason, too. Anything round of less than half of the frame's shorter side counts as such a thing
/// and is none.
///
/// None is found: on bright ground, where less than a tenth of the rim lies in the frame, where less than
/// about a sixth of what does is lit, with two circles in one frame, and for ellipses whose axes are turned.
///
/// pLuma: nHeight rows of nWidth bytes, nStride bytes from one to the next; limited or full range, it does
/// not matter. The same picture always gives the same answer. Owns: nothing; reads pLuma during the call
/// only. Thread: any. Takes some hundredths of a second for 3000 x 3000 pixels. Fails: CIRCLE_NONE and the
/// reason for no picture, sizes below 1, a stride below the width and for want of memory.
LUMOR_API SFoundCircle FindImageCircle(const unsigned char* pLuma, int nWidth, int nHeight, int nStride);
