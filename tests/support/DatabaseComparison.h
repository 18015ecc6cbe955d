#pragma once

// Structural comparison of two databases: every project with its base,
// access rights, languages and options; every root, device, attribute,
// chapter, standard table and row in order with every field; the workset's
// options, pipe-class root and application values; the stored query of
// every query container. Links compare by full name. Option 64 is left out:
// it is a cache that each session rebuilds.

#include "platform/store/Database.h"

#include <string>
#include <vector>

namespace pipespec::support {

struct ComparisonOptions {
    // Off where the same content is built twice, as a replay in a test does.
    bool uniqueIds = true;
};

// One line per difference, naming where it is; empty when both are alike.
std::vector<std::string> differences(const platform::Database& expected, const platform::Database& actual,
                                     ComparisonOptions options = {});

}  // namespace pipespec::support
