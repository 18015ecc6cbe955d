#include "cli/Commands.h"

namespace pipespec::cli {

const std::vector<CommandInfo>& commands()
{
    static const std::vector<CommandInfo> all;
    return all;
}

}  // namespace pipespec::cli
