// The frame loop of docs/android.md, as a host would write it.
#include "dewarp/android/CustomGPUDewarperVela.h"

#include <ui/GraphicBuffer.h>

bool DewarpFrames(android::GraphicBuffer* (*fNextInput)(), android::GraphicBuffer* (*fNextOutput)(),
                  void (*fDone)(android::GraphicBuffer*));

bool DewarpFrames(android::GraphicBuffer* (*fNextInput)(), android::GraphicBuffer* (*fNextOutput)(),
                  void (*fDone)(android::GraphicBuffer*))
{
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(1920, 1080);
    if (!oDewarper.StartGL())
        return false;
    oDewarper.SetMountType(MOUNT_CEILING);
    oDewarper.SetViewType(VIEW_VCAM);
    oDewarper.SetLensType(LENS_AUTO);
    oDewarper.AbsolutePTZ(30.0f, 60.0f, 100.0f);
    while (android::GraphicBuffer* pInput = fNextInput()) {
        android::GraphicBuffer* const pOutput = fNextOutput();
        if (oDewarper.CreateImageF(pInput, pOutput) && oDewarper.DrawGLScene(true))
            fDone(pOutput);
        oDewarper.DestroyImage();
    }
    return oDewarper.StopGL();
}
