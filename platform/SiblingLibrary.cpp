#include "platform/SiblingLibrary.h"

#include <string>

#include <dlfcn.h>

/// Folder of the file that this function is in, with its slash; empty where that is not known.
static std::string OwnFolder()
{
    Dl_info sInfo = {};
    if (dladdr(reinterpret_cast<const void*>(&OwnFolder), &sInfo) == 0 || sInfo.dli_fname == nullptr)
        return std::string();
    const std::string strFile = sInfo.dli_fname;
    return strFile.substr(0, strFile.rfind('/') + 1);
}

void* FindSiblingFunction(const char* pLibrary, const char* pFunction)
{
    void* const pLoaded = dlsym(RTLD_DEFAULT, pFunction);
    if (pLoaded != nullptr)
        return pLoaded;
    const std::string strName = std::string(pLibrary) + SharedLibraryEnding();
    const std::string strFolder = OwnFolder();
    void* pHandle =
        strFolder.empty() ? nullptr : dlopen((strFolder + strName).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (pHandle == nullptr)
        pHandle = dlopen(strName.c_str(), RTLD_NOW | RTLD_LOCAL);
    return pHandle != nullptr ? dlsym(pHandle, pFunction) : nullptr;
}
