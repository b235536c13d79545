#ifndef SHARED_DISPLAYWIDTH_H
#define SHARED_DISPLAYWIDTH_H

#include <cstddef>
#include <string_view>

// The columns that a UTF-8 text takes on a terminal: two for wide East Asian characters and
// pictographs, none for combining marks. Each byte that is not UTF-8 counts as one.
std::size_t displayWidth(std::string_view text);

#endif
