// pipespec: the command line on a pipe-class database.

#include "cli/Commands.h"
#include "objectmodel/Errors.h"

#include <algorithm>
#include <iostream>

namespace {

using pipespec::cli::CommandInfo;

void printOverview(std::ostream& out)
{
    out << "Usage: pipespec <command> [options]\n\nCommands:\n";
    for (const auto& c : pipespec::cli::commands()) {
        out << "  " << c.name << "  " << c.summary;
        if (c.alias) out << " (also '" << c.alias << "')";
        out << "\n";
    }
    out << "\nOptions of every command:\n"
           "  --db FILE   the database file, made from the sample project if it does not exist\n"
           "              (default: $XDG_DATA_HOME/pipespec/sample.pspec, else\n"
           "              ~/.local/share/pipespec/sample.pspec); a FILE.json project is only read\n"
           "  --json      machine-readable output\n"
           "  --lang de   messages in German (default English)\n"
           "  --help      this text, or the command's own\n"
           "\nExit codes: 0 success, 1 refused by the logic, 2 usage, 3 database error.\n";
}

const CommandInfo* findCommand(const std::string& name)
{
    const auto& all = pipespec::cli::commands();
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const CommandInfo& c) { return name == c.name || (c.alias && name == c.alias); });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace

int main(int argc, char* argv[])
{
    namespace cli = pipespec::cli;
    try {
        const auto args = cli::Arguments::parse(argc, argv);
        if (args.command().empty()) {
            printOverview(args.wantsHelp() ? std::cout : std::cerr);
            return args.wantsHelp() ? cli::exitcode::Success : cli::exitcode::Usage;
        }
        const auto* command = findCommand(args.command());
        if (!command) throw cli::UsageError("unknown command '" + args.command() + "'");
        if (args.wantsHelp()) {
            std::cout << "Usage: pipespec " << command->usage << "\n\n" << command->summary << "\n";
            return cli::exitcode::Success;
        }
        auto accepted = args;
        accepted.accept(command->accepts);
        return command->run(accepted, std::cout);
    } catch (const cli::UsageError& e) {
        std::cerr << "pipespec: " << e.what() << "\n(pipespec --help lists the commands)\n";
        return cli::exitcode::Usage;
    } catch (const pipespec::PlatformError& e) {
        std::cerr << "pipespec: database error " << e.number() << ": " << e.what() << "\n";
        return cli::exitcode::Database;
    } catch (const std::exception& e) {
        std::cerr << "pipespec: " << e.what() << "\n";
        return cli::exitcode::Database;
    }
}
