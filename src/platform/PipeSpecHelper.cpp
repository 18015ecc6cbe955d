#include "platform/PipeSpecHelper.h"

#include "objectmodel/Errors.h"

#include <algorithm>

namespace pipespec::platform {

namespace {
constexpr std::string_view kMenuPath = "@3D|@Menu";
constexpr int kPathMode = 1;

bool fitsPattern(std::string_view pattern, std::string_view code)
{
    return pattern.size() == code.size() &&
           std::equal(pattern.begin(), pattern.end(), code.begin(), [](char p, char c) { return p == 'X' || p == c; });
}

bool matches(const IDevice& element, const std::string& attribute, std::string_view wanted)
{
    if (wanted.empty()) return true;
    const auto spec = element.Spec(attribute);
    return spec && spec->ValueText() == wanted;
}
}  // namespace

PipeSpecHelper::PipeSpecHelper(std::shared_ptr<const INameTable> names) : names_(std::move(names)) {}

CollectionRef PipeSpecHelper::FindComponents(int mode, std::string_view functionCode, std::string_view nominalDiameter)
{
    if (mode != 0) throw PlatformError(err::InvalidCall, "FindComponents knows mode 0 only");
    const auto& root = must(searchRoot_);
    const auto found = must(root.Workset()).NewCollection();
    const auto& codeAttribute = names_->GD().VFCD();
    const auto& diameterAttribute = names_->Connection().NominalDiameter().First();
    const auto elements = root.Devices();
    for (int i = 1; i <= elements->Count(); ++i) {
        const auto element = asDevice(elements->Item(i));
        if (element && matches(*element, codeAttribute, functionCode) &&
            matches(*element, diameterAttribute, nominalDiameter))
            found->Add(element);
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
