// Draws a number of frames in which nothing was requested, for counting instructions:
//     lumor-steady-frame FRAMES
// bench/count_instructions.sh runs it twice and takes the difference.

#include "bench/Frames.h"
#include "dewarp/LumorDewarp.h"

#include <cstdlib>

int main(int nArguments, char** ppArguments)
{
    const int nFrames = nArguments > 1 ? std::atoi(ppArguments[1]) : 1;
    setenv("EGL_PLATFORM", "surfaceless", 0);
    CBenchFrame oFrame(IMAGE_FORMAT_NV12, 256, 256);
    CCustomGPUDewarperOffscreen oDewarper;
    oDewarper.InitGL(64, 64);
    if (!oDewarper.StartGL())
        return 77;
    oDewarper.SetLensType(LENS_DSL419);
    for (int i = 0; i < nFrames; ++i) {
        if (!oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0) || !oDewarper.DrawGLScene(true))
            return 1;
    }
    return 0;
}
