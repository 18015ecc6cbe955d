#include "support/World.h"

#include "objectmodel/Text.h"

#include <nlohmann/json.hpp>

namespace pipespec::support {

namespace {
// The parts between the separators: "@40|A20" gives "@40" and "A20".
std::vector<std::string> split(std::string_view path, char separator)
{
    std::vector<std::string> parts;
    for (std::size_t from = 0;;) {
        const auto at = path.find(separator, from);
        parts.emplace_back(path.substr(from, at - from));
        if (at == std::string_view::npos) return parts;
        from = at + 1;
    }
}
}  // namespace

World::World()
    : names_(platform::JsonNameTable::load(platform::JsonNameTable::shippedPath())
                 ->overlaid(nlohmann::json::object(), "tests")),
      host_(std::make_unique<diagnostics::ScopedHeadlessHost>(names_)),
      database_(platform::Database::create()),
      base_(database_->addProject("BASE")),
      plant_(database_->addProject("PLANT", base_))
{
    base_->addLanguage("de");
    base_->addLanguage("en");
    plant_->addLanguage("de");
    plant_->addLanguage("en");
    database_->workset()->SetCurrentProject(plant_);
}

std::shared_ptr<platform::Device> store(const DeviceRef& device)
{
    return std::dynamic_pointer_cast<platform::Device>(device);
}

std::string join(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string joined;
    for (std::size_t i = 0; i < parts.size(); ++i) joined.append(i > 0 ? separator : "").append(parts[i]);
    return joined;
}

DeviceRef World::root(const std::shared_ptr<platform::StoreProject>& project, const std::string& name) const
{
    if (auto existing = project->root(name)) return existing;
    return project->addRoot(name);
}

DeviceRef World::device(const DeviceRef& owner, const std::string& name, Attributes attributes,
                        const DeviceRef& base) const
{
    auto made = asDevice(owner->OwnElements()->CreateNewWithName(name));
    if (base) made->SetCDevice(base);
    for (const auto& [qualified, value] : attributes) attribute(made, qualified, value);
    return made;
}

SpecRef World::attribute(const DeviceRef& device, const std::string& qualifiedName, const std::string& value) const
{
    SpecRef spec;
    for (const auto& level : split(qualifiedName, '.')) {
        const auto members = spec ? spec->OwnSpecifications() : device->SpecsByName();
        auto own = asSpec(spec ? members->Item(level) : store(device)->ownSpecs().find(level));
        spec = own ? own : asSpec(members->CreateNewWithName(level));
    }
    spec->SetValue(value);
    return spec;
}

std::string World::value(const ObjectRef& object, const std::string& qualifiedName) const
{
    const auto spec = must(object).Spec(qualifiedName);
    return spec ? spec->Value() : "(none)";
}

std::string World::listed(const ObjectRef& object, const std::string& qualifiedName) const
{
    std::vector<std::string> values;
    if (const auto spec = must(object).Spec(qualifiedName))
        for (int i = 0; i < spec->RowCount(); ++i) values.push_back(spec->GetXValue(i));
    return join(values);
}

SpecRef World::list(const DeviceRef& device, const std::string& qualifiedName,
                    const std::vector<std::string>& values) const
{
    auto spec = attribute(device, qualifiedName, "");
    for (std::size_t i = 0; i < values.size(); ++i) spec->SetXValue(static_cast<int>(i), values[i]);
    return spec;
}

DeviceRef World::path(const std::shared_ptr<platform::StoreProject>& project, const std::string& path) const
{
    const auto names = split(path, '|');
    DeviceRef at = root(project, names.front());
    for (std::size_t i = 1; i < names.size(); ++i) {
        auto existing = asDevice(at->OwnElements()->Item(names[i]));
        at = existing ? existing : device(at, names[i]);
    }
    return at;
}

DeviceRef World::pipeClass(const DeviceRef& owner, const std::string& name, const std::string& code, bool pdms,
                           bool nameRange) const
{
    auto made = device(owner, name, {{names().GD().VFCD(), code}});
    if (pdms) attribute(made, names().PDMS() + ".State", "");
    if (nameRange) {
        attribute(made, names().NameRange() + "." + names().NameRangeLowerAttr(), "15");
        attribute(made, names().NameRange() + "." + names().NameRangeUpperAttr(), "600");
    }
    return made;
}

std::shared_ptr<platform::StandardTable> World::table(const std::shared_ptr<platform::StoreProject>& project,
                                                      const std::string& name, std::vector<std::string> values) const
{
    auto made = project->tableRoot()->createChild(name);
    for (const auto& value : values) made->createRow(value)->SetValue(value);
    return made;
}

std::shared_ptr<platform::StandardTable> World::tableAt(const std::shared_ptr<platform::StoreProject>& project,
                                                        const std::string& path) const
{
    auto at = project->tableRoot();
    for (const auto& name : split(path, '|')) {
        const auto existing = at->child(name);
        at = existing ? existing : at->createChild(name);
    }
    return at;
}

void World::setFolder(const DeviceRef& device) const { must(store(device)).setFolder(true); }
void World::setReadOnly(const ObjectRef& object, bool readOnly) const
{
    must(std::dynamic_pointer_cast<platform::StoredObject>(object)).setReadOnly(readOnly);
}
void World::setCreateOption(const DeviceRef& device, int option) const { must(store(device)).setCreateOption(option); }
void World::setValueLocked(const SpecRef& spec) const
{
    must(std::dynamic_pointer_cast<platform::Specification>(spec)).setValueLocked(true);
}
void World::setLinkedCount(const SpecRef& spec, int count) const
{
    must(std::dynamic_pointer_cast<platform::Specification>(spec)).setLinkedCount(count);
}
void World::setPipeClassRoot(const DeviceRef& root) const { workset()->globals()->setPipeClassRootCDevice(root); }

std::vector<std::string> World::traceTexts(std::string_view function, diagnostics::TraceKind kind) const
{
    std::vector<std::string> texts;
    for (const auto& line : tracer().lines())
        if (line.function == function && line.kind == kind) texts.push_back(line.text);
    return texts;
}

std::vector<std::string> World::trace(std::string_view function) const
{
    std::vector<std::string> lines;
    for (const auto& line : tracer().lines())
        if (line.function == function)
            lines.push_back(diagnostics::HeadlessTools::format(line).substr(line.cls.size() + function.size() + 3));
    return lines;
}

std::string World::reported() const
{
    std::vector<std::string> functions;
    for (const auto& report : host().errors()) functions.push_back(report.function);
    return join(functions, "; ");
}

}  // namespace pipespec::support
