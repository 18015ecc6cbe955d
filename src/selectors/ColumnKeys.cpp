#include "selectors/ColumnKeys.h"

#include "objectmodel/Text.h"

namespace pipespec::addtopipeclass::columnkey {

namespace {
constexpr int kNameStart = static_cast<int>(Prefix.size()) + 1;
constexpr int kMarkLength = 3;
constexpr std::string_view kMin = "MIN";
constexpr std::string_view kMax = "MAX";

int markPosition(std::string_view key)
{
    const int dot = text::InStr(key, ".");
    return dot == 0 ? 1 : dot + 1;
}
}  // namespace

bool isQuestion(std::string_view key) { return text::Left(key, static_cast<int>(Prefix.size())) == Prefix; }

std::string nestedName(std::string_view key) { return text::Mid(key, kNameStart); }

std::string attributeName(std::string_view key)
{
    const int dot = text::InStr(kNameStart, key, ".");
    return dot == 0 ? text::Mid(key, kNameStart) : text::Mid(key, dot + 1);
}

bool isBoreText(std::string_view text) { return text::InStr(text, "BDIA") > 0 || text::InStr(text, "PBOR") > 0; }

bool hasRangeMark(std::string_view text)
{
    const auto mark = text::Left(text, kMarkLength);
    return mark == kMin || mark == kMax;
}

std::string rangeMarkOfKey(std::string_view key) { return text::Mid(key, markPosition(key), kMarkLength); }

std::string partnerKey(std::string_view key)
{
    const int at = markPosition(key);
    const auto other = rangeMarkOfKey(key) == kMin ? kMax : kMin;
    return text::Left(key, at - 1) + std::string(other) + text::Mid(key, at + kMarkLength);
}

std::string questionPart(std::string_view selectorName)
{
    const int colon = text::InStr(selectorName, ":");
    return colon == 0 ? std::string(selectorName) : text::Left(selectorName, colon - 1);
}

std::string tabKey(std::int16_t tab) { return std::to_string(tab) + "K"; }

}  // namespace pipespec::addtopipeclass::columnkey
