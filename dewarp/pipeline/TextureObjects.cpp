// Textures: creation, update, binding, filter.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/PlaneUpload.h"

#include <GLES3/gl31.h>

void CCustomGPUDewarper::GenerateTexture(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat,
                                         int nWidth, int nHeight, int nRowLength, unsigned char* pPixels)
{
    if (nUnit < GL_TEXTURE0 || nUnit > GL_TEXTURE15)
        return;
    anTextureUnitSize[nUnit - GL_TEXTURE0][0] = nWidth;
    anTextureUnitSize[nUnit - GL_TEXTURE0][1] = nHeight;
    glActiveTexture(nUnit);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, nRowLength);
    if (nTexture != 0)
        glDeleteTextures(1, &nTexture);
    nTexture = 0;
    bObjectsMade = true;
    glGenTextures(1, &nTexture);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(nFormat), nWidth, nHeight, 0, nFormat, GL_UNSIGNED_BYTE,
                 pPixels);
}

void CCustomGPUDewarper::UpdateTexture(unsigned int& nTexture, unsigned int /*nUnit*/, unsigned int nFormat,
                                       int nWidth, int nHeight, int nRowLength, unsigned char* pPixels)
{
    // The unit that a texture is sampled from does not matter for its contents.
    glActiveTexture(GL_TEXTURE0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, nRowLength);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, nWidth, nHeight, nFormat, GL_UNSIGNED_BYTE, pPixels);
}

void CCustomGPUDewarper::SetInterpolation()
{
    const GLint nFilter = eInterpolation == INTERPOLATION_LINEAR ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, nFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, nFilter);
}

void CCustomGPUDewarper::BindTextures()
{
    if (!OSDependentBindTextures()) {
        SPlaneUpload aPlanes[MAX_PLANES];
        const int nPlanes = ListPlanes(aPlanes);
        for (int i = 0; i < nPlanes; ++i) {
            glActiveTexture(aPlanes[i].nUnit);
            glBindTexture(GL_TEXTURE_2D, *aPlanes[i].pTexture);
            SetInterpolation();
        }
        if (nImageFormat == IMAGE_FORMAT_YUV420P && sMainShader.bQPTextures) {
            // Macroblock values are not to be mixed.
            for (int i = 0; i < 2; ++i) {
                glActiveTexture(i == 0 ? GL_TEXTURE3 : GL_TEXTURE4);
                glBindTexture(GL_TEXTURE_2D, i == 0 ? nTextureQP : nTextureMBType);
                glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
                glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
            }
        }
        glActiveTexture(GL_TEXTURE0);
    }
    BindOverlayTextures();
}

void CCustomGPUDewarper::UnbindTextures()
{
    if (!OSDependentUnBindTextures()) {
        SPlaneUpload aPlanes[MAX_PLANES];
        const int nPlanes = ListPlanes(aPlanes);
        for (int i = 0; i < nPlanes; ++i) {
            glActiveTexture(aPlanes[i].nUnit);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        if (nImageFormat == IMAGE_FORMAT_YUV420P && sMainShader.bQPTextures) {
            glActiveTexture(GL_TEXTURE3);
            glBindTexture(GL_TEXTURE_2D, 0);
            glActiveTexture(GL_TEXTURE4);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        glActiveTexture(GL_TEXTURE0);
    }
    UnbindOverlayTextures();
}
