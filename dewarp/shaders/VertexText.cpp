#include "dewarp/shaders/VertexText.h"

#include "dewarp/records/Mirrors.h"

namespace VERTEX_TEXT
{

static const char* const pHead = "#version 310 es            \n"
                                 "uniform mat4 uMVPMatrix;   \n"
                                 "in vec4 vPosition;   \n"
                                 "in vec2 a_TexCoordinate; \n"
                                 "out vec2 v_TexCoordinate;   \n"
                                 "void main()                  \n"
                                 "{                            \n"
                                 "   v_TexCoordinate = a_TexCoordinate; \n";

static const char* const pMirrorX = "   v_TexCoordinate.x = 1.0 - v_TexCoordinate.x; \n";

static const char* const pMirrorY = "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y; \n";

static const char* const pPosition = "   gl_Position = uMVPMatrix * vPosition; \n";

static const char* const pInvertY = "   gl_Position.y = -1.0 * gl_Position.y; \n";

static const char* const pEnd = "}                            \n";

} // namespace VERTEX_TEXT

std::string VertexText(const SVertexTextInput& sInput)
{
    const SMirrors sMirrors = MirrorsOf(sInput.bFlipHorizontal, sInput.bFlipVertical, sInput.nRotation);
    std::string strText = VERTEX_TEXT::pHead;
    if (sMirrors.bX)
        strText += VERTEX_TEXT::pMirrorX;
    if (sMirrors.bY)
        strText += VERTEX_TEXT::pMirrorY;
    strText += VERTEX_TEXT::pPosition;
    if (sInput.bInvertY)
        strText += VERTEX_TEXT::pInvertY;
    strText += VERTEX_TEXT::pEnd;
    return strText;
}
