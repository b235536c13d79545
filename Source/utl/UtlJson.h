#ifndef UTL_UTLJSON_H
#define UTL_UTLJSON_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Writing JSON text: the very bytes of QJsonDocument::toJson, without its tree of copies, which
// would take most of the time of a listing.

// A length as Qt has it; std::length_error for more bytes than one of its texts can have.
int utlJsonLength(std::size_t length);

// An array of flat objects in its indented form.
class UtlJsonArray {
 public:
    // `size` is about the size of the whole text.
    explicit UtlJsonArray(std::size_t size);

    // Starts the next object. It gets at least one member.
    void object();

    // The members of the object, which come in ascending order of their names, as Qt keeps them.
    // Bytes that are not UTF-8 become what Qt makes of them.
    void member(std::string_view name, std::string_view text);
    void member(std::string_view name, std::int32_t number);

    // The text; the last call.
    std::string take();

 private:
    void put(std::string_view bytes);
    void putText(std::string_view text);
    void putEscaped(std::string_view text);
    void startMember(std::string_view name);

    std::string out_;       // longer than what is in it, so that most bytes are only copied
    std::size_t size_ = 0;  // of what is in it
    bool hasObject_ = false;
    bool hasMember_ = false;
};

#endif
