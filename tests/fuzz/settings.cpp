// Any bytes as the file of the settings: what is understood must come back from what is written for it, in every byte.
#include <cstdint>

#include "Check.h"
#include "RegistryFile.h"

using desktop::RegistryContent;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const RegistryContent content =
        RegistryContent::Parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const QByteArray text = content.Text();
    CHECK(RegistryContent::Parse(text).Text() == text);
    return 0;
}
