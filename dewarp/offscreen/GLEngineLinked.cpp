// Where both parts of the library are linked together, the one has the other's function at once.
#include "dewarp/GLEngine.h"

FMakeGLDewarper FindGLEngine()
{
    return &lumor_dewarp_make_gl_dewarper;
}
