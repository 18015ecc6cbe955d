// Objects named by any text, in the bundled sample project: a full name
// ("BASE:@40|CAT|FLANGES|FL-WN-PN16#GD.VFCD") and a path within each project.

#include "FuzzSupport.h"
#include "platform/JsonProject.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace pipespec;
    static const auto sample = platform::loadJsonProject(
        platform::sampleProjectPath(), *platform::JsonNameTable::load(platform::JsonNameTable::shippedPath()));
    const auto& database = *sample.database;
    const auto name = fuzz::text(data, size);

    fuzz::refusalAllowed([&] {
        const auto current = std::dynamic_pointer_cast<platform::StoreProject>(database.workset()->CurrentProject());
        (void)database.objectByFullName(name, current.get());
        for (const auto& project : database.projects()) (void)project->ObjectByPath(name, 1);
    });
    return 0;
}
