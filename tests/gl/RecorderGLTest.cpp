// The recording layer itself: tests may only trust it if it stands before every call.
#include "platform/ShaderDialect.h"
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <dlfcn.h>
#include <gtest/gtest.h>

/// The file of the library that calls GL, from where one of its functions lies.
static std::string LibraryPath()
{
    Dl_info sInfo = {};
    dladdr(reinterpret_cast<void*>(&SetShaderPrecisionAdaption), &sInfo);
    return sInfo.dli_fname == nullptr ? "" : sInfo.dli_fname;
}

TEST(Recorder, StandsBeforeEveryEntryPointThatTheLibraryCalls)
{
    const std::string strCommand = "nm -D --undefined-only '" + LibraryPath() + "' 2>/dev/null";
    std::FILE* pPipe = popen(strCommand.c_str(), "r");
    ASSERT_NE(pPipe, nullptr);
    int nSeen = 0;
    std::string strMissing;
    std::array<char, 512> acLine = {};
    while (std::fgets(acLine.data(), acLine.size(), pPipe) != nullptr) {
        std::array<char, 256> acName = {};
        if (std::sscanf(acLine.data(), " U %255[A-Za-z0-9_]", acName.data()) != 1) // NOLINT(cert-err34-c)
            continue;
        const std::string strName = acName.data();
        const bool bGL = strName.starts_with("gl") && strName.size() > 2 && std::isupper(strName[2]) != 0;
        const bool bEGL = strName.starts_with("egl") && strName.size() > 3 && std::isupper(strName[3]) != 0;
        if (!bGL && !bEGL)
            continue;
        ++nSeen;
        Dl_info sFound = {};
        Dl_info sHere = {};
        dladdr(dlsym(RTLD_DEFAULT, strName.c_str()), &sFound);
        dladdr(reinterpret_cast<void*>(&LibraryPath), &sHere);
        if (sFound.dli_fbase != sHere.dli_fbase)
            strMissing += strName + " ";
    }
    pclose(pPipe);
    if (nSeen == 0)
        GTEST_SKIP() << "no nm here to list what the library calls";
    EXPECT_GT(nSeen, 40);
    EXPECT_EQ(strMissing, "");
}

TEST(Recorder, NamesTheCallThatRaisedAnErrorAndLeavesTheErrorToTheApplication)
{
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.Started());
    EXPECT_NO_GL_ERROR();
    glBindBuffer(GL_TEXTURE_2D, 0);
    const std::vector<SGLErrorNote> vErrors = CGLRecorder::Get().TakeErrors();
    ASSERT_EQ(vErrors.size(), 1u);
    EXPECT_EQ(vErrors[0].strCall, "glBindBuffer");
    EXPECT_EQ(vErrors[0].nError, static_cast<unsigned int>(GL_INVALID_ENUM));
    EXPECT_NE(vErrors[0].strMessage, "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(Recorder, CountsLivingNamesAndMakesCallsFail)
{
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.Started());
    CGLRecorder& oRecorder = CGLRecorder::Get();
    const int nBefore = oRecorder.Living(GL_KIND_TEXTURE);
    GLuint anNames[2] = {};
    glGenTextures(2, anNames);
    EXPECT_EQ(oRecorder.Living(GL_KIND_TEXTURE), nBefore + 2);
    glDeleteTextures(2, anNames);
    EXPECT_EQ(oRecorder.Living(GL_KIND_TEXTURE), nBefore);

    oRecorder.Inject("glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED, 1, 1);
    EXPECT_NE(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_UNSUPPORTED));
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_UNSUPPORTED));
    EXPECT_NE(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_UNSUPPORTED));
}

TEST(Recorder, HeapCounterSeesThisThreadAndLeavesTheDriverOut)
{
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.Started());
    CHeapCounter oHeap;
    GLuint nTexture = 0;
    glGenTextures(1, &nTexture);
    glDeleteTextures(1, &nTexture);
    EXPECT_EQ(oHeap.Count(), 0);
    std::vector<int> vBlock(1000);
    int* volatile pSeen = vBlock.data(); // a block that nobody sees may be left out
    EXPECT_EQ(oHeap.Count(), 1);
    EXPECT_EQ(pSeen[999], 0);
}
