// Any bytes as the file of the settings: what is understood must come back from what is written for it, in every byte.
#include <cstdint>

#include "Check.h"
#include "RegistryFile.h"

using desktop::RegistryKeys;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const RegistryKeys keys =
        RegistryKeys::Parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const QByteArray text = keys.Text();
    CHECK(RegistryKeys::Parse(text).Text() == text);
    return 0;
}
