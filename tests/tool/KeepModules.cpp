// Linked into the programs of a sanitizer build only. The GL driver is unloaded when its display ends, and
// what it keeps in its own variables then looks lost, at addresses that no suppression can name any more. So
// no module is ever unloaded, and the leak check stays on.
#include <dlfcn.h>

extern "C" __attribute__((visibility("default"))) int dlclose(void* /*pModule*/) noexcept
{
    return 0;
}
