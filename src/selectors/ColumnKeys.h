#pragma once

// How a selector grid column names its question. A question column's Key is
// "@Selector_" followed by the nested attribute name ("CHAPTER.ATTR"), or by
// a bare question text ("PBOR1"); a range question shows as two neighbouring
// columns whose attribute part starts with "MIN" and "MAX". A Title holding
// "BDIA" or "PBOR" makes the column a bore question, the title being the
// question. In a selector's name, everything behind the first ":" is the answer.

#include <cstdint>
#include <string>
#include <string_view>

namespace pipespec::addtopipeclass::columnkey {

inline constexpr std::string_view Prefix = "@Selector_";

// Exactly the prefix, case-sensitive.
[[nodiscard]] bool isQuestion(std::string_view key);
// Everything behind the prefix: the nested name or the bare question.
[[nodiscard]] std::string nestedName(std::string_view key);
// What stands behind the first "." after the prefix, or else the nested name.
[[nodiscard]] std::string attributeName(std::string_view key);
[[nodiscard]] bool isBoreText(std::string_view text);
// The text begins with "MIN" or "MAX".
[[nodiscard]] bool hasRangeMark(std::string_view text);
// The three characters behind the first "." of a key, or its first three.
[[nodiscard]] std::string rangeMarkOfKey(std::string_view key);
// The key of the other column of a range pair: "MIN" and "MAX" swapped at the mark.
[[nodiscard]] std::string partnerKey(std::string_view key);
// The question part of a selector's name: up to the first ":".
[[nodiscard]] std::string questionPart(std::string_view selectorName);
// The key of a tab in the tab maps: "0K", "1K", ...
[[nodiscard]] std::string tabKey(std::int16_t tab);

}  // namespace pipespec::addtopipeclass::columnkey
