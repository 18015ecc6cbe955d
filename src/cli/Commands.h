#pragma once

#include "cli/Arguments.h"

#include <ostream>

namespace pipespec::cli {

struct CommandInfo {
    const char* name;
    const char* summary;
    const char* usage;
    Arguments::Spec accepts;
    int (*run)(const Arguments& args, std::ostream& out);
};

// Every subcommand the command line offers, in the order --help lists them.
const std::vector<CommandInfo>& commands();


}  // namespace pipespec::cli
