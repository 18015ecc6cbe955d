#pragma once

// How the controls build the columns of their queries: the steps every new
// column takes, and the one kind of column two controls share.

#include "objectmodel/QueryInterfaces.h"

#include <string>
#include <string_view>

namespace pipespec::frame {

// A new last column, its title translated from the message literal.
QueryColumnRef appendColumn(IQueryColumns& columns, std::string_view key, std::string_view title, int valueKind,
                            int width, bool editable);

// The column shows one bound of an element's name range, read from that
// attribute and ordered by the number in it ("DN 100" as 100).
void showRangeBound(IQueryColumn& column, const std::string& attribute);

}  // namespace pipespec::frame
