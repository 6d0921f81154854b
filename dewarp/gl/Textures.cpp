#include "dewarp/gl/Textures.h"

#include "dewarp/gl/DriverWatch.h"

#include <cstring>

void CTextures::Generate(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat, int nWidth,
                         int nHeight, int nRowLength, const unsigned char* pPixels)
{
    if (nUnit < GL_TEXTURE0 || nUnit > GL_TEXTURE15)
        return;
    m_rWatch.BeginMaking();
    anTextureUnitSize[nUnit - GL_TEXTURE0][0] = nWidth;
    anTextureUnitSize[nUnit - GL_TEXTURE0][1] = nHeight;
    glActiveTexture(nUnit);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, nRowLength);
    Delete(nTexture);
    glGenTextures(1, &nTexture);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(nFormat), nWidth, nHeight, 0, nFormat, GL_UNSIGNED_BYTE,
                 pPixels);
}

void CTextures::Update(unsigned int nTexture, unsigned int nFormat, int nWidth, int nHeight, int nRowLength,
                       const unsigned char* pPixels)
{
    // The unit that a texture is sampled from does not matter for its contents.
    glActiveTexture(GL_TEXTURE0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, nRowLength);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, nWidth, nHeight, nFormat, GL_UNSIGNED_BYTE, pPixels);
}

bool CTextures::IsLinear() const
{
    return eSampling == SAMPLING_BY_TYPE ? m_rInterpolation == INTERPOLATION_LINEAR
                                         : eSampling != SAMPLING_NEAREST;
}

void CTextures::SetInterpolation()
{
    SetFilter(IsLinear());
}

void CTextures::SetFrameInterpolation()
{
    SetFilter(IsLinear() || bMinification);
}

void CTextures::SetFilter(bool bLinear)
{
    const GLint nFilter = bLinear ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, nFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, nFilter);
}

void CTextures::Bind(int nUnit, unsigned int nTexture)
{
    glActiveTexture(GLUnit(nUnit));
    glBindTexture(GL_TEXTURE_2D, nTexture);
    SetInterpolation();
}

bool CTextures::NeedsSize(unsigned int nTexture, int nUnit, int nWidth, int nHeight) const
{
    return nTexture == 0 || anTextureUnitSize[nUnit][0] != nWidth || anTextureUnitSize[nUnit][1] != nHeight;
}

bool CTextures::Prepare(unsigned int& nTexture, int nUnit, int nWidth, int nHeight)
{
    if (!NeedsSize(nTexture, nUnit, nWidth, nHeight))
        return false;
    Generate(nTexture, GLUnit(nUnit), GL_RGBA, nWidth, nHeight, nWidth, nullptr);
    return true;
}

int CTextures::MaxSize()
{
    if (nMaxTextureSize == 0)
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMaxTextureSize);
    return nMaxTextureSize;
}

bool CTextures::Fits(int nWidth, int nHeight)
{
    return nWidth <= MaxSize() && nHeight <= MaxSize();
}

void CTextures::Delete(unsigned int& nTexture)
{
    if (nTexture == 0)
        return;
    glDeleteTextures(1, &nTexture);
    nTexture = 0;
}

void CTextures::ForgetSizes()
{
    std::memset(anTextureUnitSize, 0, sizeof anTextureUnitSize);
}

void AttachTexture(unsigned int nTexture)
{
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, nTexture, 0);
}
