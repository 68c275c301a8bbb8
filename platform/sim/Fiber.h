// A stack with a program of its own, entered from the scheduler and left back to it.
#pragma once

#include <boost/context/detail/fcontext.hpp>
#include <cstddef>

namespace sim {

// A fiber that never finishes can be dropped: nothing on its stack is destroyed, and the stack stays mapped, since others
// may point into it.
class Fiber {
public:
    using Entry = void (*)(void* argument);

    // The entry must end in Finish.
    Fiber(Entry entry, void* argument);
    ~Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    // From the scheduler's stack: runs the fiber until it leaves.
    void Enter();
    // From the fiber itself: goes back to Enter, until it is entered again.
    void Leave();
    // From the fiber itself, for the last time: its stack may be used again once it is destroyed.
    [[noreturn]] void Finish();
    // From the fiber itself, for the last time and from whatever depth: its stack stays as it is.
    [[noreturn]] void Abandon();

private:
    using Context = boost::context::detail::fcontext_t;

    // What the C++ runtime keeps about exceptions in flight, by thread of the system and not by fiber.
    struct ExceptionState {
        void* caught = nullptr;
        unsigned int uncaught = 0;
    };

    static void Begin(boost::context::detail::transfer_t from);
    void SwitchOut(bool forEver);
    void SwapExceptionState();

    Entry entry;
    void* argument;
    char* stack;                          // the lowest usable byte
    Context inside;                       // where the fiber goes on
    Context outside = nullptr;            // where Enter goes on
    ExceptionState exceptions;            // of the side that does not run
    void* fakeStack = nullptr;            // the address sanitizer's, while the fiber is left
    const void* outsideBottom = nullptr;  // the stack from which the fiber is entered
    std::size_t outsideSize = 0;
    void* toolFiber = nullptr;    // the thread sanitizer's name for the fiber
    void* toolOutside = nullptr;  // and for the side from which it is entered
    bool finished = false;
};

}  // namespace sim
