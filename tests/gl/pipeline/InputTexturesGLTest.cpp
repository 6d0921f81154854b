// Input planes: unpack state, which planes go up, and what is refused.
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>
#include <limits>

#include <GLES2/gl2ext.h>

/// Row length and alignment in force at each update of a texture, in order.
struct SUpload
{
    int nWidth;
    int nHeight;
    int nRowLength;
    int nAlignment;
    int nFormat;
};

static std::vector<SUpload> UploadsOfLastFrame()
{
    std::vector<SUpload> vUploads;
    int nRowLength = 0;
    int nAlignment = 4;
    for (const SGLCall& sCall : CGLRecorder::Get().Calls()) {
        const std::string strName = sCall.pName;
        if (strName == "glPixelStorei" && sCall.Int(0) == GL_UNPACK_ROW_LENGTH)
            nRowLength = sCall.Int(1);
        if (strName == "glPixelStorei" && sCall.Int(0) == GL_UNPACK_ALIGNMENT)
            nAlignment = sCall.Int(1);
        if (strName == "glTexSubImage2D")
            vUploads.push_back({sCall.Int(4), sCall.Int(5), nRowLength, nAlignment, sCall.Int(6)});
    }
    return vUploads;
}

class InputTextures : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(VIEW_FISHEYE);
        CTestFrame oFirst(AsymmetricPicture(8, 8), IMAGE_FORMAT_GRAY8);
        ASSERT_TRUE(oDewarper.DrawFrame(oFirst)); // the target has a texture of its own
        CGLRecorder::Get().Start();
    }
    std::vector<SUpload> Upload(CTestFrame& oFrame)
    {
        CGLRecorder::Get().Start();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        return UploadsOfLastFrame();
    }

    CTestDewarper oDewarper{64, 64};
};

TEST_F(InputTextures, EveryPlaneGoesUpWithTheAlignmentOfItsOwnRows)
{
    struct SRow
    {
        int nFormat;
        int nWidth;
        int nStride;
        std::vector<SUpload> vWanted;
    };
    const SRow aRows[] = {
        {IMAGE_FORMAT_GRAY8, 32, 37, {{32, 16, 37, 1, GL_LUMINANCE}}},
        {IMAGE_FORMAT_GRAY8, 32, 36, {{32, 16, 36, 4, GL_LUMINANCE}}},
        {IMAGE_FORMAT_GRAY8, 32, 34, {{32, 16, 34, 2, GL_LUMINANCE}}},
        {IMAGE_FORMAT_GRAY8, 32, 40, {{32, 16, 40, 8, GL_LUMINANCE}}},
        {IMAGE_FORMAT_RGBA32, 32, 132, {{32, 16, 33, 4, GL_RGBA}}},
        {IMAGE_FORMAT_RGB24, 32, 99, {{32, 16, 33, 1, GL_RGB}}},
        // Chroma rows are half as long and have an alignment of their own.
        {IMAGE_FORMAT_YUV420P,
         32,
         40,
         {{32, 16, 40, 8, GL_LUMINANCE}, {16, 8, 20, 4, GL_LUMINANCE}, {16, 8, 20, 4, GL_LUMINANCE}}},
        {IMAGE_FORMAT_YUV420P,
         32,
         34,
         {{32, 16, 34, 2, GL_LUMINANCE}, {16, 8, 17, 1, GL_LUMINANCE}, {16, 8, 17, 1, GL_LUMINANCE}}},
        {IMAGE_FORMAT_NV12, 32, 40, {{32, 16, 40, 8, GL_LUMINANCE}, {16, 8, 20, 8, GL_LUMINANCE_ALPHA}}},
        {IMAGE_FORMAT_NV21, 32, 36, {{32, 16, 36, 4, GL_LUMINANCE}, {16, 8, 18, 4, GL_LUMINANCE_ALPHA}}},
    };
    for (const SRow& sRow : aRows) {
        SCOPED_TRACE("format " + std::to_string(sRow.nFormat) + " stride " + std::to_string(sRow.nStride));
        CTestFrame oFrame(AsymmetricPicture(sRow.nWidth, 16), sRow.nFormat, sRow.nStride);
        const std::vector<SUpload> vUploads = Upload(oFrame);
        ASSERT_EQ(vUploads.size(), sRow.vWanted.size());
        for (std::size_t i = 0; i < vUploads.size(); ++i) {
            EXPECT_EQ(vUploads[i].nWidth, sRow.vWanted[i].nWidth);
            EXPECT_EQ(vUploads[i].nHeight, sRow.vWanted[i].nHeight);
            EXPECT_EQ(vUploads[i].nRowLength, sRow.vWanted[i].nRowLength);
            EXPECT_EQ(vUploads[i].nAlignment, sRow.vWanted[i].nAlignment);
            EXPECT_EQ(vUploads[i].nFormat, sRow.vWanted[i].nFormat);
        }
    }
}

TEST_F(InputTextures, TexturesHaveTheFormatsAndUnitsThatTheTextsSample)
{
    struct SRow
    {
        int nFormat;
        std::vector<int> vFormats; ///< of the textures on units 0, 1, 2
    };
    const SRow aRows[] = {
        {IMAGE_FORMAT_RGB24, {GL_RGB}},
        {IMAGE_FORMAT_RGBA32, {GL_RGBA}},
        {IMAGE_FORMAT_GRAY8, {GL_LUMINANCE}},
        {IMAGE_FORMAT_NV12, {GL_LUMINANCE, GL_LUMINANCE_ALPHA}},
        {IMAGE_FORMAT_NV21, {GL_LUMINANCE, GL_LUMINANCE_ALPHA}},
        {IMAGE_FORMAT_YUV420P, {GL_LUMINANCE, GL_LUMINANCE, GL_LUMINANCE}},
    };
    for (const SRow& sRow : aRows) {
        SCOPED_TRACE("format " + std::to_string(sRow.nFormat));
        CTestFrame oFrame(AsymmetricPicture(32, 16), sRow.nFormat);
        Upload(oFrame);
        std::vector<int> vFound;
        int nUnit = -1;
        for (const SGLCall& sCall : CGLRecorder::Get().Calls()) {
            const std::string strName = sCall.pName;
            if (strName == "glActiveTexture")
                nUnit = sCall.Int(0) - GL_TEXTURE0;
            if (strName == "glTexImage2D") {
                EXPECT_EQ(nUnit, static_cast<int>(vFound.size()));
                EXPECT_EQ(sCall.Int(2), sCall.Int(6));
                vFound.push_back(sCall.Int(6));
            }
        }
        EXPECT_EQ(vFound, sRow.vFormats);
    }
}

TEST_F(InputTextures, OnlyTheLastOfTwoFramesGoesUp)
{
    CTestFrame oFirst(AsymmetricPicture(32, 16), IMAGE_FORMAT_GRAY8);
    CTestFrame oSecond(AsymmetricPicture(32, 16), IMAGE_FORMAT_GRAY8);
    Upload(oFirst);
    ASSERT_TRUE(oDewarper.SetTexture(oFirst.Image(), false, nullptr, 1));
    ASSERT_TRUE(oDewarper.SetTexture(oSecond.Image(), false, nullptr, 2));
    CGLRecorder::Get().Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    const std::vector<SGLCall> vUploads = CGLRecorder::Get().Named("glTexSubImage2D");
    ASSERT_EQ(vUploads.size(), 1u);
    EXPECT_EQ(vUploads[0].aArgs[8],
              static_cast<double>(reinterpret_cast<std::uintptr_t>(oSecond.Image()->pPlane0)));
}

TEST_F(InputTextures, AFrameWithoutQuantiserDataKeepsThePreviousOnes)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_YUV420P);
    SQPInfo sQP;
    sQP.nWidth = 2;
    sQP.nStride = 3;
    sQP.nHeight = 2;
    sQP.pQP = new unsigned char[6]{1, 2, 0, 3, 4, 0};
    sQP.pMBType = new unsigned char[6]{255, 0, 0, 0, 255, 0};
    sQP.pMotion = new unsigned int[6]();
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, &sQP, 0));
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    sQP.pQP[0] = 77; // the copy does not follow
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_NE(oDewarper.pQPInfo->pQP, nullptr);
    EXPECT_EQ(oDewarper.pQPInfo->pQP[0], 1);
    EXPECT_EQ(oDewarper.pQPInfo->pMBType[4], 255);
    const std::vector<SUpload> vUploads = UploadsOfLastFrame();
    ASSERT_GE(vUploads.size(), 5u);
    EXPECT_EQ(vUploads.back().nRowLength, 3);
    EXPECT_EQ(vUploads.back().nAlignment, 1);
    EXPECT_EQ(vUploads.back().nWidth, 2);
    EXPECT_NO_GL_ERROR();
}

TEST_F(InputTextures, ABlueFirstUploadIsTriedOnceAndThenExchangedWhenSampled)
{
    CTestFrame oFrame(AsymmetricPicture(32, 16), IMAGE_FORMAT_BGR24);
    CGLRecorder& oRecorder = CGLRecorder::Get();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const std::vector<SGLErrorNote> vErrors = oRecorder.TakeErrors();
    for (const SGLErrorNote& sError : vErrors)
        EXPECT_EQ(sError.strCall, "glTexSubImage2D") << "only the try may be refused";
    EXPECT_LE(vErrors.size(), 1u);
    std::vector<SUpload> vUploads = UploadsOfLastFrame();
    ASSERT_FALSE(vUploads.empty());
    EXPECT_EQ(vUploads[0].nFormat, 0x80E0) << "the stated format first";
    const int nAfterwards = vErrors.empty() ? 0x80E0 : GL_RGB;
    vUploads = Upload(oFrame);
    ASSERT_EQ(vUploads.size(), 1u);
    EXPECT_EQ(vUploads[0].nFormat, nAfterwards);
    EXPECT_NO_GL_ERROR();
}

TEST_F(InputTextures, ABGRAUploadIsTriedOnceAndThenExchangedWhenSampled)
{
    CTestFrame oFrame(AsymmetricPicture(32, 16), IMAGE_FORMAT_BGRA32);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const bool bRefused = !CGLRecorder::Get().TakeErrors().empty();
    std::vector<SUpload> vUploads = UploadsOfLastFrame();
    ASSERT_FALSE(vUploads.empty());
    EXPECT_EQ(vUploads[0].nFormat, GL_BGRA_EXT) << "the stated format first";
    vUploads = Upload(oFrame);
    ASSERT_EQ(vUploads.size(), 1u);
    EXPECT_EQ(vUploads[0].nFormat, bRefused ? GL_RGBA : GL_BGRA_EXT);
    EXPECT_NO_GL_ERROR();
}

TEST_F(InputTextures, TexturesBeyondTheSixteenUnitsAreNotMade)
{
    CTestFrame oFrame(AsymmetricPicture(32, 16), IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    unsigned int nTexture = 0;
    oDewarper.GenerateTexture(nTexture, GL_TEXTURE0 + 16, GL_RGBA, 4, 4, 4, nullptr);
    EXPECT_EQ(nTexture, 0u);
    oDewarper.GenerateTexture(nTexture, GL_TEXTURE15, GL_RGBA, 6, 5, 6, nullptr);
    EXPECT_NE(nTexture, 0u);
    EXPECT_EQ(oDewarper.anTextureUnitSize[15][0], 6);
    EXPECT_EQ(oDewarper.anTextureUnitSize[15][1], 5);
    glDeleteTextures(1, &nTexture);
    EXPECT_NO_GL_ERROR();
}

TEST_F(InputTextures, FormatsWithoutATextureDrawNothing)
{
    CTestFrame oGood(AsymmetricPicture(32, 16), IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oGood));
    for (const int nFormat : {1, 2, 3, 11, -1}) {
        SCOPED_TRACE("format " + std::to_string(nFormat));
        CTestFrame oFrame(AsymmetricPicture(32, 16), IMAGE_FORMAT_RGB24);
        oFrame.Image()->nFormat = nFormat;
        // The base class records what it is given.
        EXPECT_TRUE(oDewarper.CCustomGPUDewarper::SetTexture(oFrame.Image(), false, nullptr, 0));
        CGLRecorder::Get().Start();
        EXPECT_FALSE(oDewarper.DrawGLScene(false));
        EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 0);
        CGLRecorder::Get().TakeErrors(); // an empty text does not compile
        EXPECT_TRUE(oDewarper.DrawFrame(oGood));
    }
}

TEST_F(InputTextures, ANullPlaneIsNeverRead)
{
    CTestFrame oGood(AsymmetricPicture(32, 16), IMAGE_FORMAT_YUV420P);
    ASSERT_TRUE(oDewarper.DrawFrame(oGood));
    for (int i = 0; i < 3; ++i) {
        CTestFrame oFrame(AsymmetricPicture(32, 16), IMAGE_FORMAT_YUV420P);
        unsigned char** const appPlanes[] = {&oFrame.Image()->pPlane0, &oFrame.Image()->pPlane1,
                                             &oFrame.Image()->pPlane2};
        *appPlanes[i] = nullptr;
        EXPECT_TRUE(oDewarper.CCustomGPUDewarper::SetTexture(oFrame.Image(), false, nullptr, 0));
        CGLRecorder::Get().Start();
        EXPECT_FALSE(oDewarper.DrawGLScene(false));
        EXPECT_EQ(CGLRecorder::Get().Count("glTexSubImage2D"), 0);
        EXPECT_TRUE(oDewarper.DrawFrame(oGood));
        EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "");
    }
}

TEST_F(InputTextures, RowsOfANegativeLengthAreNeverRead)
{
    for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGB24}) {
        for (const int nStride : {-64, -1, std::numeric_limits<int>::min()}) {
            CTestFrame oFrame(AsymmetricPicture(16, 16), nFormat);
            oFrame.Image()->nStride = nStride;
            ASSERT_TRUE(oDewarper.CCustomGPUDewarper::SetTexture(oFrame.Image(), false, nullptr, 0));
            EXPECT_FALSE(oDewarper.DrawGLScene(false)) << nFormat;
            EXPECT_NO_GL_ERROR();
        }
    }
}

TEST_F(InputTextures, ANullImageIsRefusedByTheBaseToo)
{
    CCustomGPUDewarper oPlain;
    EXPECT_FALSE(oPlain.SetTexture(nullptr, false, nullptr, 5));
    EXPECT_EQ(oPlain.nLastSetTimestamp, 0u);
}
