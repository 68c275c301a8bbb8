// A program calls its system libraries by way of pointers, which the import library would bring along. These are found
// first.
#include "ScriptedChooser.h"

#ifdef _WIN64
#define IMPORTED(name) asm("__imp_" name)
#else
#define IMPORTED(name) asm("__imp__" name "@4")
#endif

using Chooser = BOOL(CALLBACK*)(OPENFILENAMEA*);

extern Chooser openFile IMPORTED("GetOpenFileNameA");
extern Chooser saveFile IMPORTED("GetSaveFileNameA");

extern BOOL(CALLBACK* pickFont)(CHOOSEFONTA*) IMPORTED("ChooseFontA");

Chooser openFile = scripted::OpenFile;
Chooser saveFile = scripted::SaveFile;
BOOL(CALLBACK* pickFont)(CHOOSEFONTA*) = scripted::PickFont;
