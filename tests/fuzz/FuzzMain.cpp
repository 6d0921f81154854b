// What every fuzz program does once, before its first input.
#include "FuzzSupport.h"

#include <csignal>
#include <sys/time.h>
#include <unistd.h>

// The fuzzer's own time limit counts time on the clock: on a busy machine, where a process of low priority
// waits for seconds, it would stop at innocent inputs. This watch counts what the processor spent.
static const int TICKS_A_SECOND = 4;

static void OnTick(int /*nSignal*/)
{
    static unsigned int nLastInput = 0;
    static int nTicks = 0;
    const unsigned int nInput = nInputsBegun.load(std::memory_order_relaxed);
    nTicks = nInput == nLastInput ? nTicks + 1 : 0;
    nLastInput = nInput;
    // The timer runs while the fuzzer itself reads its corpus, too: nothing has begun then.
    if (nInput == 0 || nTicks <= TICKS_A_SECOND)
        return;
    static const char MESSAGE[] = "hangs: one input took more than a second of processor time\n";
    [[maybe_unused]] const ssize_t nWritten = write(STDERR_FILENO, MESSAGE, sizeof MESSAGE - 1);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int* pArgs, char*** pppArgs);
extern "C" int LLVMFuzzerInitialize(int* /*pArgs*/, char*** /*pppArgs*/)
{
    // Contexts without a window, from the software renderer, which draws pictures this small on one thread.
    setenv("EGL_PLATFORM", "surfaceless", 0);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 0);
    setenv("LP_NUM_THREADS", "0", 0);
    struct sigaction sAction = {};
    sAction.sa_handler = OnTick;
    sAction.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &sAction, nullptr);
    itimerval sTimer = {};
    sTimer.it_interval.tv_usec = 1000000 / TICKS_A_SECOND;
    sTimer.it_value = sTimer.it_interval;
    setitimer(ITIMER_PROF, &sTimer, nullptr);
    return 0;
}
