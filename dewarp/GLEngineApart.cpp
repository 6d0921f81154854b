// The core by itself: the other part of the library is there, or comes when it is asked for, or is not to be
// had.
#include "dewarp/GLEngine.h"
#include "platform/SiblingLibrary.h"

FMakeGLDewarper FindGLEngine()
{
    return reinterpret_cast<FMakeGLDewarper>(
        FindSiblingFunction("liblumor_dewarp", "lumor_dewarp_make_gl_dewarper"));
}
