// What a handle stands for: an object with a count of references.
#pragma once

#include <atomic>
#include <utility>

namespace kernel {

// A kind that is also another kind has that kind's bits.
enum class Kind : unsigned { Waitable = 1, Event = 1 | 2, Stream = 4, File = 4 | 8, Port = 4 | 16, Mutex = 32 };

class KernelObject {
public:
    explicit KernelObject(Kind kind) : kind_(kind) {}
    virtual ~KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;

    bool Is(Kind kind) const {
        return (static_cast<unsigned>(kind_) & static_cast<unsigned>(kind)) == static_cast<unsigned>(kind);
    }
    void AddReference() { references_.fetch_add(1, std::memory_order_relaxed); }
    void Release() {
        if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

    // The handle is gone. Calls that other threads are in still hold references; a long one should come to its end.
    virtual void HandleClosed() {}

private:
    const Kind kind_;
    std::atomic<int> references_{1};
};

// A counted reference. Takes over the reference that a new object is born with.
template <class T>
class Ref {
public:
    Ref() = default;
    explicit Ref(T* object) : object_(object) {}
    Ref(const Ref& other) : object_(other.object_) {
        if (object_) {
            object_->AddReference();
        }
    }
    Ref(Ref&& other) noexcept : object_(other.Detach()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        // The checker does not follow a count that is atomic.
        if (object_) {
            object_->Release();  // NOLINT(clang-analyzer-cplusplus.NewDelete)
        }
    }

    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // Gives the reference away, and with it the duty to release it.
    T* Detach() { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

}  // namespace kernel
