// What a handle stands for: an object with a count of references.
#pragma once

#include <atomic>
#include <utility>

namespace kernel {

// A kind that is also another kind has that kind's bits.
enum class Kind : unsigned { kWaitable = 1, kEvent = 1 | 2, kStream = 4, kFile = 4 | 8, kPort = 4 | 16, kMutex = 32 };

class KernelObject {
public:
    explicit KernelObject(Kind kind) : kind(kind) {}
    virtual ~KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;

    bool Is(Kind asked) const {
        return (static_cast<unsigned>(kind) & static_cast<unsigned>(asked)) == static_cast<unsigned>(asked);
    }
    void AddReference() { references.fetch_add(1, std::memory_order_relaxed); }
    void Release() {
        if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

    // The handle is gone. Calls that other threads are in still hold references; a long one should come to its end.
    virtual void HandleClosed() {}

private:
    const Kind kind;
    std::atomic<int> references{1};
};

// A counted reference. Takes over the reference that a new object is born with.
template <class T>
class Ref {
public:
    Ref() = default;
    explicit Ref(T* object) : object(object) {}
    Ref(const Ref& other) : object(other.object) {
        if (object) {
            object->AddReference();
        }
    }
    Ref(Ref&& other) noexcept : object(other.Detach()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Ref() {
        // The checker does not follow a count that is atomic.
        if (object) {
            object->Release();  // NOLINT(clang-analyzer-cplusplus.NewDelete)
        }
    }

    T* Get() const { return object; }
    T* operator->() const { return object; }
    explicit operator bool() const { return object != nullptr; }
    // Gives the reference away, and with it the duty to release it.
    T* Detach() { return std::exchange(object, nullptr); }

private:
    T* object = nullptr;
};

}  // namespace kernel
