#pragma once

// The numbers with a fixed meaning in the database: the numbered options of
// the workset's Globals and of a project, and the function codes (the text
// of GD.VFCD) the logic tells apart. Every user (the platform, the module,
// tests) names them from here.

#include <cstdint>

namespace pipespec {

namespace option {
// A map of per-pipe-class entries the host caches; an entry is dropped when
// the class's elements change. It starts empty in every session.
inline constexpr int PipeClassCache = 64;
// The object holding the norm dimensions, found on the project chain by
// StdValues3D.
inline constexpr int NormDimensions = 231;
// The root of a project's generic-type menu.
inline constexpr int MenuRoot = 233;
// The base object selectors are made from.
inline constexpr int SelectorBase = 368;
}  // namespace option

namespace functioncode {
// The codes 10000 to 10008 make an object a pipe class.
inline constexpr std::int32_t FirstPipeClass = 10000;
inline constexpr std::int32_t LastPipeClass = 10008;
// A pipe class met inside another when components are collected: it is
// listed as met, and its elements are not collected.
inline constexpr std::int32_t UncollectedPipeClass = 10002;
// A template class: its elements may be structure elements.
inline constexpr std::int32_t TemplatePipeClass = 10003;
// Codes from 91000 up to, not including, 92000 mark bolting components.
inline constexpr std::int32_t FirstBolting = 91000;
inline constexpr std::int32_t EndBolting = 92000;
}  // namespace functioncode

}  // namespace pipespec
