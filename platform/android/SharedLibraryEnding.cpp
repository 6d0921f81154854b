#include "platform/SiblingLibrary.h"

const char* SharedLibraryEnding()
{
    return ".so";
}
