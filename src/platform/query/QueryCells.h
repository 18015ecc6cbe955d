#pragma once

// What a cell of a query shows, and how a value the user types goes back.
//
// A column first finds its source object: it starts at the row object, or at
// the source object of its base column, and takes from there
//   - no source:        that object itself;
//   - 0, owner:         its owner (the pipe class of an element);
//   - 13, base object:  its CDevice (the catalogue component of an element);
//   - 19, attribute:    its attribute of the column's source name, which may
//                       be inherited.
// A step that finds nothing leaves the cell empty.
//
// The value kind then takes one property of the source object:
//   - 1  Description, 2 Name: of any object;
//   - 20 component: the name and, where there is one, " - " and the
//        description, the way the list names an object in a cell;
//   - 30 display value: the attribute's value as users read it, the
//        description of its value-list row where it has one ("DN 100");
//   - 31 range bound: the lower (parameter "0") or upper ("1") bound of a
//        range answer, its indexed values 0 and 1;
//   - 32 value: the attribute's stored value ("10100").
// Kinds 30 to 32 show nothing for an object that is not an attribute, and a
// column with no value kind shows nothing: it is a placeholder.
//
// Values are texts. Where both sides of a comparison read as numbers they
// compare as numbers; otherwise as texts, byte by byte.

#include "objectmodel/QueryInterfaces.h"
#include "platform/query/QueryDefinition.h"

#include <optional>
#include <string>

namespace pipespec::platform {

class QueryColumn;

namespace cells {

ObjectRef sourceObject(const ObjectRef& row, const QueryColumn& column);
Variant read(const ObjectRef& source, const ColumnSettings& column);
// Writes where the column reads, storing an inherited object first. A cell
// without a source object is an error (91), a kind that cannot be written
// (none, 20) too (1001).
void write(const ObjectRef& source, const ColumnSettings& column, const Variant& value);

// How a value reads as text: numbers as the logic writes them, flags as "1"
// and "0", an object by its name.
std::string text(const Variant& value);
// The value as a flag: a flag, or a number other than 0.
bool flag(const Variant& value);
// The value as a number, if it reads as one. Numeric mode 0 takes a text
// that is a number as a whole, mode 1 the first number within the text.
std::optional<double> number(const Variant& value, int numericMode);
// -1, 0 or 1.
int compare(const Variant& a, const Variant& b, int numericMode);

}  // namespace cells
}  // namespace pipespec::platform
