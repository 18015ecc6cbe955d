#pragma once

#include "cli/Arguments.h"

#include <ostream>
#include <vector>

namespace pipespec::cli {

struct CommandInfo {
    const char* name;
    const char* summary;
    const char* usage;
    Arguments::Spec accepts;
    int (*run)(const Arguments& args, std::ostream& out);
    const char* alias = nullptr;  // an older name that still works
};

// Every subcommand the command line offers, in the order --help lists them.
const std::vector<CommandInfo>& commands();

// undo and redo across runs (UndoCommands.cpp).
int runUndo(const Arguments& args, std::ostream& out);
int runRedo(const Arguments& args, std::ostream& out);

}  // namespace pipespec::cli
