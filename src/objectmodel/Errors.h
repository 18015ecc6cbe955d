#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace pipespec {

// Error numbers follow the classic runtime numbering, because callers and
// tests recognise failures by number.
namespace err {
inline constexpr long InvalidCall = 5;
inline constexpr long Overflow = 6;
inline constexpr long OutOfMemory = 7;
inline constexpr long SubscriptOutOfRange = 9;
inline constexpr long TypeMismatch = 13;
inline constexpr long ObjectNotSet = 91;
inline constexpr long CannotCreateObject = 429;  // no class of that name
inline constexpr long DuplicateKey = 457;
inline constexpr long NotSupported = 438;
inline constexpr long ReadOnly = 1001;       // object or project may not be written
inline constexpr long CycleRefused = 1002;   // link would make an object its own base
inline constexpr long NameInUse = 1003;      // sibling with that name exists
inline constexpr long Deleted = 1004;        // operation on a deleted object
inline constexpr long Configuration = 1005;  // name table or data file incomplete
inline constexpr long FileAccess = 1006;     // database file cannot be read or written (disk, lock)
inline constexpr long FileChanged = 1007;    // database file was saved by another session since it was read
inline constexpr long Internal = 51;
}  // namespace err

// The one exception type of the platform: a number and a description.
class PlatformError : public std::runtime_error {
public:
    PlatformError(long number, const std::string& description) : std::runtime_error(description), number_(number) {}
    long number() const noexcept { return number_; }

private:
    long number_;
};

// The error object handed to ReportError: what the error tail caught.
struct ErrorInfo {
    long Number = 0;
    std::string Description;
};

// Dereferencing an empty reference is an error of its own (91), as the logic
// expects when it goes on with values unset after a resumed failure.
template <class Ptr>
auto& must(const Ptr& p)
{
    if (!p) throw PlatformError(err::ObjectNotSet, "Object variable not set");
    return *p;
}

}  // namespace pipespec
