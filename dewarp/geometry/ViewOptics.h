/// \file
/// What the views show by their definitions, without a mesh.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "platform/Export.h"

struct SLens;

/// The way from a place on a mesh's surface to the frame: the direction that the place stands for, and where
/// the lens shows that direction, from the lens's own rows, in double precision. Virtual cameras' places lie
/// on the sphere of radius 1, panoramas' on their plane. Formulas: a direction at an angle from the optical
/// axis lands at the lens's height of that angle from the image centre, in parts of the height at 90 degrees,
/// times the radius of the circle of 90 degrees. Owns: nothing; lenses must outlive it. Thread: any. Fails:
/// never.
class LUMOR_INTERNAL_API CViewOptics
{
public:
    CViewOptics() = default;
    explicit CViewOptics(const SMeshKey& rKey);

    /// Whether the mesh stands for directions at all; the fisheye views show the frame as it is.
    bool HasDirections() const;
    /// Whether places lie on the sphere.
    bool IsSphere() const { return m_sKey.eMesh == MESH_VCAM; }
    /// Texture coordinate of a place, 0..1 from the left and from the top. Directions beyond 90 degrees land
    /// on the circle of 90 degrees.
    void At(double x, double y, double z, double& u, double& v) const;

private:
    struct SDirection
    {
        double x; ///< to the right in the frame
        double y; ///< up
        double z; ///< along the optical axis
    };

    SDirection OfStrip(double x, double y) const;
    SDirection OfStrips(double x, double y) const;
    SDirection OfWall(double x, double y) const;
    SDirection Turned(double fDown, double fSide, double fAhead, double fDegrees) const;

    SMeshKey m_sKey;
    const SLens* m_pLens = nullptr;
    double m_fRadius = 0.0;
    double m_fRimHeight = 1.0;
};
