/// \file
/// From a view's parameters to its mesh.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "dewarp/records/SDewarpParams.h"

class CCustomGPUGeometry;

/// The key of a view's mesh. An unknown mesh counts as none. Thread: any. Fails: never.
SMeshKey MeshKeyOf(EViewMesh eMesh, const SDewarpParams& sParams);

/// Runs the key's generator. MESH_NONE leaves a mesh without vertices. Thread: as the generator. Fails: as
/// the generator.
void BuildMesh(CCustomGPUGeometry& oGeometry, const SMeshKey& sKey);
