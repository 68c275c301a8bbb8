// Whole files of text, as the command line names them.
#pragma once

#include <string>

// Gives all of a file of at most 1 GiB. On failure the result is false, and `why` says why.
bool LoadText(const std::string& path, std::string& text, std::string& why);

// Whether a new file of this name can be made. What a name stands for already is never overwritten: it may be the only
// copy of titles that somebody has typed.
bool CanSaveText(const std::string& path, std::string& why);

// Makes the file and reads it back. On failure it is taken away again.
bool SaveText(const std::string& path, const std::string& text, std::string& why);
