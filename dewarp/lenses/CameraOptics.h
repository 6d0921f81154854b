/// \file
/// What a host said about its camera, beyond the number of a known lens.
#pragma once

#include "dewarp/lenses/RadialCurve.h"
#include "dewarp/lenses/SLens.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SImageCircle.h"
#include "dewarp/records/SMountOrientation.h"

/// One that says nothing is not kept: known lenses are drawn by their own rules then.
struct SCameraOptics
{
    bool bOwnLens = false; ///< sLens takes the place of the known lens
    SLens sLens;
    SImageCircle sCircle;
    SMountOrientation sOrientation;
    bool bCleanRim = false; ///< views of a known lens end where its light does, too
    bool bMirrorX = false;  ///< how the frame is shown, for what counts in its pixels
    bool bMirrorY = false;

    bool operator==(const SCameraOptics& sOther) const = default;
    bool SaysNothing() const
    {
        return !bOwnLens && !bCleanRim && !sCircle.IsSet() && sOrientation == SMountOrientation();
    }
};

/// The same, ready to be looked up in, and never changed again: views, meshes and decisions share one.
/// Owns: its curve. Thread: any. Fails: never for lenses without fault.
class CCameraOptics
{
public:
    explicit CCameraOptics(const SCameraOptics& rSaid);

    const SCameraOptics& Said() const { return m_sSaid; }
    /// The curve of the lens in use: the host's own, or the known one of a number.
    const CRadialCurve& Curve(ELensType eLens) const { return m_sSaid.bOwnLens ? m_oOwn : KnownCurve(eLens); }
    /// The curve of a known lens; an unknown one is ideal.
    static const CRadialCurve& KnownCurve(ELensType eLens);

private:
    SCameraOptics m_sSaid;
    CRadialCurve m_oOwn;
};
