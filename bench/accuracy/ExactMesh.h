/// \file
/// The library's meshes, drawn once more in double precision.
#pragma once

#include "bench/accuracy/ViewSession.h"

#include <vector>

/// Where a pixel's middle lies on the mesh, as a texture coordinate.
struct SMeshPlace
{
    double fU = 0.0;
    double fV = 0.0;
    bool bCovered = false;
};

/// Vertices and matrices are the library's (single precision, as they go to GL); projection, coverage and
/// the perspective-correct interpolation inside a triangle are done here, in double precision. What is left
/// between this and the drawn picture is the driver's; what is left between this and the exact view is the
/// linear interpolation inside the mesh's cells.
/// \param oSession has just drawn the view
/// Row by row, top row first.
std::vector<SMeshPlace> ExactMeshPlaces(const SReferenceSetup& sSetup, const CViewSession& oSession);
