/// \file
/// Holds the processor engine's picture of a state against the GL engine's.
#pragma once

#include "tests/gl/state/StatePlayer.h"
#include "tests/support/MeshReference.h"

/// What is looked at, pixels.
struct SJudged
{
    int nStates = 0;
    int nDirect = 0;      ///< within the bounds of each other
    int nByReference = 0; ///< beyond, by the filter: within 50 dB of the reference
    int nSteep = 0;       ///< levels or gains enlarge every rounding: drawn or not only
    long long nPixels = 0;
    long long nEdges = 0;   ///< within one pixel of an edge
    long long nBorders = 0; ///< so near to a border between texels that either may be shown
    long long nMasked = 0;  ///< hidden by more than GL's masks
    double fWorstGL = 99.0; ///< decibels, against the reference
    double fWorstProcessor = 99.0;
    double fWorstMean = 0.0;
    double fWorstShare = 0.0; ///< of the bytes, beyond 2 levels

    void Add(const SJudged& rOther);
};

/// Judges a state with a picture drawn by both engines.
///
/// The bounds of two pictures are 0.3 levels in the mean and 2 levels for 99.9 per cent of the bytes. Where
/// the linear filter takes them beyond (software renderers filter with 8 bits), each has to be within 50 dB
/// of the frame sampled in double precision. Left out are pixels beside an edge, and with the nearest filter
/// those that lie within BORDER_TEXELS of a border between texels, which must show a texel beside it.
class CStateJudge
{
public:
    explicit CStateJudge(CStatePlayer& rPlayer);
    /// What is wrong; empty: nothing.
    std::string Judge();
    const SJudged& Judged() const { return m_sJudged; }

private:
    struct SPictures
    {
        STestImage sGL;
        STestImage sProcessor;
    };
    struct SLevels; ///< sums over bytes

    SPictures DrawBoth(const SGiven& rGiven);
    bool IsSteep() const;
    void JudgeView(const SPictures& rPictures);
    void JudgeMask(const SGPolygon& rMask);
    void JudgeLayers(const SPictures& rPictures);
    bool ShowsATexelBeside(const unsigned char* pPixel, const SMeshPixel& rPixel) const;
    bool IsNearBorder(const SMeshPixel& rPixel) const;
    bool IsNearBorderOfOverlay(const SMeshPixel& rPixel, int x, int y) const;
    void Fail(const std::string& strFault);

    CStatePlayer& m_rPlayer;
    const SGiven& m_rGiven;
    const SImageProperties& m_rImage;
    SMeshState m_sMesh;
    SColourState m_sColours;
    CMeshReference m_oMesh;
    std::vector<bool> m_vMasked; ///< pixels that masks of both engines hide differently
    double m_fViewMean = 0.0;    ///< of the view without layers, where the reference decided
    double m_fViewShare = 0.0;
    SJudged m_sJudged;
    std::string m_strFault;
};
