#ifndef UTL_UTLJSON_H
#define UTL_UTLJSON_H

#include <cstdint>
#include <string>
#include <string_view>

// Writing JSON text: the very bytes of QJsonDocument::toJson, without its tree of copies, which
// would take most of the time of a listing.

// Appends a text in quotes, with its escapes. Bytes that are not UTF-8 become what Qt makes of
// them.
void utlJsonAppendText(std::string& out, std::string_view text);

void utlJsonAppendNumber(std::string& out, std::int32_t number);

#endif
