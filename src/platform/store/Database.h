#pragma once

// Projects, the workset with its options, undo states, and the database that
// owns them all.

#include "objectmodel/DatabaseState.h"
#include "objectmodel/ObjectModel.h"
#include "platform/store/Objects.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace pipespec::platform {

class Database;
class StoreWorkset;

// The changes recorded while it is the workset's current undo state, as a
// history of steps. The changes of one user action (one outermost bracket of
// the workset) form a step, also when the action makes another state current
// for a while; changes outside any bracket join the newest step until a
// bracket or a replay ends it. Undo takes back the newest step, Redo puts
// back the step undone last, and a change recorded after an Undo drops what
// could be redone. A replay is all or nothing: when a change of the step
// fails, the changes already replayed are taken back and the error passes on.
class UndoState final : public IUndoState {
public:
    explicit UndoState(std::weak_ptr<StoreWorkset> workset) : workset_(std::move(workset)) {}
    // A change made within the workset's action number `action`.
    void record(std::uint64_t action, std::function<void()> redo, std::function<void()> undo);
    void Undo();
    void Redo();
    std::size_t undoSteps() const { return done_; }
    std::size_t redoSteps() const { return steps_.size() - done_; }
    // How many changes the steps that Undo can take back hold.
    std::size_t size() const;
    // The workset that made it, which alone takes it as its current state.
    std::shared_ptr<StoreWorkset> workset() const { return workset_.lock(); }

private:
    struct Change {
        std::function<void()> redo;
        std::function<void()> undo;
    };
    struct Step {
        std::uint64_t action = 0;
        std::vector<Change> changes;
    };
    void replay(const Step& step, bool backward);

    std::weak_ptr<StoreWorkset> workset_;
    std::vector<Step> steps_;
    std::size_t done_ = 0;  // steps_ before this can be undone, the others redone
    bool open_ = false;     // the newest step takes further changes of its action
};

class StoreProject final : public IProject, public std::enable_shared_from_this<StoreProject> {
public:
    StoreProject(std::string name, std::weak_ptr<Database> database);
    // Made by Database::addProject, which finishes the setup.
    void init();

    std::string Name() const override { return name_; }
    ProjectRef SystemProject() const override;
    ProjectRef BaseProject() const override { return base_; }
    CollectionRef StandardTables() const override;
    CollectionRef Languages() const override;
    ObjectRef ObjectByFullName(const ProjectRef& project, std::string_view fullName) const override;
    int AccessRights() const override { return accessRights_; }
    ObjectRef ObjectByPath(std::string_view path, int mode) const override;
    WorksetRef Workset() const override;

    void setBase(std::shared_ptr<StoreProject> base) { base_ = std::move(base); }
    void setAccessRights(int rights) { accessRights_ = rights; }
    bool writable() const { return (accessRights_ & 1) != 0; }
    void addLanguage(const std::string& name);
    std::shared_ptr<Device> addRoot(const std::string& name);
    std::shared_ptr<Device> root(std::string_view name) const { return roots_.find(name); }
    // Keeps the roots' index right when a root is renamed; before it takes the name.
    void renameRoot(std::string_view from, std::string_view to) { roots_.rename(from, to); }
    const NamedChildren<Device>& roots() const { return roots_; }
    // Top-level standard tables hang under one unnamed table of the project.
    const std::shared_ptr<StandardTable>& tableRoot() const { return tableRoot_; }
    const std::vector<std::shared_ptr<StoredObject>>& languages() const { return languages_; }
    void setOption(int number, Variant value) { options_[number] = std::move(value); }
    Variant option(int number) const;
    const std::map<int, Variant>& options() const { return options_; }
    std::shared_ptr<Database> database() const { return database_.lock(); }

    // The object of this project only, without looking into base projects.
    ObjectRef ownObjectByPath(std::string_view path) const;

private:
    std::string name_;
    std::weak_ptr<Database> database_;
    std::shared_ptr<StoreProject> base_;
    int accessRights_ = 1;
    NamedChildren<Device> roots_;
    std::shared_ptr<StandardTable> tableRoot_;
    std::vector<std::shared_ptr<StoredObject>> languages_;
    std::map<int, Variant> options_;
};

class Globals final : public IGlobals {
public:
    explicit Globals(std::weak_ptr<Database> database) : database_(std::move(database)) {}
    Variant getOption(int number) const override;
    void setoption(int number, const Variant& value) override { options_[number] = value; }
    DeviceRef PipeClassRootCDevice() const override { return pipeClassRoot_; }
    Variant GetOptionFromProject(const ProjectRef& project, int number) const override;

    void setPipeClassRootCDevice(DeviceRef root) { pipeClassRoot_ = std::move(root); }
    const std::map<int, Variant>& options() const { return options_; }

private:
    std::weak_ptr<Database> database_;
    mutable std::map<int, Variant> options_;
    DeviceRef pipeClassRoot_;
};

class AppGlobals final : public IAppGlobals {
public:
    bool Exist(std::string_view name) const override;
    bool TubrixDesignerRun() const override { return designerRun_; }
    std::string TubrixDesignerRunClass() const override { return designerRunClass_; }
    void SetTubrixDesignerRunClass(std::string_view pipeClassName) override { designerRunClass_ = pipeClassName; }
    std::shared_ptr<INavigator> Navigator() const override { return navigator_; }

    void setTubrixDesignerRun(bool running) { designerRun_ = running; }
    void setNavigator(std::shared_ptr<INavigator> navigator) { navigator_ = std::move(navigator); }
    void setValue(const std::string& name, Variant value);
    Variant value(std::string_view name) const;
    const std::map<std::string, Variant>& values() const { return values_; }

private:
    bool designerRun_ = false;
    std::string designerRunClass_;
    std::shared_ptr<INavigator> navigator_;
    std::map<std::string, Variant> values_;  // by upper-case name
};

class StoreWorkset final : public IWorkset, public std::enable_shared_from_this<StoreWorkset> {
public:
    explicit StoreWorkset(std::weak_ptr<Database> database);

    CollectionRef ClipboardObjects() const override { return clipboard_; }
    Variant DragObject() const override { return drag_; }
    std::shared_ptr<ILateBoundTools> LateBoundTools() const override { return tools_; }
    ProjectRef CurrentProject() const override { return current_; }
    void SetCurrentProject(const ProjectRef& project) override;
    CollectionRef NewCollection() const override;
    std::shared_ptr<IPipeSpecHelper> NewPipeSpecHelper(std::shared_ptr<const INameTable> names) const override;
    std::shared_ptr<IAppGlobals> AppGlobals() const override { return appGlobals_; }
    std::shared_ptr<IGlobals> Globals() const override { return globals_; }
    UndoStateRef CurrentUndoState() const override { return undo_; }
    void SetCurrentUndoState(const UndoStateRef& state) override;
    std::shared_ptr<IClipboard> Clipboard() const override { return clipboardService_; }
    double ParseNumber(std::string_view text) const override;
    DatabaseState& State() override;

    void BeginAction() override;
    void EndAction() override;
    void AddChangeObserver(const std::shared_ptr<IChangeObserver>& observer) override;

    std::shared_ptr<UndoState> NewUndoState() { return std::make_shared<UndoState>(weak_from_this()); }
    // The write gate's side: a change goes into the current undo state, which
    // records nothing while a replay runs, and is told to observers, if any.
    bool recording() const { return undo_ && !replaying_; }
    void record(std::function<void()> redo, std::function<void()> undo)
    {
        undo_->record(action_, std::move(redo), std::move(undo));
    }
    bool listened() const { return !observers_.empty(); }
    void announce(ChangeNotice notice);
    // Runs an undo state's replay as one action that is recorded nowhere.
    void replay(const std::function<void()>& changes);

    void setDragObject(Variant object) { drag_ = std::move(object); }
    // What Edit → Copy put on the clipboard, replacing what was there.
    void setClipboardObjects(const std::vector<ObjectRef>& objects);
    std::shared_ptr<platform::Globals> globals() const { return globals_; }
    std::shared_ptr<platform::AppGlobals> appGlobals() const { return appGlobals_; }

private:
    // Tells one action's changes to the observers there are now.
    void deliver(const std::vector<ChangeNotice>& notices);

    std::weak_ptr<Database> database_;
    std::shared_ptr<StoreProject> current_;
    std::shared_ptr<platform::Globals> globals_;
    std::shared_ptr<platform::AppGlobals> appGlobals_;
    std::shared_ptr<UndoState> undo_;
    CollectionRef clipboard_;
    std::shared_ptr<IClipboard> clipboardService_;
    std::shared_ptr<ILateBoundTools> tools_;
    Variant drag_;
    std::vector<std::weak_ptr<IChangeObserver>> observers_;
    std::vector<ChangeNotice> pending_;  // of the action under way
    std::uint64_t action_ = 0;           // counts actions, and the times between two
    int depth_ = 0;                      // of the brackets open
    bool replaying_ = false;
};

// One open database: its projects, the system project and the workset.
class Database final : public std::enable_shared_from_this<Database> {
public:
    static std::shared_ptr<Database> create();
    // Lets go of the links between objects, so that closing frees them all.
    ~Database();

    std::shared_ptr<StoreProject> addProject(const std::string& name, std::shared_ptr<StoreProject> base = nullptr);
    std::shared_ptr<StoreProject> project(std::string_view name) const;
    const std::vector<std::shared_ptr<StoreProject>>& projects() const { return projects_; }
    void setSystemProject(std::shared_ptr<StoreProject> project) { system_ = std::move(project); }
    std::shared_ptr<StoreProject> systemProject() const { return system_; }
    std::shared_ptr<StoreWorkset> workset() const { return workset_; }
    // "PROJECT:path#nested" or, without a project prefix, within `project`.
    ObjectRef objectByFullName(std::string_view fullName, const StoreProject* project) const;

    // The objects whose own fields or list of members changed, gathered
    // while a file keeps this database, so that a save writes only those.
    void trackChanges(bool on);
    void noteChange(std::shared_ptr<StoredObject> object);
    const std::unordered_set<std::shared_ptr<StoredObject>>& changes() const { return changes_; }
    void forgetChanges() { changes_.clear(); }

    // What the code keeps for this database; it goes when the database closes.
    DatabaseState& state() { return state_; }

private:
    Database() = default;
    DatabaseState state_;
    std::unordered_set<std::shared_ptr<StoredObject>> changes_;
    bool tracking_ = false;
    std::vector<std::shared_ptr<StoreProject>> projects_;
    std::shared_ptr<StoreProject> system_;
    std::shared_ptr<StoreWorkset> workset_;
};

// The project and its base projects, nearest first.
std::vector<std::shared_ptr<StoreProject>> projectChain(const ProjectRef& project);

// The next running number for UniqueId.
std::uint64_t nextUniqueNumber();
// Makes the running numbers go on above `used`, which a loaded object keeps.
void reserveUniqueNumbers(std::uint64_t used);
// Counts the changes to any database, so that a view can tell that what it
// has gathered may be out of date.
std::uint64_t changeCount();
void countChange();

}  // namespace pipespec::platform
