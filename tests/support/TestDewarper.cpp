#include "tests/support/TestDewarper.h"

#include "tests/support/DewarperSteps.h"

CTestDewarper::CTestDewarper(int nTargetWidth, int nTargetHeight)
{
    m_bStarted = InitGL(nTargetWidth, nTargetHeight) && StartGL();
}

bool CTestDewarper::DrawFrame(CTestFrame& oFrame, unsigned long long nTimestamp)
{
    return DrawFrameWith(*this, oFrame, nTimestamp);
}

STestImage CTestDewarper::Picture()
{
    return PictureOf(*this);
}

bool CTestDewarper::Apply(const SReferenceSetup& sSetup, CTestFrame& oFrame)
{
    return ApplySetup(*this, sSetup, oFrame);
}
