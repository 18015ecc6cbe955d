#include "elements/AddToPipeClass.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
constexpr std::string_view kOrdinaryOwnerPath = "@40|A20|Y00|A10|A30|Y00T00062|A02|B01";
constexpr std::string_view kBoltingOwnerPath = "@40|A20|Y00|A10|A30|Y00T00062|A02|B02";
constexpr int kByPath = 2;

bool isBoltByVSTD(const DeviceRef& element)
{
    const auto vstd = element->Spec(diagnostics::names().Pipe().VSTD());
    return vstd && vstd->Value() == "BOLT";
}

// Whether a component is bolting, and whether its function code said so.
struct Bolting {
    bool bolt = false;
    bool byCode = false;
};

Bolting boltingOf(const DeviceRef& element, const Trace& trace)
{
    const auto vfcd = must(element).Spec(diagnostics::names().GD().VFCD());
    if (!vfcd) return {isBoltByVSTD(element), false};
    const auto VFCDVal = vfcd->Value();
    trace.text("VFCDVal = " + VFCDVal);
    if (VFCDVal.empty()) return {isBoltByVSTD(element), false};
    const auto code = text::CLng(VFCDVal);
    const bool bolt = functioncode::FirstBolting <= code && code < functioncode::EndBolting;
    return {bolt, bolt};
}

// The catalogue node "@PCOM" beside the root of the pipe classes, if there is one.
DeviceRef catalogueNode(const DeviceRef& element)
{
    auto root = must(must(element).Workset()).Globals()->PipeClassRootCDevice();
    if (!root) return nullptr;
    if (const auto base = root->CDevice()) root = base;
    return asDevice(must(asDevice(root->Owner())).CDevices()->Item("@PCOM"));
}
}  // namespace

void InitCatalogOwner(DeviceRef& CatalogOwner, const DeviceRef& element, const DeviceRef& mPipeClass)
{
    Trace trace(cls::AddToPipeClass, "InitCatalogOwner");
    trace.enter();
    Procedure(cls::AddToPipeClass, "Sub InitCatalogOwner").run([&] {
        CatalogOwner = mPipeClass;
        const auto kind = boltingOf(element, trace);
        if (diagnostics::names().IsBaseDatabase()) {
            const auto path = kind.bolt ? kBoltingOwnerPath : kOrdinaryOwnerPath;
            CatalogOwner = asDevice(must(element->Project()).ObjectByPath(path, kByPath));
        } else if (const auto node = catalogueNode(element)) {
            // Only a code marks bolting here: a component that is bolting by its
            // VSTD alone still takes the ordinary node, unlike the path above.
            CatalogOwner = asDevice(node->Devices()->Item(kind.byCode ? "BOLTING" : "PCOM"));
        }
        trace.leave();
    });
}

void CalcMinMaxSpec(const SpecRef& NameRangeChapter, const std::string& SpecName, const DeviceRef& mPipeClass)
{
    Trace trace(cls::AddToPipeClass, "CalcMinMaxSpec");
    trace.enter();
    Procedure(cls::AddToPipeClass, "Sub CalcMinMaxSpec").run([&] {
        trace.object("NameRangeChapter", NameRangeChapter);
        trace.text("SpecName = " + SpecName);
        trace.object("mPipeClass", mPipeClass);
        const auto MinMaxSpec = must(NameRangeChapter).Spec(SpecName);
        trace.object("MinMaxSpec", MinMaxSpec);
        // A bound that shows a value is never overwritten.
        if (MinMaxSpec && MinMaxSpec->DisplayValue().empty()) {
            if (auto QSpec = must(mPipeClass).Spec(MinMaxSpec->NestedName())) {
                // The pipe class's bound is of no use on another value list; the
                // norm dimensions may hold one on the bound's own list.
                if (QSpec->StandardTable() != MinMaxSpec->StandardTable()) {
                    QSpec = GetNormDimensionSpec(NameRangeChapter, SpecName);
                    if (!QSpec) return trace.leaveText("QSpec Is Nothing");
                }
                if (QSpec->StandardTable() == MinMaxSpec->StandardTable() && QSpec->Value() != MinMaxSpec->Value()) {
                    if (MinMaxSpec->SystemTemporary() && MinMaxSpec->CanMakePersistent()) MinMaxSpec->MakePersistent();
                    if (!MinMaxSpec->IsValueLocked(0) && !MinMaxSpec->SystemTemporary())
                        MinMaxSpec->SetValue(QSpec->Value());
                }
            }
        }
        trace.leave();
    });
}

SpecRef GetNormDimensionSpec(const SpecRef& NameRangeChapter, const std::string& SpecName)
{
    SpecRef result;
    Procedure(cls::AddToPipeClass, "Function GetNormDimensionSpec").run([&] {
        const auto& names = diagnostics::names();
        auto& normObject = moduleState(must(NameRangeChapter)).NormDimensionObject;
        if (!normObject) {
            if (const auto reference = must(NameRangeChapter).Spec(names.NormDimensionRef())) {
                const auto workset = NameRangeChapter->Workset();
                // Called for its effect: it makes the workset's norm dimensions available.
                must(must(workset).LateBoundTools()).StdValues3D(NameRangeChapter->Project());
                normObject = workset->Globals()->getOption(option::NormDimensions).objectAs<IDevice>();
                if (normObject) normObject = asDevice(normObject->Devices()->Item(reference->ValueText()));
            }
        }
        if (!normObject) return;
        if (SpecName == names.NameRangeLowerAttr())
            result = normObject->Spec(names.NormDimension().NormLower());
        else if (SpecName == names.NameRangeUpperAttr())
            result = normObject->Spec(names.NormDimension().NormUpper());
    });
    return result;
}

void CheckSchedule() {}

}  // namespace pipespec::addtopipeclass
