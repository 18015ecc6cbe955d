#pragma once

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace pipespec::cli {

// Exit codes of every subcommand.
namespace exitcode {
inline constexpr int Success = 0;
inline constexpr int Refused = 1;   // the logic said no
inline constexpr int Usage = 2;     // bad command line
inline constexpr int Database = 3;  // the database could not be opened or read
}  // namespace exitcode

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "pipespec <command> [--flag] [--option value] [positional...]". Which
// options a command takes is declared by the command; anything else is a
// usage error rather than silently ignored.
class Arguments {
public:
    struct Spec {
        std::vector<std::string> flags;    // options without a value, e.g. "--json"
        std::vector<std::string> options;  // options with a value, e.g. "--class"
        bool words = false;                // takes words besides its options, e.g. components
    };

    // The first word is the command; "--help" alone or with a command is recognised.
    static Arguments parse(int argc, const char* const argv[]);

    const std::string& command() const { return command_; }
    bool wantsHelp() const { return help_; }

    // Checks the words after the command against what the command accepts;
    // an option's value may not be empty.
    void accept(const Spec& spec);

    bool flag(const std::string& name) const { return flags_.count(name) != 0; }
    std::optional<std::string> option(const std::string& name) const;
    std::string required(const std::string& name) const;
    const std::vector<std::string>& positional() const { return positional_; }

private:
    std::string command_;
    bool help_ = false;
    std::vector<std::string> words_;
    std::set<std::string> flags_;
    std::map<std::string, std::string> options_;
    std::vector<std::string> positional_;
};

}  // namespace pipespec::cli
