// Resources of the program: the search, and strings.
#include "Resources.h"

#include <atomic>
#include <cstring>

#include "CodePage.h"
#include "LastError.h"
#include "ResourceFile.h"
#include "Utf16.h"

// Around the bytes that add_resources embeds. Weak: a program without resources does not define them.
extern "C" {
extern const std::byte tesseliaResources[] __attribute__((weak, visibility("hidden")));
extern const std::byte tesseliaResourcesEnd[] __attribute__((weak, visibility("hidden")));
}

namespace kernel {
namespace {

std::atomic<WORD> currentLanguage{0};  // 0 until it is looked up or chosen.

// Never destroyed: threads may load strings while the process ends.
const std::vector<Resource>& ProgramResources() {
    static const std::vector<Resource>& resources = *new std::vector<Resource>([] {
        const std::byte* begin = tesseliaResources;
        return begin ? ReadResourceFile(Bytes(begin, tesseliaResourcesEnd)) : std::vector<Resource>();
    }());
    return resources;
}

// Language 0: the user's, else the first that there is.
const Resource* Find(LPCSTR type, LPCSTR name, WORD language) {
    const Resource* other = nullptr;
    const WORD wanted = language != 0 ? language : ResourceLanguage();
    for (const Resource& resource : ProgramResources()) {
        if (MAKEINTRESOURCEA(resource.type) != type || MAKEINTRESOURCEA(resource.name) != name) {
            continue;
        }
        if (resource.language == wanted) {
            return &resource;
        }
        if (!other && language == 0) {
            other = &resource;
        }
    }
    return other;
}

// The resource of a handle, or none if no search has given such a handle.
const Resource* ResourceOf(HRSRC handle) {
    const std::vector<Resource>& resources = ProgramResources();
    const auto* resource = reinterpret_cast<const Resource*>(handle);
    for (const Resource& each : resources) {
        if (&each == resource) {
            return resource;
        }
    }
    return nullptr;
}

// In the code page; "?" for what it does not know.
std::string BytesOf(char32_t character) {
    std::string text;
    AppendUtf8(text, character);
    return FromUtf8(text).value_or("?");
}

}  // namespace

WORD ResourceLanguage() {
    WORD language = currentLanguage.load(std::memory_order_relaxed);
    if (language == 0) {
        language = CodePageOfLocale() == kJapanesePage ? kJapanese : kEnglish;
        currentLanguage.store(language, std::memory_order_relaxed);
    }
    return language;
}

void SetResourceLanguage(WORD language) {
    currentLanguage.store(language, std::memory_order_relaxed);
}

Bytes ResourceBytes(LPCSTR name, LPCSTR type) {
    const Resource* resource = Find(type, name, 0);
    return resource ? resource->data : Bytes();
}

std::vector<IconImage> IconImages(LPCSTR name) {
    return ParseIconGroup(ResourceBytes(name, RT_GROUP_ICON),
                          [](WORD id) { return ResourceBytes(MAKEINTRESOURCEA(id), RT_ICON); });
}

}  // namespace kernel

// Whatever module is asked for, the program's resources answer: nothing else has any.
HRSRC FindResourceExA(HMODULE, LPCSTR type, LPCSTR name, WORD language) {
    using namespace kernel;
    return reinterpret_cast<HRSRC>(const_cast<Resource*>(Find(type, name, language)));
}

HGLOBAL LoadResource(HMODULE, HRSRC resource) {
    const kernel::Resource* found = kernel::ResourceOf(resource);
    return found ? const_cast<std::byte*>(found->data.data()) : nullptr;
}

LPVOID LockResource(HGLOBAL resource) {
    return resource;
}

DWORD SizeofResource(HMODULE, HRSRC resource) {
    const kernel::Resource* found = kernel::ResourceOf(resource);
    return found ? static_cast<DWORD>(found->data.size()) : 0;
}

int LoadStringA(HINSTANCE, UINT id, LPSTR buffer, int size) {
    using namespace kernel;
    if (!buffer || size < 0) {
        return Unsupported("LoadStringA without a buffer");
    }
    if (size == 0) {
        return -1;
    }
    const Bytes block = ResourceBytes(MAKEINTRESOURCEA(StringBlockOf(id)), RT_STRING);
    const std::u16string text = StringInBlock(block, StringIndexOf(id));
    std::size_t length = 0;
    for (std::size_t position = 0; position < text.size();) {
        // A character of two bytes goes in whole or not at all.
        const std::string bytes = BytesOf(NextCharacter(text, position));
        if (bytes.size() >= static_cast<std::size_t>(size) - length) {
            break;
        }
        std::memcpy(buffer + length, bytes.data(), bytes.size());
        length += bytes.size();
    }
    buffer[length] = '\0';
    return static_cast<int>(length);
}
