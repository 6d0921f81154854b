/// \file
/// A triangle of a mesh as it lies on the target, and what the frame shows in it.
#pragma once

#include <cstdint>

/// A corner before the division by w: as GL's clip space, rows of the target counted from the top.
struct SClipVertex
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;
    double u = 0.0; ///< position in the frame, POSITION_BITS of fraction
    double v = 0.0;
};

/// The part of the target that a view is drawn in: its window coordinates.
struct SWindow
{
    double fX = 0.0; ///< left edge, pixels
    double fY = 0.0; ///< upper edge
    double fHalfWidth = 0.0;
    double fHalfHeight = 0.0;
};

/// A corner on the target. Positions and depth come times 1/w, which makes them linear there.
struct SScreenVertex
{
    double x = 0.0; ///< pixels
    double y = 0.0;
    double fInverseW = 1.0;
    double u = 0.0;
    double v = 0.0;
    double z = 0.0; ///< window depth itself
};

/// The corner of a point in front of the eye (w above 0).
inline SScreenVertex OnScreen(const SClipVertex& r, const SWindow& rWindow)
{
    const double f = r.w == 1.0 ? 1.0 : 1.0 / r.w;
    return {rWindow.fX + (r.x * f + 1.0) * rWindow.fHalfWidth,
            rWindow.fY + (r.y * f + 1.0) * rWindow.fHalfHeight,
            f,
            r.u * f,
            r.v * f,
            (r.z * f + 1.0) * 0.5};
}

/// A plane over the target, from a triangle's first corner.
struct SPlane
{
    double f = 0.0;
    double fX = 0.0; ///< slopes
    double fY = 0.0;

    double At(double dx, double dy) const { return f + fX * dx + fY * dy; }
};

/// Units: pixels of the target, positions of the frame. Owns: nothing.
struct SScreenTriangle
{
    /// False for a triangle without an area. bDepth: the depth is wanted too.
    bool SetUp(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC, bool bDepth);

    /// Position at an offset from the first corner.
    void Show(double dx, double dy, double& u, double& v) const
    {
        const double fW = bFlat ? 1.0 : 1.0 / sW.At(dx, dy);
        u = sU.At(dx, dy) * fW;
        v = sV.At(dx, dy) * fW;
    }

    double afX[3] = {}; ///< corners
    double afY[3] = {};
    double fTurn = 0.0; ///< twice the area; its sign says which way the corners turn
    double fLeft = 0.0; ///< what it spans
    double fRight = 0.0;
    double fTop = 0.0;
    double fBottom = 0.0;
    SPlane sU; ///< position times 1/w
    SPlane sV;
    SPlane sW;          ///< 1/w
    SPlane sZ;          ///< window depth
    bool bFlat = false; ///< 1/w is 1 everywhere
};

/// What may be drawn of a triangle, beside its edges.
struct SCuts
{
    bool bDepth = false; ///< window depth must not lie below fDepth
    double fDepth = 0.0;
    bool bRows = false; ///< positions must lie inside the frame's rows
    double fLowestRow = 0.0;
    double fHighestRow = 0.0;

    bool Any() const { return bDepth || bRows; }
    /// Whether a triangle is drawn at an offset from its first corner, where it shows row v.
    bool Keep(const SScreenTriangle& rTriangle, double dx, double dy, double v) const
    {
        return (!bDepth || rTriangle.sZ.At(dx, dy) >= fDepth) &&
               (!bRows || (v >= fLowestRow && v <= fHighestRow));
    }
};

/// Whether a point on an edge belongs to the triangle, so that of two that share the edge one has it: left
/// edges and level upper ones are a triangle's own. The steps are what is gained towards the inside with a
/// pixel to the right and one down.
template <class T>
inline bool IsOwnEdge(T tStepX, T tStepY)
{
    return tStepX > T{0} || (tStepX == T{0} && tStepY > T{0});
}

/// Most corners that are left of a triangle.
inline constexpr int MOST_CLIPPED = 9;
/// Cuts a convex polygon in place; returns the number of corners left.
int ClipPolygon(SClipVertex (&aCorners)[MOST_CLIPPED], int nCorners);

/// Cuts a line likewise; false when nothing is left.
bool ClipLine(SClipVertex (&aEnds)[2]);

/// Cuts a triangle to what lies between the near and the far plane and not absurdly far outside of the
/// window; calls rUse(A, B, C) for each triangle of the rest.
template <class F>
void ClipTriangle(const SClipVertex (&aCorners)[3], F&& rUse)
{
    SClipVertex aPolygon[MOST_CLIPPED];
    for (int i = 0; i < 3; ++i)
        aPolygon[i] = aCorners[i];
    const int n = ClipPolygon(aPolygon, 3);
    for (int i = 2; i < n; ++i)
        rUse(aPolygon[0], aPolygon[i - 1], aPolygon[i]);
}
