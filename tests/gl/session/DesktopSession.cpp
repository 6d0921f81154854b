#include "tests/gl/session/DesktopSession.h"

CTestFrame SessionFrame(int nFormat, int nWidth, int nHeight)
{
    return CTestFrame(AsymmetricPicture(nWidth, nHeight), nFormat);
}

CDesktopSession::CDesktopSession(CSessionBook& rBook, const std::string& strName, int nWidth, int nHeight)
    : m_rBook(rBook)
{
    m_rBook.Begin(strName);
    m_rBook.Step("start", [&] { m_pDewarper = std::make_unique<CTestDewarper>(nWidth, nHeight); });
    EXPECT_TRUE(m_pDewarper->Started());
}

CDesktopSession::~CDesktopSession()
{
    m_rBook.Step("end", [&] { m_pDewarper.reset(); });
}

void CDesktopSession::Choose(EViewType eView, EMountType eMount)
{
    m_pDewarper->SetViewType(eView);
    m_pDewarper->SetMountType(eMount);
}

void CDesktopSession::Draw(const std::string& strStep)
{
    Draw(strStep, m_oFrame, false, nullptr);
}

void CDesktopSession::Draw(const std::string& strStep, CTestFrame& oFrame)
{
    Draw(strStep, oFrame, false, nullptr);
}

void CDesktopSession::Draw(const std::string& strStep, CTestFrame& oFrame, bool bGain, SQPInfo* pQP)
{
    m_rBook.Step(strStep, [&] {
        const bool bDrawn =
            m_pDewarper->SetTexture(oFrame.Image(), bGain, pQP, 1) && m_pDewarper->DrawGLScene(false);
        m_rBook.Note(bDrawn ? "drawn" : "not drawn");
    });
}

void CDesktopSession::DrawAgain(const std::string& strStep)
{
    m_rBook.Step(strStep, [&] { m_rBook.Note(m_pDewarper->DrawGLScene(false) ? "drawn" : "not drawn"); });
}

void CDesktopSession::ReadBack(const std::string& strStep)
{
    m_rBook.Step(strStep, [&] {
        const STestImage sPicture = m_pDewarper->Picture();
        m_rBook.Note(std::to_string(sPicture.nWidth) + " x " + std::to_string(sPicture.nHeight));
        if (m_rBook.KeepsData())
            m_rBook.Note("picture=" + HashText(HashBytes(sPicture.vPixels.data(), sPicture.vPixels.size())));
    });
}

void CDesktopSession::Step(const std::string& strStep, const std::function<void(CTestDewarper&)>& fAction)
{
    m_rBook.Step(strStep, [&] { fAction(*m_pDewarper); });
}
