#pragma once

#include <string_view>

#include "Formats/PropertyList.h"

namespace orvane {

/// The formats of property lists, a reader each. What false means says `readPropertyList`.

/// Whether the bytes begin as a binary property list does.
bool isBinaryPropertyList(std::string_view bytes);
bool readBinaryPropertyList(std::string_view bytes, PropertyListHandler& handler);

/// The encodings are those of expat: UTF-8 without a mark, UTF-16 by its byte-order mark, and Latin-1 and
/// ASCII where declared. Nothing outside the bytes is fetched.
bool readXMLPropertyList(std::string_view bytes, PropertyListHandler& handler);

/// The old style: `{ key = value; }`, `( one, two )`, `<0f0e>`, texts bare or in quotes, comments, and a
/// dictionary that is the whole list without its braces. What comes after such a one is not looked at; a list
/// of blanks and comments only is an empty dictionary. Takes UTF-8 without a mark.
bool readOldStylePropertyList(std::string_view text, PropertyListHandler& handler);

}  // namespace orvane
