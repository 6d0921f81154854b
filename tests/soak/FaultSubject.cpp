#include "tests/soak/FaultSubject.h"

#include "tests/gl/android/TestVela.h"
#include "tests/soak/ReliabilityScene.h"

namespace
{

const int FRAME_SIZE = 64;

void Prepare(CCustomGPUDewarper& rDewarper)
{
    rDewarper.SetViewType(VIEW_PANORAMA_DUAL);
    rDewarper.SetLensType(LENS_DSL419);
    SwitchEverythingOn(rDewarper, SUBJECT_WIDTH, SUBJECT_HEIGHT);
    SGPolygon sMask;
    sMask.vPoints = {{10, 10}, {50, 12}, {45, 48}, {14, 40}};
    sMask.nColor = 0x40A08080;
    rDewarper.SetMaskPolygons({sMask});
}

class CDesktopSubject : public CFaultSubject
{
public:
    CDesktopSubject() : m_pDewarper(std::make_unique<CTestDewarper>(SUBJECT_WIDTH, SUBJECT_HEIGHT))
    {
        Prepare(*m_pDewarper);
    }
    CCustomGPUDewarper& Dewarper() override { return *m_pDewarper; }
    bool InitGL(int nWidth, int nHeight) override { return m_pDewarper->InitGL(nWidth, nHeight); }
    bool StartGL() override { return m_pDewarper->StartGL(); }
    bool StopGL() override { return m_pDewarper->StopGL(); }
    bool Draw() override { return m_pDewarper->DrawFrame(m_oFrame); }
    std::vector<unsigned char> Picture() override { return m_pDewarper->Picture().vPixels; }
    void Destroy() override { m_pDewarper.reset(); }

private:
    CTestFrame m_oFrame{AsymmetricPicture(FRAME_SIZE, FRAME_SIZE), IMAGE_FORMAT_YUV420P};
    std::unique_ptr<CTestDewarper> m_pDewarper;
};

class CBufferSubject : public CFaultSubject
{
public:
    CBufferSubject() : m_pDewarper(std::make_unique<CTestVela>(SUBJECT_WIDTH, SUBJECT_HEIGHT))
    {
        CTestFrame oFrame(AsymmetricPicture(FRAME_SIZE, FRAME_SIZE), IMAGE_FORMAT_NV12);
        m_oInput.Fill(oFrame);
        Prepare(*m_pDewarper);
    }
    CCustomGPUDewarper& Dewarper() override { return *m_pDewarper; }
    bool InitGL(int nWidth, int nHeight) override { return m_pDewarper->InitGL(nWidth, nHeight); }
    bool StartGL() override { return m_pDewarper->StartGL(); }
    bool StopGL() override { return m_pDewarper->StopGL(); }
    bool Draw() override { return m_pDewarper->DrawFrame(m_oInput, m_oOutput); }
    std::vector<unsigned char> Picture() override { return m_oOutput.Texels().vPixels; }
    void Destroy() override { m_pDewarper.reset(); }

private:
    CTestBuffer m_oInput{FRAME_SIZE, FRAME_SIZE};
    CTestBuffer m_oOutput{SUBJECT_WIDTH, SUBJECT_HEIGHT};
    std::unique_ptr<CTestVela> m_pDewarper;
};

} // namespace

std::unique_ptr<CFaultSubject> MakeSubject(ESubject eSubject)
{
    if (eSubject == SUBJECT_DESKTOP)
        return std::make_unique<CDesktopSubject>();
    return std::make_unique<CBufferSubject>();
}
