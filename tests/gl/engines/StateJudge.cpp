#include "tests/gl/engines/StateJudge.h"

#include "tests/fuzz/GLWatch.h"
#include "tests/support/DewarperSteps.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

/// The processor engine steps positions over a grid, which takes them up to a 32nd of a texel away.
const double BORDER_TEXELS = 0.04;
const double MOST_MEAN = 0.3;
const double MOST_SHARE = 0.001;
const double LEAST_DECIBELS = 50.0;
/// With layers: the processor keeps each multiplied by its alpha in 8 bits.
const double MOST_MEAN_OF_LAYERS = 0.4;
/// What a software renderer's filter of 8 bits makes of colour and alpha of a layer.
const double MOST_SHARE_OF_FILTERED_LAYERS = 0.005;
const int MOST_OF_FILTERED_LAYERS = 8;
/// Levels and gains beyond this enlarge the roundings of a filter to what can be seen.
const double STEEP = 3.0;

SMeshState MeshStateOf(CStatePlayer& rPlayer)
{
    CCustomGPUDewarperOffscreen& d = rPlayer.Dewarper();
    SMeshState s;
    s.sParams = *d.pParams;
    s.nRotation = d.GetRotation();
    s.fEyeDistance = d.GetEyeDistance();
    d.GetFlip(s.bFlipHorizontal, s.bFlipVertical);
    d.GetTargetWidthHeight(s.nTargetWidth, s.nTargetHeight);
    return s;
}

SColourState ColourStateOf(CStatePlayer& rPlayer)
{
    CCustomGPUDewarperOffscreen& d = rPlayer.Dewarper();
    const SGiven& g = rPlayer.Given();
    SColourState s;
    s.sYUV.eSpace = g.eSpace;
    s.sYUV.eRange = g.eRange;
    d.GetYUVLevels(s.sYUV.nLumaMin, s.sYUV.nLumaMax, s.sYUV.nChromaMin);
    s.bGain = g.bGain;
    float fLuma = 0.0f;
    float fChroma = 0.0f;
    d.GetGains(fLuma, fChroma);
    s.fLumaGain = static_cast<double>(fLuma);
    s.fChromaGain = static_cast<double>(fChroma);
    s.bLinear = d.GetInterpolationType() == INTERPOLATION_LINEAR;
    const SQPInfo* const pQP = g.pQP.get();
    const bool bQP = pQP != nullptr && pQP->pQP != nullptr && pQP->pMBType != nullptr &&
                     std::min(pQP->nWidth, pQP->nStride) > 0 && pQP->nHeight > 0;
    s.pQP = bQP && g.pFrame->sImage.nFormat == IMAGE_FORMAT_YUV420P ? pQP : nullptr;
    return s;
}

bool IsYUV(int nFormat)
{
    return nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21 || nFormat == IMAGE_FORMAT_YUV420P;
}

/// Layers that a picture has.
bool HasLayers(const SGiven& rGiven)
{
    return rGiven.sInput.IsThere() || rGiven.sOutput.IsThere() || !rGiven.vMasks.empty() ||
           !rGiven.vStrings.empty();
}

/// Without anything over the view.
SGiven Bare(SGiven sGiven)
{
    sGiven.sInput = sGiven.sOutput = SOverlayImage();
    sGiven.vMasks.clear();
    sGiven.vStrings.clear();
    return sGiven;
}

} // namespace

void SJudged::Add(const SJudged& rOther)
{
    nStates += rOther.nStates;
    nDirect += rOther.nDirect;
    nByReference += rOther.nByReference;
    nSteep += rOther.nSteep;
    nPixels += rOther.nPixels;
    nEdges += rOther.nEdges;
    nBorders += rOther.nBorders;
    nMasked += rOther.nMasked;
    fWorstGL = std::min(fWorstGL, rOther.fWorstGL);
    fWorstProcessor = std::min(fWorstProcessor, rOther.fWorstProcessor);
    fWorstMean = std::max(fWorstMean, rOther.fWorstMean);
    fWorstShare = std::max(fWorstShare, rOther.fWorstShare);
}

/// Differences of two pictures, and of each from the reference.
struct CStateJudge::SLevels
{
    void Add(const unsigned char* pGL, const unsigned char* pProcessor)
    {
        for (int i = 0; i < 4; ++i) {
            const int nDifference = std::abs(pGL[i] - pProcessor[i]);
            fSum += nDifference;
            nBeyond += nDifference > 2 ? 1 : 0;
            ++nBytes;
        }
    }
    void AddReference(const unsigned char* pGL, const unsigned char* pProcessor,
                      const std::array<double, 4>& aWanted)
    {
        for (std::size_t i = 0; i < 4; ++i) {
            fErrorGL += (pGL[i] - aWanted[i]) * (pGL[i] - aWanted[i]);
            fErrorProcessor += (pProcessor[i] - aWanted[i]) * (pProcessor[i] - aWanted[i]);
        }
    }
    double Mean() const { return nBytes == 0 ? 0.0 : fSum / nBytes; }
    double Share() const { return nBytes == 0 ? 0.0 : static_cast<double>(nBeyond) / nBytes; }
    double Decibels(double fError) const
    {
        return nBytes == 0 || fError == 0.0 ? 99.0
                                            : std::min(99.0, 10.0 * std::log10(65025.0 * nBytes / fError));
    }

    double fSum = 0.0;
    double fErrorGL = 0.0;
    double fErrorProcessor = 0.0;
    int nBeyond = 0;
    int nBytes = 0;
};

CStateJudge::CStateJudge(CStatePlayer& rPlayer)
    : m_rPlayer(rPlayer), m_rGiven(rPlayer.Given()), m_rImage(m_rGiven.pFrame->sImage),
      m_sMesh(MeshStateOf(rPlayer)), m_sColours(ColourStateOf(rPlayer)), m_oMesh(m_sMesh)
{}

void CStateJudge::Fail(const std::string& strFault)
{
    if (m_strFault.empty())
        m_strFault = strFault + ": " + m_rPlayer.StateWords();
}

CStateJudge::SPictures CStateJudge::DrawBoth(const SGiven& rGiven)
{
    CCustomGPUDewarperOffscreen oGL;
    const std::unique_ptr<CDewarper> pProcessor =
        CreateDewarper(ENGINE_CPU, m_sMesh.nTargetWidth, m_sMesh.nTargetHeight);
    SPictures s;
    if (pProcessor == nullptr || !oGL.InitGL(m_sMesh.nTargetWidth, m_sMesh.nTargetHeight) || !oGL.StartGL() ||
        !m_rPlayer.DrawFresh(oGL, rGiven) || !m_rPlayer.DrawFresh(*pProcessor, rGiven))
        Fail("fresh dewarpers do not draw");
    s.sGL = PictureOf(oGL);
    s.sProcessor = PictureOf(*pProcessor);
    oGL.StopGL();
    TakeGLErrors();
    return s;
}

bool CStateJudge::IsSteep() const
{
    const auto IsFlat = [](double fFactor) { return std::abs(fFactor) <= STEEP; };
    if (m_sColours.bGain && m_rImage.nFormat != IMAGE_FORMAT_GRAY8 &&
        !(IsFlat(m_sColours.fLumaGain) && IsFlat(m_sColours.fChromaGain)))
        return true;
    const SYUV2RGBConversionParams& s = m_sColours.sYUV;
    const EYUVRange eRange = s.eRange != YUV_RANGE_AUTO ? s.eRange : m_rImage.eYUVRange;
    if (!IsYUV(m_rImage.nFormat) || eRange != YUV_RANGE_LIMITED)
        return false;
    return !IsFlat(255.0 / (static_cast<double>(s.nLumaMax) - s.nLumaMin)) ||
           !IsFlat(255.0 / (255.0 - 2.0 * s.nChromaMin));
}

bool CStateJudge::IsNearBorder(const SMeshPixel& rPixel) const
{
    if (m_sColours.pQP != nullptr) {
        const SQPInfo& q = *m_sColours.pQP;
        const double fBlock = static_cast<double>(m_rImage.nWidth) / std::min(q.nWidth, q.nStride);
        if (DistanceToTexelBorder(std::min(q.nWidth, q.nStride), q.nHeight, rPixel.u, rPixel.v) * fBlock <
            BORDER_TEXELS)
            return true;
    }
    return !m_sColours.bLinear && DistanceToTexelBorder(m_rImage, rPixel.u, rPixel.v) < BORDER_TEXELS;
}

bool CStateJudge::IsNearBorderOfOverlay(const SMeshPixel& rPixel, int x, int y) const
{
    if (m_sColours.bLinear)
        return false;
    const SOverlayImage& sIn = m_rGiven.sInput;
    const SOverlayImage& sOut = m_rGiven.sOutput;
    // A texel of the overlay counts as much as it is in texels of the frame.
    const double fIn = sIn.IsThere() ? std::max({1.0, static_cast<double>(sIn.nWidth) / m_rImage.nWidth,
                                                 static_cast<double>(sIn.nHeight) / m_rImage.nHeight})
                                     : 1.0;
    return (sIn.IsThere() &&
            DistanceToTexelBorder(sIn.nWidth, sIn.nHeight, rPixel.u, rPixel.v) < BORDER_TEXELS * fIn) ||
           (sOut.IsThere() &&
            DistanceToTexelBorder(sOut.nWidth, sOut.nHeight, (x + 0.5) / m_sMesh.nTargetWidth,
                                  (y + 0.5) / m_sMesh.nTargetHeight) < 0.01);
}

/// True when a pixel shows what a coordinate at most two BORDER_TEXELS away would.
bool CStateJudge::ShowsATexelBeside(const unsigned char* pPixel, const SMeshPixel& rPixel) const
{
    for (int i = 0; i < 25; ++i) {
        const int nRow = i / 5;
        const double u = rPixel.u + (i % 5 - 2) * BORDER_TEXELS / m_rImage.nWidth;
        const double v = rPixel.v + (nRow - 2) * BORDER_TEXELS / m_rImage.nHeight;
        const std::array<double, 4> a = ReferenceColour(m_rImage, m_sColours, u, v);
        bool bSame = true;
        for (std::size_t k = 0; k < 4; ++k)
            bSame = bSame && std::abs(pPixel[k] - a[k]) <= 2.0;
        if (bSame)
            return true;
    }
    return false;
}

/// The view without layers: drawn where the mesh is, and its colours.
void CStateJudge::JudgeView(const SPictures& rPictures)
{
    const bool bSteep = IsSteep();
    // Where the frame itself is transparent an alpha tells nothing.
    const bool bOpaque = m_rImage.nFormat != IMAGE_FORMAT_RGBA32 && m_rImage.nFormat != IMAGE_FORMAT_BGRA32;
    SLevels sLevels;
    for (int y = 0; y < m_sMesh.nTargetHeight; ++y)
        for (int x = 0; x < m_sMesh.nTargetWidth; ++x) {
            const SMeshPixel& rPixel = m_oMesh.At(x, y);
            const unsigned char* const pGL = rPictures.sGL.At(x, y);
            const unsigned char* const pProcessor = rPictures.sProcessor.At(x, y);
            ++m_sJudged.nPixels;
            m_sJudged.nEdges += rPixel.bEdge ? 1 : 0;
            if (rPixel.bEdge)
                continue;
            if (bOpaque || !rPixel.bDrawn)
                for (const unsigned char* p : {pGL, pProcessor})
                    if ((p[3] != 0) != rPixel.bDrawn)
                        Fail(std::string(p == pGL ? "GL" : "the processor") +
                             (rPixel.bDrawn ? " does not draw " : " draws ") + std::to_string(x) + ", " +
                             std::to_string(y));
            if (!rPixel.bDrawn || bSteep)
                continue;
            if (IsNearBorder(rPixel)) {
                ++m_sJudged.nBorders;
                if (m_sColours.pQP == nullptr && !ShowsATexelBeside(pProcessor, rPixel))
                    Fail("the processor shows no texel beside " + std::to_string(x) + ", " +
                         std::to_string(y));
                continue;
            }
            sLevels.Add(pGL, pProcessor);
            sLevels.AddReference(pGL, pProcessor, ReferenceColour(m_rImage, m_sColours, rPixel.u, rPixel.v));
        }
    if (bSteep) {
        ++m_sJudged.nSteep;
        return;
    }
    const double fGL = sLevels.Decibels(sLevels.fErrorGL);
    const double fProcessor = sLevels.Decibels(sLevels.fErrorProcessor);
    m_sJudged.fWorstGL = fGL;
    m_sJudged.fWorstProcessor = fProcessor;
    m_sJudged.fWorstMean = sLevels.Mean();
    m_sJudged.fWorstShare = sLevels.Share();
    if (sLevels.Mean() <= MOST_MEAN && sLevels.Share() <= MOST_SHARE) {
        ++m_sJudged.nDirect;
        return;
    }
    ++m_sJudged.nByReference;
    m_fViewMean = sLevels.Mean();
    m_fViewShare = sLevels.Share();
    if (fProcessor < LEAST_DECIBELS)
        Fail("mean difference " + std::to_string(sLevels.Mean()) + ", beyond 2 levels " +
             std::to_string(sLevels.Share()) + ", to the reference GL " + std::to_string(fGL) +
             " dB, the processor " + std::to_string(fProcessor) + " dB");
}

/// A white mask over a black frame: the processor's hides at least what GL's hides.
void CStateJudge::JudgeMask(const SGPolygon& rMask)
{
    SGiven sMasks = Bare(m_rGiven);
    sMasks.vMasks = {{rMask.vPoints, 0xFFFFFFFF}};
    sMasks.pFrame = std::make_shared<CFuzzFrame>();
    SImageProperties& rBlack = sMasks.pFrame->sImage;
    rBlack.nWidth = m_rImage.nWidth;
    rBlack.nHeight = m_rImage.nHeight;
    rBlack.nStride = m_rImage.nWidth;
    rBlack.nFormat = IMAGE_FORMAT_GRAY8;
    sMasks.pFrame->Allocate(1U << 22);
    std::memset(rBlack.pPlane0, 0, PlaneBytes(rBlack, 0));
    const SPictures sPictures = DrawBoth(sMasks);
    // A software renderer's filter rounds to 8 bits along each axis.
    const int nRounding = m_sColours.bLinear ? 6 : 3;
    for (int y = 0; y < m_sMesh.nTargetHeight && m_strFault.empty(); ++y)
        for (int x = 0; x < m_sMesh.nTargetWidth; ++x) {
            const SMeshPixel& rPixel = m_oMesh.At(x, y);
            const int nGL = sPictures.sGL.At(x, y)[1];
            const int nProcessor = sPictures.sProcessor.At(x, y)[1];
            if (rPixel.bEdge || IsNearBorder(rPixel) || std::abs(nGL - nProcessor) <= nRounding)
                continue;
            m_vMasked[static_cast<std::size_t>(y * m_sMesh.nTargetWidth + x)] = true;
            ++m_sJudged.nMasked;
            if (nProcessor < nGL)
                Fail("masks of the processor let " + std::to_string(nGL - nProcessor) +
                     " levels through at " + std::to_string(x) + ", " + std::to_string(y));
        }
}

/// The whole picture, where the view below it was right.
void CStateJudge::JudgeLayers(const SPictures& rPictures)
{
    SLevels sLevels;
    int nMost = 0;
    for (int y = 0; y < m_sMesh.nTargetHeight; ++y)
        for (int x = 0; x < m_sMesh.nTargetWidth; ++x) {
            const SMeshPixel& rPixel = m_oMesh.At(x, y);
            if (rPixel.bEdge || IsNearBorder(rPixel) || IsNearBorderOfOverlay(rPixel, x, y) ||
                m_vMasked[static_cast<std::size_t>(y * m_sMesh.nTargetWidth + x)])
                continue;
            sLevels.Add(rPictures.sGL.At(x, y), rPictures.sProcessor.At(x, y));
            for (int i = 0; i < 4; ++i)
                nMost =
                    std::max(nMost, std::abs(rPictures.sGL.At(x, y)[i] - rPictures.sProcessor.At(x, y)[i]));
        }
    m_sJudged.fWorstMean = std::max(m_sJudged.fWorstMean, sLevels.Mean());
    m_sJudged.fWorstShare = std::max(m_sJudged.fWorstShare, sLevels.Share());
    const bool bFiltered = m_sColours.bLinear && m_fViewShare == 0.0 && nMost <= MOST_OF_FILTERED_LAYERS;
    // A plain colour may be rounded the other way everywhere.
    if ((nMost > 1 && sLevels.Mean() > MOST_MEAN_OF_LAYERS + m_fViewMean) ||
        sLevels.Share() > (bFiltered ? MOST_SHARE_OF_FILTERED_LAYERS : MOST_SHARE) + m_fViewShare)
        Fail("layers: mean difference " + std::to_string(sLevels.Mean()) + " over " +
             std::to_string(m_fViewMean) + ", beyond 2 levels " + std::to_string(sLevels.Share()) + " over " +
             std::to_string(m_fViewShare) + ", at most " + std::to_string(nMost));
}

std::string CStateJudge::Judge()
{
    ++m_sJudged.nStates;
    m_vMasked.assign(static_cast<std::size_t>(m_sMesh.nTargetWidth * m_sMesh.nTargetHeight), false);
    const SPictures sPictures = {PictureOf(m_rPlayer.Dewarper()), PictureOf(*m_rPlayer.Processor())};
    const bool bLayers = HasLayers(m_rGiven);
    JudgeView(bLayers ? DrawBoth(Bare(m_rGiven)) : sPictures);
    if (!bLayers || !m_strFault.empty())
        return m_strFault;
    for (const SGPolygon& rMask : m_rGiven.vMasks)
        if ((rMask.nColor & 255) != 0)
            JudgeMask(rMask);
    if (!IsSteep())
        JudgeLayers(sPictures);
    return m_strFault;
}
