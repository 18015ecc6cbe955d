#pragma once

// The picture of a database object: one small icon per kind, so that a tree
// or a tab tells a pipe class from its elements, a selector from a catalogue
// component, at a glance. Folders, roots and files use the style's own
// icons; the kinds the style does not know are drawn, a letter on a colour.

#include "objectmodel/ObjectModel.h"

#include <QIcon>

namespace pipespec::qtplatform {

enum class ObjectKind {
    Project,    // a fixed root of a project ("@40")
    Folder,     // a device that only structures
    PipeClass,  // a device with a pipe-class function code
    Element,    // a member of a pipe class
    Selector,   // the selector root of a pipe class and everything below it
    Component,  // a catalogue component: a function code or a component type
    Device,     // any other device
    Chapter,    // an attribute that holds attributes
    Attribute,
    Table,  // a standard table
    Value,  // a row of a standard table
    Other,
};

// What the object is, by the rules above; Other for empty.
[[nodiscard]] ObjectKind kindOfObject(const ObjectRef& object);
[[nodiscard]] QIcon pictureOfKind(ObjectKind kind);
[[nodiscard]] inline QIcon pictureByObject(const ObjectRef& object) { return pictureOfKind(kindOfObject(object)); }

}  // namespace pipespec::qtplatform
