// Overlays, masks and text.
#include "tests/gl/session/DesktopSession.h"

#include "dewarp/LumorDewarp.h"

class LayerSessions : public CSessionTest
{
};

/// Pixels of an overlay: half transparent stripes.
static std::vector<unsigned char> OverlayPixels(int nWidth, int nHeight, unsigned char nShade)
{
    std::vector<unsigned char> vPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) *
                                       4);
    for (std::size_t i = 0; i < vPixels.size(); ++i)
        vPixels[i] = i % 4 == 3 ? static_cast<unsigned char>(i / 4 % 3 * 80) : nShade;
    return vPixels;
}

static void SetInput(CCustomGPUDewarper& rDewarper, int nWidth, int nHeight, unsigned char nShade = 200)
{
    EXPECT_EQ(rDewarper.SetInputOverlay(OverlayPixels(nWidth, nHeight, nShade).data(), nWidth, nHeight, 0),
              1);
}

static void SetOutput(CCustomGPUDewarper& rDewarper, int nWidth, int nHeight, unsigned char nShade = 100,
                      const std::vector<SGRect>& vRects = {})
{
    EXPECT_EQ(
        rDewarper.SetOutputOverlay(OverlayPixels(nWidth, nHeight, nShade).data(), nWidth, nHeight, 0, vRects),
        1);
}

static SGPUString Text(const std::string& strText, int x, int y, unsigned int nColor = 0xFFFFFFFF)
{
    SGPUString sText;
    sText.strText = strText;
    sText.nX = x;
    sText.nY = y;
    sText.nHeight = 12;
    sText.nColor = nColor;
    return sText;
}

static const SGPolygon TRIANGLE{{{4, 4}, {30, 6}, {12, 28}}, 0x208040FF};
static const SGPolygon NOTCHED{{{20, 20}, {44, 18}, {40, 44}, {30, 28}, {22, 40}}, 0xC0402080};

TEST_F(LayerSessions, MasksSpeakToGLAsTheyDid)
{
    Play("masks", [](CSessionBook& rBook) {
        for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE, VIEW_PANORAMA_QUARTER, VIEW_VCAM_QUAD}) {
            CTestFrame oOther = SessionFrame(IMAGE_FORMAT_NV12, 64, 56);
            CDesktopSession oSession(rBook, "view-" + std::to_string(eView));
            oSession.Choose(eView, MOUNT_CEILING);
            oSession.Draw("without");
            oSession->SetMaskPolygons({TRIANGLE});
            oSession.Draw("one");
            oSession.Draw("one-steady");
            oSession->SetMaskPolygons({TRIANGLE, NOTCHED});
            oSession.Draw("two");
            oSession->SetMaskPolygons({NOTCHED});
            oSession.Draw("other");
            oSession.Draw("other-size", oOther);
            oSession.Draw("other-size-steady", oOther);
            oSession.Draw("size-back");
            oSession->SetMaskPolygons(std::vector<SGPolygon>());
            oSession.Draw("none");
            oSession.Draw("none-steady");
            std::vector<unsigned char> vBytes = BuildMaskPolygons({TRIANGLE});
            oSession->SetMaskPolygons(vBytes.data(), static_cast<int>(vBytes.size()));
            oSession.Draw("bytes");
            oSession->SetMaskPolygons(nullptr, 0);
            oSession.Draw("no-bytes");
            oSession.ReadBack("read");
        }
        CDesktopSession oSession(rBook, "from-the-first");
        oSession->SetMaskPolygons({TRIANGLE, NOTCHED});
        oSession.Draw("first");
        oSession.Draw("steady");
        // The masks are painted over whatever is put there.
        SetInput(*oSession, 16, 12);
        oSession.Draw("overlay-over-masks");
        oSession.Draw("steady-over-masks");
        // A mask of two points has no area.
        oSession->SetMaskPolygons({SGPolygon{{{1, 1}, {9, 9}}, 0xFFFFFFFF}});
        oSession.Draw("flat");
    });
}

TEST_F(LayerSessions, InputOverlaysSpeakToGLAsTheyDid)
{
    Play("input-overlays", [](CSessionBook& rBook) {
        for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE_CIRCULAR, VIEW_PANORAMA_TRIPLE}) {
            CDesktopSession oSession(rBook, "view-" + std::to_string(eView));
            oSession.Choose(eView, MOUNT_FLOOR);
            oSession.Draw("without");
            SetInput(*oSession, 16, 12);
            oSession.Draw("whole");
            oSession.Draw("whole-steady");
            SetInput(*oSession, 16, 12, 50);
            oSession.Draw("changed");
            SetInput(*oSession, 17, 9);
            oSession.Draw("resized");
            oSession->SetInputOverlay(nullptr, 0, 0, 0);
            oSession.Draw("removed");
            oSession.Draw("removed-steady");
            SetInput(*oSession, 8, 8);
            oSession.Draw("again");
            oSession.ReadBack("read");
        }
    });
}

TEST_F(LayerSessions, OutputOverlaysSpeakToGLAsTheyDid)
{
    Play("output-overlays", [](CSessionBook& rBook) {
        for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE, VIEW_PANORAMA_DUAL}) {
            CDesktopSession oSession(rBook, "view-" + std::to_string(eView));
            oSession.Choose(eView, MOUNT_CEILING);
            oSession.Draw("without");
            SetOutput(*oSession, 32, 20);
            oSession.Draw("whole");
            oSession.Draw("whole-steady");
            SetOutput(*oSession, 32, 20, 60, {{2, 3, 8, 5}, {20, 10, 40, 40}});
            oSession.Draw("rects");
            SetOutput(*oSession, 32, 20, 70, {{100, 100, 4, 4}});
            oSession.Draw("rect-outside");
            SetOutput(*oSession, 32, 20, 80, {{0, 0, 4, 4}});
            SetOutput(*oSession, 32, 20, 90, {{8, 8, 4, 4}});
            oSession.Draw("rects-that-waited");
            SetOutput(*oSession, 24, 20, 60, {{2, 3, 8, 5}});
            oSession.Draw("resized-with-rect");
            SetOutput(*oSession, SESSION_WIDTH, SESSION_HEIGHT);
            oSession.Draw("resized");
            oSession.Step("init", [](CTestDewarper& rDewarper) { rDewarper.InitGL(40, 64); });
            oSession.Draw("other-target");
            oSession->SetOutputOverlay(nullptr, 0, 0, 0);
            oSession.Draw("removed");
            oSession.Draw("removed-steady");
            SetOutput(*oSession, 8, 8);
            oSession.Draw("again");
            oSession.ReadBack("read");
        }
    });
}

TEST_F(LayerSessions, TextSpeaksToGLAsItDid)
{
    Play("text", [](CSessionBook& rBook) {
        for (const bool bOverlay : {false, true}) {
            CDesktopSession oSession(rBook, bOverlay ? "over-overlay" : "plain");
            oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
            if (bOverlay)
                SetOutput(*oSession, 32, 20);
            oSession.Draw("without");
            oSession->SetStrings({Text("12:00", 2, 2)});
            oSession.Draw("one");
            oSession.Draw("one-steady");
            oSession->SetStrings({Text("12:01", 2, 2)});
            oSession.Draw("changed");
            oSession->SetStrings({Text("12:01", 2, 2), Text("door", 10, 6, 0xFF0000FF)});
            oSession.Draw("overlapping");
            oSession->SetStrings({Text("12:02", 2, 2), Text("door", 2, 26, 0xFF0000FF)});
            oSession.Draw("apart");
            oSession->SetStrings({Text("12:02", 2, 2)});
            oSession.Draw("fewer");
            SGPUString sPlaced = Text("end", -4, -4);
            sPlaced.nHAlign = sPlaced.nVAlign = sPlaced.nHRef = sPlaced.nVRef = 2;
            oSession->SetStrings({sPlaced});
            oSession.Draw("placed");
            oSession.Step("init", [](CTestDewarper& rDewarper) { rDewarper.InitGL(50, 70); });
            oSession.Draw("other-target");
            oSession->SetStrings(std::vector<SGPUString>());
            oSession.Draw("none");
            oSession.Draw("none-steady");
            std::vector<unsigned char> vBytes = BuildStrings({Text("bytes", 0, 0)});
            oSession->SetStrings(vBytes.data(), static_cast<int>(vBytes.size()));
            oSession.Draw("bytes");
            oSession.ReadBack("read");
        }
    });
}

/// Puts the layers in force that the bits name: input overlay or masks, output overlay, text.
static void SetLayers(CCustomGPUDewarper& rDewarper, int nLayers)
{
    if (nLayers % 3 == 1)
        SetInput(rDewarper, 16, 12);
    else if (nLayers % 3 == 0)
        rDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    rDewarper.SetMaskPolygons(nLayers % 3 == 2 ? std::vector<SGPolygon>{TRIANGLE} : std::vector<SGPolygon>());
    if (nLayers / 3 % 2 != 0)
        SetOutput(rDewarper, 32, 20);
    else
        rDewarper.SetOutputOverlay(nullptr, 0, 0, 0);
    rDewarper.SetStrings(nLayers / 6 != 0 ? std::vector<SGPUString>{Text("A", 4, 4)}
                                          : std::vector<SGPUString>());
}

TEST_F(LayerSessions, EveryCombinationAndChangeOfLayersSpeaksToGLAsItDid)
{
    Play("layers", [](CSessionBook& rBook) {
        for (int nFrom = 0; nFrom < 12; ++nFrom) {
            CDesktopSession oSession(rBook, "from-" + std::to_string(nFrom));
            oSession.Choose(VIEW_FISHEYE, MOUNT_CEILING);
            for (int nTo = 0; nTo < 12; ++nTo) {
                if (nTo == nFrom)
                    continue;
                SetLayers(*oSession, nFrom);
                oSession.Draw("before-" + std::to_string(nTo));
                SetLayers(*oSession, nTo);
                oSession.Draw("to-" + std::to_string(nTo));
            }
        }
        for (const EViewType eView : {VIEW_VCAM, VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL, VIEW_VCAM_QUAD})
            for (int nLayers = 1; nLayers < 12; ++nLayers) {
                CDesktopSession oSession(rBook, "view-" + std::to_string(eView) + "-layers-" +
                                                    std::to_string(nLayers));
                oSession.Choose(eView, MOUNT_CEILING);
                SetLayers(*oSession, nLayers);
                oSession.Draw("first");
                oSession.Draw("steady");
                oSession->AbsolutePTZ(40.0f, 30.0f, 80.0f);
                oSession.Draw("moved");
                oSession.ReadBack("read");
            }
    });
}
