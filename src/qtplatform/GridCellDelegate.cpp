#include "qtplatform/GridCellDelegate.h"

#include <utility>

namespace pipespec::qtplatform {

GridCellDelegate::GridCellDelegate(EditorGate gate, QObject* parent)
    : QStyledItemDelegate(parent),
      gate_(std::move(gate))
{
}

QWidget* GridCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const
{
    if (!gate_(index)) return nullptr;
    return QStyledItemDelegate::createEditor(parent, option, index);
}

}  // namespace pipespec::qtplatform
