#include "platform/DriverErrors.h"

#include <GLES3/gl31.h>

bool TakeDriverErrors(unsigned int& nLast)
{
    bool bOutOfMemory = false;
    // There is one flag for each of seven kinds.
    for (int i = 0; i < 8; ++i) {
        const GLenum nError = glGetError();
        if (nError == GL_NO_ERROR)
            break;
        nLast = nError;
        bOutOfMemory = bOutOfMemory || nError == GL_OUT_OF_MEMORY;
    }
    return bOutOfMemory;
}
