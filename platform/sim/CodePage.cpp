// Lead bytes of the code page that the run has chosen.
#include <windows.h>

#include "Scheduler.h"

BOOL IsDBCSLeadByte(BYTE byte) {
    const sim::Scheduler* scheduler = sim::Scheduler::Current();
    if (scheduler == nullptr || scheduler->options.codePage != 932) {
        return FALSE;
    }
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}
