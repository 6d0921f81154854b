/// \file
/// Integer points, rectangles, triangles and polygons, in pixels.
#pragma once

#include <vector>

struct SGPoint
{
    int x = 0;
    int y = 0;
};

struct SGRect
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
struct SGTriangle
{
    SGPoint aCorners[3];
};

/// A closed polygon in input image pixels (the last point connects to the first) and its colour.
struct SGPolygon
{
    std::vector<SGPoint> vPoints;
    unsigned int nColor = 0; ///< 0xRRGGBBAA
};
