// Bytes to calls: every control operation with every kind of argument, in every order, on a dewarper that
// draws between them. Some inputs are played against a second dewarper: their pictures must follow from the
// state, whatever led to it.
#include "ControlPlayer.h"
#include "FuzzSupport.h"
#include "GLWatch.h"

#include "tests/gl/state/StateCalls.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

// First bytes from here on choose a comparison of states; no input that was kept earlier begins with one.
static const unsigned int FIRST_STATE_BYTE = 0xF0;
static const unsigned int LAST_STATE_BYTE = 0xFA;
// These choose the processor engine: even ones for calls, odd ones for a comparison of states.
static const unsigned int FIRST_PROCESSOR_BYTE = 0xE8;
static const unsigned int LAST_PROCESSOR_BYTE = 0xEF;
static const int MOST_STATE_CALLS = 12;

static void PlayState(CFuzzBytes& rBytes, EDewarpEngine eEngine)
{
    const std::vector<SStateCall> vCalls = ReadStateCalls(rBytes, MOST_STATE_CALLS);
    CStatePlayer oPlayer(eEngine);
    const std::string strFault = oPlayer.Play(vCalls);
    oPlayer.Dewarper().StopGL();
    if (strFault.empty())
        return;
    for (const SStateCall& rCall : vCalls)
        std::fprintf(stderr, "    %s\n", rCall.strWords.c_str());
    RequireNothing(strFault, "state");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    const CFuzzInput oInput;
    CFuzzBytes oBytes(pData, nSize);
    const unsigned int nFirst = oBytes.Byte();
    // Whole meshes with every eighth input.
    BeginGLInput(nFirst % 8 != 7);
    const bool bProcessor = nFirst >= FIRST_PROCESSOR_BYTE && nFirst <= LAST_PROCESSOR_BYTE;
    const EDewarpEngine eEngine = bProcessor ? ENGINE_CPU : ENGINE_GL;
    if (bProcessor ? nFirst % 2 != 0 : nFirst >= FIRST_STATE_BYTE && nFirst <= LAST_STATE_BYTE)
        PlayState(oBytes, eEngine);
    else
        CPlayer(oBytes, eEngine).Play();
    return 0;
}
