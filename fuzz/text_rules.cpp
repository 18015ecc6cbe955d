// The text and number rules of objectmodel/Text.h on any text: the whole
// input as a number, and, cut at its first line break, as a text and a text
// to find in it.

#include "FuzzSupport.h"
#include "objectmodel/Text.h"

#include <cmath>
#include <limits>
#include <optional>

namespace {

using namespace pipespec;
using fuzz::require;

// A refusal must carry the number its rule names.
template <class Convert>
void requireConversion(Convert&& convert, long refusal, const char* rule)
{
    try {
        convert();
    } catch (const PlatformError& e) {
        require(e.number() == refusal, rule);
    }
}

void checkNumber(std::string_view s)
{
    if (!text::IsNumeric(s)) {
        requireConversion([&] { (void)text::CDbl(s); }, err::TypeMismatch, "what is no number is a type mismatch");
        return;
    }
    std::optional<double> read;
    requireConversion([&] { read = text::CDbl(s); }, err::Overflow, "a number too large is an overflow");
    if (!read) return;
    const double value = *read;
    require(std::isfinite(value), "a number reads as a finite double");

    // Read back what Str writes, to its 15 digits; beyond 1E308 those digits
    // may round past the largest double.
    const auto written = text::Str(value);
    require(text::IsNumeric(written), "Str writes a number");
    if (std::fabs(value) < 1e308) {
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
        requireConversion([&] { (void)text::CLng(s); }, err::Overflow, "CLng beyond 32 bits is an overflow");
    }
    requireConversion([&] { (void)text::CInt(s); }, err::Overflow, "CInt beyond 16 bits is an overflow");
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
