/// \file
/// Meshes of the views that stand in one picture together.
#pragma once

#include "dewarp/gl/GPUObjView.h"

#include <memory>
#include <span>
#include <vector>

/// A mesh that a pane needs.
struct SMeshWish
{
    const CView* pView = nullptr;
    SMeshKey sKey;
    const SDewarpParams* pParams = nullptr;
};

/// Keeps a mesh for each kind of mesh that a frame's panes need; panes that need the same share one, and what
/// a frame needs none of is filled anew for another. Owns: the objects and their buffers. Thread: GL thread,
/// context current, but for Forget. Fails: throws for lack of memory; a mesh without buffers draws nothing.
class CPaneMeshes
{
public:
    CPaneMeshes(CCustomGPUGeometry& rGeometry, CDriverWatch& rWatch)
        : m_rGeometry(rGeometry), m_rWatch(rWatch)
    {}

    /// Makes all meshes that a frame needs.
    void Prepare(std::span<const SMeshWish> oWishes);
    /// A mesh that was prepared; null where the driver had no buffers for it.
    CCGPUObjAnyView* Find(const SMeshKey& rKey) const;
    /// Deletes the buffers.
    void Reset();
    /// Forgets them without touching GL: their context is gone.
    void Forget();

private:
    CCGPUObjAnyView& FindSpare(std::span<const SMeshWish> oWishes);

    CCustomGPUGeometry& m_rGeometry;
    CDriverWatch& m_rWatch;
    std::vector<std::unique_ptr<CCGPUObjAnyView>> m_vObjects;
};
