#pragma once

// Reading JSON that comes from outside the program: project files, name
// tables, language tables, the texts a database file keeps. Whatever the text
// holds, reading it gives a value or error Configuration whose description
// starts with what was read; the JSON library's own exceptions stay inside.
// Nesting is limited, since the readers of a value walk it level by level.

#include <nlohmann/json_fwd.hpp>

#include <iosfwd>
#include <string_view>

namespace pipespec {

// Containers (objects and lists) inside one another, the outermost counted.
inline constexpr int kMaxJsonNesting = 512;

// `source` names what is read as the subject of the error ("Project file
// a.json"): "<source> is not valid JSON: ..." for bad syntax and for a number
// beyond the range of a double, "<source> nests deeper than 512 levels".
[[nodiscard]] nlohmann::json parseJson(std::string_view text, std::string_view source);
[[nodiscard]] nlohmann::json parseJson(std::istream& in, std::string_view source);

}  // namespace pipespec
