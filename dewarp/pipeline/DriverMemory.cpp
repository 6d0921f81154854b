// What happens when the driver has no memory for an object of a frame.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/overlays/GPUObjString.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/views/GPUObjFisheye.h"
#include "platform/DriverErrors.h"

#include <android/log.h>

#include <cstring>

/// True when an object of this frame could not be made. The driver is asked only after objects were made:
/// steady frames ask nothing. Stays true until the frame has ended.
bool CCustomGPUDewarper::LacksDriverMemory()
{
    if (bObjectsMade || pGeometry->m_bHandedOver) {
        bObjectsMade = false;
        pGeometry->m_bHandedOver = false;
        if (TakeDriverErrors(nErrorOfFrame))
            bDriverMemoryLacks = true;
    }
    return bDriverMemoryLacks;
}

/// Ends a frame that the driver had no memory for: which objects are without contents cannot be known, so all
/// of them are made anew with the next frame that is handed over.
void CCustomGPUDewarper::GiveUpFrameObjects()
{
    __android_log_print(ANDROID_LOG_ERROR, DEWARP_LOG_TAG, "%s: the driver is out of memory", "DrawGLScene");
    bDriverMemoryLacks = false;
    FreeTextures();
    std::memset(anTextureUnitSize, 0, sizeof(anTextureUnitSize));
    bFrameInTextures = false;
    bTexturesNeedInit = true;
    pStringObject->Reset();
    pAuxFisheye->Reset();
    pAuxFisheye2->Reset();
    RequestEverything();
}
