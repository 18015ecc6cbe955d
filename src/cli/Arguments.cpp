#include "cli/Arguments.h"

#include <algorithm>

namespace pipespec::cli {

namespace {
bool contains(const std::vector<std::string>& list, const std::string& word)
{
    return std::find(list.begin(), list.end(), word) != list.end();
}
}  // namespace

Arguments Arguments::parse(int argc, const char* const argv[])
{
    Arguments args;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--help" || word == "-h")
            args.help_ = true;
        else if (args.command_.empty() && word.rfind("--", 0) != 0)
            args.command_ = word;
        else
            args.words_.push_back(word);
    }
    return args;
}

void Arguments::accept(const Spec& spec)
{
    for (size_t i = 0; i < words_.size(); ++i) {
        const auto& word = words_[i];
        if (word.rfind("--", 0) != 0) {
            if (!spec.words) throw UsageError("'" + command_ + "' takes no words besides its options: '" + word + "'");
            positional_.push_back(word);
        } else if (contains(spec.flags, word)) {
            flags_.insert(word);
        } else if (contains(spec.options, word)) {
            if (i + 1 >= words_.size() || words_[i + 1].empty()) throw UsageError(word + " needs a value");
            options_[word] = words_[++i];
        } else {
            throw UsageError("unknown option " + word + " for '" + command_ + "'");
        }
    }
}

std::optional<std::string> Arguments::option(const std::string& name) const
{
    const auto found = options_.find(name);
    if (found == options_.end()) return std::nullopt;
    return found->second;
}

std::string Arguments::required(const std::string& name) const
{
    auto value = option(name);
    if (!value) throw UsageError("'" + command_ + "' needs " + name);
    return *value;
}

}  // namespace pipespec::cli
