#pragma once

// The string and number rules the logic was written against: 1-based byte
// positions, binary comparison, banker's rounding, and overflow errors at the
// 16- and 32-bit limits. Texts are UTF-8; every position and length counts
// bytes, so a multi-byte character occupies several positions.

#include "objectmodel/Errors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pipespec::text {

// `length` bytes of `s` from position `start` (1-based); -1 takes the rest.
// A start beyond the end gives "". start < 1 or length < -1: error 5.
[[nodiscard]] std::string Mid(std::string_view s, int start, int length = -1);
// The first or last n bytes, all of `s` when it is shorter. n < 0: error 5.
[[nodiscard]] std::string Left(std::string_view s, int n);
[[nodiscard]] std::string Right(std::string_view s, int n);

// Position (1-based) of the first `find` at or after `start`, 0 if none.
// An empty `find` is found at `start` as long as start <= Len + 1.
// start < 1: error 5.
[[nodiscard]] int InStr(int start, std::string_view s, std::string_view find);
[[nodiscard]] int InStr(std::string_view s, std::string_view find);
// Position of the last `find` lying wholly within positions 1..start, 0 if
// none; start -1 means the end of `s`, a start beyond the end gives 0. An
// empty `find` gives start. start 0 or below -1: error 5.
[[nodiscard]] int InStrRev(std::string_view s, std::string_view find, int start = -1);

// Every occurrence of `find`, scanning from position 1 without overlaps; an
// empty `find` leaves `s` as it is.
[[nodiscard]] std::string Replace(std::string_view s, std::string_view find, std::string_view with);

// ASCII letters only: the bytes of other UTF-8 characters stay as they are.
[[nodiscard]] std::string UCase(std::string_view s);
[[nodiscard]] std::string LCase(std::string_view s);
// Leading and trailing spaces; tabs and other white space stay.
[[nodiscard]] std::string Trim(std::string_view s);

// Byte-wise comparison: -1, 0 or 1.
[[nodiscard]] int StrCompBinary(std::string_view a, std::string_view b) noexcept;

// Blanks (spaces, tabs) around an optionally signed decimal number with at
// most one ".", at least one digit and an optional exponent ("E" or "e",
// optional sign, at least one digit), whose value a double holds: "1E400" is
// not numeric, "1E-400" is (it reads as 0).
[[nodiscard]] bool IsNumeric(std::string_view s) noexcept;

// Not numeric: error 13. Beyond the range of a double: error 6; too small a
// magnitude gives 0.
[[nodiscard]] double CDbl(std::string_view s);
// The number of a numeric text (CDbl); nothing for any other text.
[[nodiscard]] std::optional<double> NumberIn(std::string_view s);
// Rounded half to even (2.5 -> 2, 3.5 -> 4); outside the type's range: error 6.
[[nodiscard]] std::int32_t CLng(double value);
[[nodiscard]] std::int32_t CLng(std::string_view s);
[[nodiscard]] std::int16_t CInt(double value);
[[nodiscard]] std::int16_t CInt(std::string_view s);

// The next value of a 16-bit loop counter; past 32767: error 6.
[[nodiscard]] std::int16_t Inc16(std::int16_t counter);

// A number as the logic writes it into texts: whole numbers without decimals
// ("10003"), others with "." and no trailing zeros, 15 significant digits,
// "E" notation for very large or small magnitudes ("1E+15", "1E-05").
// Unlike the classic Str there is no leading blank for positive numbers.
[[nodiscard]] std::string Str(double value);

// A collection counted from 1, as the logic's own lists are.
template <class T>
class OneBased {
public:
    void Add(T item) { items_.push_back(std::move(item)); }
    [[nodiscard]] int Count() const noexcept { return static_cast<int>(items_.size()); }

    // 1..Count, anything else: error 9.
    [[nodiscard]] T& Item(int index) { return items_[slot(index)]; }
    [[nodiscard]] const T& Item(int index) const { return items_[slot(index)]; }

    auto begin() noexcept { return items_.begin(); }
    auto end() noexcept { return items_.end(); }
    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::size_t slot(int index) const
    {
        if (index < 1 || index > Count()) throw PlatformError(err::SubscriptOutOfRange, "Subscript out of range");
        return static_cast<std::size_t>(index - 1);
    }

    std::vector<T> items_;
};

}  // namespace pipespec::text
