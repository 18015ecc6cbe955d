#include "qtplatform/DividerBar.h"

#include <QMouseEvent>

namespace pipespec::qtplatform {

namespace {

// A handle that tells its divider when a drag of it ends.
class DividerHandle final : public QSplitterHandle {
public:
    DividerHandle(Qt::Orientation orientation, DividerBar* divider) : QSplitterHandle(orientation, divider) {}

protected:
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        QSplitterHandle::mouseReleaseEvent(event);
        if (event->button() == Qt::LeftButton) emit static_cast<DividerBar*>(splitter())->SplitterMoveStop();
    }
};

}  // namespace

DividerBar::DividerBar(Qt::Orientation orientation, QWidget* parent) : QSplitter(orientation, parent)
{
    setChildrenCollapsible(false);
}

QSplitterHandle* DividerBar::createHandle()
{
    return new DividerHandle(orientation(), this);  // Owned by this divider, its Qt parent.
}

}  // namespace pipespec::qtplatform
