#include "tests/support/EngineDewarper.h"

#include "tests/support/DewarperSteps.h"

CEngineDewarper::CEngineDewarper(EDewarpEngine eEngine, int nTargetWidth, int nTargetHeight)
    : m_pDewarper(CreateDewarper(eEngine, nTargetWidth, nTargetHeight))
{}

bool CEngineDewarper::DrawFrame(CTestFrame& rFrame, unsigned long long nTimestamp)
{
    return DrawFrameWith(*m_pDewarper, rFrame, nTimestamp);
}

STestImage CEngineDewarper::Picture()
{
    return PictureOf(*m_pDewarper);
}

bool CEngineDewarper::Apply(const SReferenceSetup& sSetup, CTestFrame& rFrame)
{
    return ApplySetup(*m_pDewarper, sSetup, rFrame);
}

static float PartOfPTZ(CDewarper& rDewarper, int nPart)
{
    float af[3] = {};
    rDewarper.GetPTZ(af[0], af[1], af[2]);
    return af[nPart];
}

float CEngineDewarper::Pan()
{
    return PartOfPTZ(*m_pDewarper, 0);
}

float CEngineDewarper::Tilt()
{
    return PartOfPTZ(*m_pDewarper, 1);
}

float CEngineDewarper::Zoom()
{
    return PartOfPTZ(*m_pDewarper, 2);
}
