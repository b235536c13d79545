#ifndef SHARED_DISPLAYWIDTH_H
#define SHARED_DISPLAYWIDTH_H

#include <cstddef>
#include <string_view>

// Columns that a UTF-8 text takes in a terminal: two for wide East Asian characters and
// pictographs, none for combining marks. Bytes that are not UTF-8 count one each.
std::size_t displayWidth(std::string_view text);

#endif
