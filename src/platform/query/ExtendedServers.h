#pragma once

// Servers of extended cells by class name, for queries that come back from a
// store. A stored query keeps the class names its servers were registered
// under, not the servers: objects are not data. A control publishes itself
// as the server of its class when it takes its workset; a query rebuilt from
// a stored definition then serves its extended cells through the server
// published for each class name, without being registered again. The table
// belongs to the database (DatabaseState) and holds servers weakly.

#include "objectmodel/QueryInterfaces.h"

#include <string_view>

namespace pipespec::platform {

// The server of that class from now on, for this workset's database; a later
// publication of the same class replaces it.
void publishExtendedServer(IWorkset& workset, std::string_view className, const ExtendedRef& server);

// The server published for that class that still lives; empty if none.
[[nodiscard]] ExtendedRef publishedExtendedServer(IWorkset& workset, std::string_view className);

}  // namespace pipespec::platform
