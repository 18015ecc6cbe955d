// The extended cells of the component list: the part type of a generic
// type, the P&ID function code, the element check behind the error filter,
// and the branch flag of an element with its stored override.
//
// The override lives as a small XML text on the element's name-range
// chapter and is read by plain string search, never parsed. Its rewrite
// keeps only the text from the marker on, at a position found in the
// unshortened text: on the canonical text that clears the text, so a
// changed flag falls back to the default rule until it is set again. Stored
// definitions depend on that behaviour; it is kept as it is.

#include "componentlist/PipeSpecComp.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Text.h"
#include "selectors/Chapters.h"

#include <variant>

namespace pipespec::componentlist {

namespace {

using text::CInt;
using text::CLng;
using text::NumberIn;

constexpr std::string_view kBranchMarker = "BranchPart=\"";
constexpr std::string_view kBranchTextHead = "<ElementDefinition><BranchDefinition BranchPart=\"";
constexpr std::string_view kBranchTextTail = "\"/></ElementDefinition>";

// The 1-based position of the marker; 0 when there is none.
std::size_t markerAt(const std::string& text)
{
    const auto found = text.find(kBranchMarker);
    return found == std::string::npos ? 0 : found + 1;
}

// Replaces the first `from` at or after the 1-based position p by `to`; the
// result holds only the text from p on, and nothing when p lies behind it.
std::string replaceFrom(const std::string& text, char from, char to, std::size_t p)
{
    if (p == 0 || p > text.size()) return {};
    auto rest = text.substr(p - 1);
    if (const auto at = rest.find(from); at != std::string::npos) rest[at] = to;
    return rest;
}

// Both rewrites of a stored flag at the marker position.
std::string rewritten(const std::string& text, std::size_t p, char firstOld, char secondOld, char flag)
{
    return replaceFrom(replaceFrom(text, firstOld, flag, p), secondOld, flag, p);
}

bool isBranchCode(std::int32_t n) { return n / 1000 == 71100 / 1000 || (n > 10010 && n < 12000); }

// A cell's new value as a whole number, as the platform converts it: a
// ticked box is -1, a cleared one 0.
std::int32_t wholeNumber(const Variant& value)
{
    const auto& stored = value.storage();
    if (const auto* flag = std::get_if<bool>(&stored)) return *flag ? -1 : 0;
    if (const auto* number = std::get_if<std::int64_t>(&stored)) return CLng(static_cast<double>(*number));
    if (const auto* real = std::get_if<double>(&stored)) return CLng(*real);
    if (const auto* digits = std::get_if<std::string>(&stored)) return CLng(*digits);
    return 0;
}

}  // namespace

// ---- Served cells -------------------------------------------------------

Variant PipeSpecComp::Cells::CellValue(const ObjectRef& row, const QueryColumnRef& column, int,
                                       const ObjectRef& cellObject)
{
    return control_.cellValue(row, column, cellObject);
}

void PipeSpecComp::Cells::SetCellValue(const ObjectRef& row, const QueryColumnRef& column, int, const ObjectRef&,
                                       const Variant& value)
{
    control_.setCellValue(row, column, value);
}

void PipeSpecComp::Cells::CellValueItems(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&,
                                         ICellItems& items)
{
    items.SetKind(cellitems::TwoState);
}

ObjectRef PipeSpecComp::Cells::CellObject(const ObjectRef& row, const QueryColumnRef& column, int,
                                          const ObjectRef& cellObject)
{
    return control_.cellObject(row, column, cellObject);
}

ObjectRef PipeSpecComp::cellObject(const ObjectRef& row, const QueryColumnRef& column, const ObjectRef& cellObject)
{
    const diagnostics::Trace trace(classString(), "IExtended_CellObject");
    ObjectRef result;
    handle("Property IExtended_CellObject", [&] {
        if (!row || !cellObject) return;
        const auto key = must(column).Key();
        if (key == "GroupColumn") {
            auto& menuRoot = addtopipeclass::moduleState(*row).m_MenuCDev;
            if (!menuRoot) {
                menuRoot = addtopipeclass::GetMenuPath(must(row->WorkSet()).GetCurrentProject());
                trace.object("m_MenuCDev", menuRoot);
            }
            if (!menuRoot) return;
            const auto spec = asSpec(cellObject);
            if (must(spec).LValue().empty()) {
                diagnostics::utilities().WriteLog("WARNING: " + cellObject->SystemFullName() + " is empty");
                return;
            }
            // The menu tree is keyed by function code. In PDMS mode the cell
            // holds the generic type, a text: the row's own code finds its entry.
            auto code = spec->LValue();
            if (!text::NumberIn(code)) {
                const auto own = row->Spec(diagnostics::names().GD().VFCD());
                code = own ? own->ValueText() : std::string();
            }
            result = addtopipeclass::MapCDeviceToXXX(menuRoot, code);
        } else if (key == "PIDFunctionCodeVisible") {
            result = must(asSpec(cellObject)).StandardValue();
        }
    });
    return result;
}

Variant PipeSpecComp::cellValue(const ObjectRef& row, const QueryColumnRef& column, const ObjectRef& cellObject)
{
    Variant result;
    handle("Property IExtended_Get_CellValue", [&] {
        const auto key = must(column).Key();
        if (cellObject && key == "PIDFunctionCodeVisible") {
            const bool pdms = m_PipeClassSet && m_PipeClassSet->Spec(diagnostics::names().PDMS());
            result = must(asSpec(cellObject)).GetXValue(pdms ? 0 : 1);
        } else if (cellObject && key == "ErrorObjects") {
            Variant checkResult;
            const auto engine = wizardEngine();
            const bool valid =
                addtopipeclass::CheckValid(asDevice(row), m_PipeClassSet, false, checkResult, engine.get());
            if (!valid) m_HasNotPermitted = true;
            result = valid ? 0 : 1;
        } else if (cellObject) {
            result = cellObject->Name() + " - " + cellObject->Description();
        }
        if (key == "BranchComponents") result = BranchComponent(asDevice(row)) >= 1;
    });
    return result;
}

void PipeSpecComp::setCellValue(const ObjectRef& row, const QueryColumnRef& column, const Variant& value)
{
    const diagnostics::Trace trace(classString(), "IExtended_CellValue");
    handle("Property IExtended_CellValue", [&] {
        if (must(column).Key() != "BranchComponents") return;
        trace.enter();
        SetBranchComponent(asDevice(row), wholeNumber(value));
        trace.leave();
    });
}

// ---- Branch flag --------------------------------------------------------

std::int32_t PipeSpecComp::BranchComponent(const DeviceRef& element)
{
    std::int32_t result = -1;
    handle("Property BranchComponent", [&] {
        if (must(element).CreateOption() != 0) {
            result = 0;
            return;
        }
        const auto& names = diagnostics::names();
        if (const auto chapter = element->Spec(names.NameRange())) {
            const auto text = chapter->XmlText();
            if (const auto p = markerAt(text); p != 0) {
                const auto at = p - 1 + kBranchMarker.size();
                const char flag = at < text.size() ? text[at] : '\0';
                if (flag == '+' || flag == '-') {
                    m_BranchDefined = true;
                    result = flag == '+' ? 2 : -2;
                    return;
                }
                if (flag != '#') return;
            }
        }
        const auto spec = VFCDSpec(element);
        if (!spec) return;
        const auto code = spec->ValueText();
        const auto number = NumberIn(code);
        const bool branch = number ? isBranchCode(CLng(*number)) : code == "TEE" || code == "OLET";
        if (branch) result = 1;
        if (result >= 1) return;
        if (const auto value = element->Spec(names.GD().BranchValueAttr()))
            if (const auto own = NumberIn(value->Value())) result = CInt(*own);
    });
    return result;
}

void PipeSpecComp::SetBranchComponent(const DeviceRef& element, std::int32_t value)
{
    handle("Property BranchComponent", [&] {
        if (must(element).CreateOption() != 0 || element->ReadOnly()) return;
        auto& chapter = must(element->Spec(diagnostics::names().NameRange()));
        const auto text = chapter.XmlText();
        const char flag = value == -1 ? '+' : '-';
        if (text.empty()) {
            chapter.SetXmlText(std::string(kBranchTextHead) + flag + std::string(kBranchTextTail));
            return;
        }
        const auto p = markerAt(text);
        if (p == 0) return;
        chapter.SetXmlText(rewritten(text, p, value == -1 ? '-' : '+', '#', flag));
    });
}

void PipeSpecComp::ResetBranchDefinition()
{
    handle("sub ResetBranchDefinition", [&] {
        const auto objects = must(gQueryI).Top()->Objects();
        if (!objects) return;
        const auto& nameRange = diagnostics::names().NameRange();
        for (int i = 1; i <= objects->Count(); ++i) {
            const auto element = asDevice(objects->Item(i));
            if (!element || element->CreateOption() != 0 || element->ReadOnly()) continue;
            const auto chapter = element->Spec(nameRange);
            if (!chapter) continue;
            const auto text = chapter->XmlText();
            const auto p = text.empty() ? 0 : markerAt(text);
            if (p != 0) chapter->SetXmlText(rewritten(text, p, '-', '+', '#'));
        }
    });
}

SpecRef PipeSpecComp::VFCDSpec(const ObjectRef& object) const
{
    SpecRef result;
    diagnostics::Procedure(classString(), "Function VFCDSpec").run([&] {
        const auto& names = diagnostics::names();
        if (!m_PDMS) {
            result = must(object).Spec(names.GD().VFCD());
            return;
        }
        result = must(object).Spec(names.Pipe().FunctionTypeAttr());
        if (!result) result = object->Spec(names.Pipe().VSTD());
    });
    return result;
}

}  // namespace pipespec::componentlist
