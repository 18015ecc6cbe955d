#pragma once

// The operations the logic asks of the object database. Everything the
// element-creation and selector code reads or writes goes through these
// interfaces; src/platform holds our implementation of them.

#include "objectmodel/Variant.h"

#include <memory>
#include <string>
#include <string_view>

namespace pipespec {

class IDevice;
class ISpecification;
class IObjectCollection;
class ISpecCollection;
class IProject;
class IWorkset;
class IStandardTable;
class IUndoState;
class IGlobals;
class IAppGlobals;
class IClipboard;
class ILateBoundTools;
class INameTable;
class IPipeSpecHelper;
class DatabaseState;

using DeviceRef = std::shared_ptr<IDevice>;
using SpecRef = std::shared_ptr<ISpecification>;
using SpecCollectionRef = std::shared_ptr<ISpecCollection>;
using ProjectRef = std::shared_ptr<IProject>;
using WorksetRef = std::shared_ptr<IWorkset>;
using UndoStateRef = std::shared_ptr<IUndoState>;

// Kinds answered by SystemType. 2 marks the fixed roots of a project, where
// climbs up an owner chain end; 13 is a device.
namespace systemtype {
inline constexpr int Root = 2;
inline constexpr int Device = 13;
inline constexpr int Specification = 14;
inline constexpr int StandardTable = 20;
inline constexpr int StandardValue = 21;
inline constexpr int Language = 30;
}  // namespace systemtype

// What devices, attributes, standard tables and their rows have in common.
class IBaseObject {
public:
    virtual ~IBaseObject() = default;

    virtual std::string Name() const = 0;
    virtual void SetName(std::string_view name) = 0;
    virtual std::string Description() const = 0;
    virtual void SetDescription(std::string_view text) = 0;
    virtual bool IsFolder() const = 0;
    virtual WorksetRef Workset() const = 0;
    WorksetRef WorkSet() const { return Workset(); }
    virtual std::string UniqueId() const = 0;
    virtual ObjectRef Owner() const = 0;
    virtual bool ReadOnly() const = 0;
    virtual int SystemType() const = 0;
    virtual bool SystemTemporary() const = 0;
    virtual ProjectRef Project() const = 0;
    // The stored object a temporary object stands for; the object itself once stored.
    virtual ObjectRef InheritanceOrigin() const = 0;
    virtual bool IsDeleted() const = 0;
    bool IsMarkedDeleted() const { return IsDeleted(); }
    bool GetDeleteFlag() const { return IsDeleted(); }
    virtual int Delete() = 0;
    // An unowned deep copy; it becomes part of the database by AddObject.
    virtual ObjectRef Copy() const = 0;
    virtual void MakePersistent() = 0;
    virtual bool CanMakePersistent() const = 0;
    // Attribute or chapter by plain or chapter-qualified name; empty if none.
    virtual SpecRef Spec(std::string_view name) const = 0;
    virtual void RefreshSpecs() = 0;
    virtual std::string SystemFullName() const = 0;
    virtual std::string XmlText() const = 0;
    virtual void SetXmlText(std::string_view text) = 0;
};

// Ordered list counted from 1, indexed by number or by name.
class IObjectCollection {
public:
    virtual ~IObjectCollection() = default;

    virtual int Count() const = 0;
    // 1-based; a number out of range is an error (9).
    virtual ObjectRef Item(int index) const = 0;
    // By name; empty when there is no such member.
    virtual ObjectRef Item(std::string_view name) const = 0;
    ObjectRef Item(const char* name) const { return Item(std::string_view(name)); }
    ObjectRef Item(const std::string& name) const { return Item(std::string_view(name)); }
    virtual int IndexOf(const ObjectRef& object) const = 0;
    virtual void Add(const ObjectRef& object) = 0;
    // Moves a copied or detached object into an owned collection.
    virtual void AddObject(const ObjectRef& object) = 0;
    // Takes a member out of its owner without deleting it.
    virtual ObjectRef Detach(const ObjectRef& object) = 0;
    // A name free among the members, derived from a numeric base such as "001".
    virtual std::string ItemName(std::string_view base) const = 0;
    // New member of that name in an owned collection of devices, attributes or tables.
    virtual ObjectRef CreateNewWithName(std::string_view name) = 0;
};

class ISpecCollection : public IObjectCollection {};

class IDevice : public virtual IBaseObject {
public:
    virtual SpecCollectionRef SpecsByName() const = 0;
    virtual CollectionRef Specs() const = 0;
    virtual SpecCollectionRef OwnElements() const = 0;
    // Own children plus, by name, what the CDevice chain offers, as temporary objects.
    virtual CollectionRef Elements() const = 0;
    virtual CollectionRef Devices() const = 0;
    // Children of this object in the catalogue tree.
    virtual CollectionRef CDevices() const = 0;
    virtual DeviceRef CDevice() const = 0;
    // Refused with an error when the link would close a cycle.
    virtual void SetCDevice(const DeviceRef& base) = 0;
    virtual int CreateOption() const = 0;
    CollectionRef Specifications() const { return Specs(); }
};

class ISpecification : public virtual IBaseObject {
public:
    virtual std::string ValueType() const = 0;
    virtual void SetValueType(std::string_view type) = 0;
    virtual std::string InheritMode() const = 0;
    virtual void SetInheritMode(std::string_view mode) = 0;
    virtual std::string Value() const = 0;
    virtual void SetValue(std::string_view value) = 0;
    virtual std::string ValueText() const = 0;
    virtual std::string DisplayValue() const = 0;
    std::string LValue() const { return Value(); }
    // The row of the value list that holds the current value; empty if none.
    virtual ObjectRef StandardValue() const = 0;
    virtual ObjectRef StandardTable() const = 0;
    virtual void SetStandardTable(const ObjectRef& table) = 0;
    virtual SpecCollectionRef OwnSpecifications() const = 0;
    virtual CollectionRef Specifications() const = 0;
    virtual std::string ControlType() const = 0;
    virtual void SetControlType(std::string_view type) = 0;
    virtual std::string ControlProperties() const = 0;
    virtual void SetControlProperties(std::string_view text) = 0;
    virtual DeviceRef LinkObject() const = 0;
    virtual void SetLinkObject(const ObjectRef& object) = 0;
    virtual SpecRef InheritedChapter() const = 0;
    virtual void InheritFrom(const SpecRef& chapter) = 0;
    // Indexed values: the bounds of a range answer, the rows of a list attribute.
    virtual std::string GetXValue(int index) const = 0;
    virtual bool SetXValue(int index, std::string_view value) = 0;
    virtual int RowCount() const = 0;
    virtual int LinkedCount() const = 0;
    virtual std::string NestedName() const = 0;
    virtual void SetLanguageValue(int languageIndex, std::string_view value) = 0;
    virtual long AnswerMode() const = 0;
    virtual void SetAnswerMode(long mode) = 0;
    virtual std::string ValueOfDisplayText(std::string_view displayText) const = 0;
    virtual bool IsValueLocked(int index) const = 0;
    bool IsLocked(int index) const { return IsValueLocked(index); }
};

class IStandardTable : public virtual IBaseObject {
public:
    virtual SpecCollectionRef Values() const = 0;
    virtual CollectionRef Children() const = 0;
    CollectionRef StandardTables() const { return Children(); }
};

class IStandardValue : public virtual IBaseObject {
public:
    virtual std::string Value() const = 0;
    virtual void SetValue(std::string_view value) = 0;
};

class IUndoState {
public:
    virtual ~IUndoState() = default;
};

// What one change did to an object of the database.
enum class ChangeKind {
    Created,  // joined its owner's own members: made, stored from inherited, or its deletion undone
    Changed,  // a property of the object changed
    Moved,    // put into an owner by AddObject, or taken out by Detach
    Deleted,  // left its owner's own members: deleted, or its making or storing undone
};

// One change as observers learn it. A view finds the rows concerned by
// identity: `from` loses the object, `to` gains it.
struct ChangeNotice {
    ChangeKind kind = ChangeKind::Changed;
    ObjectRef object;
    ObjectRef from;             // the owner it left (Deleted, Moved)
    ObjectRef to;               // the owner it joined (Created, Moved)
    std::string_view property;  // what of a Changed object: "Value", "Name", "Description", ...
};

// Learns the changes made through a workset, one user action at a time, when
// the action is over: BeginChanges, each change in the order it was made,
// EndChanges. The database then already shows the state after the action,
// also to an object of a notice that a later change of the action deleted.
// An observer must not throw.
class IChangeObserver {
public:
    virtual ~IChangeObserver() = default;
    virtual void BeginChanges() = 0;
    virtual void ObjectChanged(const ChangeNotice& notice) = 0;
    virtual void EndChanges() = 0;
};

class IProject {
public:
    virtual ~IProject() = default;
    virtual std::string Name() const = 0;
    virtual ProjectRef SystemProject() const = 0;
    virtual ProjectRef BaseProject() const = 0;
    virtual CollectionRef StandardTables() const = 0;
    virtual CollectionRef Languages() const = 0;
    virtual ObjectRef ObjectByFullName(const ProjectRef& project, std::string_view fullName) const = 0;
    // Bit 0 set: the current user may write.
    virtual int AccessRights() const = 0;
    virtual ObjectRef ObjectByPath(std::string_view path, int mode) const = 0;
    virtual WorksetRef Workset() const = 0;
};

class IGlobals {
public:
    virtual ~IGlobals() = default;
    virtual Variant getOption(int number) const = 0;
    virtual void setoption(int number, const Variant& value) = 0;
    virtual DeviceRef PipeClassRootCDevice() const = 0;
    virtual Variant GetOptionFromProject(const ProjectRef& project, int number) const = 0;
};

class INavigator {
public:
    virtual ~INavigator() = default;
    virtual void SetPLTObject(const ObjectRef& object) = 0;
};

class IAppGlobals {
public:
    virtual ~IAppGlobals() = default;
    virtual bool Exist(std::string_view name) const = 0;
    virtual bool TubrixDesignerRun() const = 0;
    // The pipe class open in the designer's component list, by upper-case
    // name; "" when none. Kept for the session only.
    virtual std::string TubrixDesignerRunClass() const = 0;
    virtual void SetTubrixDesignerRunClass(std::string_view pipeClassName) = 0;
    virtual std::shared_ptr<INavigator> Navigator() const = 0;
};

class IClipboard {
public:
    virtual ~IClipboard() = default;
    // 0 or 302 mean that the clipboard can be pasted onto the target.
    virtual int CanPaste(const ObjectRef& target) const = 0;
};

class ILateBoundTools {
public:
    virtual ~ILateBoundTools() = default;
    virtual ObjectRef StdValues3D(const ProjectRef& project) = 0;
};

class IWorkset {
public:
    virtual ~IWorkset() = default;
    virtual CollectionRef ClipboardObjects() const = 0;
    // A single object or a collection, or nothing.
    virtual Variant DragObject() const = 0;
    virtual std::shared_ptr<ILateBoundTools> LateBoundTools() const = 0;
    virtual ProjectRef CurrentProject() const = 0;
    ProjectRef GetCurrentProject() const { return CurrentProject(); }
    virtual void SetCurrentProject(const ProjectRef& project) = 0;
    virtual CollectionRef NewCollection() const = 0;
    // A new helper object for one run; it reads attribute names from `names`.
    virtual std::shared_ptr<IPipeSpecHelper> NewPipeSpecHelper(std::shared_ptr<const INameTable> names) const = 0;
    virtual std::shared_ptr<IAppGlobals> AppGlobals() const = 0;
    virtual std::shared_ptr<IGlobals> Globals() const = 0;
    virtual UndoStateRef CurrentUndoState() const = 0;
    virtual void SetCurrentUndoState(const UndoStateRef& state) = 0;
    virtual std::shared_ptr<IClipboard> Clipboard() const = 0;
    // A number in the text; an error (13) when the text holds none.
    virtual double ParseNumber(std::string_view text) const = 0;
    // What the code keeps for this workset's database (DatabaseState.h);
    // error ObjectNotSet once the database is closed.
    virtual DatabaseState& State() = 0;

    // Brackets around one user action, which nest: what changes until the
    // outermost EndAction is one step of the undo state and is told to the
    // observers at that end. A change outside any bracket is told at once.
    // Use ActionScope rather than the pair; an EndAction without its
    // BeginAction is refused.
    virtual void BeginAction() = 0;
    virtual void EndAction() = 0;
    // Held weakly: the observer hears every action until it is destroyed.
    virtual void AddChangeObserver(const std::shared_ptr<IChangeObserver>& observer) = 0;
};

// One user action, bracketed for as long as the scope lasts.
class ActionScope {
public:
    explicit ActionScope(IWorkset& workset) : workset_(workset) { workset_.BeginAction(); }
    ~ActionScope() { workset_.EndAction(); }
    ActionScope(const ActionScope&) = delete;
    ActionScope& operator=(const ActionScope&) = delete;

private:
    IWorkset& workset_;
};

// Reference casts used throughout the logic: empty in, empty out.
inline DeviceRef asDevice(const ObjectRef& o) { return std::dynamic_pointer_cast<IDevice>(o); }
inline SpecRef asSpec(const ObjectRef& o) { return std::dynamic_pointer_cast<ISpecification>(o); }
inline std::shared_ptr<IStandardTable> asTable(const ObjectRef& o)
{
    return std::dynamic_pointer_cast<IStandardTable>(o);
}

// The make-persistent pattern: an object that exists only by inheritance is
// stored before a write, where it may be. True when the object is now stored.
inline bool makePersistent(IBaseObject& object)
{
    if (object.SystemTemporary() && object.CanMakePersistent()) object.MakePersistent();
    return !object.SystemTemporary();
}

// Identity: the same database object, never a comparison of names.
inline bool same(const ObjectRef& a, const ObjectRef& b) { return a == b; }

}  // namespace pipespec
