/// \file
/// Which axes of the frame a flip mirrors.
#pragma once

struct SMirrors
{
    bool bX = false;
    bool bY = false;
};

/// Flips are meant for the upright picture; on an image that lies on its side its axes have changed places.
/// Thread: any. Fails: never.
inline SMirrors MirrorsOf(bool bFlipHorizontal, bool bFlipVertical, int nRotation)
{
    const bool bUpright = nRotation == 0 || nRotation == 180;
    return bUpright ? SMirrors{bFlipHorizontal, bFlipVertical} : SMirrors{bFlipVertical, bFlipHorizontal};
}
