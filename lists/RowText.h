// The text of a list's row: label, number and title, with a tab between them.
#pragma once

#include <cstddef>

// Room for any row: a label of 3 bytes, a number of 3 digits, a title of 32 bytes that are all "&", tabs and terminator.
inline constexpr std::size_t kRowTextSize = 80;
// Room for any title with its "&" doubled.
inline constexpr std::size_t kEscapedTitleSize = 65;

// Doubles each "&" in place, as far as `capacity` bytes reach with the terminator.
void EscapeAmpersands(char* text, std::size_t capacity);
// Takes the doubling back in place: each "&" goes and the byte behind it stays as it is.
void UnescapeAmpersands(char* text);

// The title field, which is behind the last tab. Null if the row has no tab.
char* TitleField(char* rowText);

// The fields as they are drawn, as places in the row's text. A field that is not there has no bytes.
struct RowFields {
    const char* label;
    int labelLength;
    const char* number;
    int numberLength;
    const char* title;
    int titleLength;
};
RowFields SplitRow(const char* rowText);
