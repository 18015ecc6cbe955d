#pragma once

// What the code keeps for one open database beside its objects: caches such
// as the generic-type menu root, the maps of a creation cascade, which devices
// are query containers. Each kind of state is a type of its own, made empty
// on first ask. The database owns its state: closing a database drops it, and
// another database starts with none, so nothing of one database is ever
// consulted for another. It is not kept in the database file.
//
// Reached through any object: object.Workset()->State().get<Kind>().
// Like the rest of the logic, it is used on the user-interface thread only.

#include <memory>
#include <typeindex>
#include <unordered_map>

namespace pipespec {

class DatabaseState {
public:
    // The state of that kind, default-made on first ask. The reference stays
    // valid while the database is open.
    template <class Kind>
    [[nodiscard]] Kind& get()
    {
        auto& held = kinds_[std::type_index(typeid(Kind))];
        if (!held) held = std::make_shared<Kind>();
        return *std::static_pointer_cast<Kind>(held);
    }

private:
    std::unordered_map<std::type_index, std::shared_ptr<void>> kinds_;
};

}  // namespace pipespec
