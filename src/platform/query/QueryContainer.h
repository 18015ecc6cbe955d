#pragma once

// Query containers: devices of the database that carry a stored query and
// the grid settings of the lists that use it. A container keeps what it
// carries as plain data (StoredQueryObject); taking it out with XObj gives
// live objects to work on, Save copies them back into the data.

#include "objectmodel/QueryInterfaces.h"
#include "platform/query/QueryDefinition.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace pipespec::platform {

struct StoredQueryObject {
    QueryDefinition queryOrg;
    ObjectSetNode objectSet;

    bool operator==(const StoredQueryObject&) const = default;
};

class TopQueryHolder final : public ITopQuery {
public:
    explicit TopQueryHolder(QueryDefinition stored) : stored_(std::move(stored)) {}
    QueryRef QueryOrg() const override;
    void SetQueryOrg(const QueryRef& query) override;
    const QueryDefinition& stored() const { return stored_; }

private:
    QueryDefinition stored_;
};

class QueryXObj final : public IQueryXObj {
public:
    explicit QueryXObj(const StoredQueryObject& stored);
    std::shared_ptr<ITopQuery> TopQuery() const override { return top_; }
    ObjectSetNodeRef ObjectSet() const override { return objectSet_; }
    StoredQueryObject stored() const { return {top_->stored(), *objectSet_}; }

private:
    std::shared_ptr<TopQueryHolder> top_;
    ObjectSetNodeRef objectSet_;
};

class QueryContainer final : public IQueryContainer {
public:
    explicit QueryContainer(std::optional<StoredQueryObject> stored) : stored_(std::move(stored)) {}
    bool HasXObj() const override { return stored_.has_value(); }
    // The same object until it is released.
    std::shared_ptr<IQueryXObj> XObj() override;
    void ReleaseXObj() override { attached_.reset(); }
    void Save() override;

    const std::optional<StoredQueryObject>& stored() const { return stored_; }

private:
    std::optional<StoredQueryObject> stored_;
    std::shared_ptr<QueryXObj> attached_;
};

// Which devices are containers is kept per database: closing the database
// forgets its containers with it.
// The container side of a device. A device that no creator made carries
// nothing: its HasXObj is false.
std::shared_ptr<IQueryContainer> queryContainerOf(const ObjectRef& device);
// The container of a device that a creator made or a file gave back; empty
// for any other device.
std::shared_ptr<QueryContainer> registeredQueryContainer(const std::shared_ptr<const IBaseObject>& device);
// Makes a device a container carrying `stored`, as a database file that kept
// it gives it back.
void registerQueryContainer(const ObjectRef& device, std::optional<StoredQueryObject> stored);

// "QuorlQueryXObj.QCreator".
class QueryCreator final : public IQueryCreator {
public:
    DeviceRef Create(const DeviceRef& owner, int option) override;
};

// A system path is one that begins at a root of the system project
// ("@System|..."). Databases that lack that root use the fallback path.
class PathResolver final : public IPathResolver {
public:
    explicit PathResolver(WorksetRef workset) : workset_(std::move(workset)) {}
    std::string Resolve(std::string_view systemPath, std::string_view fallbackPath) const override;

private:
    WorksetRef workset_;
};

// The node of that name below parent; empty if none. A kind that is not
// empty must match the node's. Mode 0 looks at the direct sub-nodes only,
// any other mode searches the whole tree below, depth first.
ObjectSetNodeRef FindObject(const ObjectSetNodeRef& parent, std::string_view name, std::string_view kind, int mode);

// How a message names an object for the user: its full name, and its
// description in brackets where it has one. Empty for nothing.
std::string GetIdentTextForQuorlObject(const ObjectRef& object);

}  // namespace pipespec::platform
