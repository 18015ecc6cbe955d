#include "elements/AddToPipeClass.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/Services.h"
#include "objectmodel/Text.h"

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;
using diagnostics::Trace;

namespace {
constexpr std::string_view kOrdinaryOwnerPath = "@40|A20|Y00|A10|A30|Y00T00062|A02|B01";
constexpr std::string_view kBoltingOwnerPath = "@40|A20|Y00|A10|A30|Y00T00062|A02|B02";
constexpr std::int32_t kFirstBoltCode = 91000;
constexpr std::int32_t kEndBoltCode = 92000;
constexpr int kByPath = 2;
constexpr int kNormDimensionOption = 231;

bool isBoltByVSTD(const DeviceRef& element)
{
    const auto vstd = element->Spec(diagnostics::names().Pipe().VSTD());
    return vstd && vstd->Value() == "BOLT";
}
}  // namespace

void InitCatalogOwner(DeviceRef& CatalogOwner, const DeviceRef& element, const DeviceRef& mPipeClass)
{
    Trace trace(cls::AddToPipeClass, "InitCatalogOwner");
    trace.enter();
    Procedure(cls::AddToPipeClass, "Sub InitCatalogOwner").run([&] {
        CatalogOwner = mPipeClass;
        const auto& names = diagnostics::names();

        bool bolt = false;
        bool boltByCode = false;
        const auto vfcd = must(element).Spec(names.GD().VFCD());
        const auto VFCDVal = vfcd ? vfcd->Value() : std::string();
        if (vfcd) trace.text("VFCDVal = " + VFCDVal);
        if (VFCDVal.empty()) {
            bolt = isBoltByVSTD(element);
        } else {
            const auto code = text::CLng(VFCDVal);
            bolt = kFirstBoltCode <= code && code < kEndBoltCode;
            boltByCode = bolt;
        }

        if (names.IsBaseDatabase()) {
            CatalogOwner = asDevice(must(element->Project()).ObjectByPath(bolt ? kBoltingOwnerPath : kOrdinaryOwnerPath, kByPath));
            return;
        }
        // Only a code marks bolting here: a component that is bolting by its
        // VSTD alone still takes the ordinary node, unlike the path above.
        auto root = must(element->Workset()).Globals()->PipeClassRootCDevice();
        if (!root) return;
        if (root->CDevice()) root = root->CDevice();
        const auto node = asDevice(must(asDevice(root->Owner())).CDevices()->Item("@PCOM"));
        if (node) CatalogOwner = asDevice(node->Devices()->Item(boltByCode ? "BOLTING" : "PCOM"));
    });
    trace.leave();
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
        if (!MinMaxSpec || !MinMaxSpec->DisplayValue().empty()) return;

        auto QSpec = must(mPipeClass).Spec(MinMaxSpec->NestedName());
        if (!QSpec) return;
        if (QSpec->StandardTable() != MinMaxSpec->StandardTable()) {
            QSpec = GetNormDimensionSpec(NameRangeChapter, SpecName);
            if (!QSpec) return trace.leaveText("QSpec Is Nothing");
        }
        if (QSpec->StandardTable() != MinMaxSpec->StandardTable()) return;

        if (QSpec->Value() == MinMaxSpec->Value()) return;
        if (MinMaxSpec->SystemTemporary() && MinMaxSpec->CanMakePersistent()) MinMaxSpec->MakePersistent();
        if (!MinMaxSpec->IsValueLocked(0) && !MinMaxSpec->SystemTemporary()) MinMaxSpec->SetValue(QSpec->Value());
    });
    trace.leave();
}

SpecRef GetNormDimensionSpec(const SpecRef& NameRangeChapter, const std::string& SpecName)
{
    SpecRef result;
    Procedure(cls::AddToPipeClass, "Function GetNormDimensionSpec").run([&] {
        const auto& names = diagnostics::names();
        auto& normObject = moduleState().NormDimensionObject;
        if (!normObject) {
            if (const auto reference = must(NameRangeChapter).Spec(names.NormDimensionRef())) {
                const auto workset = NameRangeChapter->Workset();
                // Called for its effect: it makes the workset's norm dimensions available.
                must(workset).LateBoundTools()->StdValues3D(NameRangeChapter->Project());
                normObject = workset->Globals()->getOption(kNormDimensionOption).objectAs<IDevice>();
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
