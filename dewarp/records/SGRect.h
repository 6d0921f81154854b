/// \file
/// Integer points, rectangles, triangles and polygons, in pixels.
#pragma once

#include "platform/Export.h"

#include <vector>

struct LUMOR_API SGPoint
{
    int x = 0;
    int y = 0;
};

struct LUMOR_API SGRect
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    /// True when both rectangles share a positive area; touching edges do not count.
    bool Intersect(const SGRect& sOther) const
    {
        return x < sOther.x + sOther.width && x + width > sOther.x && y < sOther.y + sOther.height &&
               y + height > sOther.y;
    }
};

/// Three corners in input image pixels, in drawing order.
struct LUMOR_API SGTriangle
{
    SGPoint aCorners[3];
};

/// A closed polygon in input image pixels (the last point connects to the first) and its colour.
struct LUMOR_API SGPolygon
{
    std::vector<SGPoint> vPoints;
    unsigned int nColor = 0; ///< 0xRRGGBBAA
};
