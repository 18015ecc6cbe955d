#include "qtplatform/ObjectDrag.h"

#include "objectmodel/Grid.h"
#include "platform/store/Database.h"

#include <QDrag>
#include <QMimeData>
#include <QWidget>

namespace pipespec::qtplatform {

bool carriesObjects(const QMimeData* data) { return data && data->hasFormat(kObjectsMimeType); }

Qt::DropActions toDropActions(int effects)
{
    Qt::DropActions actions;
    if (effects & dropeffect::Copy) actions |= Qt::CopyAction;
    if (effects & dropeffect::Move) actions |= Qt::MoveAction;
    if (effects & dropeffect::Link) actions |= Qt::LinkAction;
    return actions;
}

Qt::DropAction toDropAction(int effects)
{
    if (effects & dropeffect::Copy) return Qt::CopyAction;
    if (effects & dropeffect::Move) return Qt::MoveAction;
    if (effects & dropeffect::Link) return Qt::LinkAction;
    return Qt::IgnoreAction;
}

int toEffect(Qt::DropAction action)
{
    switch (action) {
    case Qt::CopyAction: return dropeffect::Copy;
    case Qt::MoveAction: return dropeffect::Move;
    case Qt::LinkAction: return dropeffect::Link;
    default: return dropeffect::None;
    }
}

int dragObjects(QWidget& source, platform::StoreWorkset* workset, const Variant& objects, int allowedEffects)
{
    if (workset) workset->setDragObject(objects);
    auto* drag = new QDrag(&source);  // Owned by the source, its Qt parent.
    auto* data = new QMimeData;       // Owned by the drag.
    data->setData(kObjectsMimeType, {});
    drag->setMimeData(data);
    return toEffect(drag->exec(toDropActions(allowedEffects), toDropAction(allowedEffects)));
}

}  // namespace pipespec::qtplatform
