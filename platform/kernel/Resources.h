// The resources that the build has put into this program (add_resources in cmake/Resources.cmake), and their language.
//
// add_resources defines two symbols around the bytes; a program without them has no resources, and every search fails.
#pragma once

#include "Templates.h"

namespace kernel {

inline constexpr WORD kEnglish = 0x409;
inline constexpr WORD kJapanese = 0x411;

// kJapanese if the locale that the environment names is Japanese, else kEnglish: looked up once, unless it was chosen. Any
// thread. It does not depend on the code page, as on Windows: text that the page cannot express is then shown as "?".
WORD ResourceLanguage();
// Chooses the language from now on, whatever the locale says, so that tests run under any. What is not there in this
// language is given in the first one that has it.
void SetResourceLanguage(WORD language);

// What FindResourceExA, LoadResource and LockResource find; empty if there is none.
Bytes ResourceBytes(LPCSTR name, LPCSTR type);

// The images of an icon group, in its order; empty if there is none. 0 stands for no name. Any thread.
std::vector<IconImage> IconImages(LPCSTR name);

}  // namespace kernel
