#pragma once

// The readable project format: one JSON file that holds the projects of a
// database with their trees of devices, attributes and standard tables, the
// workset's options and application values, and optional overrides of the
// name table. The bundled sample project is written in it.
//
// Objects refer to each other by full name, "PROJECT:@root|A|B"; references
// are resolved once everything is made, so their order in the file is free.
// A file that is not of this format, or that names what is not there, is
// error Configuration naming the file and the place; nothing of it is kept.

#include "platform/JsonNameTable.h"
#include "platform/store/Database.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace pipespec::platform {

struct LoadedDatabase {
    std::shared_ptr<Database> database;
    std::shared_ptr<const JsonNameTable> names;
    // The file's own overrides of the name table as JSON text ("{}" if none),
    // so that a database made from it keeps them.
    std::string nameOverrides = "{}";
};

LoadedDatabase readJsonProject(const nlohmann::json& document, std::string_view origin,
                               const JsonNameTable& defaultNames);
LoadedDatabase loadJsonProject(const std::filesystem::path& file, const JsonNameTable& defaultNames);

// sample/project.json in the data directory (diagnostics/DataDirectory.h).
std::filesystem::path sampleProjectPath();

}  // namespace pipespec::platform
