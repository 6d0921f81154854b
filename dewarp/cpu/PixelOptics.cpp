#include "dewarp/cpu/PixelOptics.h"

#include "dewarp/cpu/Grid.h"

#include <cmath>
#include <utility>

/// The inverse of a matrix of four columns, by elimination with the largest pivots. False: it has none.
static bool Invert(const float* pMatrix, double* pInverse)
{
    double af[4][8] = {};
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            af[r][c] = static_cast<double>(pMatrix[4 * c + r]);
        af[r][4 + r] = 1.0;
    }
    for (int c = 0; c < 4; ++c) {
        int nPivot = c;
        for (int r = c + 1; r < 4; ++r)
            nPivot = std::fabs(af[r][c]) > std::fabs(af[nPivot][c]) ? r : nPivot;
        if (!(std::fabs(af[nPivot][c]) > 1e-12))
            return false;
        std::swap(af[c], af[nPivot]);
        for (int r = 0; r < 4; ++r) {
            const double f = r == c ? 1.0 - 1.0 / af[c][c] : af[r][c] / af[c][c];
            for (int k = 0; k < 8; ++k)
                af[r][k] -= f * af[c][k];
        }
    }
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            pInverse[4 * c + r] = af[r][4 + c];
    }
    return true;
}

CPixelOptics::CPixelOptics(const SMeshKey& rMesh, const SViewPart& rPart, const SFrameShape& rFrame)
    : m_oOptics(rMesh), m_sFrame(rFrame), m_sWindow(WindowOf(rPart))
{
    m_bUsed = CViewOptics::HasDirections(rMesh.eMesh) && Invert(rPart.fMVP, m_afInverse);
}

/// A point of the model from normalised device coordinates.
CPixelOptics::SPoint CPixelOptics::At(double x, double y, double z) const
{
    const double* const m = m_afInverse;
    const double f = 1.0 / (m[3] * x + m[7] * y + m[11] * z + m[15]);
    return {(m[0] * x + m[4] * y + m[8] * z + m[12]) * f, (m[1] * x + m[5] * y + m[9] * z + m[13]) * f,
            (m[2] * x + m[6] * y + m[10] * z + m[14]) * f};
}

bool CPixelOptics::Show(double x, double y, double& u, double& v) const
{
    const double fX = (x - m_sWindow.fX) / m_sWindow.fHalfWidth - 1.0;
    const double fY = 1.0 - (y - m_sWindow.fY) / m_sWindow.fHalfHeight;
    const SPoint a = At(fX, fY, -1.0);
    const SPoint b = At(fX, fY, 1.0);
    const SPoint d = {b.x - a.x, b.y - a.y, b.z - a.z};
    double f = 0.0;
    if (m_oOptics.IsSphere()) {
        // Where the ray leaves the sphere.
        const double fSquare = d.x * d.x + d.y * d.y + d.z * d.z;
        const double fAlong = (a.x * d.x + a.y * d.y + a.z * d.z) / fSquare;
        const double fRest = fAlong * fAlong - (a.x * a.x + a.y * a.y + a.z * a.z - 1.0) / fSquare;
        if (!(fRest >= 0.0))
            return false;
        f = std::sqrt(fRest) - fAlong;
    } else {
        f = -a.z / d.z;
    }
    m_oOptics.At(a.x + f * d.x, a.y + f * d.y, a.z + f * d.z, u, v);
    u = m_sFrame.bMirrorX ? 1.0 - u : u;
    v = m_sFrame.bMirrorY ? 1.0 - v : v;
    u = (u * m_sFrame.nWidth - 0.5) * POSITION_ONE;
    v = (v * m_sFrame.nHeight - 0.5) * POSITION_ONE;
    return std::isfinite(u) && std::isfinite(v);
}
