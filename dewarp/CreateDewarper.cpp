// Which engine draws.
#include "dewarp/Dewarper.h"
#include "dewarp/GLEngine.h"
#include "dewarp/cpu/CustomCPUDewarper.h"
#include "dewarp/records/LogTag.h"
#include "platform/MemoryGuard.h"

namespace
{

using PDewarper = std::unique_ptr<CDewarper>;

PDewarper MakeCPU(int nWidth, int nHeight)
{
    auto pDewarper = std::make_unique<CCustomCPUDewarper>();
    return pDewarper->InitTarget(nWidth, nHeight) ? std::move(pDewarper) : nullptr;
}

PDewarper MakeGL(int nWidth, int nHeight, CReport& rReport)
{
    const FMakeGLDewarper fMake = FindGLEngine();
    if (fMake == nullptr) {
        rReport.Error("%s: the OpenGL ES engine is not here, or lacks its driver's libraries",
                      "CreateDewarper");
        return nullptr;
    }
    return PDewarper(fMake(nWidth, nHeight, false));
}

PDewarper MakeAny(int nWidth, int nHeight)
{
    const FMakeGLDewarper fMake = FindGLEngine();
    PDewarper pDewarper(fMake != nullptr ? fMake(nWidth, nHeight, true) : nullptr);
    return pDewarper ? std::move(pDewarper) : MakeCPU(nWidth, nHeight);
}

} // namespace

PDewarper CreateDewarper(EDewarpEngine eEngine, int nWidth, int nHeight)
{
    CReport oReport(DEWARP_LOG_TAG);
    return GuardMemory("CreateDewarper", oReport, PDewarper(), [&]() -> PDewarper {
        switch (static_cast<int>(eEngine)) {
        case ENGINE_AUTO:
            return MakeAny(nWidth, nHeight);
        case ENGINE_GL:
            return MakeGL(nWidth, nHeight, oReport);
        case ENGINE_CPU:
            return MakeCPU(nWidth, nHeight);
        default:
            oReport.Refuse("%s: %d is no engine", "CreateDewarper", static_cast<int>(eEngine));
            return nullptr;
        }
    });
}
