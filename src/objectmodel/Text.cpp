#include "objectmodel/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <system_error>

namespace pipespec::text {

namespace {

[[noreturn]] void invalidCall() { throw PlatformError(err::InvalidCall, "Invalid procedure call or argument"); }
[[noreturn]] void overflow() { throw PlatformError(err::Overflow, "Overflow"); }
[[noreturn]] void typeMismatch() { throw PlatformError(err::TypeMismatch, "Type mismatch"); }

int length(std::string_view s) { return static_cast<int>(s.size()); }

std::string shiftLetters(std::string_view s, char first, char last, char newFirst)
{
    std::string out(s);
    for (char& c : out)
        if (first <= c && c <= last) c = static_cast<char>(c - first + newFirst);
    return out;
}

constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isDigit(char c) { return '0' <= c && c <= '9'; }

// A numeric text taken apart. The magnitude (power of ten of the first
// significant digit) tells an overflow from an underflow when the value does
// not fit a double.
struct NumberText {
    bool negative = false;
    std::string_view unsignedText;  // mantissa and exponent, as from_chars reads them
    long magnitude = 0;
};

std::optional<NumberText> scanNumber(std::string_view s) noexcept
{
    const auto first = std::find_if_not(s.begin(), s.end(), isBlank);
    const auto last = std::find_if_not(s.rbegin(), std::make_reverse_iterator(first), isBlank).base();
    s = std::string_view(first, last);

    NumberText number;
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) number.negative = s[i++] == '-';
    number.unsignedText = s.substr(i);

    long digits = 0;
    long integerDigits = -1;  // digits before the point, once a point was seen
    long firstSignificant = -1;
    for (; i < s.size(); ++i) {
        if (s[i] == '.') {
            if (integerDigits >= 0) return std::nullopt;
            integerDigits = digits;
        } else if (isDigit(s[i])) {
            if (s[i] != '0' && firstSignificant < 0) firstSignificant = digits;
            ++digits;
        } else {
            break;
        }
    }
    if (digits == 0) return std::nullopt;
    if (integerDigits < 0) integerDigits = digits;

    long exponent = 0;
    if (i < s.size() && (s[i] == 'E' || s[i] == 'e')) {
        ++i;
        bool negativeExponent = false;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) negativeExponent = s[i++] == '-';
        const std::size_t exponentStart = i;
        // Saturated: far beyond any double, and safe from overflowing a long.
        constexpr long kExponentLimit = 100000;
        for (; i < s.size() && isDigit(s[i]); ++i) exponent = std::min(exponent * 10 + (s[i] - '0'), kExponentLimit);
        if (i == exponentStart) return std::nullopt;
        if (negativeExponent) exponent = -exponent;
    }
    if (i != s.size()) return std::nullopt;

    number.magnitude = integerDigits - 1 - std::max(firstSignificant, 0L) + exponent;
    return number;
}

// The value of a scanned text; empty beyond the range of a double, while too
// small a magnitude gives 0.
std::optional<double> valueOf(const NumberText& number) noexcept
{
    const auto digits = number.unsignedText;
    double value = 0.0;
    // The scan admitted only what from_chars reads in full.
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec == std::errc::result_out_of_range) {
        if (number.magnitude >= 0) return std::nullopt;
        value = 0.0;
    }
    return number.negative ? -value : value;
}

double roundHalfEven(double value)
{
    double rounded = std::round(value);  // halves away from zero
    // The difference is exact: rounded lies within 0.5 of value.
    if (std::fabs(value - rounded) == 0.5 && std::fmod(rounded, 2.0) != 0.0) rounded -= std::copysign(1.0, value);
    return rounded;
}

template <class Int>
Int toInteger(double value)
{
    const double rounded = roundHalfEven(value);
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Int>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Int>::max());
    if (!(lowest <= rounded && rounded <= highest)) overflow();  // NaN fails as well
    return static_cast<Int>(rounded);
}

}  // namespace

std::string Mid(std::string_view s, int start, int length)
{
    if (start < 1 || length < -1) invalidCall();
    const auto from = static_cast<std::size_t>(start - 1);
    if (from >= s.size()) return {};
    return std::string(s.substr(from, length == -1 ? std::string_view::npos : static_cast<std::size_t>(length)));
}

std::string Left(std::string_view s, int n)
{
    if (n < 0) invalidCall();
    return std::string(s.substr(0, static_cast<std::size_t>(n)));
}

std::string Right(std::string_view s, int n)
{
    if (n < 0) invalidCall();
    const auto count = static_cast<std::size_t>(n);
    return std::string(count >= s.size() ? s : s.substr(s.size() - count));
}

int InStr(int start, std::string_view s, std::string_view find)
{
    if (start < 1) invalidCall();
    if (start > length(s) + 1) return 0;
    if (find.empty()) return start;
    const auto hit = s.find(find, static_cast<std::size_t>(start - 1));
    return hit == std::string_view::npos ? 0 : static_cast<int>(hit) + 1;
}

int InStr(std::string_view s, std::string_view find) { return InStr(1, s, find); }

int InStrRev(std::string_view s, std::string_view find, int start)
{
    if (start == 0 || start < -1) invalidCall();
    const int last = start == -1 ? length(s) : start;
    if (last > length(s)) return 0;
    if (find.empty()) return last;
    if (length(find) > last) return 0;
    const auto hit = s.rfind(find, static_cast<std::size_t>(last) - find.size());
    return hit == std::string_view::npos ? 0 : static_cast<int>(hit) + 1;
}

std::string Replace(std::string_view s, std::string_view find, std::string_view with)
{
    if (find.empty()) return std::string(s);
    std::string out;
    out.reserve(s.size());
    std::size_t from = 0;
    for (auto hit = s.find(find); hit != std::string_view::npos; hit = s.find(find, from)) {
        out.append(s.substr(from, hit - from)).append(with);
        from = hit + find.size();
    }
    out.append(s.substr(from));
    return out;
}

std::string UCase(std::string_view s) { return shiftLetters(s, 'a', 'z', 'A'); }
std::string LCase(std::string_view s) { return shiftLetters(s, 'A', 'Z', 'a'); }

std::string Trim(std::string_view s)
{
    const auto first = s.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(s.substr(first, s.find_last_not_of(' ') - first + 1));
}

int StrCompBinary(std::string_view a, std::string_view b) noexcept
{
    // char_traits<char> compares as unsigned char, so UTF-8 sorts by code point.
    const int order = a.compare(b);
    return (order > 0) - (order < 0);
}

bool IsNumeric(std::string_view s) noexcept
{
    const auto number = scanNumber(s);
    // Only a magnitude as high as that of a double's largest value can lie beyond it.
    return number && (number->magnitude < std::numeric_limits<double>::max_exponent10 || valueOf(*number));
}

double CDbl(std::string_view s)
{
    const auto number = scanNumber(s);
    if (!number) typeMismatch();
    const auto value = valueOf(*number);
    if (!value) overflow();
    return *value;
}

std::optional<double> NumberIn(std::string_view s)
{
    if (!IsNumeric(s)) return std::nullopt;
    return CDbl(s);
}

std::int32_t CLng(double value) { return toInteger<std::int32_t>(value); }
std::int32_t CLng(std::string_view s) { return CLng(CDbl(s)); }
std::int16_t CInt(double value) { return toInteger<std::int16_t>(value); }
std::int16_t CInt(std::string_view s) { return CInt(CDbl(s)); }

std::int16_t Inc16(std::int16_t counter)
{
    if (counter == std::numeric_limits<std::int16_t>::max()) overflow();
    return static_cast<std::int16_t>(counter + 1);
}

std::string Str(double value)
{
    if (value == 0.0) return "0";  // also for -0
    constexpr int kSignificantDigits = 15;
    std::array<char, 32> buffer{};
    // Room for the longest form, "-1.23456789012346E-308".
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general,
                                       kSignificantDigits);
    std::string out(buffer.data(), written.ptr);
    for (char& c : out)
        if (c == 'e') c = 'E';
    return out;
}

}  // namespace pipespec::text
