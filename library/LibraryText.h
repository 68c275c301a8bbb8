// The library as JSON.
//
//     {
//       "discs": {
//         "12": { "title": "Harbour in March", "tracks": { "1": "Low Water", "2": null } }
//       },
//       "albums": {}
//     }
//
// What is listed exists; null, or a missing "title", means that there is no title.
#pragma once

#include <string>
#include <string_view>

#include "UnitLibrary.h"

namespace library {

// Reads strictly: a name that is not known or stands twice, a number out of range, a title that is too long or not
// printable ASCII is an error. On failure the result is false, `library` is unchanged and `error` says where and why.
bool ParseLibrary(std::string_view text, UnitLibrary& library, std::string& error);

std::string FormatLibrary(const UnitLibrary& library);

}  // namespace library
