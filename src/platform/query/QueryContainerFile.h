#pragma once

// The stored queries of query containers, kept in the database file beside
// the objects. A container lives in a process-wide registry, not in the
// object tree, so the objects' own tables cannot hold it: this section keeps
// one row per container device that carries a stored query, keyed by the
// device's UniqueId number, with the query and its object set as JSON text.
// A row whose device is no longer in the database is not read back.

#include "platform/persistence/Persistence.h"

#include <memory>

namespace pipespec::platform {

// Every ProjectFile keeps this section; see ProjectFile::create and open.
std::unique_ptr<FileSection> queryContainerSection();

}  // namespace pipespec::platform
