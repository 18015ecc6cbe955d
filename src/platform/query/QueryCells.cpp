#include "platform/query/QueryCells.h"

#include "objectmodel/Text.h"
#include "platform/query/Query.h"

#include <cctype>
#include <charconv>

namespace pipespec::platform::cells {

namespace {
template <class... F>
struct Overloaded : F... {
    using F::operator()...;
};
// Clang 14 does not deduce an aggregate's template arguments by itself.
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

int boundIndex(const ColumnSettings& column) { return column.valueParameter == "1" ? 1 : 0; }

ISpecification& attribute(IBaseObject& object, const ColumnSettings& column)
{
    auto* spec = dynamic_cast<ISpecification*>(&object);
    if (!spec)
        throw PlatformError(err::TypeMismatch,
                            "column " + column.key + " shows no attribute for " + object.SystemFullName());
    return *spec;
}

bool startsNumber(std::string_view s, std::size_t at)
{
    const auto digit = [&](std::size_t i) { return i < s.size() && std::isdigit(static_cast<unsigned char>(s[i])); };
    return digit(at) || ((s[at] == '-' || s[at] == '.') && digit(at + 1));
}

std::optional<double> firstNumberIn(std::string_view s)
{
    for (std::size_t at = 0; at < s.size(); ++at)
        if (startsNumber(s, at)) {
            double value = 0;
            if (std::from_chars(s.data() + at, s.data() + s.size(), value).ec == std::errc()) return value;
            return std::nullopt;
        }
    return std::nullopt;
}

std::optional<double> wholeNumber(std::string_view s)
{
    if (!text::IsNumeric(s)) return std::nullopt;
    try {
        return text::CDbl(s);
    } catch (const PlatformError&) {
        return std::nullopt;  // beyond the range of a double: no number to order by
    }
}
}  // namespace

ObjectRef sourceObject(const ObjectRef& row, const QueryColumn& column)
{
    const ObjectRef start = column.base() ? sourceObject(row, *column.base()) : row;
    if (!start) return nullptr;
    const auto& settings = column.settings();
    switch (settings.sourceKind) {
    case sourcekind::Owner: return start->Owner();
    case sourcekind::BaseObject: {
        const auto device = asDevice(start);
        return device ? device->CDevice() : nullptr;
    }
    case sourcekind::Attribute: return start->Spec(settings.sourceName);
    default: return start;
    }
}

Variant read(const ObjectRef& source, const ColumnSettings& column)
{
    if (!source) return {};
    const auto* spec = dynamic_cast<const ISpecification*>(source.get());
    switch (column.valueKind) {
    case valuekind::Description: return source->Description();
    case valuekind::Name: return source->Name();
    case valuekind::Component: {
        const auto description = source->Description();
        return description.empty() ? source->Name() : source->Name() + " - " + description;
    }
    case valuekind::DisplayValue: return spec ? Variant(spec->DisplayValue()) : Variant();
    case valuekind::RangeBound: return spec ? Variant(spec->GetXValue(boundIndex(column))) : Variant();
    case valuekind::Value: return spec ? Variant(spec->Value()) : Variant();
    default: return {};
    }
}

void write(const ObjectRef& source, const ColumnSettings& column, const Variant& value)
{
    const bool attributeKind = column.valueKind == valuekind::DisplayValue ||
                               column.valueKind == valuekind::RangeBound || column.valueKind == valuekind::Value;
    if (!attributeKind && column.valueKind != valuekind::Name && column.valueKind != valuekind::Description)
        throw PlatformError(err::ReadOnly, "column " + column.key + " shows nothing that can be written");
    auto& target = must(source);
    makePersistent(target);
    const auto newText = text(value);
    if (column.valueKind == valuekind::Name) return target.SetName(newText);
    if (column.valueKind == valuekind::Description) return target.SetDescription(newText);
    auto& spec = attribute(target, column);
    if (column.valueKind == valuekind::DisplayValue) return spec.SetValue(spec.ValueOfDisplayText(newText));
    if (column.valueKind == valuekind::RangeBound)
        spec.SetXValue(boundIndex(column), newText);
    else
        spec.SetValue(newText);
}

std::string text(const Variant& value)
{
    return std::visit(Overloaded{[](std::monostate) { return std::string(); },
                                 [](bool b) { return std::string(b ? "1" : "0"); },
                                 [](std::int64_t n) { return std::to_string(n); },
                                 [](double d) { return text::Str(d); }, [](const std::string& s) { return s; },
                                 [](const ObjectRef& o) { return o ? o->Name() : std::string(); },
                                 [](const auto&) { return std::string(); }},
                      value.storage());
}

bool flag(const Variant& value)
{
    const auto n = number(value, 0);
    return n && *n != 0;
}

std::optional<double> number(const Variant& value, int numericMode)
{
    return std::visit(
        Overloaded{[](bool b) -> std::optional<double> { return b ? 1.0 : 0.0; },
                   [](std::int64_t n) -> std::optional<double> { return static_cast<double>(n); },
                   [](double d) -> std::optional<double> { return d; },
                   [numericMode](const std::string& s) { return numericMode == 1 ? firstNumberIn(s) : wholeNumber(s); },
                   [](const auto&) -> std::optional<double> { return std::nullopt; }},
        value.storage());
}

int compare(const Variant& a, const Variant& b, int numericMode)
{
    const auto x = number(a, numericMode);
    const auto y = number(b, numericMode);
    if (x && y) return (*x > *y) - (*x < *y);
    return text::StrCompBinary(text(a), text(b));
}

}  // namespace pipespec::platform::cells
