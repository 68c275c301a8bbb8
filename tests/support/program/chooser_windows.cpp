// A program calls its system libraries by way of pointers, which the import library would bring along. These are found
// first.
#include "ScriptedChooser.h"

using Chooser = BOOL(CALLBACK*)(OPENFILENAMEA*);

extern Chooser openFile asm("__imp_GetOpenFileNameA");
extern Chooser saveFile asm("__imp_GetSaveFileNameA");

extern BOOL(CALLBACK* pickFont)(CHOOSEFONTA*) asm("__imp_ChooseFontA");

Chooser openFile = scripted::OpenFile;
Chooser saveFile = scripted::SaveFile;
BOOL(CALLBACK* pickFont)(CHOOSEFONTA*) = scripted::PickFont;
