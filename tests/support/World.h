#pragma once

// A small database for tests: a base project (the catalogue) and a plant
// project built on it (current, writable), the shipped name table and a
// headless host that records every trace line, report and message box.
// Builders make catalogue components, pipe classes and attributes in a line.

#include "diagnostics/HeadlessHost.h"
#include "platform/JsonNameTable.h"
#include "platform/store/Database.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pipespec::support {

using Attributes = std::initializer_list<std::pair<std::string, std::string>>;

class World {
public:
    World();

    const std::shared_ptr<platform::Database>& database() const { return database_; }
    const std::shared_ptr<platform::StoreProject>& base() const { return base_; }
    const std::shared_ptr<platform::StoreProject>& plant() const { return plant_; }
    // The catalogue root "@40" of the base project.
    DeviceRef catalog() const { return root(base_, "@40"); }
    std::shared_ptr<platform::StoreWorkset> workset() const { return database_->workset(); }
    diagnostics::HeadlessUtilities& host() const { return host_->utilities(); }
    diagnostics::HeadlessTools& tracer() const { return host_->tools(); }
    const INameTable& names() const { return *names_; }
    // Whether the name table says that we run in the base database.
    void setBaseDatabase(bool base) const { names_->setBaseDatabase(base); }

    // The fixed root of that name, made on first use.
    DeviceRef root(const std::shared_ptr<platform::StoreProject>& project, const std::string& name) const;
    // A device under `owner` made from `base`, with attributes by qualified
    // name ("GD.VFCD"); missing chapters are made on the way.
    DeviceRef device(const DeviceRef& owner, const std::string& name, Attributes attributes = {},
                     const DeviceRef& base = nullptr) const;
    // Writes (and makes, where missing) the attribute of that qualified name.
    SpecRef attribute(const DeviceRef& device, const std::string& qualifiedName, const std::string& value) const;
    // The value of the attribute of that qualified name; "(none)" when there is none.
    std::string value(const ObjectRef& object, const std::string& qualifiedName) const;
    // The indexed values of the attribute of that qualified name, blank
    // between them; "" when there is none.
    std::string listed(const ObjectRef& object, const std::string& qualifiedName) const;
    // An attribute holding a list, one indexed value per entry from 0.
    SpecRef list(const DeviceRef& device, const std::string& qualifiedName,
                 const std::vector<std::string>& values) const;
    // The device at a "|" path of the project ("@40|A20|B01"), with what is
    // missing of the path made on the way.
    DeviceRef path(const std::shared_ptr<platform::StoreProject>& project, const std::string& path) const;
    // A pipe class of that function code; `pdms` adds the PDMS chapter,
    // `nameRange` the name-range chapter with lower and upper bound.
    DeviceRef pipeClass(const DeviceRef& owner, const std::string& name, const std::string& code, bool pdms = false,
                        bool nameRange = true) const;
    // A standard table at the top of a project, with rows of value = name.
    std::shared_ptr<platform::StandardTable> table(const std::shared_ptr<platform::StoreProject>& project,
                                                   const std::string& name, std::vector<std::string> values) const;

    // The standard table at a "|" path of the project ("@3D|00|PDMS"), with
    // what is missing of the path made on the way.
    std::shared_ptr<platform::StandardTable> tableAt(const std::shared_ptr<platform::StoreProject>& project,
                                                     const std::string& path) const;

    void setFolder(const DeviceRef& device) const;
    // Marks a stored object read-only (or writable again), as a loaded file can.
    void setReadOnly(const ObjectRef& object, bool readOnly = true) const;
    void setCreateOption(const DeviceRef& device, int option) const;
    void setValueLocked(const SpecRef& spec) const;
    // How many objects link to the attribute, as the store counts them.
    void setLinkedCount(const SpecRef& spec, int count) const;
    // The base object of the pipe classes, kept in the workset's Globals.
    void setPipeClassRoot(const DeviceRef& root) const;

    // The text of every trace line of that kind and function, in order.
    std::vector<std::string> traceTexts(std::string_view function,
                                        diagnostics::TraceKind kind = diagnostics::TraceKind::Text) const;
    // Every trace line of that function as the headless host shows it, after
    // its class and function: "enter", "VFCDVal = 91500", "leave: no".
    std::vector<std::string> trace(std::string_view function) const;
    // The function of every error report, "; " between them: "" when none.
    std::string reported() const;

private:
    std::shared_ptr<platform::JsonNameTable> names_;
    std::unique_ptr<diagnostics::ScopedHeadlessHost> host_;
    std::shared_ptr<platform::Database> database_;
    std::shared_ptr<platform::StoreProject> base_;
    std::shared_ptr<platform::StoreProject> plant_;
};

// The parts with the separator between them: "A B C".
std::string join(const std::vector<std::string>& parts, std::string_view separator = " ");

// The store's device behind a reference the logic holds.
std::shared_ptr<platform::Device> store(const DeviceRef& device);

}  // namespace pipespec::support
