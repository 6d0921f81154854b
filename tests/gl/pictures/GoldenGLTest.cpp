// Golden pictures: one small picture of the room for every view and mount, kept in tests/golden/pictures. On
// the driver and processor that they were drawn with every byte must stay; others may round differently. The
// kept pictures are themselves held against exact renderings, so that a wrong one cannot be kept.
//
// LUMOR_WRITE_GOLDEN=1 in the environment draws them anew, and notes the driver beside them.
#include "tests/gl/pictures/GoldenCases.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/MeshReference.h"
#include "tests/support/PictureAgreement.h"
#include "tests/support/TestDewarper.h"

#include "FileIO.h"
#include "ImageReader.h"
#include "ImageWriter.h"

#include <GLES3/gl31.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

static std::string GoldenPath(const std::string& strFile)
{
    return std::string(TEST_SOURCE_DIR) + "/golden/pictures/" + strFile;
}

static bool IsWriting()
{
    const char* pValue = std::getenv("LUMOR_WRITE_GOLDEN");
    return pValue != nullptr && std::string(pValue) == "1";
}

/// Maker, family and model of the processor, as the system tells them; empty where it does not. A software
/// driver and the mathematics library choose their instructions by it, which may turn a last bit.
static std::string ProcessorName()
{
    std::ifstream oFile("/proc/cpuinfo");
    std::string strName;
    for (std::string strLine; std::getline(oFile, strLine) && !strLine.empty();)
        for (const char* pKey : {"vendor_id\t", "cpu family\t", "model\t"})
            if (strLine.rfind(pKey, 0) == 0)
                strName += strLine.substr(strLine.find(':') + 1);
    return strName;
}

/// What the current context's driver calls itself, and the processor it runs on.
static std::string DriverName()
{
    std::string strName = "processor" + ProcessorName() + "\n";
    for (const GLenum nName : {GLenum{GL_RENDERER}, GLenum{GL_VERSION}})
        strName.append(reinterpret_cast<const char*>(glGetString(nName))).append("\n");
    return strName;
}

static std::string NotedDriver()
{
    const std::vector<unsigned char> vBytes = ReadFile(GoldenPath("driver.txt"), 4096);
    return {vBytes.begin(), vBytes.end()};
}

static void WriteGolden(const std::string& strFile, const STestImage& sPicture)
{
    STestImage sSwapped = sPicture;
    for (std::size_t i = 0; i < sSwapped.vPixels.size(); i += 4)
        std::swap(sSwapped.vPixels[i], sSwapped.vPixels[i + 2]);
    const std::vector<unsigned char> vFile = EncodePicture(
        {sSwapped.vPixels.data(), sPicture.nWidth, sPicture.nHeight, sPicture.nWidth * 4}, EOutputKind::PNG);
    WriteFile(GoldenPath(strFile), vFile.data(), vFile.size());
    const std::string strDriver = DriverName();
    WriteFile(GoldenPath("driver.txt"), reinterpret_cast<const unsigned char*>(strDriver.data()),
              strDriver.size());
}

static STestImage ReadGolden(const std::string& strFile)
{
    const SFrame sFrame = ReadImageRGBA(GoldenPath(strFile));
    STestImage sImage(sFrame.nWidth, sFrame.nHeight);
    for (int y = 0; y < sFrame.nHeight; ++y)
        std::copy_n(sFrame.avPlanes[0].begin() + static_cast<std::ptrdiff_t>(y) * sFrame.nStride,
                    4 * sFrame.nWidth, sImage.At(0, y));
    return sImage;
}

/// Share of the pixels in which a channel differs by more than nLevels.
static double ShareBeyond(const STestImage& sA, const STestImage& sB, int nLevels)
{
    int nBeyond = 0;
    for (int y = 0; y < sA.nHeight; ++y)
        for (int x = 0; x < sA.nWidth; ++x) {
            int nMost = 0;
            for (int i = 0; i < 3; ++i)
                nMost = std::max(nMost, std::abs(sA.At(x, y)[i] - sB.At(x, y)[i]));
            nBeyond += nMost > nLevels ? 1 : 0;
        }
    return static_cast<double>(nBeyond) / (sA.nWidth * sA.nHeight);
}

class Golden : public testing::TestWithParam<SGoldenCase>
{
};

TEST_P(Golden, PictureIsDrawnAgainAndIsTrue)
{
    const SGoldenCase& sCase = GetParam();
    const SReferenceSetup s = SetupOf(sCase);
    const std::string strFile = std::string(sCase.pName) + ".png";
    const STestImage sInput = InputOf(sCase);
    CTestFrame oFrame(sInput, sCase.nFormat, 0, sCase.eSpace, sCase.bLimited);
    CTestDewarper oDewarper(s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.SetInterpolationType(sCase.bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    if (IsWriting())
        WriteGolden(strFile, sPicture);

    const STestImage sGolden = ReadGolden(strFile);
    const SImageDifference sChange = CompareImages(sPicture, sGolden);
    ASSERT_LE(sChange.nMax, 255) << "sizes differ";
    if (DriverName() == NotedDriver()) {
        EXPECT_EQ(sChange.nMax, 0) << "most at " << sChange.nMaxX << ", " << sChange.nMaxY;
    }
    EXPECT_LE(ShareBeyond(sPicture, sGolden, 2), 0.005);

    const CReferenceView oView(s);
    const double fRemap = CompareImages(sGolden, oView.Render(sInput, sCase.bLinear)).fPSNR;
    const double fRoom = CompareImages(sGolden, oView.Render(RoomColour, 3)).fPSNR;
    std::printf("  %-24s %.1f dB to the frame sampled exactly, %.1f dB to the room\n", sCase.pName, fRemap,
                fRoom);
    EXPECT_GT(fRemap, sCase.fMinRemap);
    EXPECT_GT(fRoom, sCase.fMinRoom);
    if (HasFailure()) {
        WritePicture(std::string("golden ") + sCase.pName, SideBySide(sPicture, sGolden));
        WritePicture(std::string("golden ") + sCase.pName + " difference",
                     DifferenceImage(sPicture, sGolden));
    }
    EXPECT_NO_GL_ERROR();
}

/// A picture's distance from the frame sampled by the view's mesh in double precision, decibels.
static double DecibelsToReference(const STestImage& sPicture, const SGoldenCase& sCase, CTestFrame& rFrame)
{
    const SReferenceSetup s = SetupOf(sCase);
    SMeshState sMesh;
    SDewarpParams& p = sMesh.sParams;
    p.fPan = static_cast<float>(s.fPan);
    p.fTilt = static_cast<float>(s.fTilt);
    p.fZoom = static_cast<float>(s.fZoom);
    p.fMountTilt = static_cast<float>(s.fMountTilt);
    p.eMountType = s.eMount;
    p.eViewType = s.eView;
    p.eLensType = static_cast<ELensType>(s.nLensType);
    p.nImageWidth = s.nImageWidth;
    p.nImageHeight = s.nImageHeight;
    p.nImageStride = rFrame.Stride();
    sMesh.nTargetWidth = s.nTargetWidth;
    sMesh.nTargetHeight = s.nTargetHeight;
    const CMeshReference oMesh(sMesh);
    SColourState sColours;
    sColours.bLinear = sCase.bLinear;
    double fError = 0.0;
    int nBytes = 0;
    for (int y = 0; y < s.nTargetHeight; ++y)
        for (int x = 0; x < s.nTargetWidth; ++x) {
            const SMeshPixel& rPixel = oMesh.At(x, y);
            if (rPixel.bEdge || !rPixel.bDrawn)
                continue;
            const std::array<double, 4> a = ReferenceColour(*rFrame.Image(), sColours, rPixel.u, rPixel.v);
            for (std::size_t i = 0; i < 3; ++i, ++nBytes)
                fError += (sPicture.At(x, y)[i] - a[i]) * (sPicture.At(x, y)[i] - a[i]);
        }
    return 10.0 * std::log10(65025.0 * nBytes / std::max(fError, 1e-9));
}

/// Beside the kept picture of GL. Where GL's filter, of 8 bits here, and the colour matrix behind it take the
/// two farther apart than two engines may be, the reference decides.
TEST_P(Golden, PictureIsThatOfTheProcessorEngineToo)
{
    const SGoldenCase& sCase = GetParam();
    const SReferenceSetup s = SetupOf(sCase);
    CTestFrame oFrame(InputOf(sCase), sCase.nFormat, 0, sCase.eSpace, sCase.bLimited);
    CEngineDewarper oDewarper(ENGINE_CPU, s.nTargetWidth, s.nTargetHeight);
    oDewarper->SetInterpolationType(sCase.bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    STestImage sPicture = oDewarper.Picture();
    // The files have no alpha; what is not drawn is black.
    for (std::size_t i = 3; i < sPicture.vPixels.size(); i += 4)
        sPicture.vPixels[i] = 255;
    const STestImage sGolden = ReadGolden(std::string(sCase.pName) + ".png");
    const SAgreement sAgreement = CompareStates(sGolden, sPicture);
    const double fReference = DecibelsToReference(sPicture, sCase, oFrame);
    std::printf(
        "  %-24s mean %.3f, beyond 2 levels %.5f of the bytes, at most %d; %.1f dB to the reference\n",
        sCase.pName, sAgreement.fMean, sAgreement.fShareBeyond2, sAgreement.nMost, fReference);
    EXPECT_LE(sAgreement.fMean, 0.35);
    EXPECT_LE(sAgreement.fShareBeyond2, 0.001);
    EXPECT_TRUE(sAgreement.Holds() || fReference >= 50.0);
    if (sCase.bLinear) {
        EXPECT_GE(fReference, 50.0);
    }
    if (HasFailure())
        WritePicture(std::string("golden processor ") + sCase.pName,
                     SideBySide(SideBySide(sPicture, sGolden), DifferenceImage(sPicture, sGolden)));
}

INSTANTIATE_TEST_SUITE_P(Views, Golden, testing::ValuesIn(GOLDEN_CASES), [](const auto& oInfo) {
    std::string strName = oInfo.param.pName;
    std::replace(strName.begin(), strName.end(), '-', '_');
    return strName;
});
