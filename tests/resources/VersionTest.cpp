// The version block: what the system shows of the program's file.
#include <map>
#include <string>

#include "ByteReader.h"
#include "Found.h"
#include "Utf16.h"

namespace {

// A block of the version is a length, the length of its value, the kind of value, a name, the value, and blocks again. Adds
// the texts, named by their path, and the other values, as bytes.
void AddBlocks(kernel::Bytes bytes, const std::string& path, std::map<std::string, std::string>& texts,
               std::map<std::string, kernel::Bytes>& values) {
    kernel::ByteReader reader(bytes);
    while (reader.Left() > 0 && !reader.Failed()) {
        kernel::ByteReader lengths(bytes.subspan(reader.Position()));
        const unsigned length = lengths.U16();
        ASSERT_GE(length, 6u);
        kernel::ByteReader block(reader.Take(length));
        reader.Align();
        block.Skip(2);
        const unsigned valueLength = block.U16();
        const bool isText = block.U16() == 1;
        const std::string name = path + kernel::Utf8Of(block.Text());
        block.Align();
        if (isText && valueLength > 0) {
            texts[name] = kernel::Utf8Of(block.Text());
        } else if (valueLength > 0) {
            values[name] = block.Take(valueLength);
        }
        block.Align();
        AddBlocks(block.Take(block.Left()), name + "/", texts, values);
    }
}

TEST(VersionResource, NamesTheProgramInBothLanguages) {
    for (const WORD language : kBoth) {
        SCOPED_TRACE(language);
        std::map<std::string, std::string> texts;
        std::map<std::string, kernel::Bytes> values;
        AddBlocks(Found(RT_VERSION, 1, language), "", texts, values);

        const std::string strings =
            language == kEnglish ? "VS_VERSION_INFO/StringFileInfo/040904B0/" : "VS_VERSION_INFO/StringFileInfo/041104B0/";
        const std::map<std::string, std::string> expected = {
            {strings + "Comments", "ORVANE HDD/CD recorder - Tesselia"},
            {strings + "CompanyName", "ORVANE"},
            {strings + "FileDescription", "ORVANE HDD/CD recorder - Tesselia"},
            {strings + "FileVersion", "1, 0, 3, 0"},
            {strings + "LegalCopyright", "Copyright (C) 2026 The Tesselia developers"},
            {strings + "OriginalFilename", "Tesselia.exe"},
            {strings + "ProductVersion", "1, 0, 3, 0"},
        };
        EXPECT_EQ(texts, expected);

        kernel::ByteReader fixed(values["VS_VERSION_INFO"]);
        EXPECT_EQ(fixed.U32(), 0xFEEF04BD);
        EXPECT_EQ(fixed.U32(), 0x00010000u);
        for (const char* version : {"file", "product"}) {
            SCOPED_TRACE(version);
            EXPECT_EQ(fixed.U32(), 0x00010000u);
            EXPECT_EQ(fixed.U32(), 0x00030000u);
        }
        kernel::ByteReader translation(values["VS_VERSION_INFO/VarFileInfo/Translation"]);
        EXPECT_EQ(translation.U16(), language);
        EXPECT_EQ(translation.U16(), 1200);
    }
}

}  // namespace
