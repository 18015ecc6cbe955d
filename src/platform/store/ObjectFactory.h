#pragma once

// The objects the logic makes by kind name, as it would create a registered
// class. A name that is not known here is an error (429).

#include "objectmodel/QueryInterfaces.h"

#include <memory>
#include <string_view>

namespace pipespec::platform {

inline constexpr std::string_view kQueryKind = "QuorlQuery.Query";
inline constexpr std::string_view kQueryCreatorKind = "QuorlQueryXObj.QCreator";

QueryRef createQuery(std::string_view kindName);
std::shared_ptr<IQueryCreator> createQueryCreator(std::string_view kindName);

}  // namespace pipespec::platform
