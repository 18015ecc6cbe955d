#pragma once

// What the benchmark programs build their databases with.

#include "platform/Database.h"

#include <memory>
#include <string>

namespace pipespec::bench {

// A base project (the catalogue) and a plant project on it, which is current.
struct Projects {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    std::shared_ptr<platform::StoreProject> base = database->addProject("BASE");
    std::shared_ptr<platform::StoreProject> plant = database->addProject("PLANT", base);

    Projects() { database->workset()->SetCurrentProject(plant); }
};

// A new attribute of the device, in the chapter of that name (made if missing).
inline SpecRef attribute(const DeviceRef& device, const std::string& chapter, const std::string& name,
                         const std::string& value)
{
    auto own = asSpec(device->SpecsByName()->Item(chapter));
    if (!own) own = asSpec(device->SpecsByName()->CreateNewWithName(chapter));
    const auto spec = asSpec(own->OwnSpecifications()->CreateNewWithName(name));
    spec->SetValue(value);
    return spec;
}

// "A7": appended rather than added, since GCC 12 warns falsely about
// "literal" + std::to_string(...) when it inlines the latter.
inline std::string numbered(const char* prefix, long number)
{
    std::string name(prefix);
    name += std::to_string(number);
    return name;
}

}  // namespace pipespec::bench
