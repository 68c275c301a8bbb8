// Text of title files: where bytes stand, and what of them a title can hold. Bytes are those of the system's code page.
#pragma once

#include <cstddef>
#include <string_view>

#include "TitleNumbers.h"

// The first place from `start` on where the byte stands, npos if there is none. A hit behind a byte that begins a
// double-byte character does not count, as long as that byte is not in front of the start; the search then starts anew
// behind the hit.
std::size_t FindChar(std::string_view text, std::size_t start, char byte);
// The same for the nearer of two.
std::size_t FindEither(std::string_view text, std::size_t start, char first, char second);

bool IsLeadByte(char byte);

// Of a raw text no more than this is needed to make a title of it.
inline constexpr std::size_t kRawTitleLength = kTitleLength + 2;
// Makes printable ASCII of the first 32 bytes: a blank for each double-byte character and for each other byte that is none.
// The cut never halves a character.
void CleanTitle(std::string_view raw, char (&title)[kTitleSize]);

// Like atoi, for any length: white space, a sign, digits; 0 without digits. What no int can hold is the nearest that can.
class NumberReader {
public:
    // False once nothing more can change the number.
    bool Take(char byte);
    int Number() const;

private:
    bool isNegative = false;
    bool hasBegun = false;
    long long number = 0;
};
int ReadNumber(std::string_view text);
