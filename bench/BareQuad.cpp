#include "bench/BareQuad.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <cstdio>
#include <cstdlib>

namespace
{

unsigned int Shader(unsigned int nKind, const char* pText)
{
    const unsigned int nShader = glCreateShader(nKind);
    glShaderSource(nShader, 1, &pText, nullptr);
    glCompileShader(nShader);
    GLint nStatus = GL_FALSE;
    glGetShaderiv(nShader, GL_COMPILE_STATUS, &nStatus);
    if (nStatus == GL_FALSE) {
        std::fprintf(stderr, "the quad's shader does not compile\n");
        std::exit(1);
    }
    return nShader;
}

const char* const VERTEX_TEXT = "#version 310 es\n"
                                "in vec2 vPosition;\n"
                                "in vec2 a_TexCoordinate;\n"
                                "out vec2 v_TexCoordinate;\n"
                                "void main()\n"
                                "{\n"
                                "   v_TexCoordinate = a_TexCoordinate;\n"
                                "   gl_Position = vec4(vPosition, 0.0, 1.0);\n"
                                "}\n";

} // namespace

CBareQuad::CBareQuad(const SImageProperties& rImage, const std::string& strFragmentText, int nWidth,
                     int nHeight)
    : m_nWidth(nWidth), m_nHeight(nHeight)
{
    ListPlanes(rImage);
    CreateTextures();
    CreateProgram(strFragmentText);
    CreateTarget();
}

CBareQuad::~CBareQuad()
{
    for (int i = 0; i < m_nPlanes; ++i)
        glDeleteTextures(1, &m_aPlanes[i].nTexture);
    glDeleteProgram(m_nProgram);
    glDeleteBuffers(2, m_anBuffers);
    glDeleteFramebuffers(1, &m_nFrameBuffer);
    glDeleteRenderbuffers(1, &m_nColorBuffer);
}

void CBareQuad::ListPlanes(const SImageProperties& rImage)
{
    const int w = rImage.nWidth;
    const int h = rImage.nHeight;
    const int nStride = rImage.nStride;
    const auto Plane = [](unsigned int nFormat, int nWidth, int nHeight, int nRowLength,
                          const unsigned char* pPixels, const char* pSampler) {
        return SPlane{0, nFormat, nFormat, nWidth, nHeight, nRowLength, pPixels, pSampler};
    };
    m_nPlanes = 1;
    switch (rImage.nFormat) {
    case IMAGE_FORMAT_NV12:
        m_aPlanes[0] = Plane(GL_LUMINANCE, w, h, nStride, rImage.pPlane0, "samplerY");
        m_aPlanes[1] = Plane(GL_LUMINANCE_ALPHA, w / 2, h / 2, nStride / 2, rImage.pPlane1, "samplerUV");
        m_nPlanes = 2;
        break;
    case IMAGE_FORMAT_YUV420P:
        m_aPlanes[0] = Plane(GL_LUMINANCE, w, h, nStride, rImage.pPlane0, "samplerY");
        m_aPlanes[1] = Plane(GL_LUMINANCE, w / 2, h / 2, nStride / 2, rImage.pPlane1, "samplerU");
        m_aPlanes[2] = Plane(GL_LUMINANCE, w / 2, h / 2, nStride / 2, rImage.pPlane2, "samplerV");
        m_nPlanes = 3;
        break;
    case IMAGE_FORMAT_RGB24:
        m_aPlanes[0] = Plane(GL_RGB, w, h, nStride / 3, rImage.pPlane0, "samplerRGB");
        break;
    default:
        m_aPlanes[0] = Plane(GL_RGBA, w, h, nStride / 4, rImage.pPlane0, "samplerRGB");
        if (rImage.nFormat == IMAGE_FORMAT_BGRA32)
            m_aPlanes[0].nUpload = GL_BGRA_EXT;
        break;
    }
}

void CBareQuad::CreateTextures()
{
    for (int i = 0; i < m_nPlanes; ++i) {
        SPlane& rPlane = m_aPlanes[i];
        glGenTextures(1, &rPlane.nTexture);
        glActiveTexture(GL_TEXTURE0 + static_cast<unsigned int>(i));
        glBindTexture(GL_TEXTURE_2D, rPlane.nTexture);
        for (const GLenum nWrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glTexParameteri(GL_TEXTURE_2D, nWrap, GL_CLAMP_TO_EDGE);
        for (const GLenum nFilter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, nFilter, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(rPlane.nFormat), rPlane.nWidth, rPlane.nHeight, 0,
                     rPlane.nFormat, GL_UNSIGNED_BYTE, nullptr);
    }
}

void CBareQuad::CreateProgram(const std::string& strFragmentText)
{
    m_nProgram = glCreateProgram();
    const unsigned int nVertex = Shader(GL_VERTEX_SHADER, VERTEX_TEXT);
    const unsigned int nFragment = Shader(GL_FRAGMENT_SHADER, strFragmentText.c_str());
    glAttachShader(m_nProgram, nVertex);
    glAttachShader(m_nProgram, nFragment);
    glBindAttribLocation(m_nProgram, 0, "vPosition");
    glBindAttribLocation(m_nProgram, 1, "a_TexCoordinate");
    glLinkProgram(m_nProgram);
    glDeleteShader(nVertex);
    glDeleteShader(nFragment);
    glUseProgram(m_nProgram);
    for (int i = 0; i < m_nPlanes; ++i)
        glUniform1i(glGetUniformLocation(m_nProgram, m_aPlanes[i].pSampler), i);
    const float aPositions[] = {-1, -1, 1, -1, -1, 1, 1, 1};
    const float aTexCoords[] = {0, 0, 1, 0, 0, 1, 1, 1};
    glGenBuffers(2, m_anBuffers);
    glBindBuffer(GL_ARRAY_BUFFER, m_anBuffers[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof(aPositions), aPositions, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, m_anBuffers[1]);
    glBufferData(GL_ARRAY_BUFFER, sizeof(aTexCoords), aTexCoords, GL_STATIC_DRAW);
}

void CBareQuad::CreateTarget()
{
    glGenFramebuffers(1, &m_nFrameBuffer);
    glGenRenderbuffers(1, &m_nColorBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, m_nColorBuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, m_nWidth, m_nHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_nColorBuffer);
}

void CBareQuad::Upload()
{
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    for (int i = 0; i < m_nPlanes; ++i) {
        const SPlane& rPlane = m_aPlanes[i];
        glActiveTexture(GL_TEXTURE0 + static_cast<unsigned int>(i));
        glBindTexture(GL_TEXTURE_2D, rPlane.nTexture);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, rPlane.nRowLength);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, rPlane.nWidth, rPlane.nHeight, rPlane.nUpload,
                        GL_UNSIGNED_BYTE, rPlane.pPixels);
    }
}

void CBareQuad::Draw()
{
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
    glViewport(0, 0, m_nWidth, m_nHeight);
    glUseProgram(m_nProgram);
    for (unsigned int i = 0; i < 2; ++i) {
        glBindBuffer(GL_ARRAY_BUFFER, m_anBuffers[i]);
        glVertexAttribPointer(i, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glEnableVertexAttribArray(i);
    }
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}
