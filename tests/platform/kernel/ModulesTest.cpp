// Libraries of the layer.
#include "Modules.h"

#include "TestSupport.h"

namespace {

INT_PTR Function() {
    return 1;
}

LPCSTR Ordinal(WORD number) {
    return MAKEINTRESOURCEA(number);
}

TEST(Modules, RegisteredLibraryGivesItsFunctionByOrdinal) {
    EXPECT_EQ(LoadLibraryA("kernel-none.ocx"), nullptr);
    EXPECT_EQ(GetProcAddress(nullptr, Ordinal(14)), nullptr);

    kernel::RegisterLibrary("kernel-test.ocx", 14, Function);
    const HMODULE library = LoadLibraryA("Kernel-Test.ocx");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(GetProcAddress(library, Ordinal(14)), Function);
    EXPECT_EQ(GetProcAddress(library, Ordinal(15)), nullptr);
    EXPECT_EQ(GetProcAddress(GetModuleHandleA(nullptr), Ordinal(14)), nullptr);

    // A path means a file, and there is none.
    EXPECT_EQ(LoadLibraryA("C:\\kernel-test.ocx"), nullptr);
    EXPECT_EQ(LoadLibraryA(""), nullptr);
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
    EXPECT_NE(GetModuleHandleA(nullptr), nullptr);
}

}  // namespace
