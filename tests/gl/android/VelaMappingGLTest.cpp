// Where points of a graphic buffer's picture lie in the frame.
#include "TestVela.h"

using VelaMapping = CVelaTest;

TEST_F(VelaMapping, PointsAreThoseOfTheDrawnBufferWhichNoFlipMirrors)
{
    m_oDewarper.SetViewType(VIEW_FISHEYE);
    for (const bool bFlip : {false, true}) {
        m_oDewarper.SetFlip(bFlip, false);
        ASSERT_TRUE(m_oDewarper.DrawFrame(m_oInput, m_oOutput));
        double x = 0.0;
        double y = 0.0;
        // The frame is shown at five quarters of its size, between bars of two pixels.
        ASSERT_TRUE(m_oDewarper.ViewToFrame(12.0, 5.0, x, y));
        EXPECT_NEAR(x, 8.0, 0.001);
        EXPECT_NEAR(y, 4.0, 0.001);
        ASSERT_TRUE(m_oDewarper.FrameToView(8.0, 4.0, x, y));
        EXPECT_NEAR(x, 12.0, 0.001);
        EXPECT_NEAR(y, 5.0, 0.001);
        EXPECT_FALSE(m_oDewarper.ViewToFrame(1.0, 5.0, x, y));
    }
    EXPECT_NO_GL_ERROR();
}
