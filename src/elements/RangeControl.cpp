#include "elements/RangeControl.h"

#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"

#include <optional>
#include <utility>

namespace pipespec::addtopipeclass {

namespace {
std::optional<double> boundOf(const IDevice& element, const std::string& chapter, const std::string& attribute)
{
    const auto spec = element.Spec(chapter + "." + attribute);
    if (!spec) return std::nullopt;
    const auto value = spec->Value();
    if (!text::IsNumeric(value)) return std::nullopt;
    return text::CDbl(value);
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

void PCOMRangeControl::InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass)
{
    if (!element || !pipeClass) return;
    const auto& names = diagnostics::names();
    const auto offered = pipeClass->Spec(names.NameRangeListAttr());
    if (!offered || offered->RowCount() == 0) return;
    const auto chapter = element->Spec(names.NameRange());
    if (!chapter) return;

    auto range = element->Spec(names.NameRangeListAttr());
    if (range && !range->SystemTemporary() && range->RowCount() > 0) return;
    if (!range || range->SystemTemporary()) {
        if (!makePersistent(*chapter)) return;
        range = asSpec(chapter->OwnSpecifications()->CreateNewWithName(attributeName(names.NameRangeListAttr())));
    }

    const auto lower = boundOf(*element, names.NameRange(), names.NameRangeLowerAttr());
    const auto upper = boundOf(*element, names.NameRange(), names.NameRangeUpperAttr());
    int next = 0;
    for (int i = 0; i < offered->RowCount(); ++i) {
        const auto diameter = offered->GetXValue(i);
        if (!text::IsNumeric(diameter)) continue;
        const double dn = text::CDbl(diameter);
        if ((lower && dn < *lower) || (upper && dn > *upper)) continue;
        must(range).SetXValue(next++, diameter);
    }
}

IRangeControl& sharedPCOMRange() { return sharedSlot().get(); }

std::shared_ptr<IRangeControl> setSharedPCOMRange(std::shared_ptr<IRangeControl> replacement)
{
    return sharedSlot().exchange(std::move(replacement));
}

}  // namespace pipespec::addtopipeclass
