/// \file
/// What a pixel of a view's part shows by the view's definition.
#pragma once

#include "dewarp/geometry/ViewOptics.h"
#include "dewarp/mapping/Projection.h"

/// From pixels of the target through the part's matrix to the mesh's surface, and from there to the frame.
/// Owns: nothing; lenses must outlive it. Thread: any. Fails: never.
class CPixelOptics
{
public:
    CPixelOptics() = default;
    CPixelOptics(const SMeshKey& rMesh, const SViewPart& rPart, const SFrameShape& rFrame);

    /// False where the view shows the frame as it is, or its matrix has no inverse: then the mesh says it
    /// all.
    bool IsUsed() const { return m_bUsed; }
    /// Position in the frame of a point of the target, pixels, POSITION_BITS of fraction; false where its ray
    /// misses the surface.
    bool Show(double x, double y, double& u, double& v) const;

private:
    struct SPoint
    {
        double x;
        double y;
        double z;
    };
    SPoint At(double x, double y, double z) const;

    CViewOptics m_oOptics{SMeshKey()};
    SFrameShape m_sFrame;
    SWindow m_sWindow;
    double m_afInverse[16] = {}; ///< of the matrix, column by column
    bool m_bUsed = false;
};
