#include "cli/Chooser.h"

namespace pipespec::cli {

CommandLineChooser::CommandLineChooser(std::string how, std::istream& in, std::ostream& out)
    : how_(std::move(how)),
      in_(in),
      out_(out)
{
}

std::string CommandLineChooser::ShowModal(const addtopipeclass::SelectorChoice& choice)
{
    ++asked_;
    if (how_ == "ask") return prompt(choice);
    // An empty answer is what the dialog gives back on Cancel.
    if (how_ == "cancel") return {};
    return how_;
}

std::string CommandLineChooser::prompt(const addtopipeclass::SelectorChoice& choice)
{
    out_ << choice.sentence << "\n";
    for (std::size_t i = 0; i < choice.answers.size(); ++i) out_ << "  " << i + 1 << ") " << choice.answers[i] << "\n";
    out_ << "Answer (number or text; empty takes \"" << choice.proposal << "\", \"cancel\" cancels): " << std::flush;
    std::string line;
    // The end of the input closes the dialog, which takes the proposal.
    if (!std::getline(in_, line) || line.empty()) return choice.proposal;
    if (line == "cancel") return {};
    try {
        std::size_t used = 0;
        const auto number = std::stoul(line, &used);
        if (used == line.size() && number >= 1 && number <= choice.answers.size()) return choice.answers[number - 1];
    } catch (const std::logic_error&) {
        // Not a number: the text is the answer.
    }
    return line;
}

}  // namespace pipespec::cli
