#include "diagnostics/ServiceRegistry.h"

#include "diagnostics/HeadlessHost.h"
#include "objectmodel/Errors.h"

#include <mutex>
#include <utility>

namespace pipespec::diagnostics {

namespace {

template <class Interface, class Default>
class ServiceSlot {
public:
    Interface& get()
    {
        const std::lock_guard lock(mutex_);
        if (!current_) current_ = std::make_shared<Default>();
        return *current_;
    }

    std::shared_ptr<Interface> exchange(std::shared_ptr<Interface> replacement)
    {
        const std::lock_guard lock(mutex_);
        current_.swap(replacement);
        return replacement;
    }

private:
    std::mutex mutex_;
    std::shared_ptr<Interface> current_;
};

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
