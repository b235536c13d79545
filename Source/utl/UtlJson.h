#ifndef UTL_UTLJSON_H
#define UTL_UTLJSON_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Writes JSON with the same bytes as QJsonDocument::toJson, but without building a tree, which
// would take most of the time of a listing.

// Converts a length to Qt's type. Throws std::length_error when it does not fit.
int utlJsonLength(std::size_t length);

// An indented array of flat objects.
class UtlJsonArray {
 public:
    // `size`: expected size of the whole text.
    explicit UtlJsonArray(std::size_t size);

    // Starts the next object, which must get at least one member.
    void object();

    // Adds a member. Members must be added in ascending order of their names, as Qt keeps them.
    // Invalid UTF-8 is converted as Qt does.
    void member(std::string_view name, std::string_view text);
    void member(std::string_view name, std::int32_t number);

    // Returns the text. Must be the last call.
    std::string take();

 private:
    void put(std::string_view bytes);
    void putText(std::string_view text);
    void putEscaped(std::string_view text);
    void startMember(std::string_view name);

    std::string out_;       // over-allocated, so that most appends only copy
    std::size_t size_ = 0;  // number of bytes used
    bool hasObject_ = false;
    bool hasMember_ = false;
};

#endif
