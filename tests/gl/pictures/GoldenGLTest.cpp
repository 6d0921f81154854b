// Golden pictures: one small picture of the room for every view and mount, kept in tests/golden/pictures. On
// the driver and processor that they were drawn with every byte must stay; others may round differently. The
// kept pictures are themselves held against exact renderings, so that a wrong one cannot be kept.
//
// LUMOR_WRITE_GOLDEN=1 in the environment draws them anew, and notes the driver beside them.
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

struct SGoldenCase
{
    const char* pName; ///< of the file too
    EViewType eView;
    EMountType eMount;
    double fPan;
    double fTilt;
    double fZoom;
    int nLens;
    int nFormat;
    EYUVSpace eSpace;
    bool bLimited;
    bool bLinear;
    double fMountTilt;
    double fMinRemap; ///< dB against the same frame, sampled without a mesh
    double fMinRoom;  ///< dB against the room, drawn without frame, lens and mesh
};

static const EMountType C = MOUNT_CEILING;
static const EMountType F = MOUNT_FLOOR;
static const EMountType W = MOUNT_WALL;
static const int RGB = IMAGE_FORMAT_RGB24;
static const int NV12 = IMAGE_FORMAT_NV12;
static const int NV21 = IMAGE_FORMAT_NV21;
static const int I420 = IMAGE_FORMAT_YUV420P;
static const int RGBA = IMAGE_FORMAT_RGBA32;
static const int BGRA = IMAGE_FORMAT_BGRA32;
static const EYUVSpace S601 = YUV_SPACE_BT601;
static const EYUVSpace S709 = YUV_SPACE_BT709;
static const EYUVSpace S2020 = YUV_SPACE_BT2020;

static const SGoldenCase CASES[] = {
    {"fisheye-ceiling", VIEW_FISHEYE, C, 0, 0, 180, 419, NV12, S601, false, true, 0, 35, 28},
    {"fisheye-floor", VIEW_FISHEYE, F, 10, -20, 120, 239, RGB, S601, false, true, 0, 50, 30},
    {"fisheye-wall", VIEW_FISHEYE, W, 0, 0, 180, 215, RGB, S601, false, false, 0, 50, 24},
    {"circular-ceiling", VIEW_FISHEYE_CIRCULAR, C, 0, 0, 180, 419, I420, S709, true, true, 0, 35, 28},
    {"circular-floor", VIEW_FISHEYE_CIRCULAR, F, 0, 0, 180, 418, BGRA, S601, false, true, 0, 50, 26},
    {"circular-wall", VIEW_FISHEYE_CIRCULAR, W, -15, 15, 140, 0, NV21, S2020, false, true, 0, 32, 28},
    {"vcam-ceiling", VIEW_VCAM, C, 67, 55, 120, 419, NV12, S601, false, true, 0, 33, 22},
    {"vcam-ceiling-nearest", VIEW_VCAM, C, 200, 25, 180, 419, I420, S601, true, false, 0, 30, 22},
    {"vcam-floor", VIEW_VCAM, F, 67, 125, 120, 239, RGB, S601, false, true, 0, 50, 21},
    {"vcam-wall", VIEW_VCAM, W, 72, 98, 150, 418, RGBA, S601, false, true, 0, 50, 21},
    {"quad-ceiling", VIEW_VCAM_QUAD, C, 67, 55, 120, 419, NV12, S709, true, true, 0, 32, 24},
    {"quad-floor", VIEW_VCAM_QUAD, F, 67, 125, 120, 0, RGB, S601, false, true, 0, 50, 21},
    {"quad-wall", VIEW_VCAM_QUAD, W, 110, 80, 120, 215, RGB, S601, false, true, 0, 50, 20},
    {"panorama-ceiling", VIEW_PANORAMA_FULL, C, 33, 0, 180, 419, NV12, S601, false, true, 0, 38, 30},
    {"panorama-floor", VIEW_PANORAMA_FULL, F, 33, 0, 180, 0, I420, S601, false, true, 0, 36, 28},
    {"half-ceiling", VIEW_PANORAMA_HALF, C, -51, 0, 180, 419, RGB, S601, false, true, 0, 50, 33},
    {"half-floor", VIEW_PANORAMA_HALF, F, -51, 0, 180, 418, NV21, S709, false, true, 0, 32, 23},
    {"quarter-ceiling", VIEW_PANORAMA_QUARTER, C, 33, 0, 180, 419, NV12, S601, true, true, 0, 32, 28},
    {"quarter-floor", VIEW_PANORAMA_QUARTER, F, -51, 0, 180, 239, RGB, S601, false, true, 0, 36, 20},
    {"dual-ceiling", VIEW_PANORAMA_DUAL, C, 35, 11, 180, 419, NV12, S601, false, true, 0, 33, 28},
    {"dual-floor", VIEW_PANORAMA_DUAL, F, 35, 11, 180, 0, RGB, S601, false, true, 0, 50, 25},
    {"triple-ceiling", VIEW_PANORAMA_TRIPLE, C, 0, 0, 180, 419, I420, S2020, true, true, 0, 35, 27},
    {"triple-floor", VIEW_PANORAMA_TRIPLE, F, 35, 11, 180, 215, RGB, S601, false, true, 0, 39, 23},
    {"wall-panorama", VIEW_PANORAMA_FULL, W, 0, 12, 180, 419, NV12, S601, false, true, 0, 31, 28},
    {"wall-panorama-rolled", VIEW_PANORAMA_HALF, W, 17, 0, 180, 239, RGB, S601, false, true, 0, 40, 23},
    {"wall-panorama-inclined", VIEW_PANORAMA_QUARTER, W, 0, 12, 180, 0, NV12, S601, true, true, 20, 31, 27},
};

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

static SReferenceSetup SetupOf(const SGoldenCase& sCase)
{
    SReferenceSetup s;
    s.eView = sCase.eView;
    s.eMount = sCase.eMount;
    s.nLensType = sCase.nLens;
    // Lenses 215 and 239 sit on sensors that are wider than high.
    s.nImageWidth = sCase.nLens == 215 ? 268 : sCase.nLens == 239 ? 280 : 256;
    s.nImageHeight = sCase.nLens == 215 ? 242 : sCase.nLens == 239 ? 250 : 256;
    s.nTargetWidth = 128;
    s.nTargetHeight = 72;
    s.fPan = sCase.fPan;
    s.fTilt = sCase.fTilt;
    s.fZoom = sCase.fZoom;
    s.fMountTilt = sCase.fMountTilt;
    return s;
}

class Golden : public testing::TestWithParam<SGoldenCase>
{
};

TEST_P(Golden, PictureIsDrawnAgainAndIsTrue)
{
    const SGoldenCase& sCase = GetParam();
    const SReferenceSetup s = SetupOf(sCase);
    const std::string strFile = std::string(sCase.pName) + ".png";
    const STestImage sInput =
        RenderFisheye(RoomColour, s.nLensType, s.nImageWidth, s.nImageHeight, s.eMount, s.fMountTilt, 3);
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

INSTANTIATE_TEST_SUITE_P(Views, Golden, testing::ValuesIn(CASES), [](const auto& oInfo) {
    std::string strName = oInfo.param.pName;
    std::replace(strName.begin(), strName.end(), '-', '_');
    return strName;
});
