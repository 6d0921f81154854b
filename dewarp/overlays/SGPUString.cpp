#include "dewarp/overlays/SGPUString.h"

SGPUString& SGPUString::operator=(const SGPUString& sOther)
{
    if (this == &sOther)
        return *this;
    strText = sOther.strText;
    nX = sOther.nX;
    nY = sOther.nY;
    nHeight = sOther.nHeight;
    nColor = sOther.nColor;
    nHAlign = sOther.nHAlign;
    nVAlign = sOther.nVAlign;
    nHRef = sOther.nHRef;
    nVRef = sOther.nVRef;
    return *this;
}

bool SGPUString::operator!=(const SGPUString& sOther) const
{
    return strText != sOther.strText || nX != sOther.nX || nY != sOther.nY || nHeight != sOther.nHeight ||
           nColor != sOther.nColor || nHAlign != sOther.nHAlign || nVAlign != sOther.nVAlign ||
           nHRef != sOther.nHRef || nVRef != sOther.nVRef;
}
