// The dewarper of graphic buffers.
#include "tests/gl/android/TestVela.h"
#include "tests/gl/session/DesktopSession.h"

class VelaSessions : public CSessionTest
{
};

/// Object and buffers, from start to end.
class CVelaSession
{
public:
    CVelaSession(CSessionBook& rBook, const std::string& strName,
                 int nOutputFormat = HAL_PIXEL_FORMAT_YCBCR_420_888)
        : m_rBook(rBook), m_oOutput(SESSION_WIDTH, SESSION_HEIGHT, nOutputFormat)
    {
        CTestFrame oFrame = SessionFrame();
        m_oInput.Fill(oFrame);
        m_rBook.Begin(strName);
        m_rBook.Step("start",
                     [&] { m_pDewarper = std::make_unique<CTestVela>(SESSION_WIDTH, SESSION_HEIGHT); });
    }
    ~CVelaSession()
    {
        m_rBook.Step("end", [&] { m_pDewarper.reset(); });
    }
    CVelaSession(const CVelaSession&) = delete;
    CVelaSession& operator=(const CVelaSession&) = delete;

    CTestVela* operator->() { return m_pDewarper.get(); }
    CTestBuffer& Output() { return m_oOutput; }

    /// One frame, in its three steps.
    void Draw(const std::string& strStep, CTestBuffer& rInput, CTestBuffer& rOutput)
    {
        m_rBook.Step(strStep + "-create", [&] {
            m_rBook.Note(m_pDewarper->CreateImageF(rInput.get(), rOutput.get()) ? "created" : "not created");
        });
        m_rBook.Step(strStep + "-draw",
                     [&] { m_rBook.Note(m_pDewarper->DrawGLScene(true) ? "drawn" : "not drawn"); });
        m_rBook.Step(strStep + "-destroy", [&] { m_pDewarper->DestroyImage(); });
        if (!m_rBook.KeepsData())
            return;
        const STestImage sTexels = rOutput.Texels();
        m_rBook.Note("picture=" + HashText(HashBytes(sTexels.vPixels.data(), sTexels.vPixels.size())));
    }
    void Draw(const std::string& strStep) { Draw(strStep, m_oInput, m_oOutput); }
    void Step(const std::string& strStep, const std::function<void(CTestVela&)>& fAction)
    {
        m_rBook.Step(strStep, [&] { fAction(*m_pDewarper); });
    }

private:
    CSessionBook& m_rBook;
    CTestBuffer m_oInput{48, 48};
    CTestBuffer m_oOutput;
    std::unique_ptr<CTestVela> m_pDewarper;
};

static SGPUString Text()
{
    SGPUString sText;
    sText.strText = "12:00";
    sText.nHeight = 12;
    return sText;
}

TEST_F(VelaSessions, EveryViewAndMountOfBuffersSpeaksToGLAsItDid)
{
    Play("buffer-views", [](CSessionBook& rBook) {
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR, MOUNT_WALL})
            for (int nView = VIEW_UNSET; nView <= VIEW_FISHEYE_CIRCULAR; ++nView) {
                CVelaSession oSession(rBook,
                                      "mount" + std::to_string(eMount) + "-view" + std::to_string(nView));
                oSession->SetViewType(static_cast<EViewType>(nView));
                oSession->SetMountType(eMount);
                oSession.Draw("first");
                oSession.Draw("steady");
                oSession->AbsolutePTZ(20.0f, 15.0f, 90.0f);
                oSession.Draw("moved");
            }
    });
}

TEST_F(VelaSessions, LayersOverBuffersSpeakToGLAsTheyDid)
{
    Play("buffer-layers", [](CSessionBook& rBook) {
        for (const int nFormat : {HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_PIXEL_FORMAT_RGBA_8888}) {
            CVelaSession oSession(rBook, nFormat == HAL_PIXEL_FORMAT_RGBA_8888 ? "rgba" : "yuv", nFormat);
            oSession->SetViewType(VIEW_FISHEYE);
            oSession.Draw("without");
            std::vector<unsigned char> vPixels(16 * 12 * 4, 120);
            oSession->SetOutputOverlay(vPixels.data(), 16, 12, 0);
            oSession.Draw("output-overlay");
            oSession->SetStrings({Text()});
            oSession.Draw("and-text");
            oSession->SetMaskPolygons({SGPolygon{{{4, 4}, {30, 6}, {12, 28}}, 0x208040FF}});
            oSession.Draw("and-masks");
            oSession.Draw("steady");
            oSession->SetOutputOverlay(nullptr, 0, 0, 0);
            oSession.Draw("text-and-masks");
            oSession->SetStrings(std::vector<SGPUString>());
            oSession.Draw("masks");
            oSession->SetMaskPolygons(std::vector<SGPolygon>());
            oSession.Draw("nothing");
            oSession->SetInputOverlay(vPixels.data(), 12, 16, 0);
            oSession.Draw("input-overlay");
            oSession->SetInterpolationType(INTERPOLATION_LINEAR);
            oSession->SetFlip(true, true);
            oSession->SetRotation(90);
            oSession.Draw("turned");
        }
    });
}

TEST_F(VelaSessions, BuffersThatChangeSpeakToGLAsTheyDid)
{
    Play("buffer-changes", [](CSessionBook& rBook) {
        CVelaSession oSession(rBook, "buffers");
        oSession->SetViewType(VIEW_VCAM);
        oSession.Draw("first");
        CTestBuffer oInput(64, 56);
        CTestFrame oFrame = SessionFrame(IMAGE_FORMAT_NV12, 64, 56);
        oInput.Fill(oFrame);
        oSession.Draw("other-input", oInput, oSession.Output());
        CTestBuffer oOutput(SESSION_WIDTH, SESSION_HEIGHT, HAL_PIXEL_FORMAT_RGBA_8888);
        oSession.Draw("other-output", oInput, oOutput);
        oSession.Draw("back");
        oSession.Step("input-alone", [&](CTestVela& rDewarper) {
            rBook.Note(rDewarper.CreateImage(oInput.get()) ? "created" : "not created");
        });
        oSession.Step("no-input", [&](CTestVela& rDewarper) {
            rBook.Note(rDewarper.CreateImageF(nullptr, oOutput.get()) ? "created" : "not created");
        });
        oSession.Draw("after-failure");
        oSession.Step("init", [](CTestVela& rDewarper) { rDewarper.InitGL(32, 48); });
        CTestBuffer oSmall(32, 48);
        oSession.Draw("other-target", oInput, oSmall);
    });
}

TEST_F(VelaSessions, RestartsWithBuffersSpeakToGLAsTheyDid)
{
    Play("buffer-restarts", [](CSessionBook& rBook) {
        for (const EViewType eView : {VIEW_VCAM, VIEW_FISHEYE, VIEW_PANORAMA_FULL}) {
            CVelaSession oSession(rBook, "view-" + std::to_string(eView));
            oSession->SetViewType(eView);
            oSession->SetStrings({Text()});
            oSession.Draw("first");
            oSession->AbsolutePTZ(20.0f, 15.0f, 90.0f);
            oSession.Draw("moved");
            oSession.Step("free", [](CTestVela& rDewarper) { rDewarper.FreeOpenGLObjects(); });
            oSession.Draw("after-free");
            oSession.Step("reinitialize",
                          [](CTestVela& rDewarper) { rDewarper.ReinitializeOpenGLObjects(); });
            oSession.Draw("after-reinitialize");
            oSession.Step("stop", [](CTestVela& rDewarper) { rDewarper.StopGL(); });
            oSession.Draw("stopped");
            oSession.Step("restart", [](CTestVela& rDewarper) { rDewarper.StartGL(); });
            oSession.Draw("after-restart");
            oSession.Draw("steady");
            oSession.Step("start-again", [](CTestVela& rDewarper) { rDewarper.StartGL(); });
            oSession.Draw("after-start");
            oSession.Step("pass", [](CTestVela& rDewarper) { rDewarper.OSDependentFBO(true); });
        }
    });
}
