#include "bench/accuracy/Places.h"

#include "bench/accuracy/ExactMesh.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Levels between neighbours: four texels of a ramp fill the byte.
const int STEP = 85;

/// Texels in ramps of four, along both axes.
STestImage PhaseFrame(int nWidth, int nHeight, int nShift)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            sImage.Set(x, y, STEP * ((x + nShift) % 4), STEP * ((y + nShift) % 4), 0);
    return sImage;
}

/// A place along one axis in pixels of the frame: the texel that the nearest filter gave, refined by what the
/// linear filter made of the ramp around it.
double Refined(int nTexel, int nLevel, int nLevel2)
{
    const bool bFirst = nTexel % 4 == 1 || nTexel % 4 == 2;
    const int nInRamp = (nTexel + (bFirst ? 0 : 2)) % 4;
    return nTexel + static_cast<double>(bFirst ? nLevel : nLevel2) / STEP - nInRamp + 0.5;
}

struct SPlace
{
    double x;
    double y;
};

double Distance(const SPlace& sA, const SPlace& sB)
{
    return std::hypot(sA.x - sB.x, sA.y - sB.y);
}

SSpread SpreadOf(std::vector<double>& vLengths)
{
    SSpread sSpread;
    if (vLengths.empty())
        return sSpread;
    const auto oMost =
        vLengths.begin() + static_cast<std::ptrdiff_t>(0.999 * static_cast<double>(vLengths.size() - 1));
    std::nth_element(vLengths.begin(), oMost, vLengths.end());
    sSpread.fMean = Mean(vLengths);
    sSpread.fMost = *oMost;
    sSpread.fMax = *std::max_element(oMost, vLengths.end());
    return sSpread;
}

/// The exact view, once for every pixel.
struct SExactView
{
    SExactView(const CReferenceView& oView)
        : nWidth(oView.Setup().nTargetWidth), nHeight(oView.Setup().nTargetHeight)
    {
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < nWidth; ++x)
                vPixels.push_back(oView.At(x + 0.5, y + 0.5));
    }
    const SReferencePixel& At(int x, int y) const
    {
        return vPixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) +
                       static_cast<std::size_t>(x)];
    }
    /// True when the pixels around agree on being drawn.
    bool ClearOfEdges(int x, int y) const
    {
        for (int nY = std::max(0, y - 1); nY <= std::min(nHeight - 1, y + 1); ++nY)
            for (int nX = std::max(0, x - 1); nX <= std::min(nWidth - 1, x + 1); ++nX)
                if (At(nX, nY).bDrawn != At(x, y).bDrawn)
                    return false;
        return true;
    }

    int nWidth;
    int nHeight;
    std::vector<SReferencePixel> vPixels;
};

struct SPictures
{
    STestImage sIndex;
    STestImage sPhase;
    STestImage sPhase2;

    SPlace At(int x, int y) const
    {
        const unsigned char* pIndex = sIndex.At(x, y);
        const unsigned char* pPhase = sPhase.At(x, y);
        const unsigned char* pPhase2 = sPhase2.At(x, y);
        return {Refined(pIndex[0] | (pIndex[2] & 15) << 8, pPhase[0], pPhase2[0]),
                Refined(pIndex[1] | (pIndex[2] >> 4) << 8, pPhase[1], pPhase2[1])};
    }
};

struct SLengths
{
    std::vector<double> vOptics;
    std::vector<double> vRule;
    std::vector<double> vDrawn;
    std::vector<double> vMesh;
    std::vector<double> vDriver;
};

/// Place of a texture coordinate, limited to what the filters can show of it.
SPlace PlaceOf(double fU, double fV, const SReferenceSetup& s)
{
    return {std::clamp(fU * s.nImageWidth, 0.5, s.nImageWidth - 0.5),
            std::clamp(fV * s.nImageHeight, 0.5, s.nImageHeight - 0.5)};
}

void AddPixel(const CReferenceView& oView, const SReferencePixel& sExact, const SMeshPlace& sMesh,
              const SPlace& sDrawn, SLengths& sLengths)
{
    const SReferenceSetup& s = oView.Setup();
    const SPlace sRule = PlaceOf(sExact.fU, sExact.fV, s);
    sLengths.vDrawn.push_back(Distance(sDrawn, sRule));
    if (sMesh.bCovered) {
        const SPlace sOnMesh = PlaceOf(sMesh.fU, sMesh.fV, s);
        sLengths.vMesh.push_back(Distance(sOnMesh, sRule));
        sLengths.vDriver.push_back(Distance(sDrawn, sOnMesh));
    }
    // Behind the camera the lens shows nothing.
    if (sExact.aRay[2] <= 0.0)
        return;
    double fU = 0.0;
    double fV = 0.0;
    oView.TrueTexCoord(sExact.aRay, fU, fV);
    const SPlace sOptics = PlaceOf(fU, fV, s);
    sLengths.vOptics.push_back(Distance(sDrawn, sOptics));
    sLengths.vRule.push_back(Distance(sRule, sOptics));
}

} // namespace

CPlaceMeter::CPlaceMeter(int nImageWidth, int nImageHeight)
    : m_oIndex(TexelFrame(nImageWidth, nImageHeight), IMAGE_FORMAT_RGB24),
      m_oPhase(PhaseFrame(nImageWidth, nImageHeight, 0), IMAGE_FORMAT_RGB24),
      m_oPhase2(PhaseFrame(nImageWidth, nImageHeight, 2), IMAGE_FORMAT_RGB24)
{}

SPlaceResult CPlaceMeter::Measure(const SAccuracyCase& sCase, CViewSession& oSession)
{
    SPictures sPictures;
    oSession.Show(sCase.sSetup, m_oIndex, false);
    sPictures.sIndex = oSession.Picture();
    oSession.ShowFrame(m_oPhase, true);
    sPictures.sPhase = oSession.Picture();
    oSession.ShowFrame(m_oPhase2, true);
    sPictures.sPhase2 = oSession.Picture();

    const std::vector<SMeshPlace> vMesh = ExactMeshPlaces(sCase.sSetup, oSession);
    const CReferenceView oView(sCase.sSetup);
    const SExactView sExact(oView);
    SPlaceResult sResult;
    SLengths sLengths;
    for (int y = 0; y < sExact.nHeight; ++y)
        for (int x = 0; x < sExact.nWidth; ++x) {
            const bool bDrawn = sPictures.sIndex.At(x, y)[3] != 0;
            const bool bClear = sExact.ClearOfEdges(x, y);
            if (bDrawn != sExact.At(x, y).bDrawn)
                sResult.nWronglyDrawn += bClear ? 1 : 0;
            else if (bDrawn && bClear)
                AddPixel(oView, sExact.At(x, y),
                         vMesh[static_cast<std::size_t>(y) * static_cast<std::size_t>(sExact.nWidth) +
                               static_cast<std::size_t>(x)],
                         sPictures.At(x, y), sLengths);
        }
    sResult.nPixels = static_cast<int>(sLengths.vDrawn.size());
    sResult.sOptics = SpreadOf(sLengths.vOptics);
    sResult.sRule = SpreadOf(sLengths.vRule);
    sResult.sDrawn = SpreadOf(sLengths.vDrawn);
    sResult.sMesh = SpreadOf(sLengths.vMesh);
    sResult.sDriver = SpreadOf(sLengths.vDriver);
    return sResult;
}
