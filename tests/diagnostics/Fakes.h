#pragma once

// Stand-ins for the database, as far as traces and the name table reach.

#include "objectmodel/Errors.h"
#include "objectmodel/NameTableInterface.h"
#include "objectmodel/ObjectModel.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace pipespec::fakes {

// An object that only knows its full name; without one, reading the name
// fails as it does for a deleted object.
class NamedObject final : public IBaseObject {
public:
    explicit NamedObject(std::optional<std::string> fullName) : fullName_(std::move(fullName)) {}

    std::string SystemFullName() const override
    {
        if (!fullName_) throw PlatformError(err::Deleted, "Object is deleted");
        return *fullName_;
    }

    std::string Name() const override { return {}; }
    void SetName(std::string_view) override {}
    std::string Description() const override { return {}; }
    void SetDescription(std::string_view) override {}
    bool IsFolder() const override { return false; }
    WorksetRef Workset() const override { return nullptr; }
    std::string UniqueId() const override { return {}; }
    ObjectRef Owner() const override { return nullptr; }
    bool ReadOnly() const override { return false; }
    int SystemType() const override { return systemtype::Device; }
    bool SystemTemporary() const override { return false; }
    ProjectRef Project() const override { return nullptr; }
    ObjectRef InheritanceOrigin() const override { return nullptr; }
    bool IsDeleted() const override { return !fullName_; }
    int Delete() override { return 0; }
    ObjectRef Copy() const override { return nullptr; }
    void MakePersistent() override {}
    bool CanMakePersistent() const override { return false; }
    SpecRef Spec(std::string_view) const override { return nullptr; }
    void RefreshSpecs() override {}
    std::string XmlText() const override { return {}; }
    void SetXmlText(std::string_view) override {}

private:
    std::optional<std::string> fullName_;
};

// A name table with one leaf, "VFCD", and no sub-trees.
class OneLeafNames final : public INameTable {
public:
    std::shared_ptr<const INameTable> SubTree(std::string_view) const override { return nullptr; }
    const std::string& Leaf(std::string_view name) const override
    {
        if (name != "VFCD") throw PlatformError(err::Configuration, "No leaf " + std::string(name));
        return vfcd_;
    }
    bool IsBaseDatabase() const override { return false; }

private:
    std::string vfcd_ = "VFCD";
};

}  // namespace pipespec::fakes
