#include "dewarp/lenses/CameraOptics.h"

#include "dewarp/lenses/GivenLens.h"

#include <map>

CCameraOptics::CCameraOptics(const SCameraOptics& rSaid) : m_sSaid(rSaid)
{
    if (rSaid.bOwnLens)
        m_oOwn = CRadialCurve(rSaid.sLens);
}

/// The curves of all known lenses, and of the ideal one.
static std::map<ELensType, CRadialCurve> MakeKnownCurves()
{
    std::map<ELensType, CRadialCurve> oCurves;
    for (const SGivenLens& rLens : KnownLenses())
        oCurves.emplace(rLens.eType, CRadialCurve(rLens));
    oCurves.emplace(LENS_UNKNOWN, CRadialCurve(FindLens(LENS_UNKNOWN)));
    return oCurves;
}

const CRadialCurve& CCameraOptics::KnownCurve(ELensType eLens)
{
    static const std::map<ELensType, CRadialCurve> CURVES = MakeKnownCurves();
    return CURVES.at(FindLens(eLens).eType);
}
