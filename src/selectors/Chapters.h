#pragma once

// Routines of AddToPipeClass that work on attributes and lists for the rest
// of the module: chapter inheritance, placing a new attribute on its form,
// the guarded write, the generic-type menu, the components of a pipe class.

#include "elements/AddToPipeClass.h"

#include <string>

namespace pipespec::addtopipeclass {

// Gives the device a chapter that follows the source chapter: inherited within
// one project, copied attribute by attribute across projects.
SpecRef InheritInChapter(const DeviceRef& device, const std::string& name, const SpecRef& source);

// Places a new attribute's control under the lowest control of its column,
// above the box's lower edge (or the default limit).
void CalcControlProperties(const SpecRef& newSpec, const SpecRef& box, const SpecRef& model);

// Writes a value unless it is already there; changed collects over many calls.
void SetAttribute(const SpecRef& spec, const std::string& value, bool& changed);

// The root of the generic-type menu of a project.
DeviceRef GetMenuPath(const ProjectRef& project);

// The elements of a pipe class; recursive follows pipe classes used as elements.
CollectionRef PipeClassComponents(const DeviceRef& pipeClass, bool recursive);
CollectionRef GetComponentsRecursive(const DeviceRef& device, bool recursive, CollectionRef list, ObjectMap& map,
                                     bool top);

}  // namespace pipespec::addtopipeclass
