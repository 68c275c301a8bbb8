// What the program carries with it: strings, dialogs, menus, accelerators, icons. The language is the user's, or the other
// one where a resource exists in one language alone.
#pragma once

#include "win/types.h"

// A number in place of a name.
#define MAKEINTRESOURCEA(number) (reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(number))))

#define RT_ICON MAKEINTRESOURCEA(3)
#define RT_MENU MAKEINTRESOURCEA(4)
#define RT_DIALOG MAKEINTRESOURCEA(5)
#define RT_STRING MAKEINTRESOURCEA(6)
#define RT_ACCELERATOR MAKEINTRESOURCEA(9)
#define RT_GROUP_ICON MAKEINTRESOURCEA(14)
#define RT_VERSION MAKEINTRESOURCEA(16)

// By number alone. A resource stays loaded, so nothing is freed. Whatever the module, the program's resources are meant.
// Language 0 is the user's, or the other one.
HRSRC FindResourceExA(HMODULE module, LPCSTR type, LPCSTR name, WORD language);
HGLOBAL LoadResource(HMODULE module, HRSRC resource);
LPVOID LockResource(HGLOBAL resource);
DWORD SizeofResource(HMODULE module, HRSRC resource);

// Cut at the buffer's size, never inside a character of two bytes; gives the number of bytes without the terminator, 0 for a
// string that is not there. The buffer itself must be there: the text is not given by address.
int LoadStringA(HINSTANCE instance, UINT id, LPSTR buffer, int size);
// The image of the size that the desktop shows in a title bar is chosen when it is shown.
HICON LoadIconA(HINSTANCE instance, LPCSTR name);

// Without a name: the program itself.
HMODULE GetModuleHandleA(LPCSTR name);
HMODULE LoadLibraryA(LPCSTR name);  // Of the libraries that the layer itself stands in for; none by a path.
// By ordinal alone.
FARPROC GetProcAddress(HMODULE module, LPCSTR name);

// Each user has one mutex, whatever the name. It exists until its first handle is closed. Until then each other call, in
// this process or another, sets ERROR_ALREADY_EXISTS. FindWindowExA of other copies finds the windows of the copy that holds
// it. For the thread that owns the windows.
HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCSTR name);

// The entry of a program with windows.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previousInstance, LPSTR commandLine, int showCommand);
