// Shader texts of the Android class, and when they change.
#include "TestVela.h"

namespace
{

const char* const VERTEX_HEAD = "#version 310 es \n"
                                "uniform mat4 uMVPMatrix;   \n"
                                "in vec4 vPosition;   \n"
                                "in vec2 a_TexCoordinate; \n"
                                "out vec2 v_TexCoordinate;   \n"
                                "void main()                  \n"
                                "{                            \n"
                                "   v_TexCoordinate = a_TexCoordinate; \n"
                                "   gl_Position = uMVPMatrix * vPosition; \n";
const char* const VERTEX_UPSIDE_DOWN = "   gl_Position.y = -1.0 * gl_Position.y; \n";
const char* const VERTEX_END = "}                            \n";

const char* const FRAGMENT_HEAD = "#version 310 es \n"
                                  "#extension GL_EXT_YUV_target : require \n"
                                  "precision mediump float;\n"
                                  "uniform __samplerExternal2DY2YEXT uTexture;\n"
                                  "in vec2 v_TexCoordinate;  \n";
const char* const OUT_PLAIN = "out vec4 fragColor; \n";
const char* const OUT_YUV = "layout (yuv) out vec4 fragColor; \n";
const char* const OVERLAY = "uniform sampler2D samplerInputOverlay;\n";
const char* const MAIN = "void main()\n{\n";
const char* const FETCH = "   vec4 yuvTex = texture(uTexture, v_TexCoordinate); \n";
const char* const BLEND = "   vec4 overlay = texture(samplerInputOverlay, v_TexCoordinate);        \n"
                          "   yuvTex.r = yuvTex.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
                          "   yuvTex.g = yuvTex.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
                          "   yuvTex.b = yuvTex.b*(1.0 - overlay.a) + overlay.b *  overlay.a;        \n";
const char* const FRAGMENT_END = "   fragColor  = yuvTex;        \n}\n";

const char* const DISCARD = "   if (gl_FragCoord.x < 1.0) discard;\n";

/// Without a view that discards anything, but with a discard text to be seen in its place.
class CTextDewarper : public CCustomGPUDewarperVela
{
public:
    std::string GetFragShaderDiscardCode() override { return DISCARD; }
};

SGPUString Text(const char* pText)
{
    SGPUString sString;
    sString.strText = pText;
    sString.nHeight = 16;
    sString.nX = 4;
    sString.nY = 4;
    return sString;
}

std::string StateLine(int nWanted, int nOld, EGLContext pContext)
{
    return "OSDependentCheckLoadShaders: bDrawToTexture=" + std::to_string(nWanted) +
           " mDrawToTexture=" + std::to_string(nOld) +
           " mContext=" + std::to_string(static_cast<int>(reinterpret_cast<std::intptr_t>(pContext)));
}

using VelaTexts = CVelaTest;

} // namespace

TEST(VelaShaderTexts, AreTheGivenOnes)
{
    CTextDewarper oDewarper;
    oDewarper.SetFlip(true, true); // has no say here
    for (const bool bToTexture : {false, true}) {
        oDewarper.mDrawToTexture = bToTexture;
        EXPECT_EQ(oDewarper.GetVertexShaderCode(),
                  std::string(VERTEX_HEAD) + (bToTexture ? "" : VERTEX_UPSIDE_DOWN) + VERTEX_END);
        for (const bool bOverlay : {false, true}) {
            oDewarper.sMainShader.bInputOverlay = bOverlay;
            for (const int nFormat : {0, 5, 10, 99}) {
                oDewarper.nImageFormat = nFormat;
                EXPECT_EQ(oDewarper.GetFragShaderCode(), std::string(FRAGMENT_HEAD) +
                                                             (bToTexture ? OUT_PLAIN : OUT_YUV) +
                                                             (bOverlay ? OVERLAY : "") + MAIN + DISCARD +
                                                             FETCH + (bOverlay ? BLEND : "") + FRAGMENT_END);
                EXPECT_EQ(oDewarper.sMainShader.bInputOverlayInShader, bOverlay);
            }
        }
    }
}

TEST_F(VelaTexts, TheRecordKeepsTheGivenTextWhateverTheDriverGets)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    const std::string& rText = m_oDewarper.sMainShader.strFragmentShader;
    EXPECT_EQ(rText.find(std::string(FRAGMENT_HEAD) + OUT_YUV + MAIN), 0u) << rText;
    EXPECT_EQ(m_oDewarper.sMainShader.strVertexShader,
              std::string(VERTEX_HEAD) + VERTEX_UPSIDE_DOWN + VERTEX_END);
}

TEST_F(VelaTexts, TheFirstStringSendsTheViewThroughATexture)
{
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    m_oDewarper.SetStrings({Text("AB")});
    CLogCapture oLog;
    CGLRecorder::Get().Start();
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(oLog.Text(), StateLine(1, 0, m_oDewarper.mContext) + "\n");
    EXPECT_EQ(oLog.Lines()[0].nPriority, 4);
    EXPECT_TRUE(m_oDewarper.mDrawToTexture);
    EXPECT_NE(m_oDewarper.sMainShader.strFragmentShader.find(std::string("\n") + OUT_PLAIN),
              std::string::npos);
    EXPECT_EQ(m_oDewarper.sMainShader.strVertexShader, std::string(VERTEX_HEAD) + VERTEX_END);
    oLog.Clear();
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(oLog.Text(), "");
    m_oDewarper.SetStrings(std::vector<SGPUString>());
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(oLog.Text(), StateLine(0, 1, m_oDewarper.mContext) + "\n");
    EXPECT_FALSE(m_oDewarper.mDrawToTexture);
}

TEST_F(VelaTexts, AnOutputOverlayDoesSoToo)
{
    STestImage sOverlay(8, 8);
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 0);
    m_oDewarper.SetOutputOverlay(sOverlay.vPixels.data(), 8, 8, 0);
    CLogCapture oLog;
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 1);
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 0);
    EXPECT_TRUE(m_oDewarper.mDrawToTexture);
    m_oDewarper.SetStrings({Text("AB")});
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 0);
    m_oDewarper.SetOutputOverlay(nullptr, 0, 0, 0);
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 0);
    m_oDewarper.SetStrings(std::vector<SGPUString>());
    EXPECT_EQ(m_oDewarper.OSDependentCheckLoadShaders(), 1);
    EXPECT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
}

TEST_F(VelaTexts, StringProgramsAreChosenAnewWhenStringsComeOrGo)
{
    m_oDewarper.SetStrings({Text("AB")});
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(m_oDewarper.nStringsState, 0);
    CGLRecorder::Get().Start();
    ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
    EXPECT_EQ(CGLRecorder::Get().Count("glDeleteProgram"), 0);
    // The first call of all frees both, and so does every change between strings and none.
    for (const int nState : {-1, 1}) {
        SCOPED_TRACE(nState);
        ASSERT_TRUE(m_oDewarper.sStringShader.IsUsable());
        ASSERT_TRUE(m_oDewarper.sStringCompositeShader.IsUsable());
        m_oDewarper.nStringsState = nState;
        CGLRecorder::Get().Start();
        ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 0) << "both are kept";
        EXPECT_GT(CGLRecorder::Get().Count("glClearBufferfv"), 0) << "and every text is drawn anew";
        EXPECT_EQ(m_oDewarper.nStringsState, 0);
    }
}
