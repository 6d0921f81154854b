#include "dewarp/geometry/MeshKey.h"

#include <bit>
#include <cstdint>

static bool SameBits(float fLeft, float fRight)
{
    return std::bit_cast<std::uint32_t>(fLeft) == std::bit_cast<std::uint32_t>(fRight);
}

bool SMeshKey::operator==(const SMeshKey& sOther) const
{
    return eMesh == sOther.eMesh && eView == sOther.eView && eLens == sOther.eLens &&
           nImageWidth == sOther.nImageWidth && nImageHeight == sOther.nImageHeight &&
           SameBits(fPan, sOther.fPan) && SameBits(fTilt, sOther.fTilt) &&
           SameBits(fMountTilt, sOther.fMountTilt) && bStrict == sOther.bStrict &&
           SameBits(fRoll, sOther.fRoll) && eMount == sOther.eMount && sShape == sOther.sShape &&
           pOptics == sOther.pOptics;
}
