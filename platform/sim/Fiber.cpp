#include "Fiber.h"

#include <cxxabi.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) && !defined(__SANITIZE_ADDRESS__)
#define __SANITIZE_ADDRESS__ 1
#endif
#if __has_feature(thread_sanitizer) && !defined(__SANITIZE_THREAD__)
#define __SANITIZE_THREAD__ 1
#endif
#endif

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#include <sanitizer/lsan_interface.h>
#endif
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace sim {

namespace {

// Room for the deep frames of an instrumented build; the system gives memory only for the pages that are touched.
constexpr std::size_t kStackSize = std::size_t{1024} * 1024;

// What the sanitizers want to know. Without them these do nothing.
#if defined(__SANITIZE_ADDRESS__)
void BeforeSwitch(void** fakeStack, const void* bottom, std::size_t size) {
    __sanitizer_start_switch_fiber(fakeStack, bottom, size);
}
void AfterSwitch(void* fakeStack, const void** oldBottom, std::size_t* oldSize) {
    __sanitizer_finish_switch_fiber(fakeStack, oldBottom, oldSize);
}
// Frames that were left for ever have not cleaned up behind themselves.
void StackIsFresh(const char* stack) {
    __asan_unpoison_memory_region(stack, kStackSize);
}
// Memory that only a dropped fiber knows is not lost by a fault of the program.
void StackStays(const char* stack) {
    __lsan_register_root_region(stack, kStackSize);
}
#else
void BeforeSwitch(void**, const void*, std::size_t) {}
void AfterSwitch(void*, const void**, std::size_t*) {}
void StackIsFresh(const char*) {}
void StackStays(const char*) {}
#endif

#if defined(__SANITIZE_THREAD__)
void* ToolCurrent() {
    return __tsan_get_current_fiber();
}
void* ToolCreate() {
    return __tsan_create_fiber(0);
}
void ToolDestroy(void* fiber) {
    __tsan_destroy_fiber(fiber);
}
// Inline, or the entry of this function and its exit would be counted on different stacks.
[[gnu::always_inline]] inline void ToolSwitch(void* fiber) {
    __tsan_switch_to_fiber(fiber, 0);
}
#else
void* ToolCurrent() {
    return nullptr;
}
void* ToolCreate() {
    return nullptr;
}
void ToolDestroy(void*) {}
void ToolSwitch(void*) {}
#endif

// Stacks that nobody uses; a guard page lies below each.
std::vector<char*>& FreeStacks() {
    static auto& stacks = *new std::vector<char*>;
    return stacks;
}

char* TakeStack() {
    std::vector<char*>& stacks = FreeStacks();
    if (!stacks.empty()) {
        char* stack = stacks.back();
        stacks.pop_back();
        return stack;
    }
    const auto guard = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* memory = mmap(nullptr, guard + kStackSize, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED || mprotect(memory, guard, PROT_NONE) != 0) {
        std::fputs("simulation: no memory for the stack of a thread\n", stderr);
        std::abort();
    }
    return static_cast<char*>(memory) + guard;
}

}  // namespace

Fiber::Fiber(Entry theEntry, void* theArgument)
    : entry(theEntry),
      argument(theArgument),
      stack(TakeStack()),
      inside(boost::context::detail::make_fcontext(stack + kStackSize, kStackSize, Begin)),
      toolFiber(ToolCreate()) {}

Fiber::~Fiber() {
    ToolDestroy(toolFiber);
    if (!finished) {
        StackStays(stack);
        return;
    }
    StackIsFresh(stack);
    FreeStacks().push_back(stack);
}

void Fiber::Enter() {
    void* ownFakeStack = nullptr;
    toolOutside = ToolCurrent();
    SwapExceptionState();
    BeforeSwitch(&ownFakeStack, stack, kStackSize);
    ToolSwitch(toolFiber);
    inside = boost::context::detail::jump_fcontext(inside, this).fctx;
    AfterSwitch(ownFakeStack, nullptr, nullptr);
    SwapExceptionState();
}

void Fiber::Begin(boost::context::detail::transfer_t from) {
    auto* fiber = static_cast<Fiber*>(from.data);
    AfterSwitch(nullptr, &fiber->outsideBottom, &fiber->outsideSize);
    fiber->outside = from.fctx;
    fiber->entry(fiber->argument);
    std::abort();
}

void Fiber::SwitchOut(bool forEver) {
    // Without a place to keep it the sanitizer frees the fake stack.
    BeforeSwitch(forEver ? nullptr : &fakeStack, outsideBottom, outsideSize);
    ToolSwitch(toolOutside);
    outside = boost::context::detail::jump_fcontext(outside, nullptr).fctx;
    AfterSwitch(fakeStack, &outsideBottom, &outsideSize);
}

void Fiber::Leave() {
    SwitchOut(false);
}

void Fiber::Finish() {
    finished = true;
    SwitchOut(true);
    std::abort();
}

void Fiber::Abandon() {
    SwitchOut(false);
    std::abort();
}

void Fiber::SwapExceptionState() {
    static_assert(sizeof(ExceptionState) == 2 * sizeof(void*));
    ExceptionState running;
    void* globals = abi::__cxa_get_globals();
    std::memcpy(&running, globals, sizeof running);
    std::memcpy(globals, &exceptions, sizeof exceptions);
    exceptions = running;
}

}  // namespace sim
