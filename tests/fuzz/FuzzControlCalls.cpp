// Bytes to calls: every control operation with every kind of argument, in every order, on a dewarper that
// draws between them.
#include "ControlPlayer.h"
#include "FuzzSupport.h"
#include "GLWatch.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    CFuzzBytes oBytes(pData, nSize);
    // Whole meshes with every eighth input.
    BeginGLInput(oBytes.Byte() % 8 != 7);
    CPlayer(oBytes).Play();
    return 0;
}
