#include "selectors/Chapters.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "selectors/LayoutHelper.h"

#include <chrono>
#include <ctime>
#include <vector>

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;

namespace {
constexpr std::string_view kInheritAll = "@C";
constexpr std::string_view kEditControl = "QuorlSUIEdit.SUIEdit";
constexpr std::string_view kDesignChapterPrefix = "E3D.DTSE";
constexpr double kGap = 0.125;
constexpr double kDefaultLimit = 1000;
constexpr int kLayoutPrefixLength = 8;
constexpr int kVisibleIndex = 4;

// A copy of an attribute, with its description, added under a new owner.
SpecRef addCopy(const SpecRef& original, ISpecification& newOwner)
{
    auto copy = asSpec(original->Copy());
    must(copy).SetDescription(original->Description());
    makePersistent(newOwner);
    newOwner.OwnSpecifications()->AddObject(copy);
    return copy;
}

// Writes one layout property of own where it differs from the source's.
template <class Get, class Set>
void align(ISpecification& own, const ISpecification& source, Get get, Set set)
{
    if ((own.*get)() == (source.*get)()) return;
    if (makePersistent(own)) (own.*set)((source.*get)());
}

// Fills missing nested attributes level by level. It descends into the first
// attribute whose count still differs and does not come back up.
void fillNestedLevels(const DeviceRef& device, SpecRef source, SpecRef own)
{
    while (source->Specifications()->Count() != own->Specifications()->Count()) {
        bool descended = false;
        const auto subs = source->Specifications();
        for (int j = 1; j <= subs->Count() && !descended; ++j) {
            const auto sub = asSpec(subs->Item(j));
            auto ownSub = device->Spec(must(sub).NestedName());
            if (!ownSub) ownSub = addCopy(sub, *own);
            if (sub->Specifications()->Count() != ownSub->Specifications()->Count()) {
                source = sub;
                own = ownSub;
                descended = true;
            }
        }
        if (!descended) return;
    }
}

CollectionRef specificationsOf(const ObjectRef& owner)
{
    if (const auto chapter = asSpec(owner)) return chapter->Specifications();
    return must(asDevice(owner)).Specs();
}

std::string timeOfDay()
{
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    char buffer[16];
    std::strftime(buffer, sizeof buffer, "%H:%M:%S", &local);
    return buffer;
}
}  // namespace

SpecRef InheritInChapter(const DeviceRef& device, const std::string& name, const SpecRef& source)
{
    SpecRef chapter;
    Procedure(cls::AddToPipeClass, "Function InheritInChapter").run([&] {
        chapter = must(device).Spec(name);
        if (!source) return;
        if (!chapter) {
            chapter = asSpec(source->Copy());
            device->SpecsByName()->AddObject(chapter);
            makePersistent(must(chapter));
            chapter->SetName(name);
            chapter->SetDescription(source->Description());
            chapter->SetInheritMode(kInheritAll);
        }
        makePersistent(*chapter);
        if (chapter->InheritedChapter() != source && source->Project() == chapter->Project()) {
            chapter->InheritFrom(source);
            if (chapter->InheritMode() != kInheritAll) chapter->SetInheritMode(kInheritAll);
        }
        const auto attributes = source->Specifications();
        for (int i = 1; i <= attributes->Count(); ++i) {
            const auto a = asSpec(attributes->Item(i));
            auto own = device->Spec(must(a).NestedName());
            if (!own) own = addCopy(a, *chapter);
            align(*own, *a, &ISpecification::ControlProperties, &ISpecification::SetControlProperties);
            align(*own, *a, &ISpecification::Description, &ISpecification::SetDescription);
            align(*own, *a, &ISpecification::StandardTable, &ISpecification::SetStandardTable);
            align(*own, *a, &ISpecification::ControlType, &ISpecification::SetControlType);
            fillNestedLevels(device, a, own);
        }
    });
    return chapter;
}

void CalcControlProperties(const SpecRef& newSpec, const SpecRef& box, const SpecRef& model)
{
    Procedure(cls::AddToPipeClass, "Function CalcControlProperties").run([&] {
        const auto& pipe = diagnostics::names().Pipe();
        LayoutHelper layout;
        layout.Load(model);
        const double left = layout.GetValue(LayoutHelper::Left);
        double bottom = layout.GetValue(LayoutHelper::Top) - kGap;
        const double right = layout.GetValue(LayoutHelper::Right);
        double limit = kDefaultLimit;
        if (box) {
            layout.Load(box);
            limit = layout.GetValue(LayoutHelper::Bottom);
        }

        const auto ownName = must(newSpec).SystemFullName();
        const auto skippedPrefix2 = text::Left(pipe.LayoutChapterPrefix2(), kLayoutPrefixLength);
        const auto siblings = specificationsOf(newSpec->Owner());
        for (int i = 1; i <= siblings->Count(); ++i) {
            const auto s = asSpec(siblings->Item(i));
            if (!s || s->SystemFullName() == ownName || s->ControlType() != kEditControl) continue;
            const auto nested = s->NestedName();
            if (box && text::StrCompBinary(nested, box->NestedName()) <= 0) continue;
            if (nested == pipe.LayoutAttr1()) continue;
            const auto prefix = text::Left(nested, kLayoutPrefixLength);
            if (prefix == pipe.LayoutChapterPrefix1() || prefix == kDesignChapterPrefix || prefix == skippedPrefix2)
                continue;
            layout.Load(s);
            const double sBottom = layout.GetValue(LayoutHelper::Bottom);
            const double sLeft = layout.GetValue(LayoutHelper::Left);
            if (kGap + right > sLeft && sBottom > bottom && sLeft >= left && sBottom < limit) bottom = sBottom;
        }

        auto properties = newSpec->ControlProperties();
        if (properties.empty()) properties = must(model).ControlProperties();
        const int lineEnd = text::InStr(properties, "\r");
        if (lineEnd == 0) return;
        const auto line = text::Left(properties, lineEnd - 1);
        const auto rest = text::Mid(properties, lineEnd);
        std::vector<std::string> edges;
        for (int start = 1;;) {
            const int sep = text::InStr(start, line, ";");
            edges.push_back(sep == 0 ? text::Mid(line, start) : text::Mid(line, start, sep - start));
            if (sep == 0) break;
            start = sep + 1;
        }
        if (edges.size() < 4)
            throw PlatformError(err::InvalidCall, "control properties of " + ownName + " hold fewer than four edges");
        const auto workset = newSpec->Workset();
        const double height = must(workset).ParseNumber(edges[3]) - workset->ParseNumber(edges[1]);
        edges[0] = text::Str(left);
        edges[1] = text::Str(bottom + kGap);
        edges[2] = text::Str(right);
        edges[3] = text::Str(height + bottom + kGap);
        newSpec->SetControlProperties(edges[0] + ";" + edges[1] + ";" + edges[2] + ";" + edges[3] + rest);

        layout.Load(newSpec);
        layout.SetValue(kVisibleIndex, "1");
    });
}

void SetAttribute(const SpecRef& spec, const std::string& value, bool& changed)
{
    Procedure(cls::AddToPipeClass, "Sub SetAttribute").run([&] {
        if (!spec || spec->ValueText() == value) return;
        if (!makePersistent(*spec) || spec->IsLocked(0)) return;
        if (spec->ValueType() == "C") {
            const int languages = must(spec->Project()).Languages()->Count();
            for (int index = 1; index <= languages; ++index) spec->SetLanguageValue(index, value);
        } else {
            spec->SetValue(value);
        }
        changed = true;
    });
}

DeviceRef GetMenuPath(const ProjectRef& project)
{
    DeviceRef result;
    Procedure(cls::AddToPipeClass, "Function GetMenuPath").run([&] {
        const auto globals = must(must(project).Workset()).Globals();
        result = globals->GetOptionFromProject(project, option::MenuRoot).objectAs<IDevice>();
        if (!result && project->BaseProject())
            result = globals->GetOptionFromProject(project->BaseProject(), option::MenuRoot).objectAs<IDevice>();
        if (!result) result = asDevice(project->ObjectByPath("@3D|@Menu", 1));
    });
    return result;
}

CollectionRef PipeClassComponents(const DeviceRef& pipeClass, bool recursive)
{
    CollectionRef result;
    Procedure(cls::AddToPipeClass, "Function PipeClassComponents").run([&] {
        ObjectMap map;
        auto& utilities = diagnostics::utilities();
        utilities.WriteLog("PipeClassComponents - start " + timeOfDay());
        result = GetComponentsRecursive(pipeClass, recursive, nullptr, map, true);
        // The recursive pass runs in any case: it fills the map of pipe classes met.
        if (!recursive) GetComponentsRecursive(pipeClass, true, nullptr, map, true);
        utilities.WriteLog("PipeClassComponents - stop " + timeOfDay());
    });
    return result;
}

CollectionRef GetComponentsRecursive(const DeviceRef& device, bool recursive, CollectionRef list, ObjectMap& map,
                                     bool top)
{
    Procedure(cls::AddToPipeClass, "Function GetComponentsRecursive").run([&] {
        if (!device) return;
        if (!list) list = must(device->Workset()).NewCollection();
        std::int32_t code = 0;
        if (!IsPipeClass(device, code)) return;
        if (!top) {
            if (!map.Exists(device->Name())) map.Add(device->Name(), device);
            if (code == functioncode::UncollectedPipeClass) return;
        }
        const auto elements = device->Devices();
        for (int i = 1; i <= elements->Count(); ++i) {
            const auto element = elements->Item(i);
            // An element already listed is not followed again, so cycles of pipe classes end.
            if (list->IndexOf(element) >= 0) continue;
            list->Add(element);
            if (recursive) GetComponentsRecursive(must(asDevice(element)).CDevice(), recursive, list, map, false);
        }
    });
    return list;
}

}  // namespace pipespec::addtopipeclass
