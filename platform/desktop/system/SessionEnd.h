// The end of the user's session, and the signals that ask a program to end.
#pragma once

namespace desktop {

// From now on both become WM_QUERYENDSESSION and WM_ENDSESSION for the top-level windows, as soon as the program looks for
// messages. A second signal of a kind ends the process at once. Called once, with an application object.
void FollowSessionEnd();

}  // namespace desktop
