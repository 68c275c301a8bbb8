// The library as a file of JSON, in the form that LibraryText.h tells.
#pragma once

#include <string>

#include "UnitLibrary.h"

namespace library {

// Reads as strictly as ParseLibrary. A file has at most 32 MiB.
bool LoadLibrary(const std::string& path, UnitLibrary& library, std::string& error);

// Replaces the file as a whole: after a crash or a full disk the old or the new content stands there, never a part. A
// symbolic link stays and its target is replaced. Returns when the content is on the disk.
bool SaveLibrary(const std::string& path, const UnitLibrary& library, std::string& error);

}  // namespace library
