#include "cli/Session.h"

#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <iostream>
#include <set>

namespace pipespec::cli {

namespace {
constexpr const char* kCatalogueRoot = "@40";

// Devices below `device` in tree order; `take` decides which are listed.
void collect(const DeviceRef& device, const std::function<bool(const DeviceRef&)>& take, std::vector<DeviceRef>& out)
{
    const auto children = device->Devices();
    for (int i = 1; i <= children->Count(); ++i) {
        const auto child = asDevice(children->Item(i));
        if (take(child)) out.push_back(child);
        collect(child, take, out);
    }
}

// German, which the literals carry themselves, and each language shipped as a table.
std::set<std::string> languages()
{
    std::set<std::string> names{"de"};
    for (const auto& table :
         std::filesystem::directory_iterator(diagnostics::LanguageTable::shippedPath("en").parent_path()))
        if (table.path().extension() == ".json") names.insert(table.path().stem().string());
    return names;
}

diagnostics::LanguageTable languageOf(const Arguments& args)
{
    const auto language = args.option("--lang").value_or("en");
    if (language == "de") return {};
    if (const auto known = languages(); !known.count(language)) {
        std::string list;
        for (const auto& name : known) list += (list.empty() ? "" : ", ") + name;
        throw UsageError("no messages in language '" + language + "' (" + list + ")");
    }
    return diagnostics::LanguageTable::load(diagnostics::LanguageTable::shippedPath(language));
}

// The file --db names, else the user's own.
DatabaseFile openDatabase(const Arguments& args, DatabaseFile::Use use)
{
    std::optional<std::filesystem::path> given;
    if (const auto db = args.option("--db")) given = *db;
    return DatabaseFile::openOrDefault(given, use, std::cerr);
}
}  // namespace

void printJson(const nlohmann::json& report, std::ostream& out)
{
    out << report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

// The language is checked first: a usage error must not make a database.
Session::Session(const Arguments& args, DatabaseFile::Use use) : Session(languageOf(args), args, use) {}

Session::Session(diagnostics::LanguageTable language, const Arguments& args, DatabaseFile::Use use)
    : file_(openDatabase(args, use)),
      host_(std::make_unique<diagnostics::ScopedHeadlessHost>(file_.names()))
{
    host_->utilities().setLanguage(std::move(language));
}

std::vector<DeviceRef> Session::catalogueComponents() const
{
    // A component carries a function code or a component type; the other
    // devices of the catalogue tree are its structure and its owners.
    const auto& names = diagnostics::names();
    const auto isComponent = [&](const DeviceRef& d) {
        return !d->IsFolder() && (d->Spec(names.GD().VFCD()) || d->Spec(names.Pipe().VSTD()));
    };
    std::vector<DeviceRef> components;
    for (const auto& project : platform::projectChain(currentProject()))
        if (const auto root = project->root(kCatalogueRoot)) collect(root, isComponent, components);
    return components;
}

std::vector<DeviceRef> Session::pipeClasses() const
{
    std::vector<DeviceRef> classes;
    for (const auto& project : platform::projectChain(currentProject()))
        for (const auto& root : project->roots().items())
            collect(
                root, [](const DeviceRef& d) { return addtopipeclass::IsPipeClass(d); }, classes);
    return classes;
}

Session::NameIndex Session::indexByName(const std::vector<DeviceRef>& candidates)
{
    NameIndex index;
    for (const auto& candidate : candidates) index[candidate->Name()].push_back(candidate);
    return index;
}

DeviceRef Session::byWords(const std::string& words, const NameIndex& candidates, const char* what) const
{
    if (words.find(':') != std::string::npos || words.find('|') != std::string::npos) {
        const auto object = words.find(':') != std::string::npos ? database().objectByFullName(words, nullptr)
                                                                 : currentProject()->ObjectByPath(words, 2);
        auto device = asDevice(object);
        if (!device) throw UsageError("there is no " + std::string(what) + " '" + words + "'");
        return device;
    }
    const auto found = candidates.find(words);
    if (found == candidates.end()) throw UsageError("there is no " + std::string(what) + " named '" + words + "'");
    const auto& named = found->second;
    if (named.size() > 1) {
        std::string list;
        for (const auto& device : named) list += "\n  " + device->SystemFullName();
        throw UsageError("'" + words + "' names " + std::to_string(named.size()) +
                         " objects; give the full name:" + list);
    }
    return named.front();
}

DeviceRef Session::pipeClass(const std::string& words) const
{
    auto device = byWords(words, indexByName(pipeClasses()), "pipe class");
    if (!addtopipeclass::IsPipeClass(device)) throw UsageError(device->SystemFullName() + " is not a pipe class");
    return device;
}

DeviceRef Session::component(const std::string& words) const { return components({words}).front(); }

std::vector<DeviceRef> Session::components(const std::vector<std::string>& words) const
{
    const auto catalogue = indexByName(catalogueComponents());
    std::vector<DeviceRef> found;
    found.reserve(words.size());
    for (const auto& each : words) found.push_back(byWords(each, catalogue, "component"));
    return found;
}

}  // namespace pipespec::cli
