#pragma once

// A query as plain data: what a query container stores and what Copy goes
// through. Columns refer to each other, and filters and sorts to columns, by
// key. Registered servers are not part of it, as objects are not data, only
// the class names they were registered under (see ExtendedServers.h).

#include "objectmodel/QueryInterfaces.h"

#include <string>
#include <vector>

namespace pipespec::platform {

// Everything a column is, apart from its base column.
struct ColumnSettings {
    std::string key;
    std::string title;
    int width = 4;
    bool visible = true;
    bool objectColumn = false;
    int valueKind = valuekind::None;
    std::string valueParameter;
    int sourceKind = sourcekind::None;
    std::string sourceName;
    bool numeric = false;
    int numericMode = 0;
    bool sizeToContent = true;
    bool refreshed = false;
    int extendedKind = extendedkind::None;
    bool editable = false;
    bool sortable = true;
    int grouping = 1;

    bool operator==(const ColumnSettings&) const = default;
};

struct ColumnDefinition {
    ColumnSettings settings;
    std::string baseColumn;  // key; empty for none

    bool operator==(const ColumnDefinition&) const = default;
};

struct FilterDefinition {
    std::string column;  // key; empty for none
    int op = filteroperator::None;
    int link = filterlink::None;
    Variant value;

    bool operator==(const FilterDefinition&) const = default;
};

struct SortDefinition {
    std::string column;  // key; empty for none
    int direction = sortdirection::None;

    bool operator==(const SortDefinition&) const = default;
};

struct QueryDefinition {
    std::vector<ColumnDefinition> columns;
    std::vector<FilterDefinition> filters;
    std::vector<SortDefinition> sorts;
    std::vector<std::string> servers;  // class names of the registrations, in order

    bool operator==(const QueryDefinition&) const = default;
};

}  // namespace pipespec::platform
