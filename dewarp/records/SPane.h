/// \file
/// One of several cameras in a picture.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

#include <limits>

/// A rectangle of the picture with a view of its own. Everything that is said about the camera itself (mount,
/// lens, circle, colours, masks, spans and bands) is the same for all.
/// Units: pixels of the picture from its top left corner, degrees. Owns: nothing.
struct LUMOR_API SPane
{
    /// A position that is not given: the view starts where it starts on its mount.
    static constexpr float BY_VIEW = std::numeric_limits<float>::quiet_NaN();

    SGRect sRect;
    EViewType eView = VIEW_VCAM;
    float fPan = BY_VIEW;
    float fTilt = BY_VIEW;
    float fZoom = BY_VIEW;
    float fRoll = 0.0f;        ///< of virtual cameras: positive turns them clockwise as seen from behind
    float fEyeDistance = 0.0f; ///< projection of virtual cameras: 0 rectilinear, to 1 stereographic
};
