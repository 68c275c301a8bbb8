// The program's calls of the choosers come here, and not to the layer, whose object files are not taken from its library
// then.
#include "ScriptedChooser.h"

BOOL GetOpenFileNameA(OPENFILENAMEA* chooser) {
    return scripted::OpenFile(chooser);
}

BOOL GetSaveFileNameA(OPENFILENAMEA* chooser) {
    return scripted::SaveFile(chooser);
}

BOOL ChooseFontA(CHOOSEFONTA* chooser) {
    return scripted::PickFont(chooser);
}
