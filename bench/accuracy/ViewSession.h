/// \file
/// One dewarper that shows the views under test.
#pragma once

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "tests/support/ReferenceView.h"
#include "tests/support/TestFrame.h"

/// The desktop dewarper with a target of its own. Owns: context and target. Thread: that of the construction.
/// Fails: with std::runtime_error.
class CViewSession : public CCustomGPUDewarperOffscreen
{
public:
    CViewSession(int nTargetWidth, int nTargetHeight);

    /// Puts view, mount, lens and angles of an exact view in force, with this frame and filter.
    void Show(const SReferenceSetup& sSetup, CTestFrame& oFrame, bool bLinear);
    /// The same view of another frame of the same size.
    void ShowFrame(CTestFrame& oFrame, bool bLinear);
    /// The drawn picture, top row first.
    STestImage Picture();
};

/// Name and version of the driver, as GL tells them.
std::string DriverName();
