#include "diagnostics/ServiceRegistry.h"

#include "diagnostics/HeadlessHost.h"
#include "objectmodel/Errors.h"

#include <utility>

namespace pipespec::diagnostics {

namespace {
ServiceSlot<IGlobalTools, HeadlessTools>& toolsSlot()
{
    static ServiceSlot<IGlobalTools, HeadlessTools> slot;
    return slot;
}

ServiceSlot<IUtilities, HeadlessUtilities>& utilitiesSlot()
{
    static ServiceSlot<IUtilities, HeadlessUtilities> slot;
    return slot;
}
}  // namespace

IGlobalTools& tools() { return toolsSlot().get(); }
IUtilities& utilities() { return utilitiesSlot().get(); }

std::shared_ptr<IGlobalTools> setTools(std::shared_ptr<IGlobalTools> replacement)
{
    return toolsSlot().exchange(std::move(replacement));
}

std::shared_ptr<IUtilities> setUtilities(std::shared_ptr<IUtilities> replacement)
{
    return utilitiesSlot().exchange(std::move(replacement));
}

const INameTable& names()
{
    // The tools object holds the table, so the reference outlives this call.
    const auto table = tools().Names();
    if (!table) throw PlatformError(err::Configuration, "No name table is installed");
    return *table;
}

}  // namespace pipespec::diagnostics
