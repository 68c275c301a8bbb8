// The seam: the Win32 names that the program calls, for platforms that do not have them of their own.
//
// Every function, type and constant carries Microsoft's name, signature and value. What the program does not call is not
// declared. Where the layer does less than Windows, the line above the declaration says so.
#pragma once

#include "win/types.h"

#include "win/controls.h"
#include "win/dialogs.h"
#include "win/drawing.h"
#include "win/kernel.h"
#include "win/menus.h"
#include "win/messages.h"
#include "win/registry.h"
#include "win/resources.h"
#include "win/windowing.h"
