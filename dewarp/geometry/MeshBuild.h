/// \file
/// From a view's parameters to its mesh.
#pragma once

#include "dewarp/geometry/MeshKey.h"
#include "dewarp/records/SDewarpParams.h"
#include "platform/Export.h"

class CCustomGPUGeometry;

/// The key of a view's mesh. An unknown mesh counts as none. Thread: any. Fails: never.
LUMOR_INTERNAL_API SMeshKey MeshKeyOf(EViewMesh eMesh, const SDewarpParams& sParams);

/// Runs the key's generator. MESH_NONE leaves a mesh without vertices. Thread: as the generator. Fails: as
/// the generator.
LUMOR_INTERNAL_API void BuildMesh(CCustomGPUGeometry& oGeometry, const SMeshKey& sKey);
