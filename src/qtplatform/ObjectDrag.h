#pragma once

// Database objects dragged between the widgets of the designer. A drag
// carries only a marker; the objects travel as the workset's DragObject,
// which the source sets as the drag starts, as the platform's drag sources
// do. Every widget that takes such a drop reads the objects from there; a
// drag without the marker (text from another program) is not one of ours.
// The workset keeps the objects after the drag, as a clipboard keeps its
// content, until the next drag of the process starts.

#include "objectmodel/Variant.h"

#include <Qt>

class QMimeData;
class QWidget;

namespace pipespec::platform {
class StoreWorkset;
}

namespace pipespec::qtplatform {

inline constexpr char kObjectsMimeType[] = "application/x-pipespec-objects";

// Whether the drag carries objects of this process.
[[nodiscard]] bool carriesObjects(const QMimeData* data);

// dropeffect bits and Qt's drop actions, both ways. A single effect becomes
// one action: copy before move before link.
[[nodiscard]] Qt::DropActions toDropActions(int effects);
[[nodiscard]] Qt::DropAction toDropAction(int effects);
[[nodiscard]] int toEffect(Qt::DropAction action);

// Drags the objects out of `source` with the allowed effects, the workset
// (if any) carrying them; the effect of the drop, 0 when nothing took it.
int dragObjects(QWidget& source, platform::StoreWorkset* workset, const Variant& objects, int allowedEffects);

}  // namespace pipespec::qtplatform
