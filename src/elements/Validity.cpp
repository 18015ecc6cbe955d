#include "elements/AddToPipeClass.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/DatabaseState.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"

#include <string>

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
// A catalogue child's name is a pattern over this many digits of a code.
constexpr int kPatternLength = 5;

bool isPipeClassCode(std::int32_t code)
{
    return functioncode::FirstPipeClass <= code && code <= functioncode::LastPipeClass;
}
}  // namespace

ModuleState& moduleState(IWorkset& workset) { return workset.State().get<ModuleState>(); }

ModuleState& moduleState(const IBaseObject& object) { return moduleState(must(object.Workset())); }

std::shared_ptr<const ObjectMap> CreatedObjects(IWorkset& workset)
{
    return moduleState(workset).m_CreatedPipeSpecElem;
}

bool IsPipeClass(const ObjectRef& object, std::int32_t& VFCD)
{
    VFCD = 0;
    if (!object) return false;
    const auto spec = object->Spec(diagnostics::names().GD().VFCD());
    if (!spec) return false;
    const auto code = spec->ValueText();
    if (code.empty() || !text::IsNumeric(code)) return false;
    VFCD = text::CLng(code);
    return isPipeClassCode(VFCD);
}

bool IsPipeClass(const ObjectRef& object)
{
    std::int32_t ignored = 0;
    return IsPipeClass(object, ignored);
}

bool CheckValid(const DeviceRef& CDevObject, const DeviceRef& mPipeClass, bool UseElementCheck, Variant& checkResult,
                IElementFilter* IElementCheck)
{
    bool result = false;
    Trace trace(cls::AddToPipeClass, "CheckValid");
    Procedure proc(cls::AddToPipeClass, "Function CheckValid");
    proc.run([&] {
        if (!CDevObject) return;
        const auto refuse = [&](const std::string& who, std::string_view why) { trace.text(who + std::string(why)); };
        const auto fullName = CDevObject->SystemFullName();
        if (CDevObject->IsFolder()) return refuse(fullName, " is a folder");
        if (same(CDevObject, mPipeClass)) return refuse(fullName, " is the current pipe class");

        const auto& names = diagnostics::names();
        SpecRef attribute;
        if (IsPipeClass(CDevObject)) {
            attribute = CDevObject->Spec(names.GD().VFCD());
            if (!CDevObject->CDevice() && CDevObject->Devices()->Count() == 0)
                return refuse(fullName, " is a pipe class without CDevice and without elements (?)");
        } else {
            const bool structureClass = text::CDbl(must(must(mPipeClass).Spec(names.GD().VFCD())).ValueText()) ==
                                        functioncode::TemplatePipeClass;
            if (CDevObject->CreateOption() != 0 && !structureClass) return refuse(fullName, " is structure element");
            if (!CDevObject->CDevice() && IsPipeClass(CDevObject->Owner()))
                return refuse(fullName, " is already an element of a pipe class but without CDevice (?)");
            attribute = mPipeClass->Spec(names.PDMS()) ? CDevObject->Spec(names.Pipe().VSTD())
                                                       : CDevObject->Spec(names.GD().VFCD());
        }
        if (!attribute) return refuse(fullName, " has got no VSTD");
        if (attribute->DisplayValue().empty()) return refuse(attribute->SystemFullName(), " not set");

        result = true;
        checkResult = Variant();
        if (!UseElementCheck || !IElementCheck) return;
        const auto checkOn = mPipeClass->Spec(names.GD().ElementCheckOn());
        if (checkOn && checkOn->ValueText() == "1")
            proc.ignoring([&] { result = IElementCheck->CheckElement(mPipeClass, CDevObject, checkResult); });
    });
    return result;
}

DeviceRef MapCDeviceToXXX(const DeviceRef& CDevice, std::string_view code)
{
    DeviceRef result;
    Procedure(cls::AddToPipeClass, "Function MapCDeviceToXXX").run([&] {
        if (code.empty()) return;
        // Both tests are made, as the code is converted even without a catalogue object.
        const bool pipeClassCode = isPipeClassCode(text::CLng(code));
        if (pipeClassCode || !CDevice) return;
        const auto children = CDevice->Devices();
        for (int i = 1; i <= children->Count(); ++i) {
            const auto child = asDevice(children->Item(i));
            const auto name = must(child).Name();
            for (int pos = 1; pos <= kPatternLength; ++pos) {
                const auto patternChar = text::Mid(name, pos, 1);
                if (patternChar == "X") {
                    result = child;
                    return;
                }
                if (patternChar != text::Mid(code, pos, 1)) break;
            }
        }
    });
    return result;
}

}  // namespace pipespec::addtopipeclass
