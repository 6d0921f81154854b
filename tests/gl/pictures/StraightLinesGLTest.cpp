// Straight lines of space must be straight in the virtual camera, and lie where a pinhole camera puts them.
#include "tests/support/EngineDewarper.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

struct SLineCase
{
    const char* pName;
    EMountType eMount;
    int nLens;
    int nFrameWidth;
    int nFrameHeight;
    double fPan;
    double fTilt;
    double fZoom;
};

static const SLineCase CASES[] = {
    {"ceiling", MOUNT_CEILING, 419, 720, 720, 90, 45, 140},
    {"ceiling, down", MOUNT_CEILING, 419, 720, 720, 200, 0, 160},
    {"ceiling, narrow", MOUNT_CEILING, 419, 720, 720, 30, 65, 60},
    {"floor", MOUNT_FLOOR, 418, 720, 720, 90, 130, 140},
    {"floor, aside", MOUNT_FLOOR, 215, 720, 660, 10, 120, 120},
    {"wall", MOUNT_WALL, 419, 720, 720, 90, 90, 160},
    {"wall, aside", MOUNT_WALL, 239, 720, 640, 60, 110, 120},
    {"wall, equidistant", MOUNT_WALL, 0, 720, 720, 120, 75, 130},
};

/// One line as it is seen: x against y, or y against x for the flat ones.
struct SSeenLine
{
    std::vector<double> vAlong;
    std::vector<double> vAcross;
};

/// Largest distance of the points from their own straight line, in pixels.
static double Bend(const SSeenLine& sLine)
{
    const double n = static_cast<double>(sLine.vAlong.size());
    const double fMeanA = Mean(sLine.vAlong);
    const double fMeanB = Mean(sLine.vAcross);
    double fAA = 0.0;
    double fAB = 0.0;
    for (std::size_t i = 0; i < sLine.vAlong.size(); ++i) {
        fAA += (sLine.vAlong[i] - fMeanA) * (sLine.vAlong[i] - fMeanA) / n;
        fAB += (sLine.vAlong[i] - fMeanA) * (sLine.vAcross[i] - fMeanB) / n;
    }
    const double fSlope = fAB / fAA;
    double fMost = 0.0;
    for (std::size_t i = 0; i < sLine.vAlong.size(); ++i)
        fMost = std::max(fMost, std::abs(sLine.vAcross[i] - fMeanB - fSlope * (sLine.vAlong[i] - fMeanA)) /
                                    std::hypot(1.0, fSlope));
    return fMost;
}

/// Middle of a line's colour across each row (or column) that it crosses fully.
static SSeenLine Follow(const STestImage& sPicture, std::size_t nChannel, bool bFlat)
{
    SSeenLine sLine;
    const int nLength = bFlat ? sPicture.nWidth : sPicture.nHeight;
    const int nAcross = bFlat ? sPicture.nHeight : sPicture.nWidth;
    for (int i = 2; i < nLength - 2; ++i) {
        double fSum = 0.0;
        double fWeighted = 0.0;
        int nFirst = nAcross;
        int nLast = -1;
        for (int k = 0; k < nAcross; ++k) {
            const unsigned char* pPixel = bFlat ? sPicture.At(i, k) : sPicture.At(k, i);
            const double fOther = std::max(pPixel[(nChannel + 1) % 3], pPixel[(nChannel + 2) % 3]);
            const double fWeight = std::max(0.0, pPixel[nChannel] - fOther - 40.0);
            if (fWeight <= 0.0)
                continue;
            fSum += fWeight;
            fWeighted += fWeight * (k + 0.5);
            nFirst = std::min(nFirst, k);
            nLast = std::max(nLast, k);
        }
        // Not where it leaves the picture, nor where it crosses another line.
        if (fSum < 150.0 || nFirst < 6 || nLast > nAcross - 7)
            continue;
        bool bCrossing = false;
        for (int k = nFirst - 5; k <= nLast + 5; ++k) {
            const unsigned char* pPixel = bFlat ? sPicture.At(i, k) : sPicture.At(k, i);
            bCrossing = bCrossing || pPixel[(nChannel + 1) % 3] > 20 || pPixel[(nChannel + 2) % 3] > 20;
        }
        if (bCrossing)
            continue;
        sLine.vAlong.push_back(i + 0.5);
        sLine.vAcross.push_back(fWeighted / fSum);
    }
    return sLine;
}

/// Input pixels that one pixel of the result stands for where it stands for the fewest.
static double FewestTexels(const CReferenceView& oView)
{
    const SReferenceSetup& s = oView.Setup();
    double fFewest = 1e9;
    for (int i = 0; i < 50; ++i) {
        const int nRow = i / 5 % 5;
        const double x = s.nTargetWidth * (i % 5 + 0.5) / 5.0;
        const double y = s.nTargetHeight * (nRow + 0.5) / 5.0;
        double afTexel[4] = {};
        oView.TrueTexCoord(oView.At(x, y).aRay, afTexel[0], afTexel[1]);
        oView.TrueTexCoord(oView.At(i < 25 ? x + 1.0 : x, i < 25 ? y : y + 1.0).aRay, afTexel[2], afTexel[3]);
        fFewest = std::min(fFewest, std::hypot((afTexel[2] - afTexel[0]) * s.nImageWidth,
                                               (afTexel[3] - afTexel[1]) * s.nImageHeight));
    }
    return fFewest;
}

class StraightLines : public testing::TestWithParam<SEngineCase<SLineCase>>
{
};

TEST_P(StraightLines, AreStraightAndInTheirPlaces)
{
    const SLineCase& sCase = GetParam().sCase;
    SReferenceSetup s;
    s.eView = VIEW_VCAM;
    s.eMount = sCase.eMount;
    s.nLensType = sCase.nLens;
    s.nImageWidth = sCase.nFrameWidth;
    s.nImageHeight = sCase.nFrameHeight;
    s.nTargetWidth = 400;
    s.nTargetHeight = 300;
    s.fPan = sCase.fPan;
    s.fTilt = sCase.fTilt;
    s.fZoom = sCase.fZoom;
    const CReferenceView oView(s);
    // Three lines of space through pairs of picture points: one steep, one flat, one oblique. What their
    // normals are follows from the exact view.
    const double afEnds[3][4] = {{120, 10, 95, 290}, {10, 90, 390, 70}, {150, 295, 395, 110}};
    std::vector<SStraightLine> vLines;
    for (std::size_t i = 0; i < 3; ++i) {
        const FVector a = CameraToWorld(s.eMount, oView.At(afEnds[i][0], afEnds[i][1]).aRay);
        const FVector b = CameraToWorld(s.eMount, oView.At(afEnds[i][2], afEnds[i][3]).aRay);
        SStraightLine sLine;
        sLine.aNormal = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        sLine.aColour = {i == 0 ? 1.0 : 0.0, i == 1 ? 1.0 : 0.0, i == 2 ? 1.0 : 0.0};
        sLine.fHalfWidth = 0.012;
        vLines.push_back(sLine);
    }
    CEngineDewarper oDewarper(GetParam().eEngine, s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    static CLastPicture oInputs;
    CTestFrame oFrame(oInputs.Of(sCase.pName,
                                 [&] {
                                     return RenderFisheye(LinesScene(vLines), s.nLensType, s.nImageWidth,
                                                          s.nImageHeight, s.eMount, 0.0, 3);
                                 }),
                      IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    WritePicture("lines " + EngineName(GetParam().eEngine) + " " + sCase.pName, sPicture);
    // The mesh takes texels one pixel nearer to the vertical axis than they lie: so much, enlarged, may a
    // line be away from its place.
    const double fTexels = FewestTexels(oView);
    for (std::size_t i = 0; i < 3; ++i) {
        const SSeenLine sSeen = Follow(sPicture, i, i != 0);
        ASSERT_GT(sSeen.vAlong.size(), 60u) << "line " << i;
        // How far the pinhole's line is from the seen one.
        double fAway = 0.0;
        for (std::size_t k = 0; k < sSeen.vAlong.size(); ++k) {
            const double x = i == 0 ? sSeen.vAcross[k] : sSeen.vAlong[k];
            const double y = i == 0 ? sSeen.vAlong[k] : sSeen.vAcross[k];
            const double* f = afEnds[i];
            const double fLength = std::hypot(f[2] - f[0], f[3] - f[1]);
            fAway =
                std::max(fAway, std::abs((f[2] - f[0]) * (y - f[1]) - (f[3] - f[1]) * (x - f[0])) / fLength);
        }
        const double fBend = Bend(sSeen);
        std::printf("  %-20s line %zu: bend %.2f px, away %.2f px over %zu rows\n", sCase.pName, i, fBend,
                    fAway, sSeen.vAlong.size());
        EXPECT_LT(fBend, 1.0);
        EXPECT_LT(fAway, 0.4 + 1.0 / fTexels);
    }
}

INSTANTIATE_TEST_SUITE_P(Camera, StraightLines, testing::ValuesIn(WithBothEngines(CASES)), SEngineCaseName());
