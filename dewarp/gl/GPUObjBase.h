/// \file
/// Base of the view objects: the GL side of a view, one object for each kind.
#pragma once

#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshKey.h"
#include "dewarp/gl/SShaderProperties.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

#include <GLES3/gl31.h>

class CDriverWatch;

/// Owns the mesh of a view and draws it; what the view is, its value says (views/View.h). Units: degrees,
/// pixels. Owns: the two buffers of its mesh. Thread: GL thread, context current (CheckPTZ and OnMouseMove
/// touch no GL: any thread, serialised). Fails: never; a mesh without buffers draws nothing, GL errors of
/// buffers are not checked here.
class LUMOR_API CCGPUObjBase
{
public:
    CCGPUObjBase() = default;
    CCGPUObjBase(const CCGPUObjBase&) = delete;
    CCGPUObjBase& operator=(const CCGPUObjBase&) = delete;

    // Virtual operations. Their order is the interface of objects built elsewhere: new ones go to the end.
    virtual ~CCGPUObjBase();
    /// Limits pan, tilt and zoom to what the view can show.
    virtual void CheckPTZ(SDewarpParams* pParams);
    /// Moves the model matrix to pan, tilt and zoom. fAspect is the input image's width / height as it is
    /// shown, nRotation the turn of the picture in degrees.
    virtual void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                           float fAspect, int nRotation);
    /// Turns a drag into pan and tilt, without limiting them.
    virtual void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                             SShaderProperties* pShader);
    /// Asks for the clip bands of the view.
    virtual void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                 SShaderProperties* pShader);
    /// Writes the projection. Equal bounds leave it as it is.
    virtual void SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom,
                                     float fTop, float fNear, float fFar);
    virtual void LoadVertexAndTextureCoordinates(SShaderProperties* pShader);
    virtual void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader);
    virtual float GetGeometryAspect(SDewarpParams* pParams);
    virtual float GetScaleMultiplier(SDewarpParams* pParams);
    /// Builds and uploads the mesh, if the object holds none that fits.
    virtual void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams);
    /// How far the eye stands in front of the model's origin. A flat mesh lies at depth 0 and needs distance
    /// to clear the near plane.
    virtual float GetEyeDistance(SDewarpParams* pParams);
    /// Builds the mesh anew, whatever the object holds.
    virtual void Rebuild(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams);

    /// Deletes the mesh. The primitive mode stays.
    void Reset();
    /// Drops the mesh without touching GL: its context is gone.
    void Forget();
    /// True when the object holds a mesh that was built for just this.
    bool IsBuiltFor(const SMeshKey& rKey) const { return m_nVertexCount > 0 && m_sBuiltFor == rKey; }

    GLuint m_nVertexBuffer = 0;   ///< 3 floats a vertex
    GLuint m_nTexCoordBuffer = 0; ///< 2 floats a vertex
    int m_nVertexCount = 0;       ///< 0: no mesh
    float m_fGeometryAspect = 1.0f;
    GLenum m_nPrimitiveMode = GL_TRIANGLES;
    CDriverWatch* m_pWatch = nullptr; ///< told before buffers are made or filled; may be none
    SMeshKey m_sBuiltFor; ///< what the mesh was built for; MESH_NONE for meshes that belong to no view

protected:
    /// Takes aspect and vertex count from the geometry and puts its arrays into two new buffers.
    void UploadMesh(CCustomGPUGeometry& rGeometry);
    /// Fills the two buffers there are with the geometry's arrays.
    void RefillMesh(CCustomGPUGeometry& rGeometry);

private:
    void Announce();
    bool IsNamed(GLuint nBuffer);
};
