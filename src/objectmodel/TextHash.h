#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pipespec {

// Hashes texts so that a map keyed by std::string is searched with a
// std::string_view, without making a string for each look-up.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};

// A map by text, searched with any text.
template <class T>
using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

}  // namespace pipespec
