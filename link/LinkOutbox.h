// What the link decides under its lock and carries out when it has let go of it.
#pragma once

#include "DeviceLink.h"

struct DeviceLink::Outbox {
    UINT message = 0;  // 0 for none
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    DWORD pauseMs = 0;
};
