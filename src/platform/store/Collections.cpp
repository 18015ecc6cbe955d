#include "platform/store/Collections.h"

#include "platform/store/Database.h"

#include <algorithm>
#include <charconv>

namespace pipespec::platform {

namespace {
PlatformError outOfRange(int index, int count)
{
    return PlatformError(err::SubscriptOutOfRange,
                         "Subscript out of range: item " + std::to_string(index) + " of " + std::to_string(count));
}

template <class T>
std::shared_ptr<T> memberOf(const ObjectRef& object, std::string_view what)
{
    auto member = std::dynamic_pointer_cast<T>(object);
    if (!member)
        throw PlatformError(err::TypeMismatch, "the object cannot be added to a collection of " + std::string(what));
    if (member->owner() || member->IsDeleted())
        throw PlatformError(err::InvalidCall,
                            member->SystemFullName() + " already belongs elsewhere; detach or copy it first");
    return member;
}

// "001" -> 1 with width 3; a base that is no number counts from 1 behind it.
struct NumberedName {
    std::string prefix;
    long number = 1;
    std::size_t width = 0;

    explicit NumberedName(std::string_view base)
    {
        auto digits = base.size();
        while (digits > 0 && base[digits - 1] >= '0' && base[digits - 1] <= '9') --digits;
        prefix = std::string(base.substr(0, digits));
        const auto tail = base.substr(digits);
        width = tail.size();
        if (!tail.empty()) std::from_chars(tail.data(), tail.data() + tail.size(), number);
    }

    std::string format(long n) const
    {
        auto text = std::to_string(n);
        if (text.size() < width) text.insert(0, width - text.size(), '0');
        return prefix + text;
    }
};
}  // namespace

// ---- FreeCollection ----------------------------------------------------

ObjectRef FreeCollection::Item(int index) const
{
    if (index < 1 || index > Count()) throw outOfRange(index, Count());
    return items_[static_cast<std::size_t>(index - 1)];
}

ObjectRef FreeCollection::Item(std::string_view name) const
{
    for (const auto& item : items_)
        if (item && item->Name() == name) return item;
    return nullptr;
}

int FreeCollection::IndexOf(const ObjectRef& object) const
{
    for (; indexed_ < items_.size(); ++indexed_)
        firstPosition_.emplace(items_[indexed_].get(), static_cast<int>(indexed_) + 1);
    const auto found = firstPosition_.find(object.get());
    return found == firstPosition_.end() ? -1 : found->second;
}

void FreeCollection::Add(const ObjectRef& object) { items_.push_back(object); }

ObjectRef FreeCollection::Detach(const ObjectRef& object)
{
    const int at = IndexOf(object);
    if (at < 0) return nullptr;
    items_.erase(items_.begin() + at - 1);
    firstPosition_.clear();
    indexed_ = 0;
    return object;
}

std::string FreeCollection::ItemName(std::string_view base) const
{
    const NumberedName numbered(base);
    for (long n = numbered.number;; ++n)
        if (!Item(numbered.format(n))) return numbered.format(n);
}

ObjectRef FreeCollection::CreateNewWithName(std::string_view)
{
    throw PlatformError(err::NotSupported, "a free collection cannot create objects");
}

// ---- MemberCollection --------------------------------------------------

MemberCollection::MemberCollection(std::shared_ptr<const StoredObject> owner, Kind kind)
    : owner_(std::const_pointer_cast<StoredObject>(std::move(owner))),
      kind_(kind)
{
}

StoredObject& MemberCollection::owner() const { return *owner_; }

const std::vector<ObjectRef>& MemberCollection::snapshot() const
{
    if (!snapshot_ || snapshotAt_ != changeCount()) {
        if (kind_ == Kind::Elements)
            snapshot_ = static_cast<const Device&>(owner()).allChildren();
        else
            snapshot_ = static_cast<const SpecHolder&>(owner()).allSpecs();
        snapshotAt_ = changeCount();
    }
    return *snapshot_;
}

int MemberCollection::Count() const
{
    switch (kind_) {
    case Kind::Children: return static_cast<int>(static_cast<const Device&>(owner()).ownChildren().size());
    case Kind::OwnSpecs: return static_cast<int>(static_cast<const SpecHolder&>(owner()).ownSpecs().size());
    case Kind::Tables: return static_cast<int>(static_cast<const StandardTable&>(owner()).ownTables().size());
    case Kind::Rows: return static_cast<int>(static_cast<const StandardTable&>(owner()).ownRows().size());
    case Kind::Elements:
    case Kind::Specs: return static_cast<int>(snapshot().size());
    }
    return 0;
}

ObjectRef MemberCollection::Item(int index) const
{
    const int count = Count();
    if (index < 1 || index > count) throw outOfRange(index, count);
    const auto at = static_cast<std::size_t>(index - 1);
    switch (kind_) {
    case Kind::Children: return static_cast<const Device&>(owner()).ownChildren().items()[at];
    case Kind::OwnSpecs: return static_cast<const SpecHolder&>(owner()).ownSpecs().items()[at];
    case Kind::Tables: return static_cast<const StandardTable&>(owner()).ownTables().items()[at];
    case Kind::Rows: return static_cast<const StandardTable&>(owner()).ownRows().items()[at];
    case Kind::Elements:
    case Kind::Specs: return snapshot()[at];
    }
    return nullptr;
}

ObjectRef MemberCollection::Item(std::string_view name) const
{
    switch (kind_) {
    case Kind::Children: return static_cast<const Device&>(owner()).ownChildren().find(name);
    case Kind::Elements: return static_cast<const Device&>(owner()).childDevice(name);
    case Kind::OwnSpecs: return static_cast<const SpecHolder&>(owner()).ownSpecs().find(name);
    case Kind::Specs: return static_cast<const SpecHolder&>(owner()).childSpec(name);
    case Kind::Tables: return static_cast<const StandardTable&>(owner()).child(name);
    case Kind::Rows: return static_cast<const StandardTable&>(owner()).row(name);
    }
    return nullptr;
}

int MemberCollection::IndexOf(const ObjectRef& object) const
{
    if (!object) return -1;
    for (int i = 1; i <= Count(); ++i)
        if (Item(i) == object) return i;
    return -1;
}

bool MemberCollection::nameTaken(std::string_view name) const
{
    switch (kind_) {
    case Kind::Children:
    case Kind::Elements: return static_cast<const Device&>(owner()).ownChildren().contains(name);
    case Kind::OwnSpecs:
    case Kind::Specs: return static_cast<const SpecHolder&>(owner()).ownSpecs().contains(name);
    case Kind::Tables: return static_cast<const StandardTable&>(owner()).child(name) != nullptr;
    case Kind::Rows: return static_cast<const StandardTable&>(owner()).row(name) != nullptr;
    }
    return false;
}

ObjectRef MemberCollection::CreateNewWithName(std::string_view name)
{
    switch (kind_) {
    case Kind::Children:
    case Kind::Elements: return static_cast<Device&>(owner()).createChild(name);
    case Kind::OwnSpecs:
    case Kind::Specs: return static_cast<SpecHolder&>(owner()).createSpec(name);
    case Kind::Tables: return static_cast<StandardTable&>(owner()).createChild(name);
    case Kind::Rows: return static_cast<StandardTable&>(owner()).createRow(name);
    }
    return nullptr;
}

void MemberCollection::AddObject(const ObjectRef& object)
{
    if (kind_ == Kind::Tables || kind_ == Kind::Rows)
        throw PlatformError(err::NotSupported, "standard tables take new rows and tables only by CreateNewWithName");
    const auto name = must(object).Name();
    if (nameTaken(name))
        throw PlatformError(err::NameInUse, owner().SystemFullName() + " already has a member '" + name + "'");
    std::shared_ptr<StoredObject> member;
    if (kind_ == Kind::Children || kind_ == Kind::Elements)
        member = memberOf<Device>(object, "devices");
    else
        member = memberOf<Specification>(object, "attributes");
    for (auto above = owner_; above; above = above->owner())
        if (above == member)
            throw PlatformError(err::CycleRefused, member->SystemFullName() + " cannot be put below itself");
    const auto parent = owner_;
    owner().write([parent, member] { parent->insertMember(member, kLast); },
                  [parent, member] {
                      parent->removeMember(*member);
                      member->detach();
                  },
                  Notice::joining(ChangeKind::Moved, member));
}

ObjectRef MemberCollection::Detach(const ObjectRef& object)
{
    auto member = std::dynamic_pointer_cast<StoredObject>(object);
    if (!member || member->owner() != owner_) return nullptr;
    if (kind_ == Kind::Tables || kind_ == Kind::Rows)
        throw PlatformError(err::NotSupported, "rows and tables cannot be detached");
    const auto parent = owner_;
    const auto at = parent->memberPosition(*member);
    owner().write(
        [parent, member] {
            parent->removeMember(*member);
            member->detach();
        },
        [parent, member, at] { parent->insertMember(member, at); }, Notice::leaving(ChangeKind::Moved, member));
    return object;
}

std::string MemberCollection::ItemName(std::string_view base) const
{
    // Running numbers go on from the last one handed out, so that a long
    // series of new members costs one look-up each; a number freed by a
    // deletion below that is not handed out again.
    const NumberedName numbered(base);
    long start = numbered.number;
    long* cursor = nullptr;
    if (kind_ == Kind::Children || kind_ == Kind::Elements) {
        cursor = &static_cast<const Device&>(owner()).nameCursor(numbered.format(0));
        start = std::max(start, *cursor);
    }
    long n = start;
    while (nameTaken(numbered.format(n))) ++n;
    if (cursor) *cursor = n;
    return numbered.format(n);
}

// ---- LanguageObject ----------------------------------------------------

LanguageObject::LanguageObject(std::string name, std::shared_ptr<StoreProject> project)
    : StoredObject(std::move(name), std::move(project))
{
}

std::string LanguageObject::SystemFullName() const
{
    const auto project = storeProject();
    return (project ? project->Name() : std::string()) + ":@Language|" + name_.str();
}

}  // namespace pipespec::platform
