/// \file
/// A started dewarper for GL tests, and what tests do with one all the time.
#pragma once

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/HeapCounter.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ReferenceView.h"
#include "tests/support/TestFrame.h"

#include <memory>

/// The desktop dewarper with a target of its own. Its context is made, and current, from construction on.
class CTestDewarper : public CCustomGPUDewarperOffscreen
{
public:
    CTestDewarper(int nTargetWidth, int nTargetHeight);

    /// True when StartGL did what it should.
    bool Started() const { return m_bStarted; }
    /// Hands over a frame and draws it.
    bool DrawFrame(CTestFrame& oFrame, unsigned long long nTimestamp = 0);
    /// The drawn picture, top row first; empty when there is none.
    STestImage Picture();

    /// Puts view, mount, lens, angles and filter of an exact view in force with one frame.
    bool Apply(const SReferenceSetup& sSetup, CTestFrame& oFrame);

private:
    bool m_bStarted = false;
};
