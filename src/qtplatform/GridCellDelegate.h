#pragma once

// The cell delegate of a QtGrid: draws cells as Qt's styled delegate does,
// and opens a cell's editor only where the grid lets it, so that the grid can
// ask its event sink before the user types anything.

#include <QStyledItemDelegate>

#include <functional>

namespace pipespec::qtplatform {

class GridCellDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    // Whether the editor of that cell may open.
    using EditorGate = std::function<bool(const QModelIndex&)>;

    GridCellDelegate(EditorGate gate, QObject* parent);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    EditorGate gate_;
};

}  // namespace pipespec::qtplatform
