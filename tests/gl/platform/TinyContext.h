/// \file
/// A GL context of the test's own, for what needs no dewarper.
#pragma once

#include <EGL/egl.h>
#include <gtest/gtest.h>

/// Fixture: an OpenGL ES 3.1 context without a surface is current in every test; skipped where none is to be
/// had.
class CTinyContextTest : public testing::Test
{
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override; ///< fails the test when GL errors are left

private:
    static EGLDisplay s_pDisplay;
    static EGLContext s_pContext;
};
