#include "support/DatabaseComparison.h"

#include "objectmodel/Options.h"
#include "platform/query/QueryContainer.h"

#include <optional>
#include <sstream>
#include <type_traits>
#include <variant>

namespace pipespec::support {

namespace {

using namespace platform;

// A link to an object that is no longer in the database counts as none,
// as that is what a file gives back for it.
std::string linkText(const ObjectRef& object)
{
    const auto stored = std::dynamic_pointer_cast<StoredObject>(object);
    for (auto above = stored; above; above = above->owner())
        if (above->IsDeleted()) return "(none)";
    if (!object) return "(none)";
    return object->SystemFullName() + (object->SystemTemporary() ? " (inherited)" : "");
}

std::string projectName(const ProjectRef& project) { return project ? project->Name() : "(none)"; }

std::string variantText(const Variant& value)
{
    return std::visit(
        [](const auto& held) -> std::string {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return "(empty)";
            else if constexpr (std::is_same_v<T, bool>)
                return held ? "true" : "false";
            else if constexpr (std::is_same_v<T, std::int64_t>)
                return "whole " + std::to_string(held);
            else if constexpr (std::is_same_v<T, double>)
                return "real " + std::to_string(held);
            else if constexpr (std::is_same_v<T, std::string>)
                return "'" + held + "'";
            else if constexpr (std::is_same_v<T, ObjectRef>)
                return linkText(held);
            else
                return "(list or map)";
        },
        value.storage());
}

std::optional<StoredQueryObject> storedQueryOf(const Device& device)
{
    const auto container = registeredQueryContainer(device.shared_from_this());
    return container ? container->stored() : std::nullopt;
}

// Enough to tell where two stored queries part; equality decides.
std::string storedQueryText(const std::optional<StoredQueryObject>& stored)
{
    if (!stored) return "(none)";
    std::string columns;
    for (const auto& column : stored->queryOrg.columns) columns += "[" + column.settings.key + "]";
    return "columns " + columns + ", " + std::to_string(stored->queryOrg.filters.size()) + " filters, " +
           std::to_string(stored->queryOrg.sorts.size()) + " sorts, object set '" + stored->objectSet.name + "' with " +
           std::to_string(stored->objectSet.children.size()) + " sub-nodes";
}

std::string joined(const std::vector<std::string>& texts)
{
    std::ostringstream out;
    for (const auto& text : texts) out << '[' << text << ']';
    return out.str();
}

class Comparison {
public:
    explicit Comparison(ComparisonOptions options) : options_(options) {}

    void databases(const Database& expected, const Database& actual)
    {
        same("database", "system project", projectName(expected.systemProject()), projectName(actual.systemProject()));
        same("database", "current project", projectName(expected.workset()->CurrentProject()),
             projectName(actual.workset()->CurrentProject()));
        if (!sameCount("database", "projects", expected.projects().size(), actual.projects().size())) return;
        for (std::size_t i = 0; i < expected.projects().size(); ++i)
            project(*expected.projects()[i], *actual.projects()[i]);

        const auto& a = *expected.workset();
        const auto& b = *actual.workset();
        options("workset", a.globals()->options(), b.globals()->options());
        same("workset", "PipeClassRootCDevice", linkText(a.globals()->PipeClassRootCDevice()),
             linkText(b.globals()->PipeClassRootCDevice()));
        same("workset", "TubrixDesignerRun", a.appGlobals()->TubrixDesignerRun() ? "1" : "0",
             b.appGlobals()->TubrixDesignerRun() ? "1" : "0");
        options("application values", a.appGlobals()->values(), b.appGlobals()->values());
    }

    std::vector<std::string> found() && { return std::move(found_); }

private:
    void same(const std::string& where, const std::string& what, const std::string& expected, const std::string& actual)
    {
        if (expected != actual)
            found_.push_back(where + ": " + what + " is '" + actual + "', expected '" + expected + "'");
    }

    bool sameCount(const std::string& where, const std::string& what, std::size_t expected, std::size_t actual)
    {
        same(where, "number of " + what, std::to_string(expected), std::to_string(actual));
        return expected == actual;
    }

    template <class Map>
    void options(const std::string& where, const Map& expected, const Map& actual)
    {
        const auto kept = [](const Map& all) {
            std::map<std::string, std::string> texts;
            for (const auto& [key, value] : all) {
                if constexpr (std::is_same_v<typename Map::key_type, int>) {
                    if (key == option::PipeClassCache) continue;
                    texts.emplace(std::to_string(key), variantText(value));
                } else {
                    texts.emplace(key, variantText(value));
                }
            }
            return texts;
        };
        const auto a = kept(expected);
        const auto b = kept(actual);
        for (const auto& [key, value] : a) {
            const auto other = b.find(key);
            same(where, "option " + key, value, other == b.end() ? "(missing)" : other->second);
        }
        for (const auto& [key, value] : b)
            if (!a.count(key)) same(where, "option " + key, "(missing)", value);
    }

    void project(const StoreProject& expected, const StoreProject& actual)
    {
        const auto where = "project " + expected.Name();
        same(where, "name", expected.Name(), actual.Name());
        same(where, "base project", projectName(expected.BaseProject()), projectName(actual.BaseProject()));
        same(where, "access rights", std::to_string(expected.AccessRights()), std::to_string(actual.AccessRights()));
        std::vector<std::string> a;
        std::vector<std::string> b;
        for (const auto& language : expected.languages()) a.push_back(language->Name());
        for (const auto& language : actual.languages()) b.push_back(language->Name());
        same(where, "languages", joined(a), joined(b));
        options(where, expected.options(), actual.options());
        members(where, expected.roots(), actual.roots());
        object(*expected.tableRoot(), *actual.tableRoot());
    }

    template <class T>
    void members(const std::string& where, const NamedChildren<T>& expected, const NamedChildren<T>& actual)
    {
        if (!sameCount(where, "members", expected.size(), actual.size())) return;
        for (std::size_t i = 0; i < expected.size(); ++i) object(*expected.items()[i], *actual.items()[i]);
    }

    void object(const StoredObject& expected, const StoredObject& actual)
    {
        const auto where = expected.SystemFullName();
        same(where, "name", expected.Name(), actual.Name());
        same(where, "description", expected.Description(), actual.Description());
        same(where, "XML text", expected.XmlText(), actual.XmlText());
        same(where, "folder", std::to_string(expected.IsFolder()), std::to_string(actual.IsFolder()));
        same(where, "read-only", std::to_string(expected.ReadOnly()), std::to_string(actual.ReadOnly()));
        same(where, "kind", std::to_string(expected.SystemType()), std::to_string(actual.SystemType()));
        if (options_.uniqueIds) same(where, "UniqueId", expected.UniqueId(), actual.UniqueId());
        if (expected.SystemType() != actual.SystemType()) return;

        if (const auto* device = dynamic_cast<const Device*>(&expected)) {
            const auto& other = static_cast<const Device&>(actual);
            same(where, "CreateOption", std::to_string(device->CreateOption()), std::to_string(other.CreateOption()));
            same(where, "CDevice", linkText(device->CDevice()), linkText(other.CDevice()));
            storedQuery(where, *device, other);
            members(where, device->ownChildren(), other.ownChildren());
            members(where, device->ownSpecs(), other.ownSpecs());
        } else if (const auto* spec = dynamic_cast<const Specification*>(&expected)) {
            specification(where, *spec, static_cast<const Specification&>(actual));
        } else if (const auto* table = dynamic_cast<const StandardTable*>(&expected)) {
            const auto& other = static_cast<const StandardTable&>(actual);
            members(where, table->ownTables(), other.ownTables());
            members(where, table->ownRows(), other.ownRows());
        } else if (const auto* row = dynamic_cast<const StandardValue*>(&expected)) {
            same(where, "value", row->Value(), static_cast<const StandardValue&>(actual).Value());
        }
    }

    void storedQuery(const std::string& where, const Device& expected, const Device& actual)
    {
        const auto a = storedQueryOf(expected);
        const auto b = storedQueryOf(actual);
        if (a != b)
            found_.push_back(where + ": stored query is " + storedQueryText(b) + ", expected " + storedQueryText(a));
    }

    void specification(const std::string& where, const Specification& a, const Specification& b)
    {
        same(where, "value", std::string(a.plainValue()), std::string(b.plainValue()));
        same(where, "value type", a.ValueType(), b.ValueType());
        same(where, "language values", joined(a.languageValues()), joined(b.languageValues()));
        same(where, "X values", joined(a.xValues()), joined(b.xValues()));
        same(where, "answer mode", std::to_string(a.AnswerMode()), std::to_string(b.AnswerMode()));
        same(where, "standard table", linkText(a.StandardTable()), linkText(b.StandardTable()));
        same(where, "link object", linkText(a.link()), linkText(b.link()));
        same(where, "inherited chapter", linkText(a.InheritedChapter()), linkText(b.InheritedChapter()));
        same(where, "inherit mode", a.InheritMode(), b.InheritMode());
        same(where, "control type", a.ControlType(), b.ControlType());
        same(where, "control properties", a.ControlProperties(), b.ControlProperties());
        same(where, "linked count", std::to_string(a.LinkedCount()), std::to_string(b.LinkedCount()));
        same(where, "value lock", std::to_string(a.valueLocked()), std::to_string(b.valueLocked()));
        members(where, a.ownSpecs(), b.ownSpecs());
    }

    ComparisonOptions options_;
    std::vector<std::string> found_;
};

}  // namespace

std::vector<std::string> differences(const Database& expected, const Database& actual, ComparisonOptions options)
{
    Comparison comparison(options);
    comparison.databases(expected, actual);
    return std::move(comparison).found();
}

}  // namespace pipespec::support
