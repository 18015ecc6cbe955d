#pragma once

// The host services: the process-wide objects the logic calls on and a host
// replaces (a windowed host installs its own, a test or the command line a
// scripted one). Each lives in a ServiceSlot, is made on first use by its
// default and lives until the process ends or it is replaced; a reference
// obtained from a slot is valid until the next replacement. Everything else
// the logic keeps belongs to a database (objectmodel/DatabaseState.h).
//
// The slots hold the trace and report services below, and the range control
// and selector chooser of the AddToPipeClass module.

#include "objectmodel/ServiceInterfaces.h"

#include <memory>
#include <type_traits>
#include <utility>

namespace pipespec::diagnostics {

// One host service. Used on the user-interface thread only, as all logic is.
template <class Interface, class Default>
class ServiceSlot {
public:
    Interface& get()
    {
        if (!current_) current_ = std::make_shared<Default>();
        return *current_;
    }

    // Installs a replacement and gives back the one it replaces (empty if
    // none was made yet). Installing nothing restores the default, made on
    // next use.
    std::shared_ptr<Interface> exchange(std::shared_ptr<Interface> replacement) noexcept
    {
        current_.swap(replacement);
        return replacement;
    }

private:
    std::shared_ptr<Interface> current_;
};

// Installs a service for as long as it lives and puts back the one it
// replaced: the one way tests and the command line replace a host service.
//   ScopedService chooser(setChooseSelectorView, scripted);
template <class Interface>
class ScopedService {
public:
    ScopedService(std::shared_ptr<Interface> (*install)(std::shared_ptr<Interface>),
                  std::type_identity_t<std::shared_ptr<Interface>> replacement)
        : install_(install),
          previous_(install(std::move(replacement)))
    {
    }
    ~ScopedService() { install_(std::move(previous_)); }
    ScopedService(const ScopedService&) = delete;
    ScopedService& operator=(const ScopedService&) = delete;

private:
    std::shared_ptr<Interface> (*install_)(std::shared_ptr<Interface>);
    std::shared_ptr<Interface> previous_;
};

IGlobalTools& tools();
IUtilities& utilities();

std::shared_ptr<IGlobalTools> setTools(std::shared_ptr<IGlobalTools> replacement);
std::shared_ptr<IUtilities> setUtilities(std::shared_ptr<IUtilities> replacement);

// tools().Names(); error Configuration when no name table is installed.
const INameTable& names();

}  // namespace pipespec::diagnostics
