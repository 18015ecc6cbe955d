#include "qtplatform/WizardEngine.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"

#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

namespace pipespec::qtplatform {

using diagnostics::Procedure;

namespace {
constexpr std::string_view kClass = "QuorlPipeSpecWizard.Engine";
constexpr std::string_view kCatalogueRoot = "@40";
constexpr int kPathMode = 1;
// The nominal pressure's attribute within the selector chapter.
constexpr std::string_view kPressure = "PN";

struct Refusal {
    std::string forUser;  // translated, for the check result
    std::string why;      // English, for the trace
};

struct DiameterRange {
    double lower = 0;
    double upper = 0;
    bool holds(double diameter) const { return lower <= diameter && diameter <= upper; }
};

std::optional<double> numberOf(const IBaseObject& object, const std::string& attribute)
{
    const auto spec = object.Spec(attribute);
    return spec ? text::NumberIn(spec->Value()) : std::nullopt;
}

// "DN 15", "15": the number behind what letters and blanks lead it.
std::optional<double> diameterIn(std::string_view part)
{
    const auto first = part.find_first_of("0123456789");
    return first == std::string_view::npos ? std::nullopt : text::NumberIn(part.substr(first));
}

// An element range: "DN15-DN100", or one diameter "DN50". Nothing when it
// does not read so.
std::optional<DiameterRange> rangeIn(std::string_view text)
{
    const auto dash = text.find('-');
    const auto lower = diameterIn(text.substr(0, dash));
    const auto upper = dash == std::string_view::npos ? lower : diameterIn(text.substr(dash + 1));
    if (!lower || !upper) return std::nullopt;
    return DiameterRange{*lower, *upper};
}

// The class's diameter list decides where it has one, else its bounds.
bool offersDiameter(const IDevice& pipeClass, double diameter, const INameTable& names)
{
    const auto list = pipeClass.Spec(names.NameRangeListAttr());
    if (list && list->RowCount() > 0) {
        for (int i = 0; i < list->RowCount(); ++i)
            if (text::NumberIn(list->GetXValue(i)) == diameter) return true;
        return false;
    }
    const auto bound = [&](const std::string& attribute) {
        return numberOf(pipeClass, names.NameRange() + "." + attribute);
    };
    const auto lower = bound(names.NameRangeLowerAttr());
    const auto upper = bound(names.NameRangeUpperAttr());
    return (!lower || *lower <= diameter) && (!upper || diameter <= *upper);
}

std::optional<Refusal> refusalOf(const IDevice& pipeClass, const IDevice& object)
{
    const auto& names = diagnostics::names();
    const auto& utilities = diagnostics::utilities();
    if (object.CreateOption() != 0)
        return Refusal{utilities.Translate(msg::window::WizardStructureElement), "a structure element is no component"};
    const auto classPressure = numberOf(pipeClass, WizardEngine::PressureAttribute());
    const auto pressure = numberOf(object, WizardEngine::PressureAttribute());
    if (classPressure && pressure && *classPressure != *pressure) {
        const auto ours = text::Str(*pressure);
        const auto theirs = text::Str(*classPressure);
        return Refusal{diagnostics::FillS1S2(utilities.Translate(msg::window::WizardPressureDiffers), ours, theirs),
                       "PN " + ours + " is not the class's PN " + theirs};
    }
    const auto diameter = numberOf(object, names.Connection().NominalDiameter().First());
    if (diameter && !offersDiameter(pipeClass, *diameter, names)) {
        const auto shown = text::Str(*diameter);
        return Refusal{diagnostics::FillPercent1(utilities.Translate(msg::window::WizardDiameterNotOffered), shown),
                       "DN " + shown + " is not offered by the class"};
    }
    return std::nullopt;
}

bool isTemplateClass(const ObjectRef& object)
{
    std::int32_t code = 0;
    return addtopipeclass::IsPipeClass(object, code) && code == functioncode::TemplatePipeClass;
}

// The end of the base chain: an element made from the device stands on it.
DeviceRef rootOf(DeviceRef device)
{
    while (auto base = device->CDevice()) device = std::move(base);
    return device;
}

void collectComponents(const DeviceRef& device, const std::string& codeAttribute, std::vector<DeviceRef>& found)
{
    const auto code = device->Spec(codeAttribute);
    if (!device->IsFolder() && code && !code->Value().empty()) found.push_back(device);
    const auto children = device->Devices();
    for (int i = 1; i <= children->Count(); ++i)
        if (const auto child = asDevice(children->Item(i))) collectComponents(child, codeAttribute, found);
}
}  // namespace

std::string WizardEngine::PressureAttribute()
{
    return diagnostics::names().SelectorChapter() + "." + std::string(kPressure);
}

std::vector<DeviceRef> WizardEngine::Catalogue(const DeviceRef& pipeClass)
{
    std::vector<DeviceRef> found;
    if (!pipeClass) return found;
    const auto& codeAttribute = diagnostics::names().GD().VFCD();
    for (auto project = pipeClass->Project(); project; project = project->BaseProject()) {
        // The path is looked up down the base projects: a root is taken in its own project only.
        const auto root = asDevice(project->ObjectByPath(kCatalogueRoot, kPathMode));
        if (root && root->Project() == project) collectComponents(root, codeAttribute, found);
    }
    return found;
}

std::vector<DeviceRef> WizardEngine::Offers(const DeviceRef& pipeClass)
{
    // The validity test reads the class's function code: no class, no offer.
    if (!addtopipeclass::IsPipeClass(pipeClass)) return {};
    auto offered = Catalogue(pipeClass);
    std::erase_if(offered, [&](const DeviceRef& component) {
        Variant refusal;
        return !addtopipeclass::CheckValid(component, pipeClass, true, refusal, this);
    });
    return offered;
}

bool WizardEngine::CheckElement(const DeviceRef& pipeClass, const DeviceRef& object, Variant& result)
{
    bool fits = false;
    Procedure(kClass, "Function CheckElement").run([&] {
        const auto refusal = refusalOf(must(pipeClass), must(object));
        fits = !refusal;
        result = fits ? Variant() : Variant(refusal->forUser);
        trace("CheckElement", object->SystemFullName() + (fits ? " fits" : " refused: " + refusal->why));
    });
    return fits;
}

void WizardEngine::SolveCDevice(const DeviceRef& element, bool& solved)
{
    solved = false;
    Procedure(kClass, "Sub SolveCDevice").run([&] {
        if (!element) return;
        const auto workset = element->Workset();
        const ActionScope action(must(workset));
        solved = solve(element, Catalogue(asDevice(element->Owner()))) > 0;
    });
}

void WizardEngine::SolveTemplate(const DeviceRef& pipeClass, Variant& result)
{
    int made = 0;
    Procedure(kClass, "Sub SolveTemplate").run([&] {
        if (!pipeClass) return;
        // A row of the list may be an element of the template class rather than the class.
        const auto target = isTemplateClass(pipeClass) ? pipeClass : asDevice(pipeClass->Owner());
        if (!isTemplateClass(target)) return trace("SolveTemplate", pipeClass->SystemFullName() + " is no template");
        const auto workset = target->Workset();
        const ActionScope action(must(workset));
        const auto catalogue = Catalogue(target);
        // Taken before solving: what solving adds is no placeholder.
        std::vector<DeviceRef> placeholders;
        const auto elements = target->Devices();
        for (int i = 1; i <= elements->Count(); ++i)
            if (const auto element = asDevice(elements->Item(i)); element && element->CreateOption() != 0)
                placeholders.push_back(element);
        for (const auto& element : placeholders) made += solve(element, catalogue);
    });
    result = made;
}

int WizardEngine::solve(const DeviceRef& element, const std::vector<DeviceRef>& catalogue)
{
    const auto& names = diagnostics::names();
    const auto fullName = element->SystemFullName();
    const auto pipeClass = asDevice(element->Owner());
    if (element->CreateOption() == 0 || !isTemplateClass(pipeClass)) {
        trace("SolveCDevice", fullName + " is no structure element of a template class");
        return 0;
    }
    const auto rangeSpec = element->Spec(names.GD().ElementRangeAttr());
    const auto range = rangeIn(rangeSpec ? rangeSpec->DisplayValue() : std::string());
    const auto codeSpec = element->Spec(names.GD().VFCD());
    const auto code = codeSpec ? codeSpec->Value() : std::string();
    if (!range || code.empty()) {
        trace("SolveCDevice", fullName + " has no element range or no function code");
        return 0;
    }
    std::unordered_set<DeviceRef> present;
    const auto elements = pipeClass->Devices();
    for (int i = 1; i <= elements->Count(); ++i)
        if (const auto existing = asDevice(elements->Item(i))) present.insert(rootOf(existing));

    int made = 0;
    const auto& diameterAttribute = names.Connection().NominalDiameter().First();
    for (const auto& component : catalogue) {
        // Every component of the catalogue carries a function code.
        const auto codeOf = component->Spec(names.GD().VFCD());
        const auto diameter = numberOf(*component, diameterAttribute);
        if (codeOf->Value() != code || !diameter || !range->holds(*diameter)) continue;
        if (present.contains(rootOf(component))) {
            trace("SolveCDevice", component->SystemFullName() + " is there already");
            continue;
        }
        Variant refusal;
        if (!CheckElement(pipeClass, component, refusal)) continue;
        if (!addtopipeclass::NewPipeClassElement(component, pipeClass, false)) continue;
        present.insert(rootOf(component));
        ++made;
        trace("SolveCDevice", "made an element of " + component->SystemFullName());
    }
    trace("SolveCDevice", fullName + ": " + std::to_string(made) + " made");
    return made;
}

void WizardEngine::trace(std::string_view function, std::string_view text) const
{
    if (trace_) diagnostics::Trace(kClass, function).text(text);
}

}  // namespace pipespec::qtplatform
