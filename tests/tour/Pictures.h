// Pictures of what the program shows, and a hand for what is no window of its own, where there is no screen to look at.
#pragma once

#include <string>

namespace desktop {

// All visible windows of the program as they stand to each other, as the bytes of a PNG file. What a window system would put
// around them is a plain caption. Empty if nothing is visible.
std::string PictureOfWindows();

// Types the name of a file into the chooser that is open and presses its button. False if none is open.
bool ChooseFile(const std::string& name);

}  // namespace desktop
