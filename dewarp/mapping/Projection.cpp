#include "dewarp/mapping/Projection.h"

#include "dewarp/mapping/FramePosition.h"

#include <cmath>

SWindow WindowOf(const SViewPart& rPart)
{
    return {static_cast<double>(rPart.nX), static_cast<double>(rPart.nY), 0.5 * rPart.nWidth,
            0.5 * rPart.nHeight};
}

void CProjection::Project(const CMeshIndex& rMesh, const SViewPart& rPart, const SFrameShape& rFrame)
{
    const std::size_t nCount = rMesh.vX.size();
    m_vClip.resize(nCount);
    m_vScreen.resize(nCount);
    m_vOutside.resize(nCount);
    m_sWindow = WindowOf(rPart);
    const float* const m = rPart.fMVP;
    const double fScaleU = static_cast<double>(rFrame.nWidth) * POSITION_ONE;
    const double fScaleV = static_cast<double>(rFrame.nHeight) * POSITION_ONE;
    const double fHalf = 0.5 * POSITION_ONE;
    for (std::size_t n = 0; n < nCount; ++n) {
        const float fX = rMesh.vX[n];
        const float fY = rMesh.vY[n];
        const float fZ = rMesh.vZ[n];
        const float x = m[0] * fX + m[4] * fY + m[8] * fZ + m[12];
        const float y = -(m[1] * fX + m[5] * fY + m[9] * fZ + m[13]);
        const float z = m[2] * fX + m[6] * fY + m[10] * fZ + m[14];
        const float w = m[3] * fX + m[7] * fY + m[11] * fZ + m[15];
        const float u = rFrame.bMirrorX ? 1.0f - rMesh.vU[n] : rMesh.vU[n];
        const float v = rFrame.bMirrorY ? 1.0f - rMesh.vV[n] : rMesh.vV[n];
        m_vClip[n] = {
            x, y, z, w, static_cast<double>(u) * fScaleU - fHalf, static_cast<double>(v) * fScaleV - fHalf};
        const float fFar = 64.0f * w;
        // Written so that a NaN counts as outside.
        const int nOutside = (x >= -w ? 0 : 1) | (x <= w ? 0 : 2) | (y >= -w ? 0 : 4) | (y <= w ? 0 : 8) |
                             (z >= -w ? 0 : 16) | (z <= w ? 0 : 32) |
                             (std::fabs(x) <= fFar && std::fabs(y) <= fFar && w > 0.0f ? 0 : 64);
        m_vOutside[n] = static_cast<unsigned char>(nOutside);
        if ((nOutside & NEEDS_CLIPPING) == 0)
            m_vScreen[n] = OnScreen(m_vClip[n], m_sWindow);
    }
}

bool CProjection::Border(const CMeshIndex& rMesh, std::size_t nBorder, SScreenVertex (&aEnds)[2]) const
{
    const std::uint32_t a = rMesh.vBorders[2 * nBorder];
    const std::uint32_t b = rMesh.vBorders[2 * nBorder + 1];
    if ((m_vOutside[a] & m_vOutside[b] & BEYOND_A_PLANE) != 0)
        return false;
    SClipVertex aLine[2] = {m_vClip[a], m_vClip[b]};
    if (((m_vOutside[a] | m_vOutside[b]) & NEEDS_CLIPPING) != 0 && !ClipLine(aLine))
        return false;
    aEnds[0] = OnScreen(aLine[0], m_sWindow);
    aEnds[1] = OnScreen(aLine[1], m_sWindow);
    return true;
}
