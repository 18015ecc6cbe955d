#pragma once

// What every subcommand starts from: the database opened from --db (the
// user's own database file by default), the headless host that records what
// the logic traces, reports and asks, in the language chosen by --lang, and
// look-ups of pipe classes and catalogue components by the words a user types.

#include "cli/Arguments.h"
#include "diagnostics/HeadlessHost.h"
#include "objectmodel/TextHash.h"
#include "platform/DatabaseFile.h"

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace pipespec::cli {

using platform::DatabaseFile;

// The options every subcommand takes besides its own.
inline const std::vector<std::string> kCommonFlags{"--json"};
inline const std::vector<std::string> kCommonOptions{"--db", "--lang"};

// Prints a report as JSON. A text that is not UTF-8, such as a file name,
// shows replacement characters instead of failing the output, which comes
// after a save: a run that saved reports it as saved.
void printJson(const nlohmann::json& report, std::ostream& out);

class Session {
public:
    Session(const Arguments& args, DatabaseFile::Use use);

    platform::Database& database() const { return *file_.database(); }
    const DatabaseFile& file() const { return file_; }
    DatabaseFile& file() { return file_; }
    ProjectRef currentProject() const { return database().workset()->CurrentProject(); }
    diagnostics::HeadlessUtilities& host() const { return host_->utilities(); }
    diagnostics::HeadlessTools& tracer() const { return host_->tools(); }

    // A pipe class by full name ("PLANT:@20|…"), by path in the current
    // project ("@20|…") or by its name; anything else is a usage error.
    DeviceRef pipeClass(const std::string& words) const;
    // A catalogue component in the same three ways; a name must be unique
    // within the catalogue roots ("@40") of the project and its bases.
    DeviceRef component(const std::string& words) const;
    // Components for each of `words`, as component() finds one, with one walk
    // of the catalogue for all of them.
    std::vector<DeviceRef> components(const std::vector<std::string>& words) const;
    // Every component under the catalogue roots, in tree order.
    std::vector<DeviceRef> catalogueComponents() const;
    // Every pipe class of the current project and its bases, in tree order.
    std::vector<DeviceRef> pipeClasses() const;

private:
    Session(diagnostics::LanguageTable language, const Arguments& args, DatabaseFile::Use use);
    // Candidates by name.
    using NameIndex = TextMap<std::vector<DeviceRef>>;
    static NameIndex indexByName(const std::vector<DeviceRef>& candidates);
    DeviceRef byWords(const std::string& words, const NameIndex& candidates, const char* what) const;

    DatabaseFile file_;
    std::unique_ptr<diagnostics::ScopedHeadlessHost> host_;
};

}  // namespace pipespec::cli
