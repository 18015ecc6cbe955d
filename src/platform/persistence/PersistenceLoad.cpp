#include "platform/persistence/PersistenceFormat.h"

#include "objectmodel/Errors.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

namespace pipespec::platform::format {

namespace {

using sqlite::Statement;

// Deeper ownership is refused: the walks over a tree recurse, one level a step.
constexpr std::size_t kMaxNesting = 256;

std::string selectObjects(std::string_view where)
{
    std::string columns;
    for (const auto column : kColumns) columns += (columns.empty() ? "" : ", ") + std::string(column);
    return "SELECT " + columns + " FROM objects WHERE " + std::string(where);
}

// Reads a file into a fresh database. Objects are made first and put in
// place once all exist, as a row may come before its owner; links wait until
// the whole tree stands, and read-only marks and access rights come last,
// since they refuse further writes.
class Reader {
public:
    Reader(const sqlite::Connection& file, Database& database) : file_(file), database_(database) {}

    std::string read()
    {
        readProjects();
        auto tops = file_.prepare(selectObjects("owner IS NULL ORDER BY project, kind, position"));
        while (tops.step()) makeObject(tops, true);
        auto others = file_.prepare(selectObjects("owner IS NOT NULL"));
        while (others.step()) makeObject(others, false);
        placeObjects();
        resolveLinks();
        readOptions();
        auto nameOverrides = readMeta();
        for (const auto& object : readOnly_) object->setReadOnly(true);
        for (const auto& [project, rights] : rights_) project->setAccessRights(rights);
        reserveUniqueNumbers(highestId_);
        return nameOverrides;
    }

private:
    using LinkTarget = std::variant<std::int64_t, std::string>;
    struct PendingLink {
        std::shared_ptr<StoredObject> object;
        Field field;
        LinkTarget target;
    };
    struct Placement {
        std::int64_t owner;
        std::int64_t position;
        std::int64_t id;
        std::shared_ptr<StoredObject> object;
    };
    // Placements sorted by owner, searched for those of one owner.
    struct OwnerOrder {
        bool operator()(const Placement& placement, std::int64_t owner) const { return placement.owner < owner; }
        bool operator()(std::int64_t owner, const Placement& placement) const { return owner < placement.owner; }
    };

    [[noreturn]] void damaged(const std::string& what) const
    {
        throw PlatformError(err::Configuration, "Database file " + file_.path() + " is damaged: " + what);
    }

    std::shared_ptr<StoreProject> projectNamed(const std::string& name) const
    {
        auto project = database_.project(name);
        if (!project) damaged("it refers to a project '" + name + "' it does not hold");
        return project;
    }

    void readProjects()
    {
        auto projects = file_.prepare("SELECT name, base, access_rights FROM projects ORDER BY position");
        std::vector<std::pair<std::shared_ptr<StoreProject>, std::string>> bases;
        while (projects.step()) {
            auto project = database_.addProject(projects.text(0));
            if (!projects.isNull(1)) bases.emplace_back(project, projects.text(1));
            rights_.emplace_back(project, static_cast<int>(projects.integer(2)));
        }
        // A base project may stand later in the list than the project on it.
        for (const auto& [project, base] : bases) project->setBase(projectNamed(base));

        auto languages = file_.prepare("SELECT project, name FROM languages ORDER BY project, position");
        while (languages.step()) projectNamed(languages.text(0))->addLanguage(languages.text(1));
    }

    void makeObject(const Statement& row, bool top)
    {
        const auto project = projectNamed(row.text(Project));
        const auto name = row.text(Name);
        const auto id = row.integer(Id);
        std::shared_ptr<StoredObject> object;
        switch (static_cast<ObjectKind>(row.integer(Kind))) {
        case ObjectKind::Root:
            if (!top) damaged("root " + name + " has an owner");
            object = project->addRoot(name);
            break;
        case ObjectKind::Device: object = Device::create(name, project); break;
        case ObjectKind::Specification: object = Specification::create(name); break;
        case ObjectKind::Table: object = top ? project->tableRoot() : StandardTable::create(name, project); break;
        case ObjectKind::Row: object = std::make_shared<StandardValue>(name); break;
        default: damaged("object " + std::to_string(id) + " is of an unknown kind");
        }
        if (top != (row.isNull(Owner))) damaged("object " + name + " has no owner");
        object->setUniqueId(static_cast<std::uint64_t>(id));
        highestId_ = std::max(highestId_, static_cast<std::uint64_t>(id));
        objects_.emplace(id, object);
        applyFields(row, *object);
        if (top)
            tops_.push_back(id);
        else
            placements_.push_back({row.integer(Owner), row.integer(Position), id, object});
    }

    std::vector<std::string> texts(const Statement& row, Field field) const
    {
        if (row.isNull(field)) return {};
        try {
            return nlohmann::json::parse(row.text(field)).get<std::vector<std::string>>();
        } catch (const nlohmann::json::exception&) {
            damaged("the list " + std::string(kColumns[static_cast<std::size_t>(field)]) + " of " + row.text(Name) +
                    " is not readable");
        }
    }

    void laterLink(const Statement& row, Field field, const std::shared_ptr<StoredObject>& object)
    {
        if (row.isNull(field)) return;
        LinkTarget target;
        if (row.isText(field))
            target = row.text(field);
        else
            target = row.integer(field);
        links_.push_back({object, field, std::move(target)});
    }

    // Writes go through the setters, as those check what they are given; the
    // defaults are left alone so that a plain attribute stays small.
    void applyFields(const Statement& row, StoredObject& object)
    {
        const auto self = object.shared_from_this();
        if (const auto text = row.textView(Description); !text.empty()) object.SetDescription(text);
        if (const auto text = row.textView(Xml); !text.empty()) object.SetXmlText(text);
        object.setFolder(row.integer(Folder) != 0);
        if (row.integer(ReadOnly) != 0) readOnly_.push_back(self);

        if (auto* device = dynamic_cast<Device*>(&object)) {
            device->setCreateOption(static_cast<int>(row.integer(CreateOption)));
            laterLink(row, CDevice, self);
        } else if (auto* spec = dynamic_cast<Specification*>(&object)) {
            // The plain value first: once the type is "C", values go to the languages.
            if (const auto value = row.textView(Value); !value.empty()) spec->SetValue(value);
            if (const auto type = row.textView(ValueType); type != "A") spec->SetValueType(type);
            if (const auto mode = row.textView(InheritMode); !mode.empty()) spec->SetInheritMode(mode);
            if (const auto type = row.textView(ControlType); !type.empty()) spec->SetControlType(type);
            if (const auto text = row.textView(ControlProperties); !text.empty()) spec->SetControlProperties(text);
            if (const auto mode = row.integer(AnswerMode); mode != spec->AnswerMode())
                spec->SetAnswerMode(static_cast<long>(mode));
            if (const auto count = row.integer(LinkedCount); count != 0) spec->setLinkedCount(static_cast<int>(count));
            int index = 0;
            for (const auto& value : texts(row, XValues)) spec->SetXValue(index++, value);
            index = 0;
            for (const auto& value : texts(row, LanguageValues)) spec->SetLanguageValue(++index, value);
            spec->setValueLocked(row.integer(ValueLocked) != 0);
            laterLink(row, StandardTable, self);
            laterLink(row, Link, self);
            laterLink(row, Inherits, self);
        } else if (auto* tableRow = dynamic_cast<platform::StandardValue*>(&object)) {
            tableRow->SetValue(row.textView(Value));
        }
    }

    // Owners go in before their members, level by level down from the tops:
    // a member joins a tree that stands, and how deep it lies is known.
    void placeObjects()
    {
        std::sort(placements_.begin(), placements_.end(), [](const Placement& a, const Placement& b) {
            return std::tie(a.owner, a.position) < std::tie(b.owner, b.position);
        });
        for (const auto& placement : placements_)
            if (!objects_.contains(placement.owner))
                damaged(placement.object->Name() + " belongs to an object that is not there");

        std::size_t placed = 0;
        auto level = tops_;
        for (std::size_t depth = 1; !level.empty(); ++depth) level = placeMembers(level, depth, placed);
        if (placed == placements_.size()) return;
        // What no level reached hangs in, or below, a circle of owners.
        const auto lost =
            std::find_if(placements_.begin(), placements_.end(), [](const Placement& p) { return !p.object->owner(); });
        // Every object has an owner, yet the levels did not count them all: an
        // object stands in more than one place.
        if (lost == placements_.end()) damaged("its objects' owners do not form a tree");
        damaged("object " + std::to_string(lost->id) + " (" + lost->object->Name() +
                ") does not lead up to a root: its owners go round in a circle");
    }

    // Puts in the members of `owners`, which stand `depth` levels below the tops; gives their ids.
    std::vector<std::int64_t> placeMembers(const std::vector<std::int64_t>& owners, std::size_t depth,
                                           std::size_t& placed)
    {
        std::vector<std::int64_t> members;
        for (const auto ownerId : owners) {
            const auto& owner = objects_.at(ownerId);
            const auto [first, last] = std::equal_range(placements_.begin(), placements_.end(), ownerId, OwnerOrder{});
            if (first != last && depth > kMaxNesting)
                damaged("its objects nest deeper than " + std::to_string(kMaxNesting) + " levels below " +
                        owner->Name());
            for (auto member = first; member != last; ++member) {
                owner->insertMember(member->object, kLast);
                if (member->object->owner() != owner)
                    damaged(owner->SystemFullName() + " cannot hold " + member->object->Name());
                members.push_back(member->id);
            }
            placed += static_cast<std::size_t>(last - first);
        }
        return members;
    }

    ObjectRef stored(std::int64_t id) const
    {
        const auto found = objects_.find(id);
        return found == objects_.end() ? nullptr : found->second;
    }

    // "1234|001#CONN.DN1": from stored object 1234, its (inherited) child
    // 001, then that one's attribute; "1234.ATTR" below a stored chapter.
    ObjectRef inherited(std::string_view link) const
    {
        const auto digits = link.find_first_not_of("0123456789");
        if (digits == 0 || digits == std::string_view::npos) return nullptr;
        std::int64_t id = 0;
        if (std::from_chars(link.data(), link.data() + digits, id).ec != std::errc())
            damaged("a link names object " + std::string(link.substr(0, digits)) +
                    ", a number beyond those of objects");
        auto at = stored(id);
        auto rest = link.substr(digits);
        const auto hash = rest.find('#');
        auto devices = rest.substr(0, hash);
        while (at && !devices.empty() && devices.front() == '|') {
            devices.remove_prefix(1);
            const auto bar = devices.find('|');
            const auto device = std::dynamic_pointer_cast<Device>(at);
            at = device ? device->childDevice(devices.substr(0, bar)) : nullptr;
            devices = bar == std::string_view::npos ? std::string_view() : devices.substr(bar);
        }
        if (!at || !devices.empty()) return nullptr;
        if (hash != std::string_view::npos) return at->Spec(rest.substr(hash + 1));
        if (rest.empty() || rest.front() != '.') return nullptr;
        return at->Spec(rest.substr(1));
    }

    ObjectRef target(const LinkTarget& link) const
    {
        if (const auto* text = std::get_if<std::string>(&link)) return inherited(*text);
        return stored(std::get<std::int64_t>(link));
    }

    ObjectRef target(const Statement& row, int column) const
    {
        if (row.isNull(column)) return nullptr;
        if (row.isText(column)) return target(LinkTarget(row.text(column)));
        return target(LinkTarget(row.integer(column)));
    }

    void resolveLinks()
    {
        for (const auto& link : links_) {
            const auto to = target(link.target);
            try {
                if (link.field == CDevice)
                    static_cast<Device&>(*link.object).SetCDevice(asDevice(to));
                else if (link.field == StandardTable)
                    static_cast<Specification&>(*link.object).SetStandardTable(to);
                else if (link.field == Link)
                    static_cast<Specification&>(*link.object).SetLinkObject(to);
                else
                    static_cast<Specification&>(*link.object).InheritFrom(asSpec(to));
            } catch (const PlatformError& e) {
                damaged("a link of " + link.object->SystemFullName() + " is refused: " + e.what());
            }
        }
    }

    Variant option(const Statement& row, int kindColumn, const std::string& where) const
    {
        const int value = kindColumn + 1;
        switch (static_cast<ValueKind>(row.integer(kindColumn))) {
        case ValueKind::Empty: return {};
        case ValueKind::Flag: return row.integer(value) != 0;
        case ValueKind::Whole: return row.integer(value);
        case ValueKind::Real: return row.real(value);
        case ValueKind::Text: return row.text(value);
        case ValueKind::Object: return target(row, value);
        }
        damaged(where + " is of an unknown kind");
    }

    void readOptions()
    {
        auto projectOptions = file_.prepare("SELECT project, number, kind, value FROM project_options");
        while (projectOptions.step()) {
            const auto number = static_cast<int>(projectOptions.integer(1));
            projectNamed(projectOptions.text(0))
                ->setOption(number, option(projectOptions, 2, "option " + std::to_string(number)));
        }
        const auto globals = database_.workset()->globals();
        auto worksetOptions = file_.prepare("SELECT number, kind, value FROM workset_options");
        while (worksetOptions.step()) {
            const auto number = static_cast<int>(worksetOptions.integer(0));
            globals->setoption(number, option(worksetOptions, 1, "workset option " + std::to_string(number)));
        }
        const auto app = database_.workset()->appGlobals();
        auto values = file_.prepare("SELECT name, kind, value FROM app_values");
        while (values.step()) app->setValue(values.text(0), option(values, 1, "application value " + values.text(0)));
    }

    std::string readMeta()
    {
        std::string nameOverrides = "{}";
        auto meta = file_.prepare("SELECT key, value FROM meta");
        while (meta.step()) {
            const auto key = meta.text(0);
            if (key == "system_project")
                database_.setSystemProject(projectNamed(meta.text(1)));
            else if (key == "current_project")
                database_.workset()->SetCurrentProject(projectNamed(meta.text(1)));
            else if (key == "name_overrides")
                nameOverrides = meta.text(1);
            else if (key == "pipe_class_root")
                database_.workset()->globals()->setPipeClassRootCDevice(asDevice(target(meta, 1)));
            else if (key == "designer_run")
                database_.workset()->appGlobals()->setTubrixDesignerRun(meta.integer(1) != 0);
        }
        return nameOverrides;
    }

    const sqlite::Connection& file_;
    Database& database_;
    std::unordered_map<std::int64_t, std::shared_ptr<StoredObject>> objects_;
    std::vector<std::int64_t> tops_;
    std::vector<Placement> placements_;
    std::vector<PendingLink> links_;
    std::vector<std::shared_ptr<StoredObject>> readOnly_;
    std::vector<std::pair<std::shared_ptr<StoreProject>, int>> rights_;
    std::uint64_t highestId_ = 0;
};

}  // namespace

std::string readDatabase(const sqlite::Connection& file, Database& database) { return Reader(file, database).read(); }

}  // namespace pipespec::platform::format
