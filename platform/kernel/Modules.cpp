// The program as a module, and the libraries that the layer has in store.
#include "Modules.h"

#include <strings.h>

#include <list>
#include <map>
#include <mutex>
#include <string>

#include "LastError.h"

namespace kernel {
namespace {

struct Library {
    std::string name;
    std::map<WORD, FARPROC> functions;
};

// Never destroyed: a library may be asked for while the process ends. Libraries stay, so their addresses can be handles.
std::mutex gLock;
std::list<Library>& Libraries() {
    static std::list<Library>& libraries = *new std::list<Library>;
    return libraries;
}

Library gProgram;

Library* FindLibrary(LPCSTR name) {
    for (Library& library : Libraries()) {
        if (strcasecmp(library.name.c_str(), name) == 0) {
            return &library;
        }
    }
    return nullptr;
}

HMODULE HandleOf(Library* library) {
    if (!library) {
        Fail(ERROR_MOD_NOT_FOUND);
    }
    return reinterpret_cast<HMODULE>(library);
}

}  // namespace

void RegisterLibrary(LPCSTR name, WORD ordinal, FARPROC function) {
    const std::lock_guard guard(gLock);
    Library* library = FindLibrary(name);
    if (!library) {
        library = &Libraries().emplace_back(Library{name, {}});
    }
    library->functions[ordinal] = function;
}

}  // namespace kernel

HMODULE GetModuleHandleA(LPCSTR name) {
    using namespace kernel;
    return name ? LoadLibraryA(name) : HandleOf(&gProgram);
}

HMODULE LoadLibraryA(LPCSTR name) {
    using namespace kernel;
    const std::lock_guard guard(gLock);
    return HandleOf(name ? FindLibrary(name) : nullptr);
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    using namespace kernel;
    const auto ordinal = reinterpret_cast<ULONG_PTR>(name);
    if (ordinal > 0xFFFF) {
        Unsupported("GetProcAddress by name");
        return nullptr;
    }
    const std::lock_guard guard(gLock);
    for (Library& library : Libraries()) {
        const auto found = library.functions.find(static_cast<WORD>(ordinal));
        if (HandleOf(&library) == module && found != library.functions.end()) {
            return found->second;
        }
    }
    Fail(ERROR_PROC_NOT_FOUND);
    return nullptr;
}
