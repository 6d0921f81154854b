// Translucent masks over pictures of (Y, U, V): what is grey stays grey, what has a hue keeps it.
#include "TestVela.h"

#include "dewarp/records/YUVColour.h"

#include <GLES3/gl31.h>

namespace
{

const int SIZE = 64;
const int NEUTRAL = 128; ///< U and V of grey

/// A dewarper that shows the whole frame, one pixel for one, and a frame of one grey.
class VelaMasks : public testing::Test
{
protected:
    VelaMasks()
    {
        FillGrey(150);
        m_oDewarper.SetViewType(VIEW_FISHEYE);
    }

    void FillGrey(int nGrey)
    {
        STestImage sPicture(SIZE, SIZE);
        for (int y = 0; y < SIZE; ++y)
            for (int x = 0; x < SIZE; ++x)
                sPicture.Set(x, y, nGrey, nGrey, nGrey);
        CTestFrame oFrame(sPicture, IMAGE_FORMAT_NV12);
        m_oInput.Fill(oFrame);
    }

    STestImage Draw()
    {
        EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        return m_oOutput.Texels();
    }

    /// A mask over the middle of the frame.
    static SGPolygon Mask(unsigned int nColor) { return {{{16, 16}, {48, 16}, {48, 48}, {16, 48}}, nColor}; }

    /// No texel of the picture has a hue.
    static void ExpectNeutral(const STestImage& sPicture)
    {
        int nFarthest = 0;
        for (int y = 0; y < SIZE; ++y)
            for (int x = 0; x < SIZE; ++x)
                for (int k = 1; k < 3; ++k)
                    nFarthest = std::max(nFarthest, std::abs(sPicture.At(x, y)[k] - NEUTRAL));
        EXPECT_LE(nFarthest, 1);
    }

    CTestBuffer m_oInput{SIZE, SIZE};
    CTestBuffer m_oOutput{SIZE, SIZE, HAL_PIXEL_FORMAT_RGBA_8888};
    CTestVela m_oDewarper{SIZE, SIZE};
};

/// What a mask's colour leaves of a channel: its alpha counts when it is painted and when it is laid over.
double Shown(double fPicture, double fCleared, double fColour, double fAlpha)
{
    const double fPainted = fCleared * (1.0 - fAlpha) + fColour * fAlpha;
    return fPicture * (1.0 - fAlpha) + fPainted * fAlpha;
}

/// The texel in the texture's corner, where no string is.
std::array<unsigned char, 4> CornerOfTexture(unsigned int nTexture)
{
    GLuint nFrameBuffer = 0;
    glGenFramebuffers(1, &nFrameBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, nFrameBuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nTexture, 0);
    std::array<unsigned char, 4> anTexel = {9, 9, 9, 9};
    glReadPixels(SIZE - 1, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, anTexel.data());
    glDeleteFramebuffers(1, &nFrameBuffer);
    return anTexel;
}

SGPUString SmallText()
{
    SGPUString sString;
    sString.strText = "A";
    sString.nX = 4;
    sString.nY = 20;
    sString.nHeight = 16;
    sString.nColor = 0xEB8080FF;
    return sString;
}

} // namespace

TEST_F(VelaMasks, AGreyMaskOfAnyAlphaOverAGreyPictureStaysGrey)
{
    for (const int nPicture : {20, 128, 240}) {
        FillGrey(nPicture);
        for (const int nMask : {0, 90, 255}) {
            for (const int nAlpha : {1, 64, 128, 200, 255}) {
                SCOPED_TRACE(testing::Message()
                             << "luma " << nMask << " and alpha " << nAlpha << " over " << nPicture);
                m_oDewarper.SetMaskPolygons({Mask(static_cast<unsigned int>(nMask) << 24 | 0x808000U |
                                                  static_cast<unsigned int>(nAlpha))});
                const STestImage sPicture = Draw();
                ExpectNeutral(sPicture);
                EXPECT_NEAR(sPicture.At(32, 32)[0], Shown(nPicture, 0.0, nMask, nAlpha / 255.0), 1.0);
                EXPECT_EQ(sPicture.At(4, 4)[0], nPicture);
            }
        }
    }
}

TEST_F(VelaMasks, GreyMasksThatOverlapStayGrey)
{
    SGPolygon sOther = Mask(0x30808050);
    for (SGPoint& rPoint : sOther.vPoints)
        rPoint.x += 10;
    m_oDewarper.SetMaskPolygons({Mask(0xC0808060), sOther, Mask(0x7F808020)});
    const STestImage sPicture = Draw();
    ExpectNeutral(sPicture);
    EXPECT_NE(sPicture.At(20, 32)[0], sPicture.At(32, 32)[0]) << "they lie over each other";
}

TEST_F(VelaMasks, AGreyMaskStaysGreyInAPackedOutput)
{
    CTestBuffer oPacked(SIZE, SIZE);
    m_oDewarper.SetMaskPolygons({Mask(0x7F808080)});
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, oPacked));
    ExpectNeutral(oPacked.Texels());
}

TEST_F(VelaMasks, AColouredMaskIsPalerThanItsColourAndNoGreener)
{
    for (const unsigned int nColour : {0xE02020FFU, 0x2030E0FFU, 0xD020D0FFU, 0x20C040FFU, 0xE0D020FFU}) {
        const unsigned int nYUV = ConvertColourToYUV(nColour, YUV_SPACE_BT601, YUV_RANGE_FULL);
        for (const int nAlpha : {64, 128, 200}) {
            SCOPED_TRACE(testing::Message() << std::hex << nYUV << ", alpha " << nAlpha);
            m_oDewarper.SetMaskPolygons({Mask((nYUV & 0xFFFFFF00U) | static_cast<unsigned int>(nAlpha))});
            const STestImage sPicture = Draw();
            const unsigned char* const pShown = sPicture.At(32, 32);
            const double fAlpha = nAlpha / 255.0;
            EXPECT_NEAR(pShown[0], Shown(150.0, 0.0, nYUV >> 24, fAlpha), 1.5);
            EXPECT_NEAR(pShown[1], Shown(NEUTRAL, 127.5, nYUV >> 16 & 255, fAlpha), 1.5);
            EXPECT_NEAR(pShown[2], Shown(NEUTRAL, 127.5, nYUV >> 8 & 255, fAlpha), 1.5);
        }
    }
}

TEST_F(VelaMasks, TextIsPaintedOnNothing)
{
    const STestImage sPlain = Draw();
    m_oDewarper.SetStrings({SmallText()});
    const STestImage sWritten = Draw();
    EXPECT_GT(CompareImages(sPlain, sWritten).nMax, 50) << "the text is there";
    for (const unsigned int nTexture : {m_oDewarper.nStringTextureA, m_oDewarper.nStringTextureB}) {
        ASSERT_NE(nTexture, 0u);
        EXPECT_EQ(CornerOfTexture(nTexture), (std::array<unsigned char, 4>{0, 0, 0, 0}));
    }
    for (const int x : {2, SIZE - 2})
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(sWritten.At(x, 50)[k], sPlain.At(x, 50)[k], 1);
    EXPECT_NO_GL_ERROR();
}

TEST_F(VelaMasks, MasksAreGreyAndTheRestIsBlackAfterTextToo)
{
    // A frame wider than high leaves bars in the square target.
    CTestBuffer oWide(SIZE, SIZE / 2);
    CTestFrame oFrame(STestImage(SIZE, SIZE / 2), IMAGE_FORMAT_NV12);
    oWide.Fill(oFrame);
    m_oDewarper.SetStrings({SmallText()});
    Draw();
    m_oDewarper.SetMaskPolygons({Mask(0x7F808080)});
    ExpectNeutral(Draw());
    ASSERT_TRUE(m_oDewarper.DrawFrame(oWide, m_oOutput));
    const STestImage sBars = m_oOutput.Texels();
    EXPECT_EQ(sBars.At(SIZE - 2, 1)[0], 0);
    EXPECT_NEAR(sBars.At(SIZE - 2, 1)[1], NEUTRAL, 1);
    EXPECT_NEAR(sBars.At(SIZE - 2, 1)[2], NEUTRAL, 1);
}
