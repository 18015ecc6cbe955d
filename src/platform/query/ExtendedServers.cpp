#include "platform/query/ExtendedServers.h"

#include "objectmodel/DatabaseState.h"
#include "objectmodel/TextHash.h"

#include <memory>
#include <string>

namespace pipespec::platform {

namespace {
struct PublishedServers {
    TextMap<std::weak_ptr<IExtended>> byClass;
};
}  // namespace

void publishExtendedServer(IWorkset& workset, std::string_view className, const ExtendedRef& server)
{
    workset.State().get<PublishedServers>().byClass.insert_or_assign(std::string(className), server);
}

ExtendedRef publishedExtendedServer(IWorkset& workset, std::string_view className)
{
    const auto& byClass = workset.State().get<PublishedServers>().byClass;
    const auto found = byClass.find(className);
    return found == byClass.end() ? nullptr : found->second.lock();
}

}  // namespace pipespec::platform
