// Libraries of the layer.
#include "Modules.h"

#include "TestSupport.h"

namespace {

INT_PTR First() {
    return 1;
}

INT_PTR Second() {
    return 2;
}

LPCSTR Ordinal(WORD number) {
    return MAKEINTRESOURCEA(number);
}

TEST(Modules, RegisteredLibraryGivesItsFunctionsByOrdinal) {
    EXPECT_EQ(LoadLibraryA("kernel-test.ocx"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(GetProcAddress(nullptr, Ordinal(14)), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);

    kernel::RegisterLibrary("kernel-test.ocx", 14, First);
    kernel::RegisterLibrary("KERNEL-TEST.OCX", 15, Second);
    const HMODULE library = LoadLibraryA("Kernel-Test.ocx");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(GetProcAddress(library, Ordinal(14)), First);
    EXPECT_EQ(GetProcAddress(library, Ordinal(15)), Second);
    EXPECT_EQ(GetProcAddress(library, Ordinal(16)), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_EQ(GetProcAddress(GetModuleHandleA(nullptr), Ordinal(14)), nullptr);

    // A path means a file, and there is none.
    EXPECT_EQ(LoadLibraryA("C:\\kernel-test.ocx"), nullptr);
    EXPECT_EQ(LoadLibraryA(""), nullptr);
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_NE(GetModuleHandleA(nullptr), nullptr);
}

}  // namespace
