// Frames: formats, sizes, strides, macroblock information, colours, filter.
#include "tests/gl/session/DesktopSession.h"

#include <algorithm>

class InputSessions : public CSessionTest
{
};

static const int FORMATS[] = {IMAGE_FORMAT_RGB24,   IMAGE_FORMAT_BGR24,  IMAGE_FORMAT_NV12,
                              IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_BGRA32,
                              IMAGE_FORMAT_GRAY8,   IMAGE_FORMAT_NV21};

TEST_F(InputSessions, EveryFormatSpeaksToGLAsItDid)
{
    Play("formats", [](CSessionBook& rBook) {
        for (const int nFormat : FORMATS) {
            CTestFrame oFrame = SessionFrame(nFormat);
            // Rows that are padded, and rows of no even length.
            CTestFrame oPadded(AsymmetricPicture(48, 48), nFormat, oFrame.Stride() + 16);
            CTestFrame oOdd = SessionFrame(nFormat, 47, 37);
            CDesktopSession oSession(rBook, std::to_string(nFormat));
            oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
            oSession.Draw("first", oFrame);
            oSession.Draw("steady", oFrame);
            oSession.Draw("padded", oPadded);
            oSession.Draw("odd", oOdd);
            oSession.Draw("odd-steady", oOdd);
            oSession.ReadBack("read");
        }
    });
}

TEST_F(InputSessions, FormatsAndSizesThatChangeSpeakToGLAsTheyDid)
{
    Play("format-changes", [](CSessionBook& rBook) {
        {
            CDesktopSession oSession(rBook, "formats");
            oSession.Choose(VIEW_VCAM, MOUNT_CEILING);
            for (const int nFormat : {5, 6, 7, 5, 0, 4, 8, 9, 10, 6, 0}) {
                CTestFrame oFrame = SessionFrame(nFormat);
                oSession.Draw("format" + std::to_string(nFormat), oFrame);
                oSession.Draw("steady" + std::to_string(nFormat), oFrame);
            }
        }
        CDesktopSession oSizes(rBook, "sizes");
        oSizes.Choose(VIEW_PANORAMA_FULL, MOUNT_CEILING);
        for (const int nSize : {48, 64, 32, 48}) {
            CTestFrame oFrame = SessionFrame(IMAGE_FORMAT_YUV420P, nSize, nSize - 8);
            oSizes.Draw("size" + std::to_string(nSize), oFrame);
            oSizes.Draw("steady" + std::to_string(nSize), oFrame);
        }
    });
}

/// Values of a grid of macroblocks; bTypes: their types too.
static void FillQPInfo(SQPInfo& rInfo, int nWidth, int nHeight, int nStride, bool bTypes)
{
    const std::size_t nEntries = static_cast<std::size_t>(nStride) * static_cast<std::size_t>(nHeight);
    rInfo.pQP = new unsigned char[nEntries];
    std::fill_n(rInfo.pQP, nEntries, static_cast<unsigned char>(26));
    if (bTypes) {
        rInfo.pMBType = new unsigned char[nEntries];
        std::fill_n(rInfo.pMBType, nEntries, static_cast<unsigned char>(1));
    }
    rInfo.nWidth = nWidth;
    rInfo.nHeight = nHeight;
    rInfo.nStride = nStride;
}

TEST_F(InputSessions, MacroblockInformationSpeaksToGLAsItDid)
{
    Play("macroblocks", [](CSessionBook& rBook) {
        CTestFrame oFrame = SessionFrame(IMAGE_FORMAT_YUV420P);
        SQPInfo sSmall;
        FillQPInfo(sSmall, 3, 3, 4, true);
        SQPInfo sLarge;
        FillQPInfo(sLarge, 6, 6, 6, true);
        SQPInfo sNoTypes;
        FillQPInfo(sNoTypes, 3, 3, 3, false);
        SQPInfo sNone;
        {
            CDesktopSession oSession(rBook, "come-and-go");
            oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
            oSession.Draw("without", oFrame);
            oSession.Draw("small", oFrame, false, &sSmall);
            oSession.Draw("small-steady", oFrame, false, &sSmall);
            oSession.Draw("kept", oFrame);
            oSession.Draw("large", oFrame, false, &sLarge);
            oSession.Draw("no-types", oFrame, false, &sNoTypes);
            oSession.Draw("small-again", oFrame, false, &sSmall);
            oSession.Draw("gone", oFrame, false, &sNone);
            oSession.Draw("still-gone", oFrame);
        }
        {
            CDesktopSession oFirst(rBook, "from-the-first");
            oFirst.Draw("first", oFrame, false, &sSmall);
            oFirst.Draw("steady", oFrame, false, &sSmall);
        }
        CDesktopSession oOther(rBook, "other-format");
        oOther.Draw("first", oOther.Frame(), false, &sSmall);
        oOther.Draw("planar", oFrame);
    });
}

TEST_F(InputSessions, ColoursSpeakToGLAsTheyDid)
{
    Play("colours", [](CSessionBook& rBook) {
        for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32}) {
            CTestFrame oFrame = SessionFrame(nFormat);
            CDesktopSession oSession(rBook, "format" + std::to_string(nFormat));
            oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
            for (int nSpace = YUV_SPACE_AUTO; nSpace <= YUV_SPACE_BT601_SCALED; ++nSpace)
                for (int nRange = YUV_RANGE_AUTO; nRange <= YUV_RANGE_LIMITED; ++nRange) {
                    oSession->SetYUVparams(static_cast<EYUVSpace>(nSpace), static_cast<EYUVRange>(nRange));
                    oSession.Draw("space" + std::to_string(nSpace) + "-range" + std::to_string(nRange),
                                  oFrame);
                }
            oSession->SetYUVLevels(32, 200, 40);
            oSession.Draw("levels", oFrame);
            oSession.Draw("gain", oFrame, true, nullptr);
            oSession->SetGains(1.5f, 0.75f);
            oSession.Draw("other-gain", oFrame, true, nullptr);
            oSession.Draw("no-gain", oFrame);
        }
        CDesktopSession oSession(rBook, "of-the-frame");
        for (const EYUVSpace eSpace : {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020})
            for (const bool bLimited : {false, true}) {
                CTestFrame oFrame(AsymmetricPicture(48, 48), IMAGE_FORMAT_NV12, 0, eSpace, bLimited);
                oSession.Draw("space" + std::to_string(eSpace) + (bLimited ? "-limited" : "-full"), oFrame);
            }
    });
}

TEST_F(InputSessions, TheFilterSpeaksToGLAsItDid)
{
    Play("filter", [](CSessionBook& rBook) {
        for (const int nFormat : FORMATS) {
            CTestFrame oFrame = SessionFrame(nFormat);
            CDesktopSession oSession(rBook, "format" + std::to_string(nFormat));
            for (const EInterpolationType eType :
                 {INTERPOLATION_LINEAR, INTERPOLATION_NEAREST, INTERPOLATION_LINEAR}) {
                oSession->SetInterpolationType(eType);
                oSession.Draw("filter" + std::to_string(eType), oFrame);
                oSession.Draw("steady" + std::to_string(eType), oFrame);
            }
        }
    });
}
