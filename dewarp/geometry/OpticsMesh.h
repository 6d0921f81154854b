/// \file
/// Meshes for what a host said about its camera: any lens, circle and turn of the body.
#pragma once

#include "dewarp/geometry/MeshKey.h"

class CCustomGPUGeometry;

/// Whether a mesh is built here: where the host said more about its camera than a known lens's number, or
/// chose a band or a view that known lenses have no mesh of their own for. Never the fisheye, which shows the
/// frame as it is.
bool NeedsOpticsMesh(const SMeshKey& rKey);

/// Width to height of what such a mesh lays out; that of the known lenses' mesh for others.
float AspectOf(const SMeshKey& rKey);

/// Builds a key's mesh on the same surface as that of the known lenses, its texture coordinates from the
/// view's definition (ViewOptics). It ends a little beyond the lens's edge, with texture coordinates that go
/// on beyond the rim; what lies farther is left out. Fine enough for a quarter of a pixel in frames of 2000.
/// Thread: as the generator. Fails: as the generator.
void BuildOpticsMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey);
