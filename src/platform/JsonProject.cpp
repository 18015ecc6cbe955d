#include "platform/JsonProject.h"

#include "diagnostics/DataDirectory.h"
#include "objectmodel/Errors.h"
#include "objectmodel/JsonInput.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace pipespec::platform {

namespace {

using nlohmann::json;

constexpr std::string_view kFormat = "pipespec-sample";
constexpr int kVersion = 1;

// Reads one file into a fresh database. Objects are made in the first pass;
// links between them wait in `links_` until everything exists, and read-only
// marks come last, since a read-only object takes no further writes.
class Reader {
public:
    Reader(std::string_view origin, const JsonNameTable& defaultNames) : origin_(origin), defaultNames_(defaultNames) {}

    LoadedDatabase read(const json& document)
    {
        expectObject(
            document, "the file",
            {"format", "version", "systemProject", "currentProject", "projects", "globals", "appGlobals", "names"});
        if (!document.contains("format") || document["format"] != kFormat)
            fail("the file", "is not a pipespec project (\"format\" must be \"pipespec-sample\")");
        if (!document.contains("version") || !document["version"].is_number_integer() ||
            document["version"].get<int>() != kVersion)
            fail("the file", "has a version this program does not read (expected " + std::to_string(kVersion) + ")");

        database_ = Database::create();
        for (const auto& project : array(document, "projects", "the file")) readProject(project);
        if (document.contains("systemProject"))
            database_->setSystemProject(projectNamed(text(document, "systemProject", "the file"), "systemProject"));
        if (document.contains("currentProject"))
            database_->workset()->SetCurrentProject(
                projectNamed(text(document, "currentProject", "the file"), "currentProject"));
        if (document.contains("globals")) readGlobals(document["globals"]);
        if (document.contains("appGlobals")) readAppGlobals(document["appGlobals"]);

        for (const auto& link : links_) {
            try {
                link.make(link.where);
            } catch (const PlatformError& e) {
                if (e.number() == err::Configuration) throw;
                fail(link.where, std::string("is refused by the database: ") + e.what());
            }
        }
        for (const auto& object : readOnly_) object->setReadOnly(true);
        for (const auto& [project, rights] : rights_) project->setAccessRights(rights);

        const auto overrides = document.contains("names") ? document["names"] : json::object();
        return {database_, defaultNames_.overlaid(overrides, origin_), overrides.dump()};
    }

private:
    // How an entry is named in an error, before it is known to be well formed.
    static std::string placeName(const json& node)
    {
        const auto name = node.is_object() ? node.find("name") : node.end();
        return name != node.end() && name->is_string() ? name->get<std::string>() : std::string("?");
    }

    [[noreturn]] void fail(const std::string& where, const std::string& what) const
    {
        throw PlatformError(err::Configuration, "Project file " + origin_ + ": " + where + " " + what);
    }

    void expectObject(const json& node, const std::string& where, std::initializer_list<std::string_view> keys) const
    {
        if (!node.is_object()) fail(where, "must be an object");
        for (const auto& [key, value] : node.items()) {
            bool known = false;
            for (const auto k : keys) known = known || key == k;
            if (!known) fail(where, "has an unknown entry \"" + key + "\"");
        }
    }

    const json& array(const json& node, const char* key, const std::string& where) const
    {
        static const json empty = json::array();
        if (!node.contains(key)) return empty;
        if (!node[key].is_array()) fail(where, std::string("\"") + key + "\" must be a list");
        return node[key];
    }

    std::string text(const json& node, const char* key, const std::string& where) const
    {
        if (!node.contains(key)) return {};
        if (!node[key].is_string()) fail(where, std::string("\"") + key + "\" must be a text");
        return node[key].get<std::string>();
    }

    bool flag(const json& node, const char* key, const std::string& where) const
    {
        if (!node.contains(key)) return false;
        if (!node[key].is_boolean()) fail(where, std::string("\"") + key + "\" must be true or false");
        return node[key].get<bool>();
    }

    int number(const json& node, const char* key, const std::string& where, int otherwise) const
    {
        if (!node.contains(key)) return otherwise;
        if (!node[key].is_number_integer()) fail(where, std::string("\"") + key + "\" must be a whole number");
        return node[key].get<int>();
    }

    std::string nameOf(const json& node, const std::string& where) const
    {
        const auto name = text(node, "name", where);
        if (name.empty()) fail(where, "has no \"name\"");
        return name;
    }

    std::shared_ptr<StoreProject> projectNamed(const std::string& name, const std::string& where) const
    {
        auto project = database_->project(name);
        if (!project) fail(where, "names a project '" + name + "' that the file does not hold");
        return project;
    }

    ObjectRef resolve(const std::string& fullName, const std::string& where) const
    {
        auto object = database_->objectByFullName(fullName, nullptr);
        if (!object) fail(where, "refers to '" + fullName + "', which does not exist");
        return object;
    }

    template <class T>
    std::shared_ptr<T> resolveAs(const std::string& fullName, const std::string& where, const char* kind) const
    {
        auto object = std::dynamic_pointer_cast<T>(resolve(fullName, where));
        if (!object) fail(where, "refers to '" + fullName + "', which is not " + kind);
        return object;
    }

    // An option's value: a text, a number, a flag, or {"object": full name}.
    Variant optionValue(const json& value, const std::string& where) const
    {
        if (value.is_string()) return value.get<std::string>();
        if (value.is_boolean()) return value.get<bool>();
        if (value.is_number_integer()) return value.get<std::int64_t>();
        if (value.is_number()) return value.get<double>();
        if (value.is_object() && value.size() == 1 && value.contains("object") && value["object"].is_string())
            return resolve(value["object"].get<std::string>(), where);
        fail(where, "must be a text, a number, true/false or {\"object\": full name}");
    }

    // Options may name objects of any project, so they are read once all exist.
    void readOptions(const json& node, const std::string& where, std::function<void(int, Variant)> store)
    {
        if (!node.is_object()) fail(where, "must be an object of number -> value");
        for (const auto& [key, value] : node.items()) {
            int number = 0;
            try {
                std::size_t used = 0;
                number = std::stoi(key, &used);
                if (used != key.size()) throw std::invalid_argument(key);
            } catch (const std::logic_error&) {
                fail(where, "has \"" + key + "\", which is no option number");
            }
            // Named copies: clang 14 cannot capture a structured binding.
            later(where + " option " + key, [this, value = value, number, store](const std::string& place) {
                store(number, optionValue(value, place));
            });
        }
    }

    // A step that waits until every object of the file exists.
    void later(std::string where, std::function<void(const std::string& where)> make)
    {
        links_.push_back({std::move(where), std::move(make)});
    }

    void readProject(const json& node)
    {
        const std::string where = "project " + placeName(node);
        expectObject(node, where, {"name", "base", "accessRights", "languages", "options", "roots", "standardTables"});
        const auto name = nameOf(node, where);
        if (database_->project(name)) fail(where, "is in the file twice");
        std::shared_ptr<StoreProject> base;
        if (node.contains("base")) base = projectNamed(text(node, "base", where), where + " \"base\"");
        auto project = database_->addProject(name, base);
        rights_.emplace_back(project, number(node, "accessRights", where, 1));
        for (const auto& language : array(node, "languages", where)) {
            if (!language.is_string()) fail(where, "has a language that is not a text");
            project->addLanguage(language.get<std::string>());
        }
        if (node.contains("options"))
            readOptions(node["options"], where + " \"options\"",
                        [project](int n, Variant v) { project->setOption(n, std::move(v)); });
        for (const auto& root : array(node, "roots", where)) {
            const auto rootWhere = where + " root " + placeName(root);
            expectObject(root, rootWhere, {"name", "description", "devices", "specs"});
            auto device = project->addRoot(nameOf(root, rootWhere));
            readDeviceBody(*device, root, device->SystemFullName());
        }
        for (const auto& table : array(node, "standardTables", where)) readTable(*project->tableRoot(), table, where);
    }

    void readDeviceBody(Device& device, const json& node, const std::string& where)
    {
        if (node.contains("description")) device.SetDescription(text(node, "description", where));
        for (const auto& spec : array(node, "specs", where)) readSpec(device, spec, where);
        for (const auto& child : array(node, "devices", where)) readDevice(device, child, where);
    }

    void readDevice(Device& owner, const json& node, const std::string& ownerWhere)
    {
        const auto where = ownerWhere + "|" + placeName(node);
        expectObject(
            node, where,
            {"name", "description", "folder", "createOption", "readOnly", "cdevice", "specs", "devices", "xml"});
        const auto name = nameOf(node, where);
        if (owner.ownChildren().contains(name)) fail(where, "is in the file twice");
        auto device = owner.createChild(name);
        device->setFolder(flag(node, "folder", where));
        device->setCreateOption(number(node, "createOption", where, 0));
        if (node.contains("xml")) device->SetXmlText(text(node, "xml", where));
        readDeviceBody(*device, node, where);
        if (node.contains("cdevice")) {
            const auto base = text(node, "cdevice", where);
            later(where + " \"cdevice\"", [this, device, base](const std::string& place) {
                device->SetCDevice(resolveAs<Device>(base, place, "a device"));
            });
        }
        if (flag(node, "readOnly", where)) readOnly_.push_back(device);
    }

    void readSpec(SpecHolder& owner, const json& node, const std::string& ownerWhere)
    {
        const auto where = ownerWhere + (dynamic_cast<Device*>(&owner) ? "#" : ".") + placeName(node);
        expectObject(node, where,
                     {"name", "description", "valueType", "value", "languageValues", "xvalues", "table", "link",
                      "inherits", "inheritMode", "controlType", "controlProperties", "answerMode", "linkedCount",
                      "locked", "readOnly", "xml", "specs"});
        const auto name = nameOf(node, where);
        if (owner.ownSpecs().contains(name)) fail(where, "is in the file twice");
        auto spec = owner.createSpec(name);
        if (node.contains("description")) spec->SetDescription(text(node, "description", where));
        if (node.contains("valueType")) spec->SetValueType(text(node, "valueType", where));
        if (node.contains("value")) spec->SetValue(text(node, "value", where));
        int index = 0;
        for (const auto& value : array(node, "languageValues", where)) {
            if (!value.is_string()) fail(where, "has a language value that is not a text");
            spec->SetLanguageValue(++index, value.get<std::string>());
        }
        index = 0;
        for (const auto& value : array(node, "xvalues", where)) {
            if (!value.is_string()) fail(where, "has an indexed value that is not a text");
            spec->SetXValue(index++, value.get<std::string>());
        }
        if (node.contains("inheritMode")) spec->SetInheritMode(text(node, "inheritMode", where));
        if (node.contains("controlType")) spec->SetControlType(text(node, "controlType", where));
        if (node.contains("controlProperties")) spec->SetControlProperties(text(node, "controlProperties", where));
        if (node.contains("answerMode")) spec->SetAnswerMode(number(node, "answerMode", where, -9999));
        if (node.contains("linkedCount")) spec->setLinkedCount(number(node, "linkedCount", where, 0));
        if (node.contains("xml")) spec->SetXmlText(text(node, "xml", where));
        spec->setValueLocked(flag(node, "locked", where));
        for (const auto& child : array(node, "specs", where)) readSpec(*spec, child, where);

        if (node.contains("table")) {
            const auto table = text(node, "table", where);
            later(where + " \"table\"", [this, spec, table](const std::string& place) {
                spec->SetStandardTable(resolveAs<StandardTable>(table, place, "a standard table"));
            });
        }
        if (node.contains("link")) {
            const auto link = text(node, "link", where);
            later(where + " \"link\"",
                  [this, spec, link](const std::string& place) { spec->SetLinkObject(resolve(link, place)); });
        }
        if (node.contains("inherits")) {
            const auto chapter = text(node, "inherits", where);
            later(where + " \"inherits\"", [this, spec, chapter](const std::string& place) {
                spec->InheritFrom(resolveAs<Specification>(chapter, place, "a chapter"));
            });
        }
        if (flag(node, "readOnly", where)) readOnly_.push_back(spec);
    }

    void readTable(StandardTable& owner, const json& node, const std::string& ownerWhere)
    {
        const auto where = ownerWhere + " table " + placeName(node);
        expectObject(node, where, {"name", "description", "values", "children"});
        const auto name = nameOf(node, where);
        if (owner.child(name)) fail(where, "is in the file twice");
        auto table = owner.createChild(name);
        if (node.contains("description")) table->SetDescription(text(node, "description", where));
        for (const auto& value : array(node, "values", where)) {
            const auto rowWhere = where + " row " + placeName(value);
            expectObject(value, rowWhere, {"name", "value", "description"});
            const auto rowName = nameOf(value, rowWhere);
            if (table->row(rowName)) fail(rowWhere, "is in the file twice");
            auto row = table->createRow(rowName);
            row->SetValue(value.contains("value") ? text(value, "value", rowWhere) : rowName);
            if (value.contains("description")) row->SetDescription(text(value, "description", rowWhere));
        }
        for (const auto& child : array(node, "children", where)) readTable(*table, child, where);
    }

    void readGlobals(const json& node)
    {
        expectObject(node, "\"globals\"", {"options", "pipeClassRootCDevice"});
        const auto globals = database_->workset()->globals();
        if (node.contains("options"))
            readOptions(node["options"], "\"globals\" \"options\"",
                        [globals](int n, Variant v) { globals->setoption(n, v); });
        if (node.contains("pipeClassRootCDevice")) {
            const auto root = text(node, "pipeClassRootCDevice", "\"globals\"");
            later("\"globals\" \"pipeClassRootCDevice\"", [this, globals, root](const std::string& place) {
                globals->setPipeClassRootCDevice(resolveAs<Device>(root, place, "a device"));
            });
        }
    }

    void readAppGlobals(const json& node)
    {
        if (!node.is_object()) fail("\"appGlobals\"", "must be an object of name -> value");
        const auto app = database_->workset()->appGlobals();
        for (const auto& [key, value] : node.items()) {
            const auto place = "\"appGlobals\" \"" + key + "\"";
            if (key == "TubrixDesignerRun") {
                if (!value.is_boolean()) fail(place, "must be true or false");
                app->setTubrixDesignerRun(value.get<bool>());
            } else {
                // Named copies: clang 14 cannot capture a structured binding.
                later(place, [this, app, key = key, value = value](const std::string& where) {
                    app->setValue(key, optionValue(value, where));
                });
            }
        }
    }

    std::string origin_;
    const JsonNameTable& defaultNames_;
    std::shared_ptr<Database> database_;
    struct Link {
        std::string where;
        std::function<void(const std::string& where)> make;
    };
    std::vector<Link> links_;
    std::vector<std::shared_ptr<StoredObject>> readOnly_;
    std::vector<std::pair<std::shared_ptr<StoreProject>, int>> rights_;
};

}  // namespace

LoadedDatabase readJsonProject(const json& document, std::string_view origin, const JsonNameTable& defaultNames)
{
    return Reader(origin, defaultNames).read(document);
}

LoadedDatabase loadJsonProject(const std::filesystem::path& file, const JsonNameTable& defaultNames)
{
    std::ifstream in(file);
    if (!in) throw PlatformError(err::Configuration, "Project file " + file.string() + " cannot be read");
    return readJsonProject(parseJson(in, "Project file " + file.string()), file.string(), defaultNames);
}

std::filesystem::path sampleProjectPath() { return diagnostics::dataDirectory() / "sample" / "project.json"; }

}  // namespace pipespec::platform
