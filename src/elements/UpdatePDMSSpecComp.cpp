#include "elements/AddToPipeClass.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "selectors/Chapters.h"
#include "selectors/Selectors.h"
#include "selectors/StateTable.h"

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
constexpr std::string_view kShop = "TRUE";
// Four letters: the design system stores its booleans so.
constexpr std::string_view kField = "FALS";
constexpr std::string_view kTube = "TUBE";
constexpr std::string_view kFlagOn = "1";
// Only the first companion of a component is taken over; further numbered
// companions stay with the catalogue.
constexpr std::string_view kCompanionAttr = "E3D.PCOMPlus1";

// The E3D chapter card of the pipe-class root's base object. The search looks
// there and nowhere higher: owners above the root carry no cards of their own.
SpecRef e3dChapterOfPipeClassRoot(const DeviceRef& CDevPC)
{
    const auto root = must(must(CDevPC).Workset()).Globals()->PipeClassRootCDevice();
    if (!root) return nullptr;
    const auto base = root->CDevice();
    return base ? base->Spec(diagnostics::names().E3DChapter()) : nullptr;
}

// Structure elements of a template class take no generated name, field
// element or companion. The code is compared as text here: " 10003" is not it.
bool isStructureCase(const DeviceRef& CDevPC, const DeviceRef& mPipeClass)
{
    const auto code = must(must(mPipeClass).Spec(diagnostics::names().GD().VFCD())).ValueText();
    return must(CDevPC).CreateOption() != 0 && code == std::to_string(functioncode::TemplatePipeClass);
}

bool isTube(const DeviceRef& CDevPC)
{
    const auto vstd = CDevPC->Spec(diagnostics::names().Pipe().VSTD());
    return vstd && text::UCase(vstd->ValueText()) == kTube;
}

// Tubes are doubled unless the pipe class switches the rule off.
bool tubeRuleOn(const DeviceRef& mPipeClass)
{
    const auto rule = mPipeClass->Spec(diagnostics::names().Pipe().TubeRule());
    return !rule || text::CDbl(rule->ValueText()) == 1;
}

bool nameGenerationOn(const DeviceRef& mPipeClass)
{
    const auto off = mPipeClass->Spec(diagnostics::names().Pipe().NameGenerationOff());
    return !off || off->Value() != kFlagOn;
}

void reportMissingE3DChapter(const Trace& trace)
{
    const auto& name = diagnostics::names().E3DChapter();
    auto& host = diagnostics::utilities();
    host.MessageBox(diagnostics::FillBrace0(host.Translate(msg::ChapterCardNotFound), name), mb::Critical,
                    host.Translate(msg::AddComponentToPipeSpec));
    trace.text("WARNING: " + name + " not found");
}
}  // namespace

void UpdatePDMSSpecComp(const DeviceRef& CDevPC, const DeviceRef& mPipeClass, bool RecursiveCall, std::string& groupId,
                        bool InteractiveImportObject, const DeviceRef& CatalogOwner)
{
    Trace trace(cls::AddToPipeClass, "UpdatePDMSSpecComp");
    Procedure procedure(cls::AddToPipeClass, "Sub UpdatePDMSSpecComp");
    const auto& names = diagnostics::names();
    trace.enter();
    if (!CatalogOwner) return trace.leaveText("CatalogOwner Is Nothing");

    // The chapter cards of the catalogue owner.
    procedure.step([&] { InheritInChapter(CDevPC, names.NameRange(), CatalogOwner->Spec(names.NameRange())); });
    SpecRef chapter;
    procedure.step([&] { chapter = CatalogOwner->Spec(names.E3DChapter()); });
    if (!chapter) procedure.step([&] { chapter = e3dChapterOfPipeClassRoot(CDevPC); });
    if (!chapter) procedure.step([&] { reportMissingE3DChapter(trace); });
    procedure.step([&] { InheritInChapter(CDevPC, names.E3DChapter(), chapter); });

    // State column and selector questions; a cancelled choice may delete the element.
    procedure.step([&] { AddStateColumn(CDevPC); });
    SpecRef ShopSpec;
    procedure.step([&] {
        CollectionRef questionSpecs;
        SpecMap boreSpecs;
        DeviceRef topSelector;
        DeviceRef leafSelector;
        SetQuestion(mPipeClass, CDevPC, questionSpecs, boreSpecs, topSelector, ShopSpec, leafSelector, true);
    });
    bool deleted = false;
    procedure.step([&] { deleted = must(CDevPC).IsDeleted() || CDevPC->IsMarkedDeleted(); });
    if (deleted) return trace.leaveText("CDevPC deleted");

    bool makeFieldElement = false;
    if (!InteractiveImportObject) {
        // A tube becomes a shop element, and a field element is made from it.
        bool tubeRule = true;
        procedure.step([&] { tubeRule = tubeRuleOn(mPipeClass); });
        procedure.step([&] {
            if (!tubeRule || !isTube(CDevPC) || !ShopSpec) return;
            if (RecursiveCall) {
                ShopSpec->SetValue(kField);
            } else {
                ShopSpec->SetValue(kShop);
                const auto ownRule = CDevPC->Spec(names.Pipe().TubeRule());
                makeFieldElement = !ownRule || ownRule->ValueText() != kFlagOn;
                groupId = CDevPC->UniqueId();
            }
        });
        procedure.step([&] {
            if (groupId.empty()) return;
            auto& groupChapter = must(CDevPC->Spec(names.E3DChapter()));
            if (makePersistent(groupChapter)) groupChapter.SetXmlText(groupId);
        });
        bool structure = false;
        procedure.step([&] { structure = isStructureCase(CDevPC, mPipeClass); });
        procedure.step([&] {
            if (structure || moduleState(*CDevPC).AfterAddRunning) return;
            if (nameGenerationOn(mPipeClass)) GenerateName(CDevPC, groupId);
        });
    }

    // Attribute copies, for interactive imports too.
    procedure.step([&] { CopyAttribs(CDevPC); });
    procedure.step([&] { CopyMatxt(CDevPC); });
    bool structure = false;
    procedure.step([&] { structure = isStructureCase(CDevPC, mPipeClass); });
    if (structure) return trace.leaveText("mPipeClass.GD.VFCD=10003 And CDevPC.CreateOption <> 0");

    if (makeFieldElement) {
        procedure.step([&] { NewPipeSpecElement(CDevPC, mPipeClass, true, false, groupId, false, nullptr); });
    }

    // The companion becomes an element too, and the attribute then names that
    // element instead of the catalogue component.
    procedure.step([&] {
        const auto plus = CDevPC->Spec(kCompanionAttr);
        if (!plus || !plus->LinkObject()) return;
        if (!RecursiveCall) groupId = CDevPC->UniqueId();
        const auto companion =
            NewPipeSpecElement(plus->LinkObject(), mPipeClass, false, false, groupId, false, nullptr);
        if (makePersistent(*plus)) plus->SetLinkObject(companion);
    });
    trace.leave();
}

void CopyMatxt(const DeviceRef& CDevPC)
{
    Procedure(cls::AddToPipeClass, "Sub CopyMatxt").run([&] {
        const auto& names = diagnostics::names();
        const auto source = must(CDevPC).Spec(names.PDMSNames().MatxtSource());
        if (!source) return;
        const auto target = CDevPC->Spec(names.Pipe().LayoutChapterPrefix2());
        if (!target) return;
        if (makePersistent(*target)) target->SetLinkObject(source->LinkObject());
    });
}

void CopyAttribs(const DeviceRef& CDevPC)
{
    Procedure(cls::AddToPipeClass, "Sub CopyAttribs").run([&] {
        const auto& names = diagnostics::names();
        const auto first = must(CDevPC).Spec(names.PDMSNames().TextAttr());
        if (!first) return;
        const auto second = CDevPC->Spec(names.Pipe().TextSource().TextAttr());
        if (!second) return;
        bool copied = false;
        if (second->LinkedCount() > 0) {
            if (makePersistent(*first)) first->SetValue("=TValue(\"" + second->NestedName() + "\",\"\",0)");
            copied = !first->Value().empty();
        }
        if (!copied) return;
        const auto linkSpec = CDevPC->Spec(names.PDMSNames().SourceLinkAttr());
        if (!linkSpec || !makePersistent(*linkSpec)) return;
        const auto base = CDevPC->CDevice();
        linkSpec->SetLinkObject(base ? ObjectRef(base) : ObjectRef(CDevPC));
    });
}

void GenerateName(const DeviceRef& CDevPC, [[maybe_unused]] const std::string& groupId)
{
    Procedure(cls::AddToPipeClass, "Sub GenerateName").run([&] {
        [[maybe_unused]] const auto generated =
            must(CDevPC).Spec(diagnostics::names().PDMSNames().StateOwner().GeneratedNameAttr());
    });
}

}  // namespace pipespec::addtopipeclass
