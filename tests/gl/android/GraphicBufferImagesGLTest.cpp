// Images of graphic buffers, the target made of them, and the fence.
#include "TestVela.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl31.h>

#include <GLES2/gl2ext.h>
#include <cstdint>
#include <cstdio>

namespace
{

using GraphicBufferImages = CVelaTest;

} // namespace

TEST_F(GraphicBufferImages, AnImageIsMadeOfTheInput)
{
    const ANativeWindowBuffer& rNative = *m_oInput.get()->getNativeBuffer();
    char acExpected[300];
    std::snprintf(acExpected, sizeof acExpected,
                  "CreateImage: Calling eglCreateImageKHR------ with magic 0x5f626672 version %d 0 1 0x%x "
                  "gaphicb width is: 48, height is: 32, stride: 64 and format is: 35",
                  rNative.handle->version, static_cast<unsigned int>(rNative.handle->data[0]));
    CLogCapture oLog;
    EXPECT_TRUE(m_oDewarper.CreateImage(m_oInput.get()));
    EXPECT_NE(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    ASSERT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, acExpected);
    EXPECT_EQ(oLog.Lines()[0].nPriority, 4);
    EXPECT_EQ(oLog.Lines()[1].strText, "CreateImage: eglCreateImageKHR sucessfull");
    EXPECT_EQ(oLog.Lines()[1].nPriority, 4);
    EXPECT_TRUE(m_oDewarper.CreateImage(m_oInput.get())) << "the former image goes";
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 1);
    m_oDewarper.DestroyImage();
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 0);
}

TEST_F(GraphicBufferImages, AnImageThatCannotBeMadeIsReported)
{
    CTestBuffer oBad(48, 32, 4711);
    android::GraphicBuffer* const aBuffers[] = {m_oInput.get(), oBad.get(), nullptr};
    for (android::GraphicBuffer* pBuffer : aBuffers) {
        m_oRecorder.Start();
        if (pBuffer == m_oInput.get())
            m_oRecorder.Inject("eglCreateImageKHR", 0.0);
        CLogCapture oLog;
        EXPECT_FALSE(m_oDewarper.CreateImage(pBuffer));
        EXPECT_EQ(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
        EXPECT_EQ(oLog.Lines().back().strText, "CreateImage: Error creating egl image ");
        EXPECT_EQ(oLog.Lines().back().nPriority, 6);
        const std::vector<SGLCall> vDestroyed = m_oRecorder.Named("eglDestroyImageKHR");
        ASSERT_EQ(vDestroyed.size(), 1u) << "the image is destroyed although there is none";
        EXPECT_EQ(vDestroyed[0].aArgs[1], 0.0);
    }
    EXPECT_TRUE(m_oDewarper.CreateImage(m_oInput.get()));
}

TEST_F(GraphicBufferImages, AFrameBindsBothBuffers)
{
    CLogCapture oLog;
    m_oRecorder.Start();
    EXPECT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    EXPECT_EQ(oLog.Text(), "");
    EXPECT_NE(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_NE(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    const std::vector<SGLCall> vStorage = m_oRecorder.Named("glEGLImageTargetRenderbufferStorageOES");
    ASSERT_EQ(vStorage.size(), 1u);
    EXPECT_EQ(vStorage[0].Int(0), GL_RENDERBUFFER);
    EXPECT_EQ(vStorage[0].aArgs[1], NumberOfPointer(m_oDewarper.mOutputImage));
    GLint nBound = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &nBound);
    EXPECT_EQ(nBound, static_cast<GLint>(m_oDewarper.nRenderbuffer));
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));

    // What the dewarper is told of the frame.
    EXPECT_EQ(m_oDewarper.pParams->nImageWidth, 48);
    EXPECT_EQ(m_oDewarper.pParams->nImageHeight, 32);
    EXPECT_EQ(m_oDewarper.pParams->nImageStride, 64);
    EXPECT_EQ(m_oDewarper.nImageFormat, 5);
    EXPECT_EQ(m_oDewarper.nImageYUVSpace, 6);
    EXPECT_EQ(m_oDewarper.nImageYUVRange, 4);
    EXPECT_EQ(m_oDewarper.pInputPlanes[0], nullptr);
    EXPECT_FALSE(m_oDewarper.sMainShader.bGainRequested);
    EXPECT_EQ(m_oDewarper.nLastSetTimestamp, 0u);
    EXPECT_TRUE(m_oDewarper.bTextureUpload);
}

TEST_F(GraphicBufferImages, AFrameWithABadOutputIsRefused)
{
    CTestBuffer oBad(m_oDewarper.nTargetWidth, m_oDewarper.nTargetHeight, 4711);
    CLogCapture oLog;
    EXPECT_FALSE(m_oDewarper.CreateImageF(m_oInput.get(), oBad.get()));
    EXPECT_EQ(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, "CreateImageF: Error creating egl image ");
    EXPECT_EQ(oLog.Lines()[0].nPriority, 6);
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 0);
    EXPECT_FALSE(m_oDewarper.DrawGLScene(true)) << "there is nothing to sample";
    EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
}

TEST_F(GraphicBufferImages, EitherImageOfAFrameMayFail)
{
    for (int nSkip = 0; nSkip < 2; ++nSkip) {
        m_oRecorder.Inject("eglCreateImageKHR", 0.0, nSkip);
        CLogCapture oLog;
        EXPECT_FALSE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        EXPECT_EQ(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
        // The output's image is left as it is.
        EXPECT_EQ(m_oDewarper.mOutputImage == EGL_NO_IMAGE_KHR, nSkip == 1);
        EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), nSkip == 1 ? 0 : 1);
        EXPECT_EQ(oLog.Text(), "CreateImageF: Error creating egl image \n");
        EXPECT_EQ(m_oDewarper.GetLastErrorText(), "CreateImageF: Error creating egl image ");
    }
    EXPECT_FALSE(m_oDewarper.CreateImageF(nullptr, m_oOutput.get()));
    EXPECT_FALSE(m_oDewarper.CreateImageF(m_oInput.get(), nullptr));
    // The next good frame is drawn, and nothing of the bad ones lives on.
    EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 0);
}

TEST_F(GraphicBufferImages, ImagesAreLetGoOfOutputFirst)
{
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    const double fInput = NumberOfPointer(m_oDewarper.mInputImage);
    const double fOutput = NumberOfPointer(m_oDewarper.mOutputImage);
    m_oRecorder.Start();
    m_oDewarper.DestroyImage();
    m_oDewarper.DestroyImage();
    const std::vector<SGLCall> vDestroyed = m_oRecorder.Named("eglDestroyImageKHR");
    ASSERT_EQ(vDestroyed.size(), 2u);
    EXPECT_EQ(vDestroyed[0].aArgs[1], fOutput);
    EXPECT_EQ(vDestroyed[1].aArgs[1], fInput);
    EXPECT_EQ(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 0);
}

TEST_F(GraphicBufferImages, AFrameThatWasNotLetGoOfIsReplaced)
{
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
        ASSERT_TRUE(m_oDewarper.DrawGLScene(true));
        EXPECT_EQ(m_oRecorder.Living(EGL_KIND_IMAGE), 2);
    }
}

TEST_F(GraphicBufferImages, ANewInputSizeHasTexturesAndShadersMadeAnew)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    CTestBuffer oOther(32, 32);
    ASSERT_TRUE(m_oDewarper.CreateImageF(oOther.get(), m_oOutput.get()));
    EXPECT_TRUE(m_oDewarper.bTexturesNeedInit);
    EXPECT_TRUE(m_oDewarper.sMainShader.bForceReload);
    EXPECT_TRUE(m_oDewarper.DrawGLScene(true));
    EXPECT_FALSE(m_oDewarper.bTexturesNeedInit);
}

TEST_F(GraphicBufferImages, TheInputBecomesAnExternalTextureOnUnit0)
{
    ASSERT_TRUE(m_oDewarper.CreateImage(m_oInput.get()));
    m_oDewarper.pParams->nImageStride = 64;
    glActiveTexture(GL_TEXTURE5);
    m_oRecorder.Start();
    EXPECT_TRUE(m_oDewarper.OSDependentUploadTexture());
    EXPECT_NE(m_oDewarper.nInputTexture, 0u);
    GLint nActive = 0;
    GLint nBound = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &nActive);
    glGetIntegerv(GL_TEXTURE_BINDING_EXTERNAL_OES, &nBound);
    EXPECT_EQ(nActive, GL_TEXTURE0);
    EXPECT_EQ(nBound, static_cast<GLint>(m_oDewarper.nInputTexture));
    const std::vector<SGLCall> vTargets = m_oRecorder.Named("glEGLImageTargetTexture2DOES");
    ASSERT_EQ(vTargets.size(), 1u);
    EXPECT_EQ(vTargets[0].Int(0), GL_TEXTURE_EXTERNAL_OES);
    EXPECT_EQ(vTargets[0].aArgs[1], NumberOfPointer(m_oDewarper.mInputImage));
    const GLenum aParameters[][2] = {{GL_TEXTURE_MIN_FILTER, GL_LINEAR},
                                     {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                                     {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
                                     {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE}};
    for (const auto& rParameter : aParameters) {
        GLint nValue = 0;
        glGetTexParameteriv(GL_TEXTURE_EXTERNAL_OES, rParameter[0], &nValue);
        EXPECT_EQ(nValue, static_cast<GLint>(rParameter[1]));
    }
    EXPECT_EQ(m_oRecorder.Count("glTexImage2D") + m_oRecorder.Count("glTexSubImage2D"), 0);

    // Bound and unbound on the same unit, whichever is selected.
    glActiveTexture(GL_TEXTURE5);
    EXPECT_TRUE(m_oDewarper.OSDependentUnBindTextures());
    glGetIntegerv(GL_ACTIVE_TEXTURE, &nActive);
    glGetIntegerv(GL_TEXTURE_BINDING_EXTERNAL_OES, &nBound);
    EXPECT_EQ(nActive, GL_TEXTURE0);
    EXPECT_EQ(nBound, 0);
    glActiveTexture(GL_TEXTURE5);
    EXPECT_TRUE(m_oDewarper.OSDependentBindTextures());
    glGetIntegerv(GL_TEXTURE_BINDING_EXTERNAL_OES, &nBound);
    EXPECT_EQ(nBound, static_cast<GLint>(m_oDewarper.nInputTexture));
    m_oDewarper.DestroyImage();
}

TEST_F(GraphicBufferImages, UnpackAlignmentFollowsTheStride)
{
    ASSERT_TRUE(m_oDewarper.CreateImage(m_oInput.get()));
    const int aCases[][2] = {{1920, 8}, {1924, 4}, {1922, 2}, {1921, 1}};
    for (const auto& rCase : aCases) {
        m_oDewarper.pParams->nImageStride = rCase[0];
        m_oDewarper.bTexturesNeedInit = true;
        EXPECT_TRUE(m_oDewarper.InitializeTextures());
        EXPECT_FALSE(m_oDewarper.bTexturesNeedInit);
        GLint nAlignment = 0;
        glGetIntegerv(GL_UNPACK_ALIGNMENT, &nAlignment);
        EXPECT_EQ(nAlignment, rCase[1]) << rCase[0];
    }
    EXPECT_EQ(m_oDewarper.nTextureY, 0u) << "planes of the CPU have no textures here";
    m_oDewarper.DestroyImage();
}

TEST_F(GraphicBufferImages, AnUploadWithoutAnImageFails)
{
    m_oDewarper.bTexturesNeedInit = true;
    CLogCapture oLog;
    EXPECT_FALSE(m_oDewarper.InitializeTextures());
    EXPECT_TRUE(m_oDewarper.bTexturesNeedInit);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, "InitializeTextures: Error uploading texture");
    EXPECT_EQ(oLog.Lines()[0].nPriority, 6);
}

TEST_F(GraphicBufferImages, TheTargetIsMadeAndFreed)
{
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    ASSERT_TRUE(m_oDewarper.OSDependentUploadTexture());
    EXPECT_TRUE(m_oDewarper.OSDependentFBO(true));
    EXPECT_EQ(m_oDewarper.nInputTexture, 0u);
    EXPECT_EQ(m_oDewarper.nRenderbuffer, 0u);
    EXPECT_EQ(m_oDewarper.nFramebuffer, 0u);
    EXPECT_EQ(m_oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    EXPECT_NE(m_oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    m_oDewarper.bExternalTarget = true;
    EXPECT_TRUE(m_oDewarper.OSDependentFBO(false));
    EXPECT_EQ(m_oDewarper.nFramebuffer, 0u) << "the target is somebody else's";
    m_oDewarper.bExternalTarget = false;
    m_oRecorder.Start();
    EXPECT_TRUE(m_oDewarper.OSDependentFBO(false));
    EXPECT_NE(m_oDewarper.nFramebuffer, 0u);
    EXPECT_NE(m_oDewarper.nRenderbuffer, 0u);
    EXPECT_EQ(m_oRecorder.Count("glRenderbufferStorage"), 0);
    const std::vector<SGLCall> vAttached = m_oRecorder.Named("glFramebufferRenderbuffer");
    ASSERT_EQ(vAttached.size(), 1u);
    EXPECT_EQ(vAttached[0].Int(1), GL_COLOR_ATTACHMENT0);
    EXPECT_EQ(vAttached[0].Int(3), static_cast<int>(m_oDewarper.nRenderbuffer));
    EXPECT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
}

TEST_F(GraphicBufferImages, TheDefaultTargetIsBoundAndAttachedAgain)
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    m_oDewarper.BindDefaultFrameBuffer();
    GLint nFramebuffer = 0;
    GLint nRenderbuffer = 0;
    GLint nAttached = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &nFramebuffer);
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &nRenderbuffer);
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &nAttached);
    EXPECT_EQ(nFramebuffer, static_cast<GLint>(m_oDewarper.nFramebuffer));
    EXPECT_EQ(nRenderbuffer, static_cast<GLint>(m_oDewarper.nRenderbuffer));
    EXPECT_EQ(nAttached, static_cast<GLint>(m_oDewarper.nRenderbuffer));
}

TEST_F(GraphicBufferImages, ContentsGoToTheDriverOnlyWhenTheyChanged)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    const int nNames = m_oRecorder.LivingGLNames();
    m_oRecorder.Start();
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oRecorder.Count("glTexSubImage2D"), 0);
    void* pMemory = nullptr;
    m_oInput.get()->lock(android::GraphicBuffer::USAGE_SW_READ_OFTEN, &pMemory);
    m_oInput.get()->unlock();
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oRecorder.Count("glTexSubImage2D"), 0) << "reading changes nothing";
    m_oInput.Fill(m_oFrame);
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oRecorder.Count("glTexSubImage2D"), 1);
    EXPECT_EQ(m_oRecorder.LivingGLNames(), nNames) << "nothing is made anew in a steady frame";
}

TEST_F(GraphicBufferImages, GLStateThatTheDewarperDoesNotSetStaysAsItIs)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, m_oDewarper.nFontTexture);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 77);
    glPixelStorei(GL_PACK_ROW_LENGTH, 78);
    m_oInput.Fill(m_oFrame);
    ASSERT_TRUE(m_oDewarper.CreateImageF(m_oInput.get(), m_oOutput.get()));
    GLint nUnpack = 0;
    GLint nActive = 0;
    glGetIntegerv(GL_UNPACK_ROW_LENGTH, &nUnpack);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &nActive);
    EXPECT_EQ(nUnpack, 77);
    EXPECT_EQ(nActive, GL_TEXTURE3);
    ASSERT_TRUE(m_oDewarper.DrawGLScene(true));
    GLint nPack = 0;
    GLint nTarget = 0;
    glGetIntegerv(GL_PACK_ROW_LENGTH, &nPack);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &nTarget);
    EXPECT_EQ(nPack, 78);
    EXPECT_EQ(nTarget, static_cast<GLint>(m_oDewarper.nFramebuffer));
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    m_oDewarper.DestroyImage();
}
