// The end of a thread as its local storage sees it.
#pragma once

namespace sim::FiberLocalStorage {

// Runs the callbacks for what the calling thread has set, in order of the slots.
void ThreadEnds();

}  // namespace sim::FiberLocalStorage
