#pragma once

// The choice of a selector on the command line (--choose): the same answer
// each time the walk must ask, cancel each time, or a prompt on the terminal.

#include "selectors/ChooseSelector.h"

#include <istream>
#include <ostream>
#include <string>

namespace pipespec::cli {

class CommandLineChooser final : public addtopipeclass::IChooseSelectorView {
public:
    // "<answer>", "cancel" or "ask"; the prompt reads `in` and writes `out`.
    CommandLineChooser(std::string how, std::istream& in, std::ostream& out);

    std::string ShowModal(const addtopipeclass::SelectorChoice& choice) override;
    int asked() const { return asked_; }

private:
    std::string prompt(const addtopipeclass::SelectorChoice& choice);

    std::string how_;
    std::istream& in_;
    std::ostream& out_;
    int asked_ = 0;
};

}  // namespace pipespec::cli
