/// \file
/// Aspects of meshes, known before a mesh is built.
#pragma once

#include "dewarp/geometry/MeshKey.h"

/// Width to height of a mesh for a frame of a size in pixels: what its generator leaves in m_fGeometryAspect,
/// to the bit. No lens changes it. 1 for no mesh and, where the frame's own aspect counts, for a frame
/// without pixels. Thread: any. Fails: never.
float MeshAspect(EViewMesh eMesh, int nWidth, int nHeight);
