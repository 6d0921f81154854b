/// \file
/// The privacy masks in force, and what became of the image whose place they take.
#pragma once

#include "dewarp/records/SGRect.h"

#include <vector>

/// Masks take the place of the input overlay: while there are any, no image of the host is let in, and a
/// picture may only be shown with all of them painted. An empty list takes away what is in that place at that
/// moment; an image that is set afterwards stays.
/// Thread: any, serialised by the host. Fails: Set may throw for lack of memory, and leaves the list as it is
/// then.
struct SMaskList
{
    std::vector<SGPolygon> vMaskPolygons;
    bool bMaskPolygonsChanged = false;
    bool bEmptied = false; ///< the place is to be cleared with the next frame

    void Set(std::vector<SGPolygon> vPolygons)
    {
        vMaskPolygons = std::move(vPolygons);
        bMaskPolygonsChanged = true;
        bEmptied = vMaskPolygons.empty();
    }
    /// An image of the host has taken the place.
    void PlaceTaken() { bEmptied = false; }
    /// What was painted is gone: all is to be painted again.
    void Repaint() { bMaskPolygonsChanged = bMaskPolygonsChanged || !vMaskPolygons.empty(); }
};
