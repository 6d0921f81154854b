/// \file
/// What the views show by their definitions, without a mesh.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "dewarp/geometry/Surface.h"
#include "dewarp/lenses/BodyTurn.h"
#include "dewarp/lenses/LensMap.h"
#include "dewarp/records/SDewarpParams.h"
#include "platform/Export.h"

/// The way from a place on a mesh's surface to the frame: the direction that the place stands for, and where
/// the lens shows that direction, in double precision. Virtual cameras' places lie on the sphere of radius 1,
/// panoramas' on their plane. Owns: a share of the optics. Thread: any. Fails: never.
class LUMOR_INTERNAL_API CViewOptics
{
public:
    explicit CViewOptics(const SMeshKey& rKey);

    /// Whether a mesh stands for directions at all; the fisheye views show the frame as it is.
    static bool HasDirections(EViewMesh eMesh);
    /// Whether places lie on the sphere.
    bool IsSphere() const { return m_sKey.eMesh == MESH_VCAM; }
    /// Texture coordinate of a place, 0..1 from the left and from the top. Directions beyond the lens's edge
    /// land beyond its rim; by a known lens's own rule, on the circle of 90 degrees.
    void At(double x, double y, double z, double& u, double& v) const;
    /// What a place stands for, as the mount counts directions.
    SDirection DirectionAt(double x, double y, double z) const;
    /// Degrees of azimuth that the wall panorama shows across while the camera is not inclined.
    double WallSpan() const { return m_fWallSpan; }
    /// The row of the wall panorama that shows a direction.
    double WallRow(const SDirection& rDirection) const;
    const CLensMap& Lens() const { return m_oLens; }
    const CBodyTurn& Body() const { return m_oBody; }

private:
    SDirection OfStrip(double x, double y) const;
    SDirection OfStrips(double x, double y) const;
    SDirection OfWall(double x, double y) const;
    SDirection Turned(double fDown, double fSide, double fAhead, double fDegrees) const;

    SMeshKey m_sKey;
    CLensMap m_oLens;
    CBodyTurn m_oBody;
    CSurface m_oSurface;
    double m_fWallSpan = 180.0;
};

/// Degrees off the mount's axis that a camera sees at most; 90 for a known lens, but for its body's lean.
/// Thread: any. Fails: never.
LUMOR_INTERNAL_API double HalfFieldOf(const SDewarpParams& rParams);
/// Degrees of azimuth across the wall panorama of a camera that is not inclined: the half-sphere, or a wider
/// lens's field. Thread: any. Fails: never.
LUMOR_INTERNAL_API double WallSpanOf(const SDewarpParams& rParams);
