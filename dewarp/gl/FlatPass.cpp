#include "dewarp/gl/FlatPass.h"

#include "dewarp/gl/DriverWatch.h"

void SFlatQuad::SetViewport(int nWidth, int nHeight)
{
    sMatrices.nViewportWidth = nWidth;
    sMatrices.nViewportHeight = nHeight;
    glViewport(0, 0, nWidth, nHeight);
}

bool SFlatQuad::Draw(SPassTools& rTools, SShaderProperties& rShader)
{
    glActiveTexture(GL_TEXTURE0);
    glClear(GL_COLOR_BUFFER_BIT);
    sParams.nImageWidth = 1;
    sParams.nImageHeight = 1;
    sParams.nImageStride = 4;
    oQuad.Activate(&rTools.rGeometry, &sParams);
    if (rTools.rWatch.LacksMemory())
        return false;
    oQuad.LoadVertexAndTextureCoordinates(&rShader);
    oQuad.DrawArrays(&sParams, &sMatrices, &rShader);
    return true;
}
