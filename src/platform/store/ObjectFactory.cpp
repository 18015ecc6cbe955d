#include "platform/store/ObjectFactory.h"

#include "platform/query/Query.h"
#include "platform/query/QueryContainer.h"

#include <string>

namespace pipespec::platform {

namespace {
template <class Made>
std::shared_ptr<Made> make(std::string_view kindName, std::string_view kind)
{
    if (kindName != kind)
        throw PlatformError(err::CannotCreateObject, "cannot create an object of the class " + std::string(kindName));
    return std::make_shared<Made>();
}
}  // namespace

QueryRef createQuery(std::string_view kindName) { return make<Query>(kindName, kQueryKind); }

std::shared_ptr<IQueryCreator> createQueryCreator(std::string_view kindName)
{
    return make<QueryCreator>(kindName, kQueryCreatorKind);
}

}  // namespace pipespec::platform
