#pragma once

// The stored objects of our database: devices, attributes and chapters,
// standard tables and their rows. One object type per kind; an object that
// exists only by inheritance is a temporary proxy of the same type, which
// MakePersistent turns into a stored one in place.

#include "objectmodel/ObjectModel.h"
#include "objectmodel/TextHash.h"
#include "platform/store/CompactText.h"
#include "platform/store/NamedChildren.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pipespec::platform {

class StoreProject;
class StoredObject;
class StoreWorkset;
class Device;
class Specification;
class StandardTable;

// The temporary proxies an owner hands out for what it inherits, one per
// name, kept so that the same object comes back: also while an own member of
// that name hides it, for when that member goes (undo of MakePersistent).
// What a proxy stands for is looked up again only after a database changed.
template <class T>
class InheritedProxies {
public:
    // The proxy of `name`, if no database changed since it was handed out.
    std::shared_ptr<T> unchanged(std::string_view name) const;
    // The proxy of `name` standing for `origin` under `owner`: the kept one
    // if it still does, else a new one.
    std::shared_ptr<T> standingFor(std::string_view name, const std::shared_ptr<T>& origin,
                                   const std::shared_ptr<StoredObject>& owner);
    void clear() { proxies_.clear(); }

private:
    struct Proxy {
        std::shared_ptr<T> object;
        std::uint64_t checkedAt = 0;  // the change count of the databases then
    };
    TextMap<Proxy> proxies_;
};

// The attributes or chapters of a device or chapter, and the proxies of what
// it inherits. Made with the first member or proxy: most attributes hold none.
struct SpecMembers {
    NamedChildren<Specification> specs;
    InheritedProxies<Specification> proxies;
};

// What an attribute rarely has. Changes recorded for undo refer to its
// fields, so it is refilled in place, never replaced.
struct AttributeExtras {
    std::shared_ptr<StandardTable> table;
    ObjectRef link;
    std::shared_ptr<Specification> inheritedChapter;
    std::string inheritMode;
    std::string controlType;
    std::string controlProperties;
    std::vector<std::string> xValues;
    std::vector<std::string> languageValues;
    long answerMode = -9999;
    int linkedCount = 0;
};

// Unique numbers are kept in this many bits.
inline constexpr int kUniqueNumberBits = 48;

// A position past the last member: insertMember puts the member last.
inline constexpr std::size_t kLast = std::numeric_limits<std::size_t>::max();

// A change as the write gate tells it: a property of the writing object
// changed, or a member joins or leaves the writing object.
struct Notice {
    ChangeKind kind = ChangeKind::Changed;
    std::string_view property;             // Changed: what of the writer
    std::shared_ptr<StoredObject> member;  // otherwise: the member that joins or leaves
    bool joins = false;

    static Notice changed(std::string_view property) { return {ChangeKind::Changed, property, nullptr, false}; }
    static Notice joining(ChangeKind kind, std::shared_ptr<StoredObject> member)
    {
        return {kind, {}, std::move(member), true};
    }
    static Notice leaving(ChangeKind kind, std::shared_ptr<StoredObject> member)
    {
        return {kind, {}, std::move(member), false};
    }
    // What undoing the change does.
    Notice inverse() const;
    // The change as observers learn it.
    ChangeNotice toldBy(const std::shared_ptr<StoredObject>& writer) const;
};

// What every object of the database has: name, description, owner, project,
// the temporary state, deletion. Every change goes through write(), which
// refuses what may not be changed, records the change for undo and tells it
// to the workset's observers.
class StoredObject : public virtual IBaseObject, public std::enable_shared_from_this<StoredObject> {
public:
    std::string Name() const override;
    std::string_view nameView() const { return name_; }
    // The stored texts as they are, for saving.
    std::string_view storedDescription() const { return stored<StoredObject>().rare().description; }
    std::string_view storedXml() const { return stored<StoredObject>().rare().xml; }
    void SetName(std::string_view name) override;
    std::string Description() const override;
    void SetDescription(std::string_view text) override;
    bool IsFolder() const override { return stored<StoredObject>().folder_; }
    WorksetRef Workset() const override;
    std::string UniqueId() const override;
    ObjectRef Owner() const override { return owner_.lock(); }
    bool ReadOnly() const override { return readOnly_; }
    bool SystemTemporary() const override { return origin() != nullptr; }
    ProjectRef Project() const override;
    ObjectRef InheritanceOrigin() const override;
    bool IsDeleted() const override { return deleted_; }
    int Delete() override;
    bool CanMakePersistent() const override;
    void RefreshSpecs() override {}
    std::string XmlText() const override;
    void SetXmlText(std::string_view text) override;

    // Loading and building: properties the logic only reads.
    void setFolder(bool folder) { folder_ = folder; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
    void setUniqueId(std::uint64_t id);
    std::uint64_t uniqueNumber() const { return id_; }
    std::shared_ptr<StoreProject> storeProject() const { return project_.lock(); }
    std::shared_ptr<StoredObject> owner() const { return owner_.lock(); }
    // What a temporary object stands for; empty for a stored one.
    const std::shared_ptr<StoredObject>& origin() const;

    // Attaching to and detaching from an owner; the project follows the owner.
    virtual void attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project);
    void detach();
    // Marks this object and everything below it deleted (or not, for undo).
    virtual void markDeleted(bool deleted);
    // The owner's side of deleting, moving and undoing: where a member stands
    // among the members of its kind (kLast if it is none), taking it out, and
    // putting it in at a position (kLast: last).
    virtual std::size_t memberPosition(const StoredObject&) const { return kLast; }
    virtual void removeMember(StoredObject&) {}
    virtual void insertMember(const std::shared_ptr<StoredObject>&, std::size_t) {}

    // The one gate of every change: runs it after the checks, records how to
    // undo and redo it, and tells it to whoever listens.
    void write(const std::function<void()>& apply, std::function<void()> revert, const Notice& notice);
    // A change of one field, the property `property`, with undo.
    template <class T>
    void assign(T& field, T value, std::string_view property)
    {
        T old = field;
        auto self = shared_from_this();
        write([self, &field, value] { field = value; }, [self, &field, old] { field = old; },
              Notice::changed(property));
    }

protected:
    StoredObject(std::string name, std::shared_ptr<StoreProject> project);
    // A temporary proxy of `origin`, seen under `owner`.
    StoredObject(const std::shared_ptr<StoredObject>& origin, const std::shared_ptr<StoredObject>& owner);
    StoredObject(const StoredObject& other);  // the copy of Copy(): unowned, same project

    // May this object be written now? Throws a clear error if not.
    void checkWritable() const;
    // Puts a new member in last, with undo; undone, the member reports deleted.
    void adopt(const std::shared_ptr<StoredObject>& member);
    // Stores the owner first if it is itself temporary.
    void persistOwner();
    // Reads of a temporary object come from what it stands for.
    template <class T>
    const T& stored() const
    {
        const auto& from = origin();
        return from ? static_cast<const T&>(*from).template stored<T>() : static_cast<const T&>(*this);
    }
    // Tells the database, and through the workset whoever listens, that this
    // object's fields or list of members changed.
    void changed(const Notice& notice);
    virtual bool memberNameTaken(const StoredObject&, std::string_view) const { return false; }
    virtual void renameMember(const StoredObject&, const std::string&, const std::string&) {}
    // The path part of the full name; empty owner means "not in the database".
    std::string ownerPath() const;

    // What most objects lack, kept apart so that a plain attribute stays
    // small. Allocated once and never replaced: undo refers to its fields.
    struct Rare {
        std::string description;
        std::string xml;
        std::shared_ptr<StoredObject> origin;
        // A device's or chapter's attributes; an attribute's extras.
        std::unique_ptr<SpecMembers> specs;
        std::unique_ptr<AttributeExtras> extras;
    };
    const Rare& rare() const;
    // Const, as look-ups make proxies.
    Rare& editRare() const;
    void setOrigin(std::shared_ptr<StoredObject> origin);
    // Takes over the description and the XML text of `from`.
    void copyTexts(const StoredObject& from);

    CompactText name_;
    mutable std::unique_ptr<Rare> rare_;
    std::weak_ptr<StoredObject> owner_;
    std::weak_ptr<StoreProject> project_;
    // The number and the flags share one word.
    std::uint64_t id_ : kUniqueNumberBits = 0;
    bool folder_ : 1 = false;
    bool readOnly_ : 1 = false;
    bool deleted_ : 1 = false;
    // Set while a search for an inherited attribute goes through what this
    // holder inherits from: met again, the search has gone round a circle.
    mutable bool searching_ : 1 = false;
};

// Something that holds attributes: a device, or a chapter.
class SpecHolder : public StoredObject {
public:
    SpecRef Spec(std::string_view name) const override;

    // Own attribute or chapter of that name, else the inherited one as a
    // stable temporary proxy; empty if none.
    std::shared_ptr<Specification> childSpec(std::string_view name) const;
    // The stored attribute of that name this holder sees: own, or inherited.
    std::shared_ptr<Specification> effectiveSpec(std::string_view name) const;
    // Own and inherited members, own first, each name once.
    std::vector<ObjectRef> allSpecs() const;
    const NamedChildren<Specification>& ownSpecs() const;

    void addSpec(const std::shared_ptr<Specification>& spec, std::size_t at);
    std::shared_ptr<Specification> createSpec(std::string_view name);
    // Refuses, with the description led by `link`, if anything this holder
    // reaches through what it inherits from and what it holds inherits from
    // itself (CycleRefused) or through too many levels (InvalidCall). Run
    // with a new link to this holder in place: every circle the link closes
    // passes through what the holder reaches.
    void refuseInheritanceCircles(const std::string& link) const;

    // What this holder inherits from, nearest first.
    virtual std::vector<std::shared_ptr<SpecHolder>> inheritanceSources() const = 0;

    std::size_t memberPosition(const StoredObject& member) const override;
    void removeMember(StoredObject& member) override;
    void insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at) override;

protected:
    using StoredObject::StoredObject;
    SpecHolder(const SpecHolder& other);
    bool memberNameTaken(const StoredObject& member, std::string_view name) const override;
    void renameMember(const StoredObject& member, const std::string& from, const std::string& to) override;
    void markDeleted(bool deleted) override;
    void attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project) override;

    SpecMembers& specMembers() const;
    void forgetSpecProxies() const;
    // Marks a holder while a walk goes through what it inherits from.
    class Searching;
};

class Device final : public SpecHolder, public IDevice {
public:
    // A device of the database; use the project or a collection to place it.
    static std::shared_ptr<Device> create(std::string name, std::shared_ptr<StoreProject> project, bool root = false);

    int SystemType() const override { return root_ ? systemtype::Root : systemtype::Device; }
    ObjectRef Copy() const override;
    void MakePersistent() override;

    SpecCollectionRef SpecsByName() const override;
    CollectionRef Specs() const override;
    SpecCollectionRef OwnElements() const override;
    CollectionRef Elements() const override;
    CollectionRef Devices() const override;
    // Our database keeps one tree: the catalogue children of an object are its own children.
    CollectionRef CDevices() const override { return Devices(); }
    DeviceRef CDevice() const override;
    void SetCDevice(const DeviceRef& base) override;
    int CreateOption() const override { return stored<Device>().createOption_; }
    std::string SystemFullName() const override;

    void setCreateOption(int option) { createOption_ = option; }
    bool isRoot() const { return root_; }

    // Own child, else the inherited one as a stable temporary proxy.
    std::shared_ptr<Device> childDevice(std::string_view name) const;
    std::shared_ptr<Device> effectiveChild(std::string_view name) const;
    std::vector<ObjectRef> allChildren() const;
    const NamedChildren<Device>& ownChildren() const { return children_; }
    void addChild(const std::shared_ptr<Device>& child, std::size_t at);
    std::shared_ptr<Device> createChild(std::string_view name);
    // Where the running numbers of new children go on, per name pattern.
    long& nameCursor(const std::string& pattern) const { return nameCursors_[pattern]; }
    // On closing the database: lets go of the base objects and the cached
    // inherited objects here and below, as these links can run in circles
    // through the trees that own them (pipe classes used as each other's elements).
    void releaseLinks();

    std::vector<std::shared_ptr<SpecHolder>> inheritanceSources() const override;

    Device(std::string name, std::shared_ptr<StoreProject> project, bool root);
    Device(const std::shared_ptr<Device>& origin, const std::shared_ptr<StoredObject>& owner);
    Device(const Device& other);

private:
    std::size_t memberPosition(const StoredObject& member) const override;
    void removeMember(StoredObject& member) override;
    void insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at) override;
    bool memberNameTaken(const StoredObject& member, std::string_view name) const override;
    void renameMember(const StoredObject& member, const std::string& from, const std::string& to) override;
    void markDeleted(bool deleted) override;
    void attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project) override;
    // What a temporary device showed, kept when it is stored.
    void copyStoredFields(const Device& from);

    NamedChildren<Device> children_;
    mutable InheritedProxies<Device> childProxies_;
    mutable std::unordered_map<std::string, long> nameCursors_;
    std::shared_ptr<Device> cdevice_;
    int createOption_ = 0;
    bool root_ = false;
};

class Specification final : public SpecHolder, public ISpecification {
public:
    static std::shared_ptr<Specification> create(std::string name);

    int SystemType() const override { return systemtype::Specification; }
    ObjectRef Copy() const override;
    void MakePersistent() override;
    std::string SystemFullName() const override;

    std::string ValueType() const override;
    void SetValueType(std::string_view type) override;
    std::string InheritMode() const override;
    void SetInheritMode(std::string_view mode) override;
    std::string Value() const override;
    void SetValue(std::string_view value) override;
    std::string ValueText() const override { return Value(); }
    std::string DisplayValue() const override;
    ObjectRef StandardValue() const override;
    ObjectRef StandardTable() const override;
    void SetStandardTable(const ObjectRef& table) override;
    SpecCollectionRef OwnSpecifications() const override;
    CollectionRef Specifications() const override;
    std::string ControlType() const override;
    void SetControlType(std::string_view type) override;
    std::string ControlProperties() const override;
    void SetControlProperties(std::string_view text) override;
    DeviceRef LinkObject() const override;
    void SetLinkObject(const ObjectRef& object) override;
    SpecRef InheritedChapter() const override;
    void InheritFrom(const SpecRef& chapter) override;
    std::string GetXValue(int index) const override;
    bool SetXValue(int index, std::string_view value) override;
    int RowCount() const override;
    int LinkedCount() const override;
    std::string NestedName() const override;
    void SetLanguageValue(int languageIndex, std::string_view value) override;
    long AnswerMode() const override;
    void SetAnswerMode(long mode) override;
    std::string ValueOfDisplayText(std::string_view displayText) const override;
    bool IsValueLocked(int index) const override;

    void setLinkedCount(int count);
    void setValueLocked(bool locked) { locked_ = locked; }
    // The stored fields as they are, for saving: the plain value under the
    // language values, and the link to whatever kind of object.
    std::string_view plainValue() const { return value_; }
    const std::vector<std::string>& languageValues() const { return extras().languageValues; }
    const std::vector<std::string>& xValues() const { return extras().xValues; }
    bool valueLocked() const { return locked_; }
    const ObjectRef& link() const { return extras().link; }
    // What the attribute rarely has, as stored (see AttributeExtras).
    const AttributeExtras& extras() const;
    // The device the attribute belongs to, through its chapters.
    std::shared_ptr<Device> device() const;

    std::vector<std::shared_ptr<SpecHolder>> inheritanceSources() const override;

    explicit Specification(std::string name);
    Specification(const std::shared_ptr<Specification>& origin, const std::shared_ptr<StoredObject>& owner);
    Specification(const Specification& other);

private:
    friend class StoredObject;
    AttributeExtras& editExtras();
    void copyStoredFields(const Specification& from);

    CompactText value_;
    char type_ = 'A';
    bool locked_ = false;
};

class StandardValue final : public StoredObject, public IStandardValue {
public:
    explicit StandardValue(std::string name);
    int SystemType() const override { return systemtype::StandardValue; }
    ObjectRef Copy() const override;
    void MakePersistent() override {}
    SpecRef Spec(std::string_view) const override { return nullptr; }
    std::string SystemFullName() const override;
    std::string Value() const override { return value_.str(); }
    std::string_view plainValue() const { return value_; }
    void SetValue(std::string_view value) override;

private:
    CompactText value_;
};

class StandardTable final : public StoredObject, public IStandardTable {
public:
    static std::shared_ptr<StandardTable> create(std::string name, std::shared_ptr<StoreProject> project);
    int SystemType() const override { return systemtype::StandardTable; }
    ObjectRef Copy() const override;
    void MakePersistent() override {}
    SpecRef Spec(std::string_view) const override { return nullptr; }
    std::string SystemFullName() const override;
    SpecCollectionRef Values() const override;
    CollectionRef Children() const override;

    std::shared_ptr<StandardTable> child(std::string_view name) const { return tables_.find(name); }
    std::shared_ptr<platform::StandardValue> row(std::string_view name) const { return rows_.find(name); }
    std::shared_ptr<platform::StandardValue> rowWithValue(std::string_view value) const;
    std::shared_ptr<StandardTable> createChild(std::string_view name);
    std::shared_ptr<platform::StandardValue> createRow(std::string_view name);
    const NamedChildren<StandardTable>& ownTables() const { return tables_; }
    const NamedChildren<platform::StandardValue>& ownRows() const { return rows_; }

    StandardTable(std::string name, std::shared_ptr<StoreProject> project);

private:
    std::size_t memberPosition(const StoredObject& member) const override;
    void removeMember(StoredObject& member) override;
    void insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at) override;
    bool memberNameTaken(const StoredObject& member, std::string_view name) const override;
    void renameMember(const StoredObject& member, const std::string& from, const std::string& to) override;
    void markDeleted(bool deleted) override;
    NamedChildren<StandardTable> tables_;
    NamedChildren<platform::StandardValue> rows_;
};

}  // namespace pipespec::platform
