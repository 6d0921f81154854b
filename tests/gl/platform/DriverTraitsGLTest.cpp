#include "TinyContext.h"

#include "platform/DriverTraits.h"
#include "platform/ShaderDialect.h"

#include <GLES3/gl31.h>

#include <string>

namespace
{

class DriverTraits : public CTinyContextTest
{
};

std::string Renderer()
{
    return reinterpret_cast<const char*>(glGetString(GL_RENDERER));
}

bool Compiles(const char* pText)
{
    const GLuint nShader = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(nShader, 1, &pText, nullptr);
    glCompileShader(nShader);
    GLint nStatus = GL_FALSE;
    glGetShaderiv(nShader, GL_COMPILE_STATUS, &nStatus);
    glDeleteShader(nShader);
    return nStatus == GL_TRUE;
}

} // namespace

TEST_F(DriverTraits, YUVTargetsAreKnownWhereTheyCompile)
{
    const SDriverTraits sTraits = QueryDriverTraits();
    EXPECT_TRUE(sTraits.bKnown);
    EXPECT_TRUE(sTraits.bYUVOutput);
    EXPECT_EQ(sTraits.bYUVTarget,
              Compiles("#version 310 es\n#extension GL_EXT_YUV_target : require\nprecision mediump float;\n"
                       "layout (yuv) out vec4 a;\nvoid main() { a = vec4(0.0); }\n"));
}

TEST_F(DriverTraits, HighpIsPreferredOnLlvmpipeUntilSwitchedOff)
{
    const bool bLlvmpipe = Renderer().compare(0, 8, "llvmpipe") == 0;
    EXPECT_EQ(QueryDriverTraits().bPreferHighp, bLlvmpipe);
    SetShaderPrecisionAdaption(false);
    EXPECT_FALSE(QueryDriverTraits().bPreferHighp);
    SetShaderPrecisionAdaption(true);
    EXPECT_EQ(QueryDriverTraits().bPreferHighp, bLlvmpipe);
}
