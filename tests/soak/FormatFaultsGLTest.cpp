// Driver memory that lacks while a frame of any format is brought into textures: the frame is refused with a
// line, and the next one is right.

#include "tests/soak/FaultSweep.h"
#include "tests/soak/ReliabilityScene.h"

#include <ostream>

namespace
{

const int TARGET_WIDTH = 48;
const int TARGET_HEIGHT = 36;
const int FRAME_SIZE = 256; ///< large enough for the layouts that drivers like better

struct SFormatCase
{
    const char* pName;
    int nFormat;
    bool bQuantisers = false;
    bool bTypes = false;
};

std::ostream& operator<<(std::ostream& rStream, const SFormatCase& rCase)
{
    return rStream << rCase.pName;
}

const SFormatCase FORMATS[] = {
    {"RGB24", IMAGE_FORMAT_RGB24},
    {"BGR24", IMAGE_FORMAT_BGR24},
    {"NV12", IMAGE_FORMAT_NV12},
    {"YUV420P", IMAGE_FORMAT_YUV420P},
    {"YUV420PWithQuantisers", IMAGE_FORMAT_YUV420P, true, true},
    {"YUV420PWithQuantisersOnly", IMAGE_FORMAT_YUV420P, true, false},
    {"RGBA32", IMAGE_FORMAT_RGBA32},
    {"BGRA32", IMAGE_FORMAT_BGRA32},
    {"GRAY8", IMAGE_FORMAT_GRAY8},
    {"NV21", IMAGE_FORMAT_NV21},
};

// Calls that make an input texture or fill it for the first time.
const SFaultKind UPLOAD_FAULTS[] = {
    {"glGenTextures", "glGenTextures", GL_OUT_OF_MEMORY},
    {"glTexImage2D", "glTexImage2D", GL_OUT_OF_MEMORY},
    {"glTexSubImage2D", "glTexSubImage2D", GL_OUT_OF_MEMORY},
};

class FormatFault : public testing::TestWithParam<SFormatCase>
{
protected:
    FormatFault() : m_oFrame(AsymmetricPicture(FRAME_SIZE, FRAME_SIZE), GetParam().nFormat)
    {
        if (!GetParam().bQuantisers)
            return;
        m_sInfo.nWidth = m_sInfo.nHeight = m_sInfo.nStride = FRAME_SIZE / 16;
        const std::size_t nBlocks = static_cast<std::size_t>(m_sInfo.nHeight) * FRAME_SIZE / 16;
        m_sInfo.pQP = new unsigned char[nBlocks];
        std::fill_n(m_sInfo.pQP, nBlocks, static_cast<unsigned char>(30));
        if (!GetParam().bTypes)
            return;
        m_sInfo.pMBType = new unsigned char[nBlocks];
        std::fill_n(m_sInfo.pMBType, nBlocks, static_cast<unsigned char>(255));
    }

    bool Draw(CTestDewarper& rDewarper)
    {
        return rDewarper.SetTexture(m_oFrame.Image(), false, GetParam().bQuantisers ? &m_sInfo : nullptr,
                                    0) &&
               rDewarper.DrawGLScene(false);
    }

    static void Prepare(CTestDewarper& rDewarper, bool bEverything)
    {
        ASSERT_TRUE(rDewarper.Started());
        rDewarper.SetViewType(VIEW_FISHEYE);
        if (bEverything)
            SwitchEverythingOn(rDewarper, TARGET_WIDTH, TARGET_HEIGHT);
    }

    void Sweep(const SFaultKind& rKind, bool bEverything)
    {
        CTestDewarper oGolden(TARGET_WIDTH, TARGET_HEIGHT);
        Prepare(oGolden, bEverything);
        ASSERT_TRUE(Draw(oGolden));
        const STestImage sGolden = oGolden.Picture();
        oGolden.StopGL();
        CGLRecorder::Get().TakeErrors();
        int nSkip = 0;
        for (bool bReached = true; bReached; ++nSkip) {
            ASSERT_LT(nSkip, 100);
            SCOPED_TRACE(std::string(rKind.pInjection) + ", call " + std::to_string(nSkip));
            CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
            Prepare(oDewarper, bEverything);
            CLogCapture oLog;
            InjectFault(rKind, nSkip);
            const bool bDrawn = Draw(oDewarper);
            bReached = EndFault(rKind, nSkip);
            const bool bSame = bDrawn && oDewarper.Picture().vPixels == sGolden.vPixels;
            EXPECT_LE(oLog.Lines().size(), static_cast<std::size_t>(rKind.nTimes)) << oLog.Text();
            EXPECT_TRUE(bSame || !oLog.Lines().empty());
            if (rKind.nError != 0) {
                EXPECT_TRUE(!bDrawn || bSame) << "memory that lacks fails the frame";
            }
            CGLRecorder::Get().TakeErrors();
            oLog.Clear();
            for (int i = 0; i < 2; ++i) {
                EXPECT_TRUE(Draw(oDewarper));
                EXPECT_EQ(oDewarper.Picture().vPixels, sGolden.vPixels) << "frame " << i << " after it";
            }
            EXPECT_EQ(oLog.Text(), "");
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
            // Whether the driver takes blue first is found out by trying.
            if (GetParam().nFormat == IMAGE_FORMAT_BGR24 || GetParam().nFormat == IMAGE_FORMAT_BGRA32)
                CGLRecorder::Get().TakeErrors();
            EXPECT_NO_GL_ERROR();
        }
        EXPECT_GT(nSkip, 1) << "one place at least";
    }

    CTestFrame m_oFrame;
    SQPInfo m_sInfo;
};

} // namespace

TEST_P(FormatFault, EveryUploadThatFailsIsToldAndTheNextFrameIsRight)
{
    for (const SFaultKind& rKind : UPLOAD_FAULTS)
        Sweep(rKind, false);
}

TEST_P(FormatFault, EveryFaultWithEverythingSwitchedOnIsToldAndTheNextFrameIsRight)
{
    if (!IsLongRun())
        GTEST_SKIP() << "in long runs only";
    for (const SFaultKind& rKind : FRAME_FAULTS)
        Sweep(rKind, true);
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatFault, testing::ValuesIn(FORMATS),
                         [](const auto& rInfo) { return std::string(rInfo.param.pName); });
