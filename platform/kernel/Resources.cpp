// Resources of the program: the search, and strings.
#include "Resources.h"

#include <atomic>
#include <charconv>
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

std::atomic<WORD> gLanguage{0};  // 0 until it is looked up or chosen.

// Never destroyed: threads may load strings while the process ends.
const std::vector<Resource>& ProgramResources() {
    static const std::vector<Resource>& resources = *new std::vector<Resource>([] {
        const std::byte* begin = tesseliaResources;
        return begin ? ReadResourceFile(Bytes(begin, tesseliaResourcesEnd)) : std::vector<Resource>();
    }());
    return resources;
}

// Type 0 is no resource's: what is no name at all leads nowhere.
ResourceId IdOf(LPCSTR name) {
    ResourceId id;
    const auto value = reinterpret_cast<ULONG_PTR>(name);
    if (value <= 0xFFFF) {
        id.number = static_cast<WORD>(value);
    } else if (name[0] == '#') {
        std::from_chars(name + 1, name + std::strlen(name), id.number);
    } else {
        for (const char* c = name; *c; ++c) {
            id.name += static_cast<char16_t>(*c >= 'a' && *c <= 'z' ? *c - 'a' + 'A' : static_cast<unsigned char>(*c));
        }
    }
    return id;
}

// Language 0: the user's, else the first that there is.
const Resource* Find(const ResourceId& type, const ResourceId& name, WORD language) {
    bool typeKnown = false;
    const Resource* found = nullptr;
    const WORD wanted = language != 0 ? language : ResourceLanguage();
    for (const Resource& resource : ProgramResources()) {
        if (resource.type != type) {
            continue;
        }
        typeKnown = true;
        if (resource.name != name) {
            continue;
        }
        if (resource.language == wanted) {
            return &resource;
        }
        if (!found) {
            found = &resource;
        }
    }
    if (found && language == 0) {
        return found;
    }
    Fail(found ? ERROR_RESOURCE_LANG_NOT_FOUND : typeKnown ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND);
    return nullptr;
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
    WORD language = gLanguage.load(std::memory_order_relaxed);
    if (language == 0) {
        language = CodePageOfLocale() == kJapanesePage ? kJapanese : kEnglish;
        gLanguage.store(language, std::memory_order_relaxed);
    }
    return language;
}

void SetResourceLanguage(WORD language) {
    gLanguage.store(language, std::memory_order_relaxed);
}

Bytes ResourceBytes(LPCSTR name, LPCSTR type) {
    const Resource* resource = Find(IdOf(type), IdOf(name), 0);
    return resource ? resource->data : Bytes();
}

std::vector<IconImage> IconImages(LPCSTR name) {
    return ParseIconGroup(ResourceBytes(name, RT_GROUP_ICON),
                          [](WORD id) { return ResourceBytes(MAKEINTRESOURCEA(id), RT_ICON); });
}

}  // namespace kernel

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    return FindResourceExA(module, type, name, 0);
}

// Whatever module is asked for, the program's resources answer: nothing else has any.
HRSRC FindResourceExA(HMODULE, LPCSTR type, LPCSTR name, WORD language) {
    using namespace kernel;
    return reinterpret_cast<HRSRC>(const_cast<Resource*>(Find(IdOf(type), IdOf(name), language)));
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
