// The layout text of edit controls (an attribute's ControlProperties) as a
// file may hold any: read and written by LayoutHelper, and a new control
// placed under its column by CalcControlProperties. The input is up to three
// texts apart at NUL bytes: the model control's, a box's (none when the
// input has one text only) and the new control's own.

#include "FuzzSupport.h"
#include "diagnostics/HeadlessHost.h"
#include "platform/JsonNameTable.h"
#include "platform/store/Database.h"
#include "selectors/Chapters.h"
#include "selectors/LayoutHelper.h"

#include <array>

namespace {

using namespace pipespec;
using addtopipeclass::LayoutHelper;

constexpr std::string_view kEditControl = "QuorlSUIEdit.SUIEdit";

// A pipe class with a selector chapter of three edit controls, made once.
struct Form {
    diagnostics::ScopedHeadlessHost host{platform::JsonNameTable::load(platform::JsonNameTable::shippedPath())};
    std::shared_ptr<platform::Database> database = platform::Database::create();
    DeviceRef device;
    SpecRef model, box, added;

    Form()
    {
        host.tools().setTraceEnabled(false);
        const auto project = database->addProject("PLANT");
        database->workset()->SetCurrentProject(project);
        device = asDevice(project->addRoot("@20")->OwnElements()->CreateNewWithName("PC"));
        const auto chapter = asSpec(device->SpecsByName()->CreateNewWithName("SEL"));
        model = control(*chapter, "MODEL");
        box = control(*chapter, "BOX");
        added = control(*chapter, "NEW");
    }

    static SpecRef control(ISpecification& chapter, std::string_view name)
    {
        auto spec = asSpec(chapter.OwnSpecifications()->CreateNewWithName(name));
        spec->SetControlType(kEditControl);
        return spec;
    }
};

// What SetValue writes, GetValue reads back: an edge and an indexed value.
void requireReadBack(const SpecRef& spec)
{
    LayoutHelper layout;
    layout.Load(spec);
    for (int index = LayoutHelper::Left; index <= LayoutHelper::Bottom; ++index) (void)layout.GetValue(index);
    layout.SetValue(LayoutHelper::Top, "2.5");
    layout.SetValue(7, "3");
    fuzz::require(layout.GetValue(LayoutHelper::Top) == 2.5, "an edge reads back as written");
    fuzz::require(layout.GetValue(7) == 3, "an indexed value reads back as written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Form form;
    form.host.utilities().clear();
    std::array<std::string_view, 3> texts{};
    auto rest = fuzz::text(data, size);
    std::size_t count = 0;
    for (; count < texts.size() && !rest.empty(); ++count) {
        const auto nul = rest.find('\0');
        texts[count] = rest.substr(0, nul);
        rest = nul == std::string_view::npos ? std::string_view() : rest.substr(nul + 1);
    }
    form.model->SetControlProperties(texts[0]);
    form.box->SetControlProperties(texts[1]);
    form.added->SetControlProperties(texts[2]);

    fuzz::refusalAllowed(
        [&] { addtopipeclass::CalcControlProperties(form.added, count > 1 ? form.box : nullptr, form.model); });
    requireReadBack(form.added);
    requireReadBack(form.model);
    return 0;
}
