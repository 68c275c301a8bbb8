// The program as a module, and the libraries that the layer has in store.
#include "Modules.h"

#include <strings.h>

#include "LastError.h"

namespace kernel {
namespace {

// The two modules there are; their addresses are their handles.
char program;
struct {
    LPCSTR name = "";
    WORD ordinal = 0;
    FARPROC function = nullptr;
} library;

}  // namespace

void RegisterLibrary(LPCSTR name, WORD ordinal, FARPROC function) {
    library = {name, ordinal, function};
}

}  // namespace kernel

HMODULE GetModuleHandleA(LPCSTR name) {
    return name ? LoadLibraryA(name) : reinterpret_cast<HMODULE>(&kernel::program);
}

HMODULE LoadLibraryA(LPCSTR name) {
    const bool known = kernel::library.function && name && strcasecmp(kernel::library.name, name) == 0;
    return known ? reinterpret_cast<HMODULE>(&kernel::library) : nullptr;
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    using namespace kernel;
    const auto ordinal = reinterpret_cast<ULONG_PTR>(name);
    if (ordinal > 0xFFFF) {
        Unsupported("GetProcAddress by name");
        return nullptr;
    }
    return module == reinterpret_cast<HMODULE>(&library) && ordinal == library.ordinal ? library.function : nullptr;
}
