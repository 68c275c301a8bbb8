// The code page of a run, which has no lead bytes.
#include <windows.h>

BOOL IsDBCSLeadByte(BYTE) {
    return FALSE;
}
