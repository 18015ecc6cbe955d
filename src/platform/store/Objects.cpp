#include "platform/store/Objects.h"

#include "platform/store/Collections.h"
#include "platform/store/Database.h"

#include <cstdio>
#include <utility>

namespace pipespec::platform {

namespace {
// Splits "A.B.C" one level at a time without copying.
std::pair<std::string_view, std::string_view> firstLevel(std::string_view name)
{
    const auto dot = name.find('.');
    if (dot == std::string_view::npos) return {name, {}};
    return {name.substr(0, dot), name.substr(dot + 1)};
}

// A copy of a member, of the member's own kind.
template <class T>
std::shared_ptr<T> copyOf(const IBaseObject& member)
{
    auto copy = std::dynamic_pointer_cast<T>(member.Copy());
    if (!copy) throw PlatformError(err::Internal, member.SystemFullName() + " did not copy as its own kind");
    return copy;
}

template <class T>
std::shared_ptr<T> self(const StoredObject& object)
{
    return std::static_pointer_cast<T>(std::const_pointer_cast<StoredObject>(object.shared_from_this()));
}

// Inheritance deeper than this is refused: the walks through what an object
// inherits recurse, one level a step.
constexpr std::size_t kMaxInheritanceDepth = 256;

[[noreturn]] void inheritsTooDeep(const StoredObject& holder)
{
    throw PlatformError(err::InvalidCall, holder.SystemFullName() + " inherits through more than " +
                                              std::to_string(kMaxInheritanceDepth) + " levels");
}

[[noreturn]] void inheritsFromItself(const StoredObject& holder)
{
    throw PlatformError(err::CycleRefused, holder.SystemFullName() + " is among what it inherits from");
}

// Sets a field for the length of a check, then puts back what it held.
template <class T>
class Tentative {
public:
    Tentative(T& field, T value) : field_(field), kept_(std::exchange(field, std::move(value))) {}
    ~Tentative() { field_ = std::move(kept_); }
    Tentative(const Tentative&) = delete;
    Tentative& operator=(const Tentative&) = delete;

private:
    T& field_;
    T kept_;
};
}  // namespace

// ---- StoredObject ------------------------------------------------------

StoredObject::StoredObject(std::string name, std::shared_ptr<StoreProject> project)
    : name_(std::move(name)),
      project_(project)
{
    setUniqueId(nextUniqueNumber());
}

StoredObject::StoredObject(const std::shared_ptr<StoredObject>& origin, const std::shared_ptr<StoredObject>& owner)
    : name_(origin->name_),
      owner_(owner),
      project_(owner->project_)
{
    setUniqueId(nextUniqueNumber());
    setOrigin(origin);
}

StoredObject::StoredObject(const StoredObject& other)
    : IBaseObject(other),
      std::enable_shared_from_this<StoredObject>(),
      name_(other.name_),
      project_(other.project_),
      folder_(other.IsFolder())
{
    setUniqueId(nextUniqueNumber());
    copyTexts(other.stored<StoredObject>());
}

const StoredObject::Rare& StoredObject::rare() const
{
    static const Rare none;
    return rare_ ? *rare_ : none;
}

StoredObject::Rare& StoredObject::editRare() const
{
    if (!rare_) rare_ = std::make_unique<Rare>();
    return *rare_;
}

const std::shared_ptr<StoredObject>& StoredObject::origin() const { return rare().origin; }

void StoredObject::setOrigin(std::shared_ptr<StoredObject> origin)
{
    if (origin || rare_) editRare().origin = std::move(origin);
}

void StoredObject::copyTexts(const StoredObject& from)
{
    const auto& texts = from.rare();
    if (!rare_ && texts.description.empty() && texts.xml.empty()) return;
    editRare().description = texts.description;
    editRare().xml = texts.xml;
}

std::string StoredObject::Name() const { return name_.str(); }

void StoredObject::SetName(std::string_view name)
{
    if (name == name_) return;
    const auto parent = owner();
    // A root is held by its project, by name.
    const auto project = parent ? nullptr : storeProject();
    const auto rootOf = project && project->root(name_).get() == this ? project : nullptr;
    if ((parent && parent->memberNameTaken(*this, name)) || (rootOf && rootOf->root(name)))
        throw PlatformError(err::NameInUse,
                            "cannot rename " + SystemFullName() + ": the name '" + std::string(name) + "' is in use");
    auto me = shared_from_this();
    const auto rename = [me, parent, rootOf](const std::string& from, const std::string& to) {
        if (parent) parent->renameMember(*me, from, to);
        if (rootOf) rootOf->renameRoot(from, to);
        me->name_ = CompactText(to);
    };
    std::string from = name_.str();
    std::string to(name);
    write([rename, from, to] { rename(from, to); }, [rename, from, to] { rename(to, from); }, Notice::changed("Name"));
}

std::string StoredObject::Description() const { return stored<StoredObject>().rare().description; }
void StoredObject::SetDescription(std::string_view text)
{
    assign(editRare().description, std::string(text), "Description");
}
std::string StoredObject::XmlText() const { return stored<StoredObject>().rare().xml; }
void StoredObject::SetXmlText(std::string_view text) { assign(editRare().xml, std::string(text), "XmlText"); }

WorksetRef StoredObject::Workset() const
{
    const auto project = storeProject();
    return project ? project->Workset() : nullptr;
}

void StoredObject::setUniqueId(std::uint64_t id)
{
    constexpr std::uint64_t kMask = (std::uint64_t{1} << kUniqueNumberBits) - 1;
    if (id & ~kMask)
        throw PlatformError(err::Configuration, "unique number " + std::to_string(id) + " is out of range");
    id_ = id & kMask;
}

std::string StoredObject::UniqueId() const
{
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "{%016llX}", static_cast<unsigned long long>(id_));
    return buffer;
}

ProjectRef StoredObject::Project() const { return storeProject(); }

ObjectRef StoredObject::InheritanceOrigin() const
{
    if (const auto& from = origin()) return from->InheritanceOrigin();
    return std::const_pointer_cast<StoredObject>(shared_from_this());
}

bool StoredObject::CanMakePersistent() const
{
    const auto& from = origin();
    if (!from || readOnly_ || from->ReadOnly()) return false;
    const auto project = storeProject();
    const auto workset = project ? project->Workset() : nullptr;
    if (!workset || workset->CurrentProject() != project || !project->writable()) return false;
    // It is stored in its owner, and a temporary owner has to be stored first.
    const auto parent = owner();
    if (!parent || parent->IsDeleted()) return false;
    return parent->SystemTemporary() ? parent->CanMakePersistent() : !parent->ReadOnly();
}

void StoredObject::checkWritable() const
{
    if (deleted_) throw PlatformError(err::Deleted, SystemFullName() + " is deleted");
    if (readOnly_) throw PlatformError(err::ReadOnly, SystemFullName() + " is read-only");
    // An unowned copy is not yet in any project's care; the fixed roots are.
    const auto project = storeProject();
    if (!project || project->writable()) return;
    if (!owner_.expired() || project->root(name_).get() == this || project->tableRoot().get() == this)
        throw PlatformError(err::ReadOnly, "no write access to project " + project->Name());
}

void StoredObject::write(const std::function<void()>& apply, std::function<void()> revert, const Notice& notice)
{
    checkWritable();
    // A temporary object shows what it inherits: a write to it is accepted and
    // lost, neither recorded nor stored, unless it was made persistent first.
    if (origin()) return;
    apply();
    changed(notice);
    const auto project = storeProject();
    const auto database = project ? project->database() : nullptr;
    const auto workset = database ? database->workset() : nullptr;
    if (!workset || !workset->recording()) return;
    // Undo and redo change the object as much as the write did.
    auto me = shared_from_this();
    workset->record(
        [me, apply, notice] {
            apply();
            me->changed(notice);
        },
        [me, revert = std::move(revert), inverse = notice.inverse()] {
            revert();
            me->changed(inverse);
        });
}

void StoredObject::changed(const Notice& notice)
{
    countChange();
    const auto project = storeProject();
    const auto database = project ? project->database() : nullptr;
    if (!database) return;
    database->noteChange(shared_from_this());
    if (const auto workset = database->workset(); workset->listened())
        workset->announce(notice.toldBy(shared_from_this()));
}

Notice Notice::inverse() const
{
    const auto undone = kind == ChangeKind::Created   ? ChangeKind::Deleted
                        : kind == ChangeKind::Deleted ? ChangeKind::Created
                                                      : kind;
    return {undone, property, member, !joins};
}

ChangeNotice Notice::toldBy(const std::shared_ptr<StoredObject>& writer) const
{
    if (!member) return {kind, writer, nullptr, nullptr, property};
    return {kind, member, joins ? nullptr : writer, joins ? writer : nullptr, {}};
}

void StoredObject::persistOwner()
{
    const auto parent = owner();
    if (parent && parent->SystemTemporary()) parent->MakePersistent();
}

std::string StoredObject::ownerPath() const
{
    const auto parent = owner();
    return parent ? parent->SystemFullName() : std::string();
}

void StoredObject::attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project)
{
    owner_ = owner;
    project_ = project;
}

void StoredObject::detach() { owner_.reset(); }

void StoredObject::markDeleted(bool deleted) { deleted_ = deleted; }

int StoredObject::Delete()
{
    checkWritable();
    if (origin()) return 0;  // inherited: it stays, as a write to it would
    const auto parent = owner();
    if (!parent) throw PlatformError(err::InvalidCall, SystemFullName() + " is not in the database");
    // The owner loses a member, so it has to be writable too.
    parent->checkWritable();
    auto me = shared_from_this();
    // Undo puts the object back where it stood. The change is the owner's:
    // it is its list of members that loses one.
    const auto at = parent->memberPosition(*this);
    parent->write(
        [me, parent] {
            parent->removeMember(*me);
            me->markDeleted(true);
        },
        [me, parent, at] {
            me->markDeleted(false);
            parent->insertMember(me, at);
        },
        Notice::leaving(ChangeKind::Deleted, me));
    return 0;
}

void StoredObject::adopt(const std::shared_ptr<StoredObject>& member)
{
    auto me = shared_from_this();
    write(
        [me, member] {
            me->insertMember(member, kLast);
            member->markDeleted(false);
        },
        [me, member] {
            me->removeMember(*member);
            member->markDeleted(true);
        },
        Notice::joining(ChangeKind::Created, member));
}

// ---- InheritedProxies --------------------------------------------------

template <class T>
std::shared_ptr<T> InheritedProxies<T>::unchanged(std::string_view name) const
{
    const auto known = proxies_.find(name);
    if (known == proxies_.end() || known->second.checkedAt != changeCount() || !known->second.object->SystemTemporary())
        return nullptr;
    return known->second.object;
}

template <class T>
std::shared_ptr<T> InheritedProxies<T>::standingFor(std::string_view name, const std::shared_ptr<T>& origin,
                                                    const std::shared_ptr<StoredObject>& owner)
{
    auto known = proxies_.find(name);
    if (known == proxies_.end()) known = proxies_.emplace(std::string(name), Proxy{}).first;
    auto& proxy = known->second;
    if (!proxy.object || proxy.object->origin() != origin || !proxy.object->SystemTemporary())
        proxy.object = std::make_shared<T>(origin, owner);
    proxy.checkedAt = changeCount();
    return proxy.object;
}

// ---- SpecHolder --------------------------------------------------------

SpecHolder::SpecHolder(const SpecHolder& other) : IBaseObject(other), StoredObject(other)
{
    // A copy holds what the original shows, inherited attributes included.
    for (const auto& spec : other.allSpecs()) specMembers().specs.append(copyOf<Specification>(*spec));
}

const NamedChildren<Specification>& SpecHolder::ownSpecs() const
{
    static const NamedChildren<Specification> none;
    const auto& members = rare().specs;
    return members ? members->specs : none;
}

SpecMembers& SpecHolder::specMembers() const
{
    auto& members = editRare().specs;
    if (!members) members = std::make_unique<SpecMembers>();
    return *members;
}

void SpecHolder::forgetSpecProxies() const
{
    if (const auto& members = rare().specs) members->proxies.clear();
}

// Met again, a holder shows that the walk has gone round a circle, which
// only a link on trial can have closed: the mark ends the trial. A walk is
// also kept shallower than any one link may make it, since links made in an
// order that hides how deep they reach, as a damaged file may hold them, can
// lead deeper.
class SpecHolder::Searching {
public:
    explicit Searching(const SpecHolder& holder) : holder_(holder)
    {
        if (holder.searching_) inheritsFromItself(holder);
        if (depth_ == kMaxInheritanceDepth) inheritsTooDeep(holder);
        holder.searching_ = true;
        ++depth_;
    }
    ~Searching()
    {
        holder_.searching_ = false;
        --depth_;
    }
    Searching(const Searching&) = delete;
    Searching& operator=(const Searching&) = delete;

private:
    const SpecHolder& holder_;
    // Holders marked now; the store is used from one thread.
    static inline std::size_t depth_ = 0;
};

void SpecHolder::refuseInheritanceCircles(const std::string& link) const
{
    // A search in depth that goes through what a holder inherits from and
    // only then leaves it: a holder met again before it is left closes a
    // circle. Members start searches of their own, as they inherit from
    // the members of what their holder inherits from.
    struct Visit {
        const SpecHolder* holder;
        std::vector<std::shared_ptr<SpecHolder>> sources;
        std::size_t next = 0;
    };
    std::unordered_map<const SpecHolder*, bool> left;  // false while it is being gone through
    std::vector<const SpecHolder*> starts{this};
    std::vector<Visit> path;
    const auto enter = [&](const SpecHolder& holder) {
        if (path.size() == kMaxInheritanceDepth) inheritsTooDeep(holder);
        left.emplace(&holder, false);
        for (const auto& member : holder.ownSpecs().items()) starts.push_back(member.get());
        path.push_back({&holder, holder.inheritanceSources()});
    };
    try {
        while (!starts.empty()) {
            const auto* start = starts.back();
            starts.pop_back();
            if (!left.contains(start)) enter(*start);
            while (!path.empty()) {
                auto& visit = path.back();
                if (visit.next == visit.sources.size()) {
                    left[visit.holder] = true;
                    path.pop_back();
                    continue;
                }
                const auto& source = *visit.sources[visit.next++];
                const auto met = left.find(&source);
                if (met == left.end())
                    enter(source);
                else if (!met->second)
                    inheritsFromItself(source);
            }
        }
    } catch (const PlatformError& e) {
        throw PlatformError(e.number(), link + ": " + e.what());
    }
}

bool SpecHolder::memberNameTaken(const StoredObject& member, std::string_view name) const
{
    return dynamic_cast<const Specification*>(&member) && ownSpecs().contains(name);
}

void SpecHolder::renameMember(const StoredObject& member, const std::string& from, const std::string& to)
{
    if (dynamic_cast<const Specification*>(&member) && rare().specs) rare().specs->specs.rename(from, to);
}

void SpecHolder::attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project)
{
    StoredObject::attachTo(owner, project);
    const auto me = shared_from_this();
    for (const auto& spec : ownSpecs().items()) spec->attachTo(me, project);
}

std::shared_ptr<Specification> SpecHolder::effectiveSpec(std::string_view name) const
{
    if (auto own = ownSpecs().find(name)) return own;
    const Searching searching(*this);
    for (const auto& source : inheritanceSources())
        if (auto found = source->effectiveSpec(name)) return found;
    return nullptr;
}

std::shared_ptr<Specification> SpecHolder::childSpec(std::string_view name) const
{
    if (auto own = ownSpecs().find(name)) return own;
    if (const auto& members = rare().specs)
        if (auto known = members->proxies.unchanged(name)) return known;
    const auto origin = [&]() -> std::shared_ptr<Specification> {
        for (const auto& source : inheritanceSources())
            if (auto found = source->effectiveSpec(name)) return found;
        return nullptr;
    }();
    if (!origin) return nullptr;
    return specMembers().proxies.standingFor(name, origin, std::const_pointer_cast<StoredObject>(shared_from_this()));
}

SpecRef SpecHolder::Spec(std::string_view name) const
{
    auto [level, rest] = firstLevel(name);
    auto spec = childSpec(level);
    while (spec && !rest.empty()) {
        std::tie(level, rest) = firstLevel(rest);
        spec = spec->childSpec(level);
    }
    return spec;
}

std::vector<ObjectRef> SpecHolder::allSpecs() const
{
    const Searching searching(*this);
    std::vector<ObjectRef> all;
    std::unordered_map<std::string, bool> seen;
    for (const auto& own : ownSpecs().items()) {
        seen.emplace(own->Name(), true);
        all.push_back(own);
    }
    for (const auto& source : inheritanceSources())
        for (const auto& inherited : source->allSpecs()) {
            const auto name = inherited->Name();
            if (seen.emplace(name, true).second) all.push_back(childSpec(name));
        }
    return all;
}

void SpecHolder::addSpec(const std::shared_ptr<Specification>& spec, std::size_t at)
{
    specMembers().specs.insert(at, spec);
    spec->attachTo(shared_from_this(), storeProject());
}

std::shared_ptr<Specification> SpecHolder::createSpec(std::string_view name)
{
    if (ownSpecs().contains(name))
        throw PlatformError(err::NameInUse, SystemFullName() + " already has an attribute '" + std::string(name) + "'");
    auto spec = Specification::create(std::string(name));
    adopt(spec);
    return spec;
}

std::size_t SpecHolder::memberPosition(const StoredObject& member) const
{
    const auto* spec = dynamic_cast<const Specification*>(&member);
    return spec ? ownSpecs().position(*spec) : kLast;
}

void SpecHolder::removeMember(StoredObject& member)
{
    if (auto* spec = dynamic_cast<Specification*>(&member); spec && rare().specs) {
        auto& specs = rare().specs->specs;
        const auto at = specs.position(*spec);
        if (at < specs.size()) specs.erase(at);
    }
}

void SpecHolder::insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at)
{
    if (auto spec = std::dynamic_pointer_cast<Specification>(member)) addSpec(spec, at);
}

void SpecHolder::markDeleted(bool deleted)
{
    StoredObject::markDeleted(deleted);
    for (const auto& spec : ownSpecs().items()) spec->markDeleted(deleted);
}

// ---- Device ------------------------------------------------------------

Device::Device(std::string name, std::shared_ptr<StoreProject> project, bool root)
    : SpecHolder(std::move(name), std::move(project)),
      root_(root)
{
}

Device::Device(const std::shared_ptr<Device>& origin, const std::shared_ptr<StoredObject>& owner)
    : SpecHolder(origin, owner),
      cdevice_(origin)
{
}

Device::Device(const Device& other)
    : IBaseObject(other),
      SpecHolder(other),
      IDevice(other),
      cdevice_(other.CDevice() ? std::dynamic_pointer_cast<Device>(other.CDevice()) : nullptr),
      createOption_(other.CreateOption())
{
    for (const auto& child : other.children_.items()) children_.append(std::make_shared<Device>(*child));
}

std::shared_ptr<Device> Device::create(std::string name, std::shared_ptr<StoreProject> project, bool root)
{
    return std::make_shared<Device>(std::move(name), std::move(project), root);
}

void Device::attachTo(const std::shared_ptr<StoredObject>& owner, const std::shared_ptr<StoreProject>& project)
{
    SpecHolder::attachTo(owner, project);
    const auto me = shared_from_this();
    for (const auto& child : children_.items()) child->attachTo(me, project);
}

ObjectRef Device::Copy() const
{
    auto copy = std::make_shared<Device>(*this);
    copy->root_ = false;
    copy->attachTo(nullptr, storeProject());
    return copy;
}

bool Device::memberNameTaken(const StoredObject& member, std::string_view name) const
{
    if (dynamic_cast<const Device*>(&member)) return children_.contains(name);
    return SpecHolder::memberNameTaken(member, name);
}

void Device::renameMember(const StoredObject& member, const std::string& from, const std::string& to)
{
    if (dynamic_cast<const Device*>(&member)) return children_.rename(from, to);
    SpecHolder::renameMember(member, from, to);
}

void Device::copyStoredFields(const Device& from)
{
    copyTexts(from);
    folder_ = from.folder_;
    createOption_ = from.createOption_;
}

void Device::MakePersistent()
{
    if (!origin()) return;
    persistOwner();
    const auto parent = std::dynamic_pointer_cast<Device>(owner());
    if (!parent) throw PlatformError(err::InvalidCall, SystemFullName() + " has no owner to be stored in");
    auto me = self<Device>(*this);
    const auto origin = std::static_pointer_cast<Device>(this->origin());
    parent->write(
        [me, parent, origin] {
            me->copyStoredFields(origin->stored<Device>());
            me->setOrigin(nullptr);
            parent->addChild(me, kLast);
        },
        [me, parent, origin] {
            parent->removeMember(*me);
            me->setOrigin(origin);
        },
        Notice::joining(ChangeKind::Created, me));
}

SpecCollectionRef Device::SpecsByName() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Specs);
}
CollectionRef Device::Specs() const { return SpecsByName(); }
SpecCollectionRef Device::OwnElements() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Children);
}
CollectionRef Device::Devices() const { return OwnElements(); }
CollectionRef Device::Elements() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Elements);
}

DeviceRef Device::CDevice() const { return cdevice_; }

void Device::SetCDevice(const DeviceRef& base)
{
    auto next = std::dynamic_pointer_cast<Device>(base);
    if (base && !next)
        throw PlatformError(err::InvalidCall,
                            "the base object of " + SystemFullName() + " must be a device of this database");
    std::size_t depth = 0;
    for (auto step = next; step; step = step->cdevice_) {
        if (step.get() == this)
            throw PlatformError(err::CycleRefused, "linking " + SystemFullName() + " to " + base->SystemFullName() +
                                                       " would make it its own base object");
        if (++depth == kMaxInheritanceDepth) inheritsTooDeep(*this);
    }
    if (next) {
        const Tentative linked(cdevice_, next);
        next->refuseInheritanceCircles("linking " + SystemFullName() + " to " + base->SystemFullName() +
                                       " would close a circle");
    }
    assign(cdevice_, next, "CDevice");
    childProxies_.clear();
    forgetSpecProxies();
}

std::string Device::SystemFullName() const
{
    if (root_) {
        const auto project = storeProject();
        return (project ? project->Name() : std::string()) + ":" + name_;
    }
    const auto parent = ownerPath();
    return parent.empty() ? name_.str() : parent + "|" + name_.str();
}

std::vector<std::shared_ptr<SpecHolder>> Device::inheritanceSources() const
{
    if (!cdevice_) return {};
    return {cdevice_};
}

std::shared_ptr<Device> Device::effectiveChild(std::string_view name) const
{
    if (auto own = children_.find(name)) return own;
    const Searching searching(*this);
    return cdevice_ ? cdevice_->effectiveChild(name) : nullptr;
}

std::shared_ptr<Device> Device::childDevice(std::string_view name) const
{
    if (auto own = children_.find(name)) return own;
    if (auto known = childProxies_.unchanged(name)) return known;
    const auto origin = cdevice_ ? cdevice_->effectiveChild(name) : nullptr;
    if (!origin) return nullptr;
    return childProxies_.standingFor(name, origin, std::const_pointer_cast<StoredObject>(shared_from_this()));
}

std::vector<ObjectRef> Device::allChildren() const
{
    std::vector<ObjectRef> all(children_.items().begin(), children_.items().end());
    if (!cdevice_) return all;
    const Searching searching(*this);
    for (const auto& inherited : cdevice_->allChildren()) {
        const auto name = inherited->Name();
        if (!children_.contains(name)) all.push_back(childDevice(name));
    }
    return all;
}

void Device::addChild(const std::shared_ptr<Device>& child, std::size_t at)
{
    children_.insert(at, child);
    child->attachTo(shared_from_this(), storeProject());
}

std::shared_ptr<Device> Device::createChild(std::string_view name)
{
    if (children_.contains(name))
        throw PlatformError(err::NameInUse, SystemFullName() + " already has an element '" + std::string(name) + "'");
    auto child = Device::create(std::string(name), storeProject());
    adopt(child);
    return child;
}

std::size_t Device::memberPosition(const StoredObject& member) const
{
    if (const auto* child = dynamic_cast<const Device*>(&member)) return children_.position(*child);
    return SpecHolder::memberPosition(member);
}

void Device::removeMember(StoredObject& member)
{
    if (auto* child = dynamic_cast<Device*>(&member)) {
        const auto at = children_.position(*child);
        if (at < children_.size()) children_.erase(at);
        return;
    }
    SpecHolder::removeMember(member);
}

void Device::insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at)
{
    if (auto child = std::dynamic_pointer_cast<Device>(member)) return addChild(child, at);
    SpecHolder::insertMember(member, at);
}

void Device::markDeleted(bool deleted)
{
    SpecHolder::markDeleted(deleted);
    for (const auto& child : children_.items()) child->markDeleted(deleted);
}

void Device::releaseLinks()
{
    for (const auto& child : children_.items()) child->releaseLinks();
    cdevice_.reset();
    childProxies_.clear();
    forgetSpecProxies();
}

// ---- Specification -----------------------------------------------------

Specification::Specification(std::string name) : SpecHolder(std::move(name), nullptr) {}

Specification::Specification(const std::shared_ptr<Specification>& origin, const std::shared_ptr<StoredObject>& owner)
    : SpecHolder(origin, owner)
{
}

Specification::Specification(const Specification& other) : IBaseObject(other), SpecHolder(other), ISpecification(other)
{
    copyStoredFields(other.stored<Specification>());
}

std::shared_ptr<Specification> Specification::create(std::string name)
{
    return std::make_shared<Specification>(std::move(name));
}

void Specification::copyStoredFields(const Specification& from)
{
    value_ = from.value_;
    type_ = from.type_;
    locked_ = from.locked_;
    if (from.rare().extras || rare().extras) editExtras() = from.extras();
    copyTexts(from);
}

const AttributeExtras& Specification::extras() const
{
    static const AttributeExtras none;
    const auto& source = stored<Specification>().rare().extras;
    return source ? *source : none;
}

AttributeExtras& Specification::editExtras()
{
    auto& extras = editRare().extras;
    if (!extras) extras = std::make_unique<AttributeExtras>();
    return *extras;
}

ObjectRef Specification::Copy() const
{
    auto copy = std::make_shared<Specification>(*this);
    copy->attachTo(nullptr, storeProject());
    return copy;
}

void Specification::MakePersistent()
{
    if (!origin()) return;
    persistOwner();
    const auto parent = std::dynamic_pointer_cast<SpecHolder>(owner());
    if (!parent) throw PlatformError(err::InvalidCall, SystemFullName() + " has no owner to be stored in");
    auto me = self<Specification>(*this);
    const auto origin = std::static_pointer_cast<Specification>(this->origin());
    parent->write(
        [me, parent, origin] {
            me->copyStoredFields(origin->stored<Specification>());
            me->setOrigin(nullptr);
            parent->addSpec(me, kLast);
        },
        [me, parent, origin] {
            parent->removeMember(*me);
            me->setOrigin(origin);
        },
        Notice::joining(ChangeKind::Created, me));
}

std::shared_ptr<Device> Specification::device() const
{
    for (auto parent = owner(); parent; parent = parent->owner())
        if (auto found = std::dynamic_pointer_cast<Device>(parent)) return found;
    return nullptr;
}

std::string Specification::NestedName() const
{
    std::string nested = name_.str();
    for (auto parent = std::dynamic_pointer_cast<Specification>(owner()); parent;
         parent = std::dynamic_pointer_cast<Specification>(parent->owner()))
        nested = parent->name_.str() + "." + nested;
    return nested;
}

std::string Specification::SystemFullName() const
{
    const auto holder = device();
    return (holder ? holder->SystemFullName() : std::string()) + "#" + NestedName();
}

std::vector<std::shared_ptr<SpecHolder>> Specification::inheritanceSources() const
{
    std::vector<std::shared_ptr<SpecHolder>> sources;
    if (const auto& inherited = extras().inheritedChapter) sources.push_back(inherited);
    if (const auto parent = std::dynamic_pointer_cast<SpecHolder>(owner()))
        for (const auto& source : parent->inheritanceSources())
            if (auto counterpart = source->effectiveSpec(name_); counterpart && counterpart.get() != this)
                sources.push_back(counterpart);
    return sources;
}

std::string Specification::ValueType() const { return std::string(1, stored<Specification>().type_); }
void Specification::SetValueType(std::string_view type)
{
    if (type.size() != 1 || (type != "A" && type != "N" && type != "C"))
        throw PlatformError(err::InvalidCall, "value type of " + SystemFullName() + " must be A, N or C, not '" +
                                                  std::string(type) + "'");
    assign(type_, type[0], "ValueType");
}

std::string Specification::InheritMode() const { return extras().inheritMode; }
void Specification::SetInheritMode(std::string_view mode)
{
    assign(editExtras().inheritMode, std::string(mode), "InheritMode");
}

std::string Specification::Value() const
{
    const auto& source = stored<Specification>();
    if (source.type_ == 'C') {
        const auto& texts = extras().languageValues;
        return texts.empty() ? source.value_.str() : texts.front();
    }
    return source.value_.str();
}

void Specification::SetValue(std::string_view value)
{
    if (type_ == 'C') return SetLanguageValue(1, value);
    assign(value_, CompactText(value), "Value");
}

void Specification::SetLanguageValue(int languageIndex, std::string_view value)
{
    if (languageIndex < 1)
        throw PlatformError(err::SubscriptOutOfRange,
                            "language index " + std::to_string(languageIndex) + " is out of range");
    checkWritable();
    auto texts = editExtras().languageValues;
    if (texts.size() < static_cast<std::size_t>(languageIndex)) texts.resize(static_cast<std::size_t>(languageIndex));
    texts[static_cast<std::size_t>(languageIndex - 1)] = std::string(value);
    assign(editExtras().languageValues, texts, "Value");
}

std::string Specification::DisplayValue() const
{
    const auto value = Value();
    if (value.empty()) return value;
    const auto& table = extras().table;
    const auto row = table ? table->rowWithValue(value) : nullptr;
    if (row && !row->Description().empty()) return row->Description();
    return value;
}

ObjectRef Specification::StandardValue() const
{
    const auto& table = extras().table;
    return table ? table->rowWithValue(Value()) : nullptr;
}

ObjectRef Specification::StandardTable() const { return extras().table; }

void Specification::SetStandardTable(const ObjectRef& table)
{
    auto next = std::dynamic_pointer_cast<platform::StandardTable>(table);
    if (table && !next)
        throw PlatformError(err::InvalidCall, "the value list of " + SystemFullName() + " must be a standard table");
    assign(editExtras().table, next, "StandardTable");
}

SpecCollectionRef Specification::OwnSpecifications() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::OwnSpecs);
}

CollectionRef Specification::Specifications() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Specs);
}

std::string Specification::ControlType() const { return extras().controlType; }
void Specification::SetControlType(std::string_view type)
{
    assign(editExtras().controlType, std::string(type), "ControlType");
}
std::string Specification::ControlProperties() const { return extras().controlProperties; }
void Specification::SetControlProperties(std::string_view text)
{
    assign(editExtras().controlProperties, std::string(text), "ControlProperties");
}

DeviceRef Specification::LinkObject() const { return asDevice(extras().link); }
void Specification::SetLinkObject(const ObjectRef& object) { assign(editExtras().link, object, "LinkObject"); }

SpecRef Specification::InheritedChapter() const { return extras().inheritedChapter; }

void Specification::InheritFrom(const SpecRef& chapter)
{
    auto next = std::dynamic_pointer_cast<Specification>(chapter);
    if (chapter && !next)
        throw PlatformError(err::InvalidCall, SystemFullName() + " can inherit only from a chapter of this database");
    if (next) {
        const Tentative linked(editExtras().inheritedChapter, next);
        next->refuseInheritanceCircles(SystemFullName() + " cannot inherit from " + chapter->SystemFullName());
    }
    assign(editExtras().inheritedChapter, next, "InheritedChapter");
    forgetSpecProxies();
}

std::string Specification::GetXValue(int index) const
{
    const auto& values = extras().xValues;
    return index >= 0 && static_cast<std::size_t>(index) < values.size() ? values[static_cast<std::size_t>(index)]
                                                                         : std::string();
}

bool Specification::SetXValue(int index, std::string_view value)
{
    if (index < 0)
        throw PlatformError(err::SubscriptOutOfRange,
                            "indexed value " + std::to_string(index) + " of " + SystemFullName());
    checkWritable();
    auto values = editExtras().xValues;
    if (values.size() <= static_cast<std::size_t>(index)) values.resize(static_cast<std::size_t>(index) + 1);
    values[static_cast<std::size_t>(index)] = std::string(value);
    assign(editExtras().xValues, values, "XValue");
    return true;
}

int Specification::RowCount() const { return static_cast<int>(extras().xValues.size()); }
int Specification::LinkedCount() const { return extras().linkedCount; }
void Specification::setLinkedCount(int count) { editExtras().linkedCount = count; }

long Specification::AnswerMode() const { return extras().answerMode; }
void Specification::SetAnswerMode(long mode) { assign(editExtras().answerMode, mode, "AnswerMode"); }

std::string Specification::ValueOfDisplayText(std::string_view displayText) const
{
    if (const auto& table = extras().table)
        for (const auto& row : table->ownRows().items())
            if (row->Description() == displayText || row->Value() == displayText) return row->Value();
    return std::string(displayText);
}

bool Specification::IsValueLocked(int) const
{
    const auto project = storeProject();
    return stored<Specification>().locked_ || readOnly_ || (project && !project->writable());
}

// ---- Standard tables ---------------------------------------------------

StandardValue::StandardValue(std::string name) : StoredObject(std::move(name), nullptr) {}

ObjectRef StandardValue::Copy() const
{
    auto copy = std::make_shared<platform::StandardValue>(name_.str());
    copy->value_ = value_;
    copy->copyTexts(*this);
    copy->project_ = project_;
    return copy;
}

std::string StandardValue::SystemFullName() const { return ownerPath() + "#" + name_; }
void StandardValue::SetValue(std::string_view value) { assign(value_, CompactText(value), "Value"); }

StandardTable::StandardTable(std::string name, std::shared_ptr<StoreProject> project)
    : StoredObject(std::move(name), std::move(project))
{
}

std::shared_ptr<StandardTable> StandardTable::create(std::string name, std::shared_ptr<StoreProject> project)
{
    return std::make_shared<StandardTable>(std::move(name), std::move(project));
}

ObjectRef StandardTable::Copy() const
{
    auto copy = create(name_.str(), storeProject());
    copy->copyTexts(*this);
    for (const auto& row : rows_.items()) {
        auto rowCopy = copyOf<platform::StandardValue>(*row);
        copy->rows_.append(rowCopy);
        rowCopy->attachTo(copy, copy->storeProject());
    }
    for (const auto& table : tables_.items()) {
        auto tableCopy = copyOf<StandardTable>(*table);
        copy->tables_.append(tableCopy);
        tableCopy->attachTo(copy, copy->storeProject());
    }
    return copy;
}

std::string StandardTable::SystemFullName() const
{
    const auto parent = owner();
    // Top-level tables hang under the project's unnamed table.
    if (parent && parent->Name().empty() && !parent->owner()) {
        const auto project = storeProject();
        return (project ? project->Name() : std::string()) + ":" + name_;
    }
    const auto path = ownerPath();
    return path.empty() ? name_.str() : path + "|" + name_.str();
}

SpecCollectionRef StandardTable::Values() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Rows);
}

CollectionRef StandardTable::Children() const
{
    return std::make_shared<MemberCollection>(shared_from_this(), MemberCollection::Kind::Tables);
}

std::shared_ptr<platform::StandardValue> StandardTable::rowWithValue(std::string_view value) const
{
    for (const auto& row : rows_.items())
        if (row->Value() == value) return row;
    return nullptr;
}

std::shared_ptr<StandardTable> StandardTable::createChild(std::string_view name)
{
    if (tables_.contains(name))
        throw PlatformError(err::NameInUse, SystemFullName() + " already has a table '" + std::string(name) + "'");
    auto table = create(std::string(name), storeProject());
    adopt(table);
    return table;
}

std::shared_ptr<platform::StandardValue> StandardTable::createRow(std::string_view name)
{
    if (rows_.contains(name))
        throw PlatformError(err::NameInUse, SystemFullName() + " already has a row '" + std::string(name) + "'");
    auto row = std::make_shared<platform::StandardValue>(std::string(name));
    adopt(row);
    return row;
}

std::size_t StandardTable::memberPosition(const StoredObject& member) const
{
    if (const auto* row = dynamic_cast<const platform::StandardValue*>(&member)) return rows_.position(*row);
    if (const auto* table = dynamic_cast<const StandardTable*>(&member)) return tables_.position(*table);
    return kLast;
}

void StandardTable::removeMember(StoredObject& member)
{
    if (auto* row = dynamic_cast<platform::StandardValue*>(&member)) {
        const auto at = rows_.position(*row);
        if (at < rows_.size()) rows_.erase(at);
    } else if (auto* table = dynamic_cast<StandardTable*>(&member)) {
        const auto at = tables_.position(*table);
        if (at < tables_.size()) tables_.erase(at);
    }
}

void StandardTable::insertMember(const std::shared_ptr<StoredObject>& member, std::size_t at)
{
    if (auto row = std::dynamic_pointer_cast<platform::StandardValue>(member))
        rows_.insert(at, row);
    else if (auto table = std::dynamic_pointer_cast<StandardTable>(member))
        tables_.insert(at, table);
    else
        return;
    member->attachTo(shared_from_this(), storeProject());
}

bool StandardTable::memberNameTaken(const StoredObject& member, std::string_view name) const
{
    return dynamic_cast<const platform::StandardValue*>(&member) ? rows_.contains(name) : tables_.contains(name);
}

void StandardTable::renameMember(const StoredObject& member, const std::string& from, const std::string& to)
{
    if (dynamic_cast<const platform::StandardValue*>(&member))
        rows_.rename(from, to);
    else
        tables_.rename(from, to);
}

void StandardTable::markDeleted(bool deleted)
{
    StoredObject::markDeleted(deleted);
    for (const auto& row : rows_.items()) row->markDeleted(deleted);
    for (const auto& table : tables_.items()) table->markDeleted(deleted);
}

}  // namespace pipespec::platform
