#include "dewarp/gl/PaneMeshes.h"

#include <algorithm>

void CPaneMeshes::Prepare(std::span<const SMeshWish> oWishes)
{
    for (const SMeshWish& rWish : oWishes) {
        if (Find(rWish.sKey) != nullptr)
            continue;
        CCGPUObjAnyView& rObject = FindSpare(oWishes);
        SDewarpParams sParams = *rWish.pParams;
        rObject.Show(*rWish.pView);
        rObject.m_nPrimitiveMode = rWish.sKey.eMesh == MESH_FISHEYE_CIRCULAR ? GL_TRIANGLE_FAN : GL_TRIANGLES;
        rObject.Rebuild(&m_rGeometry, &sParams);
    }
}

CCGPUObjAnyView* CPaneMeshes::Find(const SMeshKey& rKey) const
{
    const auto p = std::find_if(
        m_vObjects.begin(), m_vObjects.end(),
        [&](const std::unique_ptr<CCGPUObjAnyView>& pObject) { return pObject->IsBuiltFor(rKey); });
    return p == m_vObjects.end() ? nullptr : p->get();
}

/// An object whose mesh nobody needs; a new one where there is none.
CCGPUObjAnyView& CPaneMeshes::FindSpare(std::span<const SMeshWish> oWishes)
{
    for (const std::unique_ptr<CCGPUObjAnyView>& pObject : m_vObjects) {
        if (std::none_of(oWishes.begin(), oWishes.end(),
                         [&](const SMeshWish& rWish) { return pObject->IsBuiltFor(rWish.sKey); }))
            return *pObject;
    }
    m_vObjects.push_back(std::make_unique<CCGPUObjAnyView>());
    m_vObjects.back()->m_pWatch = &m_rWatch;
    return *m_vObjects.back();
}

void CPaneMeshes::Reset()
{
    for (const std::unique_ptr<CCGPUObjAnyView>& pObject : m_vObjects)
        pObject->Reset();
}

void CPaneMeshes::Forget()
{
    for (const std::unique_ptr<CCGPUObjAnyView>& pObject : m_vObjects)
        pObject->Forget();
}
