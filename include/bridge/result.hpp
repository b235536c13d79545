/**
 * @file result.hpp
 * @brief The return types of the functions: strings that free themselves, and results with error
 * descriptions.
 */
#ifndef BRIDGE_RESULT_HPP
#define BRIDGE_RESULT_HPP

#include <bridge/bridge.h>

#include <bridge/codes.hpp>
#include <bridge/process.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace bridge {

/** Owns a string that the library returned, and frees it with bridgeFreeMemory(). */
class Text {
 public:
    explicit Text(char* text) noexcept : text_(text) {}

    /** Null after a failure; TextResult reports it. */
    const char* c_str() const noexcept { return text_.get(); }
    std::string_view view() const noexcept {
        return text_ == nullptr ? std::string_view() : std::string_view(text_.get());
    }
    std::string str() const { return std::string(view()); }

 private:
    struct Free {
        void operator()(char* text) const noexcept { bridgeFreeMemory(text); }
    };
    std::unique_ptr<char, Free> text_;
};

/** The name of a code, such as "XERR_NOENT"; empty for a Windows error (100000 and above). */
inline std::string_view codeName(std::int32_t code) noexcept {
    for (const detail::Code& one : detail::kCodes) {
        if (one.number == code) return one.name;
    }
    return {};
}

/** Describes a code: "no such file or folder", or "Windows error 5" for 100005. */
inline std::string codeText(std::int32_t code) {
    constexpr std::int32_t kFirstWindowsError = 100000;
    for (const detail::Code& one : detail::kCodes) {
        if (one.number == code) return std::string(one.text);
    }
    if (code < kFirstWindowsError) return "result code " + std::to_string(code);
    return "Windows error " + std::to_string(code - kFirstWindowsError);
}

/** A failed call. what() contains all the members. */
class Error : public std::runtime_error {
 public:
    Error(std::string operation, std::int32_t code, std::string file)
        : std::runtime_error(message(operation, code, file)),
          operation_(std::move(operation)),
          file_(std::move(file)),
          log_(detail::logPath()),
          code_(code) {}

    /** The name of the function in bridge.h. */
    const std::string& operation() const noexcept { return operation_; }
    /** A result code of bridge.h. */
    std::int32_t code() const noexcept { return code_; }
    /** codeName() of the code. */
    std::string_view name() const noexcept { return codeName(code_); }
    /** codeText() of the code. */
    std::string text() const { return codeText(code_); }
    /** The file that the call used; empty when there is none. */
    const std::string& file() const noexcept { return file_; }
    /** The library's log file; empty for standard output. */
    const std::string& log() const noexcept { return log_; }

 private:
    static std::string message(const std::string& operation, std::int32_t code,
                               const std::string& file) {
        const std::string_view name = codeName(code);
        std::string all = operation + " failed with " + std::to_string(code) + " (";
        if (!name.empty()) all.append(name).append(": ");
        all.append(codeText(code)).append(")");
        if (!file.empty()) all.append(" for ").append(file);
        const std::string log = detail::logPath();
        all.append("; the log ").append(log.empty() ? "" : log + " ");
        return all.append("has the cause");
    }

    std::string operation_;
    std::string file_;
    std::string log_;
    std::int32_t code_;
};

/** The result code of a call that returns no value. */
class [[nodiscard]] Status {
 public:
    explicit Status(bridge_i32 code) noexcept : code_(code) {}

    /** `operation` is a string literal, and `file` is the file that the call used. */
    Status(bridge_i32 code, const char* operation, std::string_view file = {})
        : operation_(operation), file_(code == BRIDGE_SUCCESS ? "" : file), code_(code) {}

    bool ok() const noexcept { return code_ == BRIDGE_SUCCESS; }
    explicit operator bool() const noexcept { return ok(); }
    bridge_i32 code() const noexcept { return code_; }

    /** The failure. Call it only when !ok(). */
    Error error() const { return Error(operation_, code_, file_); }
    /** Throws error() unless ok(). */
    void orThrow() const {
        if (!ok()) throw error();
    }

 private:
    const char* operation_ = "the call";
    std::string file_;
    bridge_i32 code_;
};

/** A string, or the failure to get it. The log has the cause of the failure. */
class [[nodiscard]] TextResult {
 public:
    explicit TextResult(char* text) noexcept : text_(text) {}

    /** `operation` is a string literal. */
    TextResult(char* text, const char* operation) noexcept : text_(text), operation_(operation) {}

    bool ok() const noexcept { return text_.c_str() != nullptr; }
    explicit operator bool() const noexcept { return ok(); }
    bridge_i32 code() const noexcept { return ok() ? BRIDGE_SUCCESS : BRIDGE_FAILURE; }
    Status status() const { return Status(code(), operation_); }

    /** The string. Call it only when ok(). */
    const Text& operator*() const& noexcept { return text_; }
    Text operator*() && noexcept { return std::move(text_); }
    const Text* operator->() const noexcept { return &text_; }

    /** A copy of the string, or of `other` after a failure. */
    std::string valueOr(std::string_view other) const {
        return std::string(ok() ? text_.view() : other);
    }

    /** A copy of the string; throws Error after a failure. */
    std::string value() const {
        status().orThrow();
        return text_.str();
    }

 private:
    Text text_;
    const char* operation_ = "the call";
};

/** A value, or the failure to get it. */
template <typename Value>
class [[nodiscard]] Result {
 public:
    explicit Result(Value value) : value_(std::move(value)), status_(BRIDGE_SUCCESS) {}
    explicit Result(Status failure) : status_(std::move(failure)) {}

    bool ok() const noexcept { return value_.has_value(); }
    explicit operator bool() const noexcept { return ok(); }
    bridge_i32 code() const noexcept { return status_.code(); }
    const Status& status() const noexcept { return status_; }

    /** The value. Call it only when ok(). */
    const Value& operator*() const& noexcept { return *value_; }
    Value operator*() && noexcept { return *std::move(value_); }
    const Value* operator->() const noexcept { return &*value_; }

    /** The value; throws Error after a failure. */
    const Value& value() const& {
        status_.orThrow();
        return *value_;
    }
    Value value() && {
        status_.orThrow();
        return *std::move(value_);
    }

 private:
    std::optional<Value> value_;
    Status status_;
};

}  // namespace bridge

#endif
