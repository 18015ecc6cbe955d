#pragma once

// Where the data shipped with the programs lives (name table, language
// tables, sample project): share/pipespec beside the bin folder that holds
// the running program, <prefix>/bin/pipespec -> <prefix>/share/pipespec.
// The build tree has the same layout, build/<preset>/bin for every program
// and build/<preset>/share/pipespec a link to data/ of the sources, so a
// program just built and an installed one find their data by the same rule,
// and no path of the machine that built them is compiled in.

#include <filesystem>

namespace pipespec::diagnostics {

// A program that cannot tell where it runs from: error Configuration.
[[nodiscard]] std::filesystem::path dataDirectory();

}  // namespace pipespec::diagnostics
