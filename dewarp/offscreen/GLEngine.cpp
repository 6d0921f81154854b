#include "dewarp/GLEngine.h"

#include "dewarp/offscreen/GLDewarper.h"
#include "dewarp/records/LogTag.h"
#include "platform/Display.h"
#include "platform/DriverTraits.h"
#include "platform/MemoryGuard.h"

namespace
{

/// True when a context can be had at all; asks before anything is logged.
bool HasDriver()
{
    const auto oDisplays = LockDisplays();
    EGLDisplay pDisplay = OpenOffscreenDisplay();
    if (pDisplay != EGL_NO_DISPLAY)
        TerminateDisplay(pDisplay);
    return pDisplay != EGL_NO_DISPLAY;
}

} // namespace

CDewarper* lumor_dewarp_make_gl_dewarper(int nWidth, int nHeight, bool bOnlyHardware)
{
    CReport oReport(DEWARP_LOG_TAG);
    return GuardMemory("CreateDewarper", oReport, static_cast<CDewarper*>(nullptr), [&]() -> CDewarper* {
        if (bOnlyHardware && !HasDriver())
            return nullptr;
        auto pDewarper = std::make_unique<CGLDewarper>();
        if (!pDewarper->InitTarget(nWidth, nHeight))
            return nullptr;
        const bool bRight = !bOnlyHardware || IsHardwareRenderer(pDewarper->GetRenderer().c_str());
        return bRight ? pDewarper.release() : nullptr;
    });
}
