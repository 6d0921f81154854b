/// \file
/// A session with the desktop dewarper: its object, from its start to its end.
#pragma once

#include "tests/gl/session/SessionBook.h"
#include "tests/support/TestDewarper.h"

#include <memory>

/// The target and frame that sessions have unless they are about sizes.
inline constexpr int SESSION_WIDTH = 64;
inline constexpr int SESSION_HEIGHT = 40;

/// A frame of a picture in which no two corners look alike.
CTestFrame SessionFrame(int nFormat = IMAGE_FORMAT_NV12, int nWidth = 48, int nHeight = 48);

/// Begins with the step "start", ends with the step "end".
class CDesktopSession
{
public:
    CDesktopSession(CSessionBook& rBook, const std::string& strName, int nWidth = SESSION_WIDTH,
                    int nHeight = SESSION_HEIGHT);
    ~CDesktopSession();
    CDesktopSession(const CDesktopSession&) = delete;
    CDesktopSession& operator=(const CDesktopSession&) = delete;

    CTestDewarper& operator*() { return *m_pDewarper; }
    CTestDewarper* operator->() { return m_pDewarper.get(); }
    CTestFrame& Frame() { return m_oFrame; }

    /// View and mount, as requests.
    void Choose(EViewType eView, EMountType eMount);
    /// A step that hands the session's frame, or another one, over and draws it.
    void Draw(const std::string& strStep);
    void Draw(const std::string& strStep, CTestFrame& oFrame);
    /// A step that hands a frame over with gain and macroblock information, and draws it.
    void Draw(const std::string& strStep, CTestFrame& oFrame, bool bGain, SQPInfo* pQP);
    /// A step that draws once more what was drawn last, without a new frame.
    void DrawAgain(const std::string& strStep);
    /// A step that reads the picture back.
    void ReadBack(const std::string& strStep);
    void Step(const std::string& strStep, const std::function<void(CTestDewarper&)>& fAction);

private:
    CSessionBook& m_rBook;
    CTestFrame m_oFrame = SessionFrame();
    std::unique_ptr<CTestDewarper> m_pDewarper;
};
