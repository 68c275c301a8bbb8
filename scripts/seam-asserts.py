#!/usr/bin/env python3
"""Turns the headers of the seam into assertions about Microsoft's headers, for scripts/check-seam.sh.

    seam-asserts.py values HEADER...          a program that prints each constant, size and offset that the seam declares
    seam-asserts.py asserts VALUES HEADER...  a source that holds <windows.h> to those, and to the seam's signatures
"""

import re
import sys

# Storage that belongs to the implementation, and a gap that has no name that one could use.
HIDDEN_FIELDS = {"storage", "missingAlignment"}

# Macros and functions of the headers, tried with arguments at which a sign or a width would show.
EXPRESSIONS = [
    "LOWORD(0xFFFF8001u)",
    "HIWORD(0xFFFF8001u)",
    "MAKELONG(0x8001, 0xFFFF)",
    "MAKELPARAM(0xFFFF, 0x8001)",
    "MAKEWPARAM(0x8001, 0xFFFF)",
    "RGB(1, 0x80, 0xFF)",
]


def read(paths):
    text = "".join(open(path, encoding="utf-8").read() for path in paths)
    return re.sub(r"//[^\n]*", "", text)


def constants(text):
    """Type, name, and whether the value follows from the size of a pointer."""
    found = re.findall(r"^inline constexpr (\w+) (\w+) =([^;]*);", text, re.M)
    return [(kind, name, "sizeof" in value) for kind, name, value in found]


def pointers(text):
    """Macros for what no constant expression can hold: special handles and numbered resources."""
    return re.findall(r"^#define (\w+) \((?=reinterpret_cast|static_cast<HWND>)|^#define (RT_\w+)", text, re.M)


def structures(text):
    for name, body in re.findall(r"^struct (\w+) \{(.*?)^\};", text, re.M | re.S):
        # A bit field has no place of its own; the field behind it tells whether its bits are as many as they should be.
        fields = re.findall(r"^\s+(?:const )?[\w:]+[ *]+(\w+)(?:\[\w+\])?;", body, re.M)
        yield name, [field for field in fields if field not in HIDDEN_FIELDS]


def callbacks(text):
    return re.findall(r"^using (\w+) = ([^;]*\((?:WINAPI|CALLBACK)\*\)[^;]*);", text, re.M)


def functions(text):
    pattern = r"^(?!using|inline|constexpr|struct|static_assert)(\w[\w ]*?[ *]+)(?:WINAPI )?(\w+)\(([^()]*)\);"
    return re.findall(pattern, text, re.M)


def print_values(text):
    print("#include <windows.h>\n#include <commctrl.h>\n#include <commdlg.h>\n#include <imm.h>\n#include <cstddef>\n#include <cstdio>")
    print("void Print(const char* name, unsigned long long value) {\n    std::printf(\"%s\\t%llu\\n\", name, value);\n}")
    print("int main() {")
    for _, name, _ in constants(text):
        print(f'    Print("{name}", static_cast<unsigned long long>({name}));')
    for names in pointers(text):
        print(f'    Print("{"".join(names)}", reinterpret_cast<unsigned long long>({"".join(names)}));')
    for name, fields in structures(text):
        if fields:
            print(f'    Print("sizeof({name})", sizeof({name}));')
        for field in fields:
            print(f'    Print("offsetof({name}, {field})", offsetof({name}, {field}));')
            print(f'    Print("sizeof({name}::{field})", sizeof({name}::{field}));')
    for expression in EXPRESSIONS:
        print(f'    Print("{expression}", static_cast<unsigned long long>({expression}));')
    print("}")


def print_asserts(text, values):
    def check(condition, message):
        print(f'static_assert({condition}, "{message}");')

    print("#include <windows.h>\n#include <commctrl.h>\n#include <commdlg.h>\n#include <imm.h>\n#include <cstddef>\n#include <type_traits>")
    for kind, name, is_sized in constants(text):
        condition = f"static_cast<{kind}>({name}) == static_cast<{kind}>({values[name]}ULL)"
        check(f"sizeof(void*) != 8 || {condition}" if is_sized else condition, name)
    # No assertion may hold such a pointer, but the optimiser knows its value: a call that stays is an error.
    for names in pointers(text):
        name = "".join(names)
        print(f'__attribute__((error("{name}"))) void Wrong_{name}();')
        print(f"void Check_{name}() {{\n    if ((ULONG_PTR)({name}) != (ULONG_PTR){values[name]}ULL) Wrong_{name}();\n}}")
    for name, kind in callbacks(text):
        check(f"std::is_same_v<{name}, {kind}>", name)
    for result, name, arguments in functions(text):
        call = "WINAPIV" if "..." in arguments else "WINAPI"
        check(f"std::is_same_v<decltype(&::{name}), {result.strip()} ({call}*)({' '.join(arguments.split())})>", name)
    for expression in EXPRESSIONS:
        check(f"static_cast<ULONG_PTR>({expression}) == static_cast<ULONG_PTR>({values[expression]}ULL)", expression)

    # The layer is built for 64 bits alone, so places and sizes are held against those of 64-bit Windows.
    print("#ifdef _WIN64")
    for name, fields in structures(text):
        if fields:
            check(f"sizeof({name}) == {values[f'sizeof({name})']}", f"size of {name}")
        for field in fields:
            check(f"offsetof({name}, {field}) == {values[f'offsetof({name}, {field})']}", f"place of {name}::{field}")
            check(f"sizeof({name}::{field}) == {values[f'sizeof({name}::{field})']}", f"size of {name}::{field}")
    print("#endif")
    return (len(constants(text)), len(functions(text)), len(callbacks(text)), len(list(structures(text))))


def main():
    if sys.argv[1] == "values":
        print_values(read(sys.argv[2:]))
        return
    with open(sys.argv[2], encoding="utf-8") as file:
        values = dict(line.rstrip("\n").split("\t") for line in file)
    counts = print_asserts(read(sys.argv[3:]), values)
    print("The seam: %d constants, %d functions, %d callbacks, %d structures" % counts, file=sys.stderr)


main()
