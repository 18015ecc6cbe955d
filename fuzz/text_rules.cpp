// The text and number rules of objectmodel/Text.h on any text: the whole
// input as a number, and, cut at its first line break, as a text and a text
// to find in it.

#include "FuzzSupport.h"
#include "objectmodel/Text.h"

#include <cmath>
#include <limits>

namespace {

using namespace pipespec;
using fuzz::require;

// A conversion out of range must be refused as an overflow, if at all.
template <class Convert>
void requireOverflow(Convert&& convert, const char* rule)
{
    try {
        convert();
    } catch (const PlatformError& e) {
        require(e.number() == err::Overflow, rule);
    }
}

void checkNumber(std::string_view s)
{
    if (!text::IsNumeric(s)) {
        // A number written right but beyond a double is an overflow, any
        // other text a type mismatch; neither reads as a number.
        try {
            (void)text::CDbl(s);
            require(false, "what is no number does not read as one");
        } catch (const PlatformError& e) {
            require(e.number() == err::TypeMismatch || e.number() == err::Overflow,
                    "what is no number is a type mismatch or an overflow");
        }
        return;
    }
    const double value = text::CDbl(s);
    require(std::isfinite(value), "a number reads as a finite double");

    // Read back what Str writes, to its 15 digits; beyond 1E308 those digits
    // may round past the largest double.
    const auto written = text::Str(value);
    if (std::fabs(value) < 1e308) {
        require(text::IsNumeric(written), "Str writes a number");
        const double back = text::CDbl(written);
        require(std::fabs(back - value) <= std::fabs(value) * 1e-14 ||
                    std::fabs(value) < std::numeric_limits<double>::min(),
                "Str and CDbl round-trip to 15 digits");
    }

    // Whole numbers within the 32-bit range convert, half to even.
    if (std::fabs(value) < 2147483647.0) {
        const auto whole = text::CLng(s);
        require(std::fabs(static_cast<double>(whole) - value) <= 0.5, "CLng rounds to the nearest whole number");
    } else {
        requireOverflow([&] { (void)text::CLng(s); }, "CLng beyond 32 bits is an overflow");
    }
    requireOverflow([&] { (void)text::CInt(s); }, "CInt beyond 16 bits is an overflow");
}

void checkPositions(std::string_view s, std::string_view find)
{
    const int length = static_cast<int>(s.size());
    for (const int start : {1, 2, length / 2 + 1, length, length + 1, length + 2}) {
        if (start < 1) continue;
        const int hit = text::InStr(start, s, find);
        const auto from = static_cast<std::size_t>(start - 1);
        const auto expected = from > s.size() || s.find(find, from) == std::string_view::npos
                                  ? 0
                                  : static_cast<int>(s.find(find, from)) + 1;
        require(hit == expected, "InStr finds the first occurrence at or after start");
        require(text::Left(s, start - 1) + text::Mid(s, start) == s, "Left and Mid join to the whole text");
    }
    if (!find.empty()) {
        const auto last = s.rfind(find);
        require(text::InStrRev(s, find) == (last == std::string_view::npos ? 0 : static_cast<int>(last) + 1),
                "InStrRev finds the last occurrence");
    }
    require(text::Replace(s, find, find) == s, "replacing a text by itself changes nothing");
    const auto trimmed = text::Trim(s);
    require(trimmed.empty() || (trimmed.front() != ' ' && trimmed.back() != ' '), "Trim leaves no spaces at the ends");
    require(text::UCase(text::LCase(s)) == text::UCase(s), "case changes only ASCII letters");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fuzz::text(data, size);
    checkNumber(input);
    const auto cut = input.find('\n');
    checkPositions(input.substr(0, cut), cut == std::string_view::npos ? std::string_view() : input.substr(cut + 1));
    return 0;
}
