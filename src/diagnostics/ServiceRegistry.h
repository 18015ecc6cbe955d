#pragma once

// The two process-wide service objects every procedure reports through.
// Each is made on first use (the headless host) and may be replaced, by tests
// or by a windowed host, before the logic runs. A reference obtained from
// tools() or utilities() is valid until the next replacement.

#include "objectmodel/ServiceInterfaces.h"

#include <memory>

namespace pipespec::diagnostics {

IGlobalTools& tools();
IUtilities& utilities();

// Installs a replacement and gives back the one it replaces (empty if none
// was made yet). Installing nothing restores the default, made on next use.
std::shared_ptr<IGlobalTools> setTools(std::shared_ptr<IGlobalTools> replacement);
std::shared_ptr<IUtilities> setUtilities(std::shared_ptr<IUtilities> replacement);

// tools().Names(); error Configuration when no name table is installed.
const INameTable& names();

}  // namespace pipespec::diagnostics
