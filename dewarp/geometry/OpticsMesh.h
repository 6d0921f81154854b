/// \file
/// Meshes for what a host said about its camera: any lens, circle and turn of the body.
#pragma once

#include "dewarp/geometry/MeshKey.h"

class CCustomGPUGeometry;

/// Whether what the host said changes a mesh: all but the fisheye, which shows the frame as it is.
bool IsOpticsMesh(EViewMesh eMesh);

/// Builds a key's mesh on the same surface as that of the known lenses, its texture coordinates from the
/// view's definition (ViewOptics). It ends a little beyond the lens's edge, with texture coordinates that go
/// on beyond the rim; what lies farther is left out. Fine enough for a quarter of a pixel in frames of 2000.
/// Thread: as the generator. Fails: as the generator.
void BuildOpticsMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey);
