#include "dewarp/gl/DriverWatch.h"

#include "platform/DriverErrors.h"
#include "platform/Report.h"

#include <GLES3/gl31.h>

void CDriverWatch::TakeHostErrors(const char* pFunction)
{
    unsigned int nError = 0;
    TakeDriverErrors(nError);
    if (nError != 0)
        m_rReport.Refuse("%s: GL error 0x%x was left behind by the host", pFunction, nError);
}

void CDriverWatch::BeginToldFrame()
{
    TakeHostErrors("DrawGLScene");
    m_bFrameOurs = true;
}

void CDriverWatch::BeginMaking()
{
    if (m_bMaking)
        return;
    if (m_bFrameOurs)
        TakeDriverErrors(m_nErrorOfFrame);
    else
        TakeHostErrors("DrawGLScene");
    m_bFrameOurs = true;
    m_bMaking = true;
}

bool CDriverWatch::LacksMemory()
{
    if (m_bMaking) {
        m_bMaking = false;
        if (TakeDriverErrors(m_nErrorOfFrame))
            m_bLacks = true;
    }
    return m_bLacks;
}

unsigned int CDriverWatch::ErrorOfFrame()
{
    return m_nErrorOfFrame != 0 ? m_nErrorOfFrame : glGetError();
}

void CDriverWatch::EndFrame()
{
    m_nErrorOfFrame = 0;
    m_bMaking = false;
    m_bFrameOurs = false;
    m_bLacks = false;
}
