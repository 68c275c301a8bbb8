// What ReadFile and WriteFile work on: a file or a serial port.
#pragma once

#include "KernelObject.h"
#include "win/kernel.h"

namespace kernel {

class Stream : public KernelObject {
public:
    static constexpr Kind kKind = Kind::kStream;

    using KernelObject::KernelObject;

    // Both set the number of bytes in any case, and the last error when they fail.
    virtual BOOL Read(void* buffer, DWORD count, DWORD& read) = 0;
    virtual BOOL Write(const void* buffer, DWORD count, DWORD& written) = 0;
};

}  // namespace kernel
