/// \file
/// One dewarper that shows the views under test.
#pragma once

#include "dewarp/Dewarper.h"
#include "dewarp/cpu/CustomCPUDewarper.h"
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "tests/support/ReferenceView.h"
#include "tests/support/TestFrame.h"

#include <memory>

/// The engine whose pictures later sessions show: GL, unless something else is asked for; bExact: the
/// processor engine with exact geometry.
void UseEngine(EDewarpEngine eEngine, bool bExact);

/// The desktop dewarper with a target of its own, which knows the mesh; and beside it the processor's, where
/// its pictures are wanted. Owns: context and target. Thread: that of the construction. Fails: with
/// std::runtime_error.
class CViewSession : public CCustomGPUDewarperOffscreen
{
public:
    CViewSession(int nTargetWidth, int nTargetHeight);

    /// Puts view, mount, lens and angles of an exact view in force, with this frame and filter.
    void Show(const SReferenceSetup& sSetup, CTestFrame& oFrame, bool bLinear);
    /// The whole frame, its colours in that space and range.
    void ShowFisheye(EYUVSpace eSpace, EYUVRange eRange, CTestFrame& oFrame, bool bLinear);
    /// The same view of another frame of the same size.
    void ShowFrame(CTestFrame& oFrame, bool bLinear);
    /// The drawn picture, top row first.
    STestImage Picture();
    /// What the processor's dewarper says of itself.
    std::string ProcessorText() const;

private:
    template <class F>
    void Each(F&& rUse);

    std::unique_ptr<CCustomCPUDewarper> m_pProcessor;
};

/// Name and version of the driver, as GL tells them, or of the processor engine.
std::string DriverName();
