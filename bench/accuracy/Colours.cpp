#include "bench/accuracy/Colours.h"

#include "bench/accuracy/ViewSession.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace
{

struct SLayout
{
    const char* pName;
    int nFormat;
};

const SLayout YUV_LAYOUTS[] = {
    {"NV12", IMAGE_FORMAT_NV12}, {"NV21", IMAGE_FORMAT_NV21}, {"yuv420p", IMAGE_FORMAT_YUV420P}};
const SLayout OTHER_LAYOUTS[] = {{"RGB24", IMAGE_FORMAT_RGB24},
                                 {"BGR24", IMAGE_FORMAT_BGR24},
                                 {"RGBA32", IMAGE_FORMAT_RGBA32},
                                 {"BGRA32", IMAGE_FORMAT_BGRA32},
                                 {"gray8", IMAGE_FORMAT_GRAY8}};
const EYUVSpace SPACES[] = {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED};

const char* SpaceName(EYUVSpace eSpace)
{
    switch (eSpace) {
    case YUV_SPACE_BT709:
        return "BT.709";
    case YUV_SPACE_BT2020:
        return "BT.2020";
    case YUV_SPACE_BT601_SCALED:
        return "BT.601 scaled";
    default:
        return "BT.601";
    }
}

/// One plane, sampled as textures are.
struct SPlane
{
    const unsigned char* pBytes;
    int nCols;
    int nRows;
    int nStride;
    int nStep; ///< bytes from one texel to the next

    double At(int x, int y) const
    {
        const std::ptrdiff_t nRow = std::clamp(y, 0, nRows - 1);
        return pBytes[nRow * nStride + static_cast<std::ptrdiff_t>(std::clamp(x, 0, nCols - 1)) * nStep] /
               255.0;
    }
    double Sample(double fU, double fV, bool bLinear) const
    {
        const double fX = fU * nCols - (bLinear ? 0.5 : 0.0);
        const double fY = fV * nRows - (bLinear ? 0.5 : 0.0);
        const int nX = static_cast<int>(std::floor(fX));
        const int nY = static_cast<int>(std::floor(fY));
        if (!bLinear)
            return At(nX, nY);
        const double fRight = fX - nX;
        const double fBelow = fY - nY;
        return (At(nX, nY) * (1.0 - fRight) + At(nX + 1, nY) * fRight) * (1.0 - fBelow) +
               (At(nX, nY + 1) * (1.0 - fRight) + At(nX + 1, nY + 1) * fRight) * fBelow;
    }
};

/// A frame's planes in the order Y, U, V or red, green, blue, alpha.
std::vector<SPlane> PlanesOf(const SImageProperties& s)
{
    const int w = s.nWidth;
    const int h = s.nHeight;
    const int n = s.nStride;
    const unsigned char* p = s.pPlane0;
    const unsigned char* pChroma = s.pPlane1;
    switch (s.nFormat) {
    case IMAGE_FORMAT_NV12:
        return {{p, w, h, n, 1}, {pChroma, w / 2, h / 2, n, 2}, {pChroma + 1, w / 2, h / 2, n, 2}};
    case IMAGE_FORMAT_NV21:
        return {{p, w, h, n, 1}, {pChroma + 1, w / 2, h / 2, n, 2}, {pChroma, w / 2, h / 2, n, 2}};
    case IMAGE_FORMAT_YUV420P:
        return {{p, w, h, n, 1}, {pChroma, w / 2, h / 2, n / 2, 1}, {s.pPlane2, w / 2, h / 2, n / 2, 1}};
    case IMAGE_FORMAT_GRAY8:
        return {{p, w, h, n, 1}, {p, w, h, n, 1}, {p, w, h, n, 1}};
    case IMAGE_FORMAT_RGB24:
        return {{p, w, h, n, 3}, {p + 1, w, h, n, 3}, {p + 2, w, h, n, 3}};
    case IMAGE_FORMAT_BGR24:
        return {{p + 2, w, h, n, 3}, {p + 1, w, h, n, 3}, {p, w, h, n, 3}};
    case IMAGE_FORMAT_RGBA32:
        return {{p, w, h, n, 4}, {p + 1, w, h, n, 4}, {p + 2, w, h, n, 4}, {p + 3, w, h, n, 4}};
    default:
        return {{p + 2, w, h, n, 4}, {p + 1, w, h, n, 4}, {p, w, h, n, 4}, {p + 3, w, h, n, 4}};
    }
}

/// The colour that sampled planes stand for. Limited range: 219 levels above 16 for luma, 223 about the
/// middle for chroma.
FColour ExactColour(const std::vector<double>& vSamples, bool bYUV, EYUVSpace eSpace, bool bLimited)
{
    if (!bYUV) {
        const double fAlpha = vSamples.size() > 3 ? vSamples[3] : 1.0;
        return {vSamples[0] * fAlpha, vSamples[1] * fAlpha, vSamples[2] * fAlpha};
    }
    double y = vSamples[0];
    double u = vSamples[1] - 0.5;
    double v = vSamples[2] - 0.5;
    if (bLimited) {
        y = std::clamp((y - 16.0 / 255.0) * 255.0 / 219.0, 0.0, 1.0);
        u = std::clamp(u * 255.0 / 223.0, -0.5, 0.5);
        v = std::clamp(v * 255.0 / 223.0, -0.5, 0.5);
    }
    const SYUVMatrix s = YUVMatrix(eSpace);
    FColour aColour = {y + s.fRedV * v, y - s.fGreenU * u - s.fGreenV * v, y + s.fBlueU * u};
    for (double& fValue : aColour)
        fValue = std::clamp(fValue, 0.0, 1.0);
    return aColour;
}

struct SColourCase
{
    SLayout sLayout;
    bool bYUV;
    EYUVSpace eSpace;
    bool bLimited;
};

class CColourMeter
{
public:
    CColourMeter(int nWidth, int nHeight)
        : m_oSame(nWidth, nHeight), m_oLarger(nWidth * 4 / 3, nHeight * 4 / 3),
          m_sRoom(RenderFisheye(RoomColour, 419, nWidth, nHeight, MOUNT_CEILING))
    {}

    SColourResult Measure(const SColourCase& sCase)
    {
        SColourResult sResult;
        sResult.strLayout = sCase.sLayout.pName;
        if (sCase.bYUV) {
            sResult.strSpace = SpaceName(sCase.eSpace);
            sResult.strRange = sCase.bLimited ? "limited" : "full";
        }
        CTestFrame oRoom(m_sRoom, sCase.sLayout.nFormat, 0, sCase.eSpace, sCase.bLimited);
        CTestFrame oChance(m_sRoom, sCase.sLayout.nFormat, 0, sCase.eSpace, sCase.bLimited);
        FillWithChance(*oChance.Image());
        sResult.sNearest = Compare(sCase, oChance, false);
        sResult.sLinear = Compare(sCase, oChance, true);
        sResult.sLinearScene = Compare(sCase, oRoom, true);
        return sResult;
    }

private:
    void FillWithChance(const SImageProperties& s)
    {
        std::mt19937 oChance(4711);
        const std::size_t nLuma = static_cast<std::size_t>(s.nStride) * static_cast<std::size_t>(s.nHeight);
        const auto Fill = [&](unsigned char* pBytes, std::size_t nBytes) {
            for (std::size_t i = 0; pBytes != nullptr && i < nBytes; ++i)
                pBytes[i] = static_cast<unsigned char>(oChance() >> 24);
        };
        Fill(s.pPlane0, nLuma);
        const bool bThree = s.pPlane2 != nullptr;
        Fill(s.pPlane1, nLuma / (bThree ? 4 : 2));
        Fill(s.pPlane2, nLuma / 4);
    }

    SColourSpread Compare(const SColourCase& sCase, CTestFrame& oFrame, bool bLinear)
    {
        CViewSession& oSession = bLinear ? m_oLarger : m_oSame;
        oSession.ShowFisheye(sCase.eSpace, sCase.bLimited ? YUV_RANGE_LIMITED : YUV_RANGE_FULL, oFrame,
                             bLinear);
        const STestImage sPicture = oSession.Picture();
        const std::vector<SPlane> vPlanes = PlanesOf(*oFrame.Image());
        std::vector<double> vSamples(vPlanes.size());
        SColourSpread sSpread;
        for (int y = 0; y < sPicture.nHeight; ++y)
            for (int x = 0; x < sPicture.nWidth; ++x) {
                for (std::size_t i = 0; i < vPlanes.size(); ++i)
                    vSamples[i] =
                        vPlanes[i].Sample((x + 0.5) / sPicture.nWidth, (y + 0.5) / sPicture.nHeight, bLinear);
                const FColour aExact = ExactColour(vSamples, sCase.bYUV, sCase.eSpace, sCase.bLimited);
                for (std::size_t i = 0; i < 3; ++i) {
                    const double fOff = std::abs(sPicture.At(x, y)[i] - 255.0 * aExact[i]);
                    sSpread.fMean += fOff;
                    sSpread.fMax = std::max(sSpread.fMax, fOff);
                    const long nExact = std::lround(255.0 * aExact[i]);
                    sSpread.fBeyond2 += std::abs(sPicture.At(x, y)[i] - nExact) > 2 ? 1.0 : 0.0;
                }
            }
        const double fValues = 3.0 * sPicture.nWidth * sPicture.nHeight;
        sSpread.fMean /= fValues;
        sSpread.fBeyond2 /= fValues;
        return sSpread;
    }

    CViewSession m_oSame;
    CViewSession m_oLarger;
    STestImage m_sRoom;
};

} // namespace

bool SColourResult::IsGood() const
{
    // Neighbours of chance bytes lie far apart: the driver's filter, which is off by up to 1 there, and the
    // matrix that multiplies it, show at their worst.
    return sNearest.fMax <= 1.0 && sLinear.fMean <= 0.6 && sLinear.fBeyond2 <= 0.003 && sLinear.fMax <= 4.0 &&
           sLinearScene.fMean <= 0.6 && sLinearScene.fBeyond2 <= 0.001;
}

std::vector<SColourResult> MeasureColours(bool bQuick)
{
    CColourMeter oMeter(bQuick ? 240 : 960, bQuick ? 180 : 720);
    std::vector<SColourResult> vResults;
    for (const SLayout& sLayout : YUV_LAYOUTS)
        for (const EYUVSpace eSpace : SPACES)
            for (const bool bLimited : {false, true})
                vResults.push_back(oMeter.Measure({sLayout, true, eSpace, bLimited}));
    for (const SLayout& sLayout : OTHER_LAYOUTS)
        vResults.push_back(oMeter.Measure({sLayout, false, YUV_SPACE_BT601, false}));
    return vResults;
}
