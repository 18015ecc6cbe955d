#include "elements/RangeControl.h"

#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace pipespec::addtopipeclass {

namespace {
std::optional<double> boundOf(const IDevice& element, const std::string& chapter, const std::string& attribute)
{
    const auto spec = element.Spec(chapter + "." + attribute);
    return spec ? text::NumberIn(spec->Value()) : std::nullopt;
}

// The bare attribute name behind a chapter-qualified one.
std::string attributeName(const std::string& qualified)
{
    const auto dot = qualified.rfind('.');
    return dot == std::string::npos ? qualified : qualified.substr(dot + 1);
}

diagnostics::ServiceSlot<IRangeControl, PCOMRangeControl>& sharedSlot()
{
    static diagnostics::ServiceSlot<IRangeControl, PCOMRangeControl> slot;
    return slot;
}
}  // namespace

std::vector<std::string> diametersWithinBounds(const IDevice& element, const ISpecification& offered)
{
    const auto& names = diagnostics::names();
    const auto lower = boundOf(element, names.NameRange(), names.NameRangeLowerAttr());
    const auto upper = boundOf(element, names.NameRange(), names.NameRangeUpperAttr());
    std::vector<std::string> within;
    for (int i = 0; i < offered.RowCount(); ++i) {
        auto diameter = offered.GetXValue(i);
        const auto dn = text::NumberIn(diameter);
        if (!dn || (lower && *dn < *lower) || (upper && *dn > *upper)) continue;
        within.push_back(std::move(diameter));
    }
    return within;
}

namespace {
// The element's own range list, made where it has none; empty when its
// name-range chapter may not be written.
SpecRef ownRange(const IDevice& element)
{
    const auto& names = diagnostics::names();
    const auto chapter = element.Spec(names.NameRange());
    if (!chapter) return nullptr;
    auto range = element.Spec(names.NameRangeListAttr());
    if (range && !range->SystemTemporary()) return range;
    if (!makePersistent(*chapter)) return nullptr;
    return asSpec(chapter->OwnSpecifications()->CreateNewWithName(attributeName(names.NameRangeListAttr())));
}

// The range from the first row on; rows beyond it are emptied, as a list
// keeps its length.
void writeRange(ISpecification& range, const std::vector<std::string>& diameters)
{
    const int rows = std::max(range.RowCount(), static_cast<int>(diameters.size()));
    for (int i = 0; i < rows; ++i) {
        const auto index = static_cast<std::size_t>(i);
        range.SetXValue(i, index < diameters.size() ? diameters[index] : std::string());
    }
}
}  // namespace

void PCOMRangeControl::InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass)
{
    if (!element || !pipeClass) return;
    const auto& names = diagnostics::names();
    const auto offered = pipeClass->Spec(names.NameRangeListAttr());
    if (!offered || offered->RowCount() == 0) return;
    if (!element->Spec(names.NameRange())) return;

    const auto held = element->Spec(names.NameRangeListAttr());
    if (held && !held->SystemTemporary() && held->RowCount() > 0) return;
    if (const auto range = ownRange(*element)) writeRange(*range, diametersWithinBounds(*element, *offered));
}

bool SetNDRange(const DeviceRef& element, const DeviceRef& pipeClass, std::string_view lower, std::string_view upper)
{
    if (!element || !pipeClass) return false;
    const auto& names = diagnostics::names();
    const auto offered = pipeClass->Spec(names.NameRangeListAttr());
    const auto chapter = names.NameRange() + ".";
    const auto lowerBound = element->Spec(chapter + names.NameRangeLowerAttr());
    const auto upperBound = element->Spec(chapter + names.NameRangeUpperAttr());
    const auto writable = [](const SpecRef& spec) {
        return spec && (!spec->SystemTemporary() || spec->CanMakePersistent());
    };
    if (!offered || !writable(lowerBound) || !writable(upperBound)) return false;
    const auto range = ownRange(*element);
    if (!range) return false;
    for (const auto& [bound, value] : {std::pair(lowerBound, lower), std::pair(upperBound, upper)}) {
        makePersistent(*bound);
        bound->SetValue(value);
    }
    writeRange(*range, diametersWithinBounds(*element, *offered));
    return true;
}

IRangeControl& sharedPCOMRange() { return sharedSlot().get(); }

std::shared_ptr<IRangeControl> setSharedPCOMRange(std::shared_ptr<IRangeControl> replacement)
{
    return sharedSlot().exchange(std::move(replacement));
}

}  // namespace pipespec::addtopipeclass
