// The program's calls of the chooser come here, and not to the layer, whose object file is not taken from its library then.
#include "ScriptedChooser.h"

BOOL GetOpenFileNameA(OPENFILENAMEA* chooser) {
    return scripted::OpenFile(chooser);
}

BOOL GetSaveFileNameA(OPENFILENAMEA* chooser) {
    return scripted::SaveFile(chooser);
}
