#include "dewarp/views/GPUObjBase.h"

#include "dewarp/lenses/SLens.h"

namespace
{

const GLsizeiptr POSITION_BYTES = 3 * sizeof(float);
const GLsizeiptr TEXCOORD_BYTES = 2 * sizeof(float);

// The whole scene lies between the near plane (0.01) and the far plane (2): a mesh at depth 0 comes to stand
// in the middle, one that reaches back to depth -1 is still inside.
const float FLAT_EYE_DISTANCE = 0.99f;

void BindAttribute(GLuint nBuffer, int nLocation, GLint nComponents)
{
    const GLuint nIndex = static_cast<GLuint>(nLocation);
    glBindBuffer(GL_ARRAY_BUFFER, nBuffer);
    glVertexAttribPointer(nIndex, nComponents, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(nIndex);
}

} // namespace

CCGPUObjBase::~CCGPUObjBase()
{
    Reset();
}

void CCGPUObjBase::Reset()
{
    if (m_nVertexCount > 0) {
        glDeleteBuffers(1, &m_nVertexBuffer);
        m_nVertexBuffer = 0;
        glDeleteBuffers(1, &m_nTexCoordBuffer);
        m_nTexCoordBuffer = 0;
    }
    m_nVertexCount = 0;
    m_fGeometryAspect = 1.0f;
}

void CCGPUObjBase::Forget()
{
    m_nVertexBuffer = 0;
    m_nTexCoordBuffer = 0;
    m_nVertexCount = 0;
    m_fGeometryAspect = 1.0f;
}

void CCGPUObjBase::CheckPTZ(SDewarpParams* /*pParams*/) {}

void CCGPUObjBase::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* /*pParams*/,
                             SDewarpMatrices* /*pMatrices*/, float /*fAspect*/, int /*nRotation*/)
{}

void CCGPUObjBase::OnMouseMove(SGPoint* /*pFrom*/, SGPoint* /*pTo*/, SDewarpParams* /*pParams*/,
                               SDewarpMatrices* /*pMatrices*/, SShaderProperties* /*pShader*/)
{}

void CCGPUObjBase::CheckClipPlanes(SDewarpParams* /*pParams*/, SDewarpMatrices* /*pMatrices*/,
                                   SShaderProperties* pShader)
{
    for (int& nPlane : pShader->anClipPlanesRequested)
        nPlane = -1;
    pShader->fClipValueRequested = 0.0f;
}

void CCGPUObjBase::SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom,
                                       float fTop, float fNear, float fFar)
{
    if (fLeft == fRight || fBottom == fTop || fNear == fFar)
        return;
    float* m = pMatrices->fProjection;
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    m[0] = 2.0f / (fRight - fLeft);
    m[5] = 2.0f / (fTop - fBottom);
    m[10] = -2.0f / (fFar - fNear);
    m[12] = -(fRight + fLeft) / (fRight - fLeft);
    m[13] = -(fTop + fBottom) / (fTop - fBottom);
    m[14] = -(fFar + fNear) / (fFar - fNear);
    m[15] = 1.0f;
}

void CCGPUObjBase::LoadVertexAndTextureCoordinates(SShaderProperties* pShader)
{
    if (pShader->nPositionLocation < 0)
        return;
    BindAttribute(m_nVertexBuffer, pShader->nPositionLocation, 3);
    if (pShader->nTexCoordLocation == -1)
        return;
    BindAttribute(m_nTexCoordBuffer, pShader->nTexCoordLocation, 2);
}

void CCGPUObjBase::DrawArrays(SDewarpParams* /*pParams*/, SDewarpMatrices* /*pMatrices*/,
                              SShaderProperties* /*pShader*/)
{
    glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
}

float CCGPUObjBase::GetGeometryAspect(SDewarpParams* /*pParams*/)
{
    return m_fGeometryAspect;
}

float CCGPUObjBase::GetScaleMultiplier(SDewarpParams* /*pParams*/)
{
    return 1.0f;
}

void CCGPUObjBase::Activate(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* /*pParams*/) {}

float CCGPUObjBase::GetEyeDistance(SDewarpParams* /*pParams*/)
{
    return FLAT_EYE_DISTANCE;
}

void CCGPUObjBase::UploadMesh(CCustomGPUGeometry& rGeometry)
{
    m_fGeometryAspect = rGeometry.m_fGeometryAspect;
    m_nVertexCount = rGeometry.m_nVertexCount;
    if (m_nVertexCount < 1)
        return;
    m_nVertexBuffer = 0;
    m_nTexCoordBuffer = 0;
    glGenBuffers(1, &m_nVertexBuffer);
    glGenBuffers(1, &m_nTexCoordBuffer);
    FillBuffers(rGeometry);
}

void CCGPUObjBase::RefillMesh(CCustomGPUGeometry& rGeometry)
{
    m_nVertexCount = rGeometry.m_nVertexCount;
    FillBuffers(rGeometry);
}

void CCGPUObjBase::FillBuffers(CCustomGPUGeometry& rGeometry)
{
    rGeometry.m_bHandedOver = true;
    // GL would take vertices from the program's own memory.
    if (m_nVertexBuffer == 0 || m_nTexCoordBuffer == 0) {
        Reset();
        return;
    }
    glBindBuffer(GL_ARRAY_BUFFER, m_nVertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * POSITION_BYTES, rGeometry.m_pVertices, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, m_nTexCoordBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * TEXCOORD_BYTES, rGeometry.m_pTexCoords, GL_STATIC_DRAW);
}

bool NeedsTexCoordClip(ELensType eLens)
{
    return FindLens(eLens).bClipRows;
}
