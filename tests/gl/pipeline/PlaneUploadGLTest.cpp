// Colour planes that a driver takes faster as RGBA: which calls they become, and that no picture changes.
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

#include <GLES2/gl2ext.h>
#include <string>

namespace
{

/// True on the drivers that the library widens frames for.
bool IsRGBAFaster()
{
    const auto* const pRenderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return pRenderer != nullptr && std::string(pRenderer).starts_with("llvmpipe");
}

struct SLayout
{
    const char* pName;
    int nFormat;
    int nPixelBytes;
    int nStatedUpload;
};

const SLayout LAYOUTS[] = {
    {"RGB", IMAGE_FORMAT_RGB24, 3, GL_RGB},
    {"BGR", IMAGE_FORMAT_BGR24, 3, 0x80E0},
    {"BGRA", IMAGE_FORMAT_BGRA32, 4, GL_BGRA_EXT},
};

// Beyond 256 x 256 pixels, and a width that no group of pixels divides.
const int WIDTH = 301;
const int HEIGHT = 280;

/// The picture that a frame of this layout becomes, after several frames.
STestImage Drawn(CTestDewarper& oDewarper, CTestFrame& oFrame)
{
    oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
    oDewarper.SetViewType(VIEW_VCAM);
    oDewarper.SetLensType(LENS_DSL419);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    return oDewarper.Picture();
}

/// Another picture, with red and blue far apart.
STestImage BluePicture()
{
    STestImage sImage(WIDTH, HEIGHT);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x)
            sImage.Set(x, y, 60 * y / HEIGHT, 128, 255 - 90 * x / WIDTH);
    return sImage;
}

} // namespace

class PlaneUpload : public testing::TestWithParam<SLayout>
{
protected:
    void SetUp() override { ASSERT_TRUE(oDewarper.Started()); }

    CTestDewarper oDewarper{160, 90};
};

TEST_P(PlaneUpload, LargeFramesOfEveryLayoutLookLikeTheRGBAFrame)
{
    const STestImage aPictures[] = {AsymmetricPicture(WIDTH, HEIGHT), BluePicture()};
    STestImage aWanted[2];
    for (int i = 0; i < 2; ++i) {
        CTestFrame oStated(aPictures[i], IMAGE_FORMAT_RGBA32);
        aWanted[i] = Drawn(oDewarper, oStated);
    }
    EXPECT_GT(CompareImages(aWanted[0], aWanted[1]).fMean, 20.0);
    // Tight rows, rows of whole pixels, and rows that GL cannot count in pixels.
    for (const int nPadding : {0, 12, 4}) {
        CTestFrame oSmall(AsymmetricPicture(32, 16), IMAGE_FORMAT_GRAY8);
        EXPECT_TRUE(oDewarper.DrawFrame(oSmall)); // what follows starts with a new texture
        for (int i = 0; i < 2; ++i) {
            CTestFrame oFrame(aPictures[i], GetParam().nFormat, WIDTH * GetParam().nPixelBytes + nPadding);
            EXPECT_EQ(CompareImages(aWanted[i], Drawn(oDewarper, oFrame)).nMax, 0) << nPadding;
        }
    }
    CGLRecorder::Get().TakeErrors(); // the try of a first frame
}

TEST_P(PlaneUpload, TheStatedUploadComesFirstAndSteadyFramesUploadOnce)
{
    CTestFrame oFrame(AsymmetricPicture(WIDTH, HEIGHT), GetParam().nFormat);
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const bool bRefused = !oRecorder.TakeErrors().empty();
    ASSERT_FALSE(oRecorder.Named("glTexSubImage2D").empty());
    EXPECT_EQ(oRecorder.Named("glTexSubImage2D")[0].Int(6), GetParam().nStatedUpload);

    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const std::vector<SGLCall> vUploads = oRecorder.Named("glTexSubImage2D");
    ASSERT_EQ(vUploads.size(), 1u);
    int nWanted = GetParam().nStatedUpload;
    if (bRefused)
        nWanted = GetParam().nPixelBytes == 3 ? GL_RGB : GL_RGBA;
    if (IsRGBAFaster())
        nWanted = GL_RGBA;
    EXPECT_EQ(vUploads[0].Int(6), nWanted);
    EXPECT_EQ(oRecorder.Count("glTexImage2D") + oRecorder.CountPrefix("glGen"), 0);
    EXPECT_EQ(oRecorder.Count("glTexParameteri"), 2) << "only the filter is set";
    EXPECT_NO_GL_ERROR();
}

TEST_P(PlaneUpload, SteadyFramesTakeNothingFromTheHeap)
{
    CTestFrame oFrame(AsymmetricPicture(WIDTH, HEIGHT), GetParam().nFormat);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CGLRecorder::Get().Stop();
    CHeapCounter oHeap;
    const bool bTaken = oDewarper.SetTexture(oFrame.Image(), false, nullptr, 1);
    const bool bDrawn = oDewarper.DrawGLScene(false);
    EXPECT_EQ(oHeap.Count(), 0);
    EXPECT_TRUE(bTaken && bDrawn);
    CGLRecorder::Get().TakeErrors(); // the try of the first frame
}

TEST_P(PlaneUpload, SmallFramesGoUpAsTheyAre)
{
    CTestFrame oFrame(AsymmetricPicture(255, 256), GetParam().nFormat);
    CGLRecorder& oRecorder = CGLRecorder::Get();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const bool bRefused = !oRecorder.TakeErrors().empty();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_EQ(oRecorder.Count("glTexSubImage2D"), 1);
    const int nInstead = GetParam().nPixelBytes == 3 ? GL_RGB : GL_RGBA;
    EXPECT_EQ(oRecorder.Named("glTexSubImage2D")[0].Int(6), bRefused ? nInstead : GetParam().nStatedUpload);
}

TEST_P(PlaneUpload, ARestartOfGLBringsThePictureBack)
{
    CTestFrame oFrame(AsymmetricPicture(WIDTH, HEIGHT), GetParam().nFormat);
    const STestImage sBefore = Drawn(oDewarper, oFrame);
    ASSERT_TRUE(oDewarper.StopGL() && oDewarper.StartGL());
    EXPECT_EQ(CompareImages(sBefore, Drawn(oDewarper, oFrame)).nMax, 0);
    CGLRecorder::Get().TakeErrors(); // the try of the first frame
}

INSTANTIATE_TEST_SUITE_P(Layouts, PlaneUpload, testing::ValuesIn(LAYOUTS),
                         [](const auto& oInfo) { return std::string(oInfo.param.pName); });
