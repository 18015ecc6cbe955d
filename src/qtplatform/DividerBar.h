#pragma once

// The divider between two parts of a control: a splitter whose end of a
// move, as the user lets the handle go, is an event of its own
// (SplitterMoveStop), on which a control lays its parts out anew.

#include <QSplitter>

namespace pipespec::qtplatform {

class DividerBar final : public QSplitter {
    Q_OBJECT

public:
    explicit DividerBar(Qt::Orientation orientation, QWidget* parent = nullptr);

signals:
    void SplitterMoveStop();

protected:
    QSplitterHandle* createHandle() override;
};

}  // namespace pipespec::qtplatform
