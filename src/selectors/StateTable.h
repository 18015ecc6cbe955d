#pragma once

// The state of an element of a PDMS class: an attribute of its PDMS chapter
// whose values come from the project's state table, with a column of its own
// in the chapter's table view.

#include "elements/AddToPipeClass.h"

#include <memory>
#include <string>
#include <string_view>

namespace pipespec::addtopipeclass {

using StandardTableRef = std::shared_ptr<IStandardTable>;

// Column or attribute name -> shown. A name the map lacks counts as shown.
using ColumnChoice = KeyedMap<bool>;

// Where the state table lives in a project family.
inline constexpr std::string_view kStateTablePath = "@3D|00|PDMS|STATE";

// Gives the element its state attribute, linked to the state table.
void AddStateColumn(const DeviceRef& element);

// The attribute `name` of the chapter with text type and the table as value
// list, made (with its column in the table view) where missing.
SpecRef StateSpecification(const SpecRef& chapter, const std::string& name, const StandardTableRef& table);

// The state table of a project family, made in the project's PDMS folder when
// the family has none.
StandardTableRef StateTable(const ProjectRef& project);

// A standard table by its "|" path, looked up in the project and then up its
// chain of base projects.
StandardTableRef GetStandardTable(std::string_view path, const ProjectRef& project);

// Rebuilds the column count, titles and widths of the chapter's table view:
// the fixed first columns, then every attribute of the chapter that is shown.
// With `hideTemporary` an attribute that exists only by inheritance is hidden.
void HideColumns(const SpecRef& chapter, const ColumnChoice& choice, bool hideTemporary);

}  // namespace pipespec::addtopipeclass
