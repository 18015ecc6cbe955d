#include "platform/query/QueryContainer.h"

#include "objectmodel/DatabaseState.h"
#include "platform/query/Query.h"

#include <map>

namespace pipespec::platform {

namespace {
// Which devices of one database are containers, kept in the database's state.
// Devices are held weakly: a container that the database lets go of is
// forgotten with it, and the comparison by owner keeps a new object at a
// reused address from inheriting an old entry.
class ContainerRegistry {
public:
    void add(const ObjectRef& device, std::shared_ptr<QueryContainer> container)
    {
        std::erase_if(entries_, [](const auto& entry) { return entry.first.expired(); });
        entries_[device] = std::move(container);
    }

    std::shared_ptr<QueryContainer> find(const std::shared_ptr<const IBaseObject>& device) const
    {
        const auto found = entries_.find(device);
        return found == entries_.end() ? nullptr : found->second;
    }

private:
    std::map<std::weak_ptr<IBaseObject>, std::shared_ptr<QueryContainer>, std::owner_less<>> entries_;
};

constexpr std::string_view kContainerName = "TQContainer001";

ObjectSetNode* findBelow(ObjectSetNode& parent, std::string_view name, std::string_view kind, bool deep)
{
    for (auto& node : parent.children)
        if (node.name == name && (kind.empty() || node.kind == kind)) return &node;
    if (deep)
        for (auto& node : parent.children)
            if (auto* found = findBelow(node, name, kind, deep)) return found;
    return nullptr;
}
}  // namespace

QueryRef TopQueryHolder::QueryOrg() const { return Query::fromDefinition(stored_); }

void TopQueryHolder::SetQueryOrg(const QueryRef& query)
{
    const auto own = std::dynamic_pointer_cast<Query>(query);
    if (!query) throw PlatformError(err::ObjectNotSet, "there is no query to store");
    if (!own) throw PlatformError(err::TypeMismatch, "a container stores queries of its own engine only");
    stored_ = own->definition();
}

QueryXObj::QueryXObj(const StoredQueryObject& stored)
    : top_(std::make_shared<TopQueryHolder>(stored.queryOrg)),
      objectSet_(std::make_shared<ObjectSetNode>(stored.objectSet))
{
}

std::shared_ptr<IQueryXObj> QueryContainer::XObj()
{
    if (!stored_) return nullptr;
    if (!attached_) attached_ = std::make_shared<QueryXObj>(*stored_);
    return attached_;
}

void QueryContainer::Save()
{
    if (attached_) stored_ = attached_->stored();
}

std::shared_ptr<IQueryContainer> queryContainerOf(const ObjectRef& device)
{
    if (auto container = registeredQueryContainer(device)) return container;
    return std::make_shared<QueryContainer>(std::nullopt);
}

std::shared_ptr<QueryContainer> registeredQueryContainer(const std::shared_ptr<const IBaseObject>& device)
{
    // A device of no database (a copy not yet added) is no container.
    const auto workset = device ? device->Workset() : nullptr;
    return workset ? workset->State().get<ContainerRegistry>().find(device) : nullptr;
}

void registerQueryContainer(const ObjectRef& device, std::optional<StoredQueryObject> stored)
{
    auto& registry = must(must(device).Workset()).State().get<ContainerRegistry>();
    registry.add(device, std::make_shared<QueryContainer>(std::move(stored)));
}

DeviceRef QueryCreator::Create(const DeviceRef& owner, int option)
{
    if (option != 0 && option != 1) throw PlatformError(err::InvalidCall, "container option " + std::to_string(option));
    const auto members = must(owner).CDevices();
    auto device = asDevice(members->CreateNewWithName(members->ItemName(kContainerName)));
    registerQueryContainer(device, option == 1 ? std::optional(StoredQueryObject{}) : std::nullopt);
    return device;
}

std::string PathResolver::Resolve(std::string_view systemPath, std::string_view fallbackPath) const
{
    const auto project = workset_ ? workset_->CurrentProject() : nullptr;
    const auto system = project ? project->SystemProject() : nullptr;
    const auto root = systemPath.substr(0, systemPath.find('|'));
    return std::string(system && project->ObjectByFullName(system, root) ? systemPath : fallbackPath);
}

ObjectSetNodeRef FindObject(const ObjectSetNodeRef& parent, std::string_view name, std::string_view kind, int mode)
{
    auto* found = findBelow(must(parent), name, kind, mode != 0);
    // The node lives as long as the tree it belongs to.
    return found ? ObjectSetNodeRef(parent, found) : nullptr;
}

std::string GetIdentTextForQuorlObject(const ObjectRef& object)
{
    if (!object) return {};
    const auto description = object->Description();
    return description.empty() ? object->SystemFullName() : object->SystemFullName() + " (" + description + ")";
}

}  // namespace pipespec::platform
