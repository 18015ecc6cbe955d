#pragma once

#include "objectmodel/ObjectModel.h"
#include "platform/store/Objects.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace pipespec::platform {

// A list of references made by NewCollection: it owns nothing, may hold an
// object twice, and answers IndexOf by a hashed look-up.
class FreeCollection final : public ISpecCollection {
public:
    int Count() const override { return static_cast<int>(items_.size()); }
    ObjectRef Item(int index) const override;
    ObjectRef Item(std::string_view name) const override;
    using IObjectCollection::Item;
    int IndexOf(const ObjectRef& object) const override;
    void Add(const ObjectRef& object) override;
    void AddObject(const ObjectRef& object) override { Add(object); }
    ObjectRef Detach(const ObjectRef& object) override;
    std::string ItemName(std::string_view base) const override;
    ObjectRef CreateNewWithName(std::string_view name) override;

private:
    std::vector<ObjectRef> items_;
    // Made on the first IndexOf and extended by later ones: most collections
    // are filled and read in order, and never searched.
    mutable std::unordered_map<const IBaseObject*, int> firstPosition_;
    mutable std::size_t indexed_ = 0;
};

// A live view of the members of one owner. The own kinds show the owner's own
// members; the merged kinds add, by name, what the owner inherits, as
// temporary objects, gathered again after any change to the database.
// Changes always go to the owner's own members.
class MemberCollection final : public ISpecCollection {
public:
    enum class Kind { Children, Elements, OwnSpecs, Specs, Tables, Rows };

    MemberCollection(std::shared_ptr<const StoredObject> owner, Kind kind);

    int Count() const override;
    ObjectRef Item(int index) const override;
    ObjectRef Item(std::string_view name) const override;
    using IObjectCollection::Item;
    int IndexOf(const ObjectRef& object) const override;
    void Add(const ObjectRef& object) override { AddObject(object); }
    void AddObject(const ObjectRef& object) override;
    ObjectRef Detach(const ObjectRef& object) override;
    std::string ItemName(std::string_view base) const override;
    ObjectRef CreateNewWithName(std::string_view name) override;

private:
    bool merged() const { return kind_ == Kind::Elements || kind_ == Kind::Specs; }
    const std::vector<ObjectRef>& snapshot() const;
    bool nameTaken(std::string_view name) const;
    StoredObject& owner() const;

    std::shared_ptr<StoredObject> owner_;
    Kind kind_;
    mutable std::optional<std::vector<ObjectRef>> snapshot_;
    mutable std::uint64_t snapshotAt_ = 0;
};

// The languages of a project: fixed, counted from 1.
class LanguageObject final : public StoredObject {
public:
    LanguageObject(std::string name, std::shared_ptr<StoreProject> project);
    int SystemType() const override { return systemtype::Language; }
    ObjectRef Copy() const override { return nullptr; }
    void MakePersistent() override {}
    SpecRef Spec(std::string_view) const override { return nullptr; }
    std::string SystemFullName() const override;
};

}  // namespace pipespec::platform
