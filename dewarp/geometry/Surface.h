/// \file
/// The views about the vertical: which plane their pictures lie on.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SDirection.h"
#include "platform/Export.h"

/// Whether a mesh is one of these.
constexpr bool IsSurfaceMesh(EViewMesh eMesh)
{
    return eMesh >= MESH_EQUIRECTANGULAR && eMesh <= MESH_PANINI;
}

/// The plane of a projection: y from -1 to 1 and x from -Aspect() to Aspect() show the view's span. Formulas,
/// for a bearing b and an angle e above the horizon: equirectangular (b, e); cylindrical (b, tan e); Panini,
/// from Sharpless, Postle and German, "Pannini: A New Projection for Rendering Wide Angle Perspective
/// Images", 2010, with d = 1: (2 tan(b / 2), tan(e) (1 + tan(b / 2)^2)). Units: degrees. Owns: nothing.
/// Thread: any. Fails: never.
class LUMOR_INTERNAL_API CSurface
{
public:
    explicit CSurface(const SMeshKey& rKey);

    double Aspect() const { return m_fHalfX / m_fHalfY; }
    /// Rows between which there is anything: the world ends at the poles.
    double LowestRow() const;
    double HighestRow() const;
    /// What a place on the plane stands for, as the mount counts directions.
    SDirection DirectionAt(double x, double y) const;

    /// Degrees from where pan is 0 to the right, and above the horizon.
    struct SHeading
    {
        double fBearing;
        double fAbove;
    };
    /// Where a direction of a mount lies. rParams: mount and inclination.
    static SHeading HeadingOf(const SDewarpParams& rParams, const SDirection& rDirection);

    /// Spans of a mesh: the host's, or its own on a mount.
    static SViewShape SpanOf(EViewMesh eMesh, EMountType eMount, const SViewShape& rShape);

private:
    SMeshKey m_sKey;
    double m_fHalfX = 1.0;
    double m_fHalfY = 1.0;
    double m_fMiddleY = 0.0;
};
