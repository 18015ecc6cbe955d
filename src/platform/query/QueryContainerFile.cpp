#include "platform/query/QueryContainerFile.h"

#include "objectmodel/Errors.h"
#include "objectmodel/JsonInput.h"
#include "platform/persistence/SqliteFile.h"
#include "platform/query/QueryContainer.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <unordered_map>

namespace pipespec::platform {

namespace {

using nlohmann::json;

constexpr std::string_view kTable = "query_containers";

// ---- to JSON -------------------------------------------------------------

// A filter compares cell values, which are flags, numbers and texts; an
// object as a filter value would not mean the same object in another session.
json valueJson(const Variant& value, const std::string& where)
{
    return std::visit(
        [&](const auto& held) -> json {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return nullptr;
            else if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, std::int64_t> ||
                               std::is_same_v<T, double> || std::is_same_v<T, std::string>)
                return held;
            else
                throw PlatformError(
                    err::NotSupported,
                    where +
                        " has a filter value that is not a flag, number or text, which a database file cannot keep");
        },
        value.storage());
}

json columnJson(const ColumnDefinition& column)
{
    const auto& s = column.settings;
    return {{"key", s.key},
            {"title", s.title},
            {"width", s.width},
            {"visible", s.visible},
            {"objectColumn", s.objectColumn},
            {"valueKind", s.valueKind},
            {"valueParameter", s.valueParameter},
            {"sourceKind", s.sourceKind},
            {"sourceName", s.sourceName},
            {"numeric", s.numeric},
            {"numericMode", s.numericMode},
            {"sizeToContent", s.sizeToContent},
            {"refreshed", s.refreshed},
            {"extendedKind", s.extendedKind},
            {"editable", s.editable},
            {"sortable", s.sortable},
            {"grouping", s.grouping},
            {"baseColumn", column.baseColumn}};
}

json nodeJson(const ObjectSetNode& node)
{
    json children = json::array();
    for (const auto& child : node.children) children.push_back(nodeJson(child));
    return {{"name", node.name}, {"kind", node.kind}, {"values", node.values}, {"children", std::move(children)}};
}

json storedJson(const StoredQueryObject& stored, const std::string& where)
{
    json columns = json::array();
    for (const auto& column : stored.queryOrg.columns) columns.push_back(columnJson(column));
    json filters = json::array();
    for (const auto& filter : stored.queryOrg.filters)
        filters.push_back({{"column", filter.column},
                           {"op", filter.op},
                           {"link", filter.link},
                           {"value", valueJson(filter.value, where)}});
    json sorts = json::array();
    for (const auto& sort : stored.queryOrg.sorts)
        sorts.push_back({{"column", sort.column}, {"direction", sort.direction}});
    return {{"columns", std::move(columns)},
            {"filters", std::move(filters)},
            {"sorts", std::move(sorts)},
            {"servers", stored.queryOrg.servers},
            {"objectSet", nodeJson(stored.objectSet)}};
}

// ---- from JSON -----------------------------------------------------------
// Every key must be there: a row that lacks one was not written by us.

Variant valueOf(const json& value)
{
    switch (value.type()) {
    case json::value_t::null: return {};
    case json::value_t::boolean: return value.get<bool>();
    case json::value_t::number_integer:
    case json::value_t::number_unsigned: return value.get<std::int64_t>();
    case json::value_t::number_float: return value.get<double>();
    case json::value_t::string: return value.get<std::string>();
    default: throw json::type_error::create(302, "a filter value is not a flag, number or text", &value);
    }
}

ColumnDefinition columnOf(const json& column)
{
    ColumnDefinition made;
    auto& s = made.settings;
    column.at("key").get_to(s.key);
    column.at("title").get_to(s.title);
    column.at("width").get_to(s.width);
    column.at("visible").get_to(s.visible);
    column.at("objectColumn").get_to(s.objectColumn);
    column.at("valueKind").get_to(s.valueKind);
    column.at("valueParameter").get_to(s.valueParameter);
    column.at("sourceKind").get_to(s.sourceKind);
    column.at("sourceName").get_to(s.sourceName);
    column.at("numeric").get_to(s.numeric);
    column.at("numericMode").get_to(s.numericMode);
    column.at("sizeToContent").get_to(s.sizeToContent);
    column.at("refreshed").get_to(s.refreshed);
    column.at("extendedKind").get_to(s.extendedKind);
    column.at("editable").get_to(s.editable);
    column.at("sortable").get_to(s.sortable);
    column.at("grouping").get_to(s.grouping);
    column.at("baseColumn").get_to(made.baseColumn);
    return made;
}

ObjectSetNode nodeOf(const json& node)
{
    ObjectSetNode made;
    node.at("name").get_to(made.name);
    node.at("kind").get_to(made.kind);
    node.at("values").get_to(made.values);
    for (const auto& child : node.at("children")) made.children.push_back(nodeOf(child));
    return made;
}

StoredQueryObject storedOf(const json& stored)
{
    StoredQueryObject made;
    for (const auto& column : stored.at("columns")) made.queryOrg.columns.push_back(columnOf(column));
    for (const auto& filter : stored.at("filters"))
        made.queryOrg.filters.push_back({filter.at("column").get<std::string>(), filter.at("op").get<int>(),
                                         filter.at("link").get<int>(), valueOf(filter.at("value"))});
    for (const auto& sort : stored.at("sorts"))
        made.queryOrg.sorts.push_back({sort.at("column").get<std::string>(), sort.at("direction").get<int>()});
    // Containers stored before queries kept their servers' class names have none.
    if (const auto servers = stored.find("servers"); servers != stored.end()) servers->get_to(made.queryOrg.servers);
    made.objectSet = nodeOf(stored.at("objectSet"));
    return made;
}

// ---- the devices of a database -------------------------------------------

void forEachDevice(const Device& owner, const std::function<void(const std::shared_ptr<Device>&)>& visit)
{
    for (const auto& child : owner.ownChildren().items()) {
        visit(child);
        forEachDevice(*child, visit);
    }
}

void forEachDevice(const Database& database, const std::function<void(const std::shared_ptr<Device>&)>& visit)
{
    for (const auto& project : database.projects())
        for (const auto& root : project->roots().items()) {
            visit(root);
            forEachDevice(*root, visit);
        }
}

std::int64_t idOf(const Device& device) { return static_cast<std::int64_t>(device.uniqueNumber()); }

class QueryContainerSection final : public FileSection {
public:
    void createTables(const sqlite::Connection& file) const override
    {
        file.exec("CREATE TABLE IF NOT EXISTS " + std::string(kTable) +
                  "(device INTEGER PRIMARY KEY, stored TEXT NOT NULL)");
    }

    void load(const sqlite::Connection& file, Database& database) override
    {
        // A file opened read-only that was made before containers were kept
        // has no table, and no containers.
        auto exists = file.prepare("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1");
        if (!exists.bind(1, kTable).step()) return;

        std::unordered_map<std::int64_t, std::shared_ptr<Device>> devices;
        forEachDevice(database, [&](const auto& device) { devices.emplace(idOf(*device), device); });
        auto rows = file.prepare("SELECT device, stored FROM " + std::string(kTable));
        while (rows.step()) {
            const auto device = devices.find(rows.integer(0));
            if (device == devices.end()) continue;
            const auto what =
                "Database file " + file.path() + " is damaged: the stored query of " + device->second->SystemFullName();
            try {
                registerQueryContainer(device->second, storedOf(parseJson(rows.text(1), what)));
            } catch (const json::exception& e) {
                throw PlatformError(err::Configuration, what + " is not readable: " + e.what());
            }
        }
    }

    // The containers are few and small: each save writes them all anew.
    void save(const sqlite::Connection& file, const Database& database) override
    {
        file.exec("DELETE FROM " + std::string(kTable));
        auto insert = file.prepare("INSERT INTO " + std::string(kTable) + "(device, stored) VALUES(?1, ?2)");
        forEachDevice(database, [&](const auto& device) {
            const auto container = registeredQueryContainer(device);
            if (!container || !container->stored()) return;
            insert.bind(1, idOf(*device)).bind(2, storedJson(*container->stored(), device->SystemFullName()).dump());
            insert.run();
        });
    }
};

}  // namespace

std::unique_ptr<FileSection> queryContainerSection() { return std::make_unique<QueryContainerSection>(); }

}  // namespace pipespec::platform
