#include "platform/store/Database.h"

#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "platform/PipeSpecHelper.h"
#include "platform/store/Collections.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <utility>

namespace pipespec::platform {

namespace {
std::string upper(std::string_view text)
{
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return out;
}

// The segments of a "|" path, one at a time.
class PathWalk {
public:
    explicit PathWalk(std::string_view path) : rest_(path) {}
    bool next(std::string_view& segment)
    {
        if (done_) return false;
        const auto bar = rest_.find('|');
        segment = rest_.substr(0, bar);
        if (bar == std::string_view::npos)
            done_ = true;
        else
            rest_ = rest_.substr(bar + 1);
        return true;
    }

private:
    std::string_view rest_;
    bool done_ = false;
};

// Devices take their children, own or inherited; tables their sub-tables, then their rows.
ObjectRef walk(ObjectRef from, PathWalk& path)
{
    std::string_view segment;
    while (from && path.next(segment)) {
        if (const auto device = std::dynamic_pointer_cast<Device>(from)) {
            from = device->childDevice(segment);
        } else if (const auto table = std::dynamic_pointer_cast<StandardTable>(from)) {
            ObjectRef next = table->child(segment);
            from = next ? next : table->row(segment);
        } else {
            return nullptr;
        }
    }
    return from;
}

// The current project's clipboard answers 0 ("can paste") for devices onto a
// writable device.
class Clipboard final : public IClipboard {
public:
    explicit Clipboard(CollectionRef objects) : objects_(std::move(objects)) {}
    int CanPaste(const ObjectRef& target) const override
    {
        const auto device = std::dynamic_pointer_cast<Device>(target);
        const auto project = device ? device->storeProject() : nullptr;
        if (!project || !project->writable() || device->ReadOnly()) return 1;
        for (int i = 1; i <= objects_->Count(); ++i)
            if (asDevice(objects_->Item(i))) return 0;
        return 1;
    }

private:
    CollectionRef objects_;
};

// StdValues3D makes the norm dimensions of a project known to the workset.
class LateBoundTools final : public ILateBoundTools {
public:
    explicit LateBoundTools(std::weak_ptr<StoreWorkset> workset) : workset_(std::move(workset)) {}
    ObjectRef StdValues3D(const ProjectRef& project) override
    {
        const auto store = std::dynamic_pointer_cast<StoreProject>(project);
        const auto workset = workset_.lock();
        if (!store || !workset) return nullptr;
        auto& globals = *workset->globals();
        if (globals.getOption(option::NormDimensions).IsEmpty())
            for (auto p = store; p; p = std::dynamic_pointer_cast<StoreProject>(p->BaseProject()))
                if (auto norm = p->option(option::NormDimensions); !norm.IsEmpty()) {
                    globals.setoption(option::NormDimensions, norm);
                    break;
                }
        return store->ObjectByPath("@3D", 1);
    }

private:
    std::weak_ptr<StoreWorkset> workset_;
};
}  // namespace

namespace {
std::atomic<std::uint64_t> nextNumber{1};
}

std::uint64_t nextUniqueNumber() { return nextNumber++; }

void reserveUniqueNumbers(std::uint64_t used)
{
    auto next = nextNumber.load();
    while (next <= used && !nextNumber.compare_exchange_weak(next, used + 1)) {}
}

namespace {
std::atomic<std::uint64_t> changesSinceStart{0};
}

std::uint64_t changeCount() { return changesSinceStart; }
void countChange() { ++changesSinceStart; }

// ---- UndoState ---------------------------------------------------------

void UndoState::record(std::uint64_t action, std::function<void()> redo, std::function<void()> undo)
{
    steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_), steps_.end());
    if (!open_ || steps_.empty() || steps_.back().action != action) steps_.push_back({action, {}});
    done_ = steps_.size();
    open_ = true;
    steps_.back().changes.push_back({std::move(redo), std::move(undo)});
}

void UndoState::Undo()
{
    if (done_ == 0) return;
    replay(steps_[done_ - 1], true);
    --done_;
}

void UndoState::Redo()
{
    if (done_ == steps_.size()) return;
    replay(steps_[done_], false);
    ++done_;
}

std::size_t UndoState::size() const
{
    std::size_t changes = 0;
    for (std::size_t i = 0; i < done_; ++i) changes += steps_[i].changes.size();
    return changes;
}

void UndoState::replay(const Step& step, bool backward)
{
    open_ = false;
    const auto& changes = step.changes;
    const auto count = changes.size();
    // The i-th change taken, newest first backward.
    const auto change = [&](std::size_t i) -> const Change& { return changes[backward ? count - 1 - i : i]; };
    const auto run = [&] {
        std::size_t taken = 0;
        try {
            for (; taken < count; ++taken) backward ? change(taken).undo() : change(taken).redo();
        } catch (...) {
            while (taken > 0) {
                --taken;
                backward ? change(taken).redo() : change(taken).undo();
            }
            throw;
        }
    };
    if (const auto workset = workset_.lock())
        workset->replay(run);
    else
        run();
}

// ---- StoreProject ------------------------------------------------------

StoreProject::StoreProject(std::string name, std::weak_ptr<Database> database)
    : name_(std::move(name)),
      database_(std::move(database))
{
}

void StoreProject::init() { tableRoot_ = StandardTable::create("", shared_from_this()); }

ProjectRef StoreProject::SystemProject() const
{
    const auto db = database();
    return db ? db->systemProject() : nullptr;
}

WorksetRef StoreProject::Workset() const
{
    const auto db = database();
    return db ? db->workset() : nullptr;
}

CollectionRef StoreProject::StandardTables() const { return tableRoot_->Children(); }

CollectionRef StoreProject::Languages() const
{
    auto list = std::make_shared<FreeCollection>();
    for (const auto& language : languages_) list->Add(language);
    return list;
}

void StoreProject::addLanguage(const std::string& name)
{
    languages_.push_back(std::make_shared<LanguageObject>(name, shared_from_this()));
}

std::shared_ptr<Device> StoreProject::addRoot(const std::string& name)
{
    if (roots_.contains(name)) throw PlatformError(err::NameInUse, name_ + " already has a root '" + name + "'");
    auto root = Device::create(name, shared_from_this(), true);
    roots_.append(root);
    return root;
}

Variant StoreProject::option(int number) const
{
    const auto found = options_.find(number);
    return found == options_.end() ? Variant() : found->second;
}

ObjectRef StoreProject::ownObjectByPath(std::string_view path) const
{
    PathWalk first(path);
    std::string_view rootName;
    if (!first.next(rootName)) return nullptr;
    if (const auto root = roots_.find(rootName)) {
        PathWalk rest = first;
        if (auto found = walk(root, rest)) return found;
    }
    PathWalk fromTables(path);
    return walk(tableRoot_, fromTables);
}

ObjectRef StoreProject::ObjectByPath(std::string_view path, int) const
{
    for (const StoreProject* project = this; project; project = project->base_.get())
        if (auto found = project->ownObjectByPath(path)) return found;
    return nullptr;
}

ObjectRef StoreProject::ObjectByFullName(const ProjectRef& project, std::string_view fullName) const
{
    const auto db = database();
    const auto* within = dynamic_cast<const StoreProject*>(project.get());
    return db ? db->objectByFullName(fullName, within ? within : this) : nullptr;
}

// ---- Globals, AppGlobals -----------------------------------------------

Variant Globals::getOption(int number) const
{
    auto& value = options_[number];
    // The cache of pipe-class entries is always a map, so callers can drop an entry.
    if (number == option::PipeClassCache && !value.map()) value = std::make_shared<VariantMap>();
    return value;
}

Variant Globals::GetOptionFromProject(const ProjectRef& project, int number) const
{
    const auto store = std::dynamic_pointer_cast<StoreProject>(project);
    return store ? store->option(number) : Variant();
}

bool AppGlobals::Exist(std::string_view name) const
{
    const auto key = upper(name);
    return values_.count(key) != 0 || (key == "NAVIGATOR" && navigator_) || key == "TUBRIXDESIGNERRUN";
}

void AppGlobals::setValue(const std::string& name, Variant value) { values_[upper(name)] = std::move(value); }

Variant AppGlobals::value(std::string_view name) const
{
    const auto found = values_.find(upper(name));
    return found == values_.end() ? Variant() : found->second;
}

// ---- StoreWorkset ------------------------------------------------------

void StoreWorkset::setClipboardObjects(const std::vector<ObjectRef>& objects)
{
    auto copied = std::make_shared<FreeCollection>();
    for (const auto& object : objects) copied->Add(object);
    clipboard_ = copied;
    clipboardService_ = std::make_shared<platform::Clipboard>(clipboard_);
}

StoreWorkset::StoreWorkset(std::weak_ptr<Database> database)
    : database_(database),
      globals_(std::make_shared<platform::Globals>(database)),
      appGlobals_(std::make_shared<platform::AppGlobals>()),
      clipboard_(std::make_shared<FreeCollection>()),
      clipboardService_(std::make_shared<platform::Clipboard>(clipboard_))
{
}

void StoreWorkset::SetCurrentProject(const ProjectRef& project)
{
    auto store = std::dynamic_pointer_cast<StoreProject>(project);
    if (project && !store)
        throw PlatformError(err::InvalidCall, "the current project must be a project of this database");
    current_ = std::move(store);
    if (!tools_) tools_ = std::make_shared<platform::LateBoundTools>(weak_from_this());
}

CollectionRef StoreWorkset::NewCollection() const { return std::make_shared<FreeCollection>(); }

std::shared_ptr<IPipeSpecHelper> StoreWorkset::NewPipeSpecHelper(std::shared_ptr<const INameTable> names) const
{
    return std::make_shared<PipeSpecHelper>(std::move(names));
}

DatabaseState& StoreWorkset::State()
{
    const auto database = database_.lock();
    if (!database) throw PlatformError(err::ObjectNotSet, "the database of this workset is closed");
    return database->state();
}

void StoreWorkset::SetCurrentUndoState(const UndoStateRef& state)
{
    auto undo = std::dynamic_pointer_cast<UndoState>(state);
    // Its steps hold this database's objects, and its replays stop this workset recording.
    if (state && (!undo || undo->workset().get() != this))
        throw PlatformError(err::InvalidCall, "an undo state must come from this workset");
    undo_ = std::move(undo);
}

void StoreWorkset::BeginAction()
{
    if (depth_++ == 0) ++action_;
}

void StoreWorkset::EndAction()
{
    if (depth_ == 0) throw PlatformError(err::InvalidCall, "an action ends that has not begun");
    if (--depth_ > 0) return;
    ++action_;
    deliver(std::exchange(pending_, {}));
}

void StoreWorkset::AddChangeObserver(const std::shared_ptr<IChangeObserver>& observer)
{
    if (observer) observers_.push_back(observer);
}

void StoreWorkset::announce(ChangeNotice notice)
{
    pending_.push_back(std::move(notice));
    if (depth_ == 0) deliver(std::exchange(pending_, {}));
}

void StoreWorkset::deliver(const std::vector<ChangeNotice>& notices)
{
    if (notices.empty()) return;
    // The observers as they stand now: one that comes or goes while they
    // hear, or a change an observer makes, does not disturb this round.
    std::vector<std::shared_ptr<IChangeObserver>> hearing;
    std::erase_if(observers_, [&hearing](const std::weak_ptr<IChangeObserver>& weak) {
        auto observer = weak.lock();
        if (!observer) return true;
        hearing.push_back(std::move(observer));
        return false;
    });
    for (const auto& observer : hearing) {
        observer->BeginChanges();
        for (const auto& notice : notices) observer->ObjectChanged(notice);
        observer->EndChanges();
    }
}

void StoreWorkset::replay(const std::function<void()>& changes)
{
    const ActionScope action(*this);
    // Restored before the action ends, so that what observers change is recorded.
    struct Replaying {
        bool& flag;
        const bool before = std::exchange(flag, true);
        ~Replaying() { flag = before; }
    } const replaying{replaying_};
    changes();
}

double StoreWorkset::ParseNumber(std::string_view text) const
{
    auto normal = text::Trim(text);
    std::replace(normal.begin(), normal.end(), ',', '.');
    if (!text::IsNumeric(normal)) throw PlatformError(err::TypeMismatch, "'" + std::string(text) + "' is not a number");
    return text::CDbl(normal);
}

// ---- Database ----------------------------------------------------------

std::shared_ptr<Database> Database::create()
{
    auto db = std::shared_ptr<Database>(new Database());
    db->workset_ = std::make_shared<StoreWorkset>(db);
    return db;
}

Database::~Database()
{
    for (const auto& project : projects_)
        for (const auto& root : project->roots().items()) root->releaseLinks();
}

std::shared_ptr<StoreProject> Database::addProject(const std::string& name, std::shared_ptr<StoreProject> base)
{
    if (project(name)) throw PlatformError(err::NameInUse, "the database already has a project '" + name + "'");
    auto project = std::make_shared<StoreProject>(name, weak_from_this());
    project->init();
    project->setBase(std::move(base));
    projects_.push_back(project);
    if (!system_) system_ = project;
    if (!workset_->CurrentProject()) workset_->SetCurrentProject(project);
    return project;
}

std::shared_ptr<StoreProject> Database::project(std::string_view name) const
{
    for (const auto& project : projects_)
        if (project->Name() == name) return project;
    return nullptr;
}

void Database::trackChanges(bool on)
{
    tracking_ = on;
    if (!on) changes_.clear();
}

void Database::noteChange(std::shared_ptr<StoredObject> object)
{
    if (tracking_) changes_.insert(std::move(object));
}

ObjectRef Database::objectByFullName(std::string_view fullName, const StoreProject* within) const
{
    const auto colon = fullName.find(':');
    const auto hash = fullName.find('#');
    if (colon != std::string_view::npos && (hash == std::string_view::npos || colon < hash)) {
        within = project(fullName.substr(0, colon)).get();
        fullName = fullName.substr(colon + 1);
    }
    if (!within) return nullptr;
    const auto path = fullName.substr(0, fullName.find('#'));
    auto object = within->ownObjectByPath(path);
    if (!object || hash == std::string_view::npos) return object;
    const auto nested = fullName.substr(fullName.find('#') + 1);
    if (const auto table = std::dynamic_pointer_cast<StandardTable>(object)) return table->row(nested);
    return object->Spec(nested);
}

std::vector<std::shared_ptr<StoreProject>> projectChain(const ProjectRef& project)
{
    std::vector<std::shared_ptr<StoreProject>> chain;
    for (auto p = std::dynamic_pointer_cast<StoreProject>(project); p;
         p = std::dynamic_pointer_cast<StoreProject>(p->BaseProject()))
        chain.push_back(p);
    return chain;
}

}  // namespace pipespec::platform
