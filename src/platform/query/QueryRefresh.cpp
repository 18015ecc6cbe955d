// Refresh: which rows a query shows, and in which order. A row reads each
// column that its filters and sorts need at most once, and only as far as
// it gets: a failing filter stops the rest of its group, a row that fails
// reads no sort column. No other cell is read.

#include "objectmodel/Text.h"
#include "platform/query/Query.h"
#include "platform/query/QueryCells.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace pipespec::platform {

namespace {
bool passes(const Variant& cell, const QueryFilter& filter)
{
    const int mode = filter.column()->NumericMode();
    const auto& value = filter.value();
    switch (filter.Operator()) {
    case filteroperator::Equal: return cells::compare(cell, value, mode) == 0;
    case filteroperator::NotEqual: return cells::compare(cell, value, mode) != 0;
    case filteroperator::Greater: return cells::compare(cell, value, mode) > 0;
    case filteroperator::AtLeast: return cells::compare(cell, value, mode) >= 0;
    case filteroperator::Less: return cells::compare(cell, value, mode) < 0;
    case filteroperator::AtMost: return cells::compare(cell, value, mode) <= 0;
    case filteroperator::Contains: return cells::text(cell).find(cells::text(value)) != std::string::npos;
    default: return true;
    }
}

// The order of one sort level. In a numeric column numbers come first, by
// value, and what is no number follows, as text.
struct SortKey {
    std::optional<double> number;
    std::string text;

    static SortKey of(const Variant& value, const QueryColumn& column)
    {
        if (column.Numeric())
            if (auto n = cells::number(value, column.NumericMode())) return {n, {}};
        return {std::nullopt, cells::text(value)};
    }

    int compare(const SortKey& other) const
    {
        if (number && other.number) return (*number > *other.number) - (*number < *other.number);
        if (number || other.number) return number ? -1 : 1;
        return text::StrCompBinary(text, other.text);
    }
};

// What one Refresh reads: the active filters and sort levels, each with the
// slot of its column among the distinct columns they read.
struct Plan {
    struct Filter {
        const QueryFilter* filter;
        std::size_t slot;
    };
    struct Level {
        const QuerySort* sort;
        std::size_t slot;
    };
    std::vector<const QueryColumn*> columns;
    std::vector<Filter> filters;
    std::vector<Level> levels;

    Plan(const QueryFilters& allFilters, const QuerySorts& allSorts)
    {
        for (const auto& filter : allFilters.items())
            if (filter->active()) filters.push_back({filter.get(), slotOf(*filter->column())});
        for (const auto& sort : allSorts.items())
            if (sort->active()) levels.push_back({sort.get(), slotOf(*sort->column())});
    }

    std::size_t slotOf(const QueryColumn& column)
    {
        const auto found = std::find(columns.begin(), columns.end(), &column);
        if (found != columns.end()) return static_cast<std::size_t>(found - columns.begin());
        columns.push_back(&column);
        return columns.size() - 1;
    }

    // Filters are read left to right; "or" splits them into groups of which
    // one must hold in full. A group stops reading at its first failing filter.
    template <class Cell>
    bool accepts(Cell&& cell) const
    {
        bool group = true;
        for (std::size_t i = 0; i < filters.size(); ++i) {
            const auto& [filter, slot] = filters[i];
            group = group && passes(cell(slot), *filter);
            const bool groupEnds = i + 1 == filters.size() || filter->Link() == filterlink::Or;
            if (!groupEnds) continue;
            if (group) return true;
            group = true;
        }
        return filters.empty();
    }

    // Whether the row with keys `a` comes before the row with keys `b`.
    bool before(const SortKey* a, const SortKey* b) const
    {
        for (std::size_t level = 0; level < levels.size(); ++level) {
            const int c = a[level].compare(b[level]);
            if (c != 0) return levels[level].sort->Direction() == sortdirection::Descending ? c > 0 : c < 0;
        }
        return false;
    }
};
}  // namespace

std::vector<Query::Row> Query::rowObjects() const
{
    std::vector<Row> rows;
    const auto& objects = top_->Objects();
    if (!objects) return rows;
    const int count = objects->Count();
    rows.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i <= count; ++i)
        if (auto object = objects->Item(i)) rows.push_back({std::move(object), i});
    return rows;
}

void Query::Refresh()
{
    const Plan plan(*filters_, *sorts_);
    const auto levels = plan.levels.size();
    std::vector<Row> shown;
    std::vector<SortKey> keys;  // `levels` keys per shown row, read once, not per comparison
    std::vector<std::optional<Variant>> cellsOfRow(plan.columns.size());
    auto rows = rowObjects();
    // A stored query's servers are bound now, while the control refreshing it
    // is the one published for its class.
    if (!rows.empty()) top_->server(rows.front().object);
    for (auto& row : rows) {
        std::fill(cellsOfRow.begin(), cellsOfRow.end(), std::nullopt);
        const auto cell = [&](std::size_t slot) -> const Variant& {
            auto& value = cellsOfRow[slot];
            if (!value) value = valueOf(row, *plan.columns[slot]);
            return *value;
        };
        if (!plan.accepts(cell)) continue;
        for (const auto& level : plan.levels) keys.push_back(SortKey::of(cell(level.slot), *plan.columns[level.slot]));
        shown.push_back(std::move(row));
    }

    if (levels == 0) {
        rows_ = std::move(shown);
        return;
    }
    std::vector<std::size_t> order(shown.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return plan.before(&keys[a * levels], &keys[b * levels]); });
    rows_.clear();
    rows_.reserve(shown.size());
    for (const auto at : order) rows_.push_back(std::move(shown[at]));
}

}  // namespace pipespec::platform
