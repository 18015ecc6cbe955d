#include "platform/PipeSpecHelper.h"

#include "objectmodel/Errors.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <vector>

namespace pipespec::platform {

namespace {
constexpr std::string_view kMenuPath = "@3D|@Menu";
constexpr int kPathMode = 1;

bool fitsPattern(std::string_view pattern, std::string_view code)
{
    return pattern.size() == code.size() &&
           std::equal(pattern.begin(), pattern.end(), code.begin(), [](char p, char c) { return p == 'X' || p == c; });
}

bool hasCode(const IDevice& element, const std::string& attribute, std::string_view wanted)
{
    if (wanted.empty()) return true;
    const auto spec = element.Spec(attribute);
    return spec && spec->ValueText() == wanted;
}

// A sub-class whose elements belong to the class that lists it: a pipe class
// other than one at which the collection of components stops.
bool collectsFrom(const IDevice& device, const std::string& codeAttribute)
{
    const auto spec = device.Spec(codeAttribute);
    const auto code = spec ? text::NumberIn(spec->ValueText()) : std::nullopt;
    return code && *code >= functioncode::FirstPipeClass && *code <= functioncode::LastPipeClass &&
           *code != functioncode::UncollectedPipeClass;
}

// An element serves the diameters of its name range: lower bound <= DN <=
// upper bound, as numbers. A bound that is not set or holds no number leaves
// that side open, as when the range control offers an element's diameters.
bool servesDiameter(const IDevice& element, const INameTable& names, std::optional<double> wanted)
{
    if (!wanted) return true;
    const auto bound = [&](const std::string& attribute) {
        const auto spec = element.Spec(names.NameRange() + "." + attribute);
        return spec ? text::NumberIn(spec->Value()) : std::nullopt;
    };
    const auto lower = bound(names.NameRangeLowerAttr());
    const auto upper = bound(names.NameRangeUpperAttr());
    return (!lower || *lower <= *wanted) && (!upper || *wanted <= *upper);
}
}  // namespace

PipeSpecHelper::PipeSpecHelper(std::shared_ptr<const INameTable> names) : names_(std::move(names)) {}

CollectionRef PipeSpecHelper::FindComponents(int mode, std::string_view functionCode, std::string_view nominalDiameter)
{
    if (mode != 0) throw PlatformError(err::InvalidCall, "FindComponents knows mode 0 only");
    const auto diameter = nominalDiameter.empty() ? std::nullopt : text::NumberIn(nominalDiameter);
    if (!nominalDiameter.empty() && !diameter)
        throw PlatformError(err::InvalidCall,
                            "the nominal diameter '" + std::string(nominalDiameter) + "' is no number");
    const auto& root = must(searchRoot_);
    const auto found = must(root.Workset()).NewCollection();
    const auto& codeAttribute = names_->GD().VFCD();
    // The elements of the class, and those of the sub-classes its elements
    // stand for, as the class lists its components; each class once.
    std::vector<const IDevice*> classes{&root};
    std::unordered_set<const IDevice*> met{&root};
    while (!classes.empty()) {
        const auto elements = classes.back()->Devices();
        classes.pop_back();
        for (int i = 1; i <= elements->Count(); ++i) {
            const auto element = asDevice(elements->Item(i));
            if (!element) continue;
            if (hasCode(*element, codeAttribute, functionCode) && servesDiameter(*element, *names_, diameter))
                found->Add(element);
            const auto base = element->CDevice();
            if (base && collectsFrom(*base, codeAttribute) && met.insert(base.get()).second)
                classes.push_back(base.get());
        }
    }
    return found;
}

std::string PipeSpecHelper::GenericTypeOfFunctionCode(DeviceRef& menuRoot, long functionCode)
{
    if (!menuRoot) menuRoot = asDevice(must(must(pipeClass_).Project()).ObjectByPath(kMenuPath, kPathMode));
    if (!menuRoot) return {};
    const auto code = std::to_string(functionCode);
    const auto entries = menuRoot->Devices();
    for (int i = 1; i <= entries->Count(); ++i) {
        const auto entry = entries->Item(i);
        if (fitsPattern(entry->Name(), code)) return entry->Description();
    }
    return {};
}

}  // namespace pipespec::platform
