// GL errors and names as the tests' recording layer sees them.
#include "GLWatch.h"

#include "tests/support/GLRecorder.h"

void BeginGLInput(bool /*bShortMeshes*/)
{
    CGLRecorder::Get().Start();
    CGLRecorder::Get().Stop();
}

std::string TakeGLErrors()
{
    std::string strErrors;
    for (const SGLErrorNote& rNote : CGLRecorder::Get().TakeErrors()) {
        if (rNote.strMessage.find("GL_BGR") == std::string::npos)
            strErrors += rNote.strCall + ": " + std::to_string(rNote.nError) + " " + rNote.strMessage + "\n";
    }
    return strErrors;
}

int LivingGLNames()
{
    return CGLRecorder::Get().LivingGLNames();
}
