#include "dewarp/gl/GPUObjBase.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/views/ViewList.h"

namespace
{

const GLsizeiptr POSITION_BYTES = 3 * sizeof(float);
const GLsizeiptr TEXCOORD_BYTES = 2 * sizeof(float);

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
    m_sBuiltFor = SMeshKey();
}

void CCGPUObjBase::Forget()
{
    m_nVertexBuffer = 0;
    m_nTexCoordBuffer = 0;
    m_nVertexCount = 0;
    m_fGeometryAspect = 1.0f;
    m_sBuiltFor = SMeshKey();
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
    // Flat, as the fisheye is.
    FindView(VIEW_FISHEYE, MOUNT_CEILING)
        .Project({fLeft, fRight, fBottom, fTop, fNear, fFar}, pMatrices->fProjection);
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
    return FindView(VIEW_FISHEYE, MOUNT_CEILING).EyeDistance(0.0f);
}

void CCGPUObjBase::Rebuild(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    Reset();
    Activate(pGeometry, pParams);
}

void CCGPUObjBase::UploadMesh(CCustomGPUGeometry& rGeometry)
{
    m_fGeometryAspect = rGeometry.m_fGeometryAspect;
    m_nVertexCount = rGeometry.m_nVertexCount;
    if (m_nVertexCount < 1)
        return;
    Announce();
    m_nVertexBuffer = 0;
    m_nTexCoordBuffer = 0;
    glGenBuffers(1, &m_nVertexBuffer);
    if (!IsNamed(m_nVertexBuffer))
        return;
    glBindBuffer(GL_ARRAY_BUFFER, m_nVertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * POSITION_BYTES, rGeometry.m_pVertices, GL_STATIC_DRAW);
    glGenBuffers(1, &m_nTexCoordBuffer);
    if (!IsNamed(m_nTexCoordBuffer))
        return;
    glBindBuffer(GL_ARRAY_BUFFER, m_nTexCoordBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * TEXCOORD_BYTES, rGeometry.m_pTexCoords, GL_STATIC_DRAW);
}

void CCGPUObjBase::RefillMesh(CCustomGPUGeometry& rGeometry)
{
    m_nVertexCount = rGeometry.m_nVertexCount;
    Announce();
    if (!IsNamed(m_nVertexBuffer) || !IsNamed(m_nTexCoordBuffer))
        return;
    glBindBuffer(GL_ARRAY_BUFFER, m_nVertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * POSITION_BYTES, rGeometry.m_pVertices, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, m_nTexCoordBuffer);
    glBufferData(GL_ARRAY_BUFFER, m_nVertexCount * TEXCOORD_BYTES, rGeometry.m_pTexCoords, GL_STATIC_DRAW);
}

void CCGPUObjBase::Announce()
{
    if (m_pWatch != nullptr)
        m_pWatch->BeginMaking();
}

/// Without a buffer GL would take vertices from the program's own memory: the object is empty then.
bool CCGPUObjBase::IsNamed(GLuint nBuffer)
{
    if (nBuffer == 0)
        Reset();
    return nBuffer != 0;
}
