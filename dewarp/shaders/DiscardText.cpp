#include "dewarp/shaders/DiscardText.h"

#include "dewarp/shaders/NumberText.h"

namespace
{

std::string AxisText(const char* pAxis, int nMin, int nMax)
{
    if (nMin == -1 || nMax == -1)
        return std::string();
    const std::string strCoordinate = std::string("gl_FragCoord.") + pAxis;
    return "   if (" + strCoordinate + "<" + NumberText(nMin) + ".0 || " + strCoordinate + ">" +
           NumberText(nMax) + ".0) discard;        \n";
}

std::string DepthText(float fDepth)
{
    if (fDepth == 0.0f)
        return std::string();
    return "   if (gl_FragCoord.z<" + NumberText(fDepth) + ") discard;        \n";
}

const char* const pTextureRow = "   if (v_TexCoordinate.y<0.0 || v_TexCoordinate.y>1.0) discard; \n";

} // namespace

std::string DiscardText(const SDiscardInput& sInput)
{
    std::string strText = AxisText("x", sInput.anClipPlanes[0], sInput.anClipPlanes[1]);
    strText += AxisText("y", sInput.anClipPlanes[2], sInput.anClipPlanes[3]);
    strText += DepthText(sInput.fClipValue);
    if (sInput.bTexCoordClip)
        strText += pTextureRow;
    return strText;
}
