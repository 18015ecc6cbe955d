#pragma once

// The host's messages as they come: error reports, trace lines and log
// lines, newest last, each with its time. The user narrows them to one kind
// and to lines holding a text; the oldest go once the dock holds 20000.

#include "designer/DesignerHost.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class QPushButton;
class QStandardItemModel;
class QTreeView;

namespace pipespec::designer {

class MessageDock final : public QWidget {
    Q_OBJECT

public:
    explicit MessageDock(QWidget* parent = nullptr);

    void add(const HostMessage& message);
    void retranslate();
    // The lines shown now, as "Kind: text".
    QStringList shownLines() const;
    QLineEdit& filterBox() const { return *filter_; }
    QComboBox& kindBox() const { return *kind_; }

private:
    class Filter;

    QComboBox* kind_;
    QLineEdit* filter_;
    QPushButton* clear_;
    QStandardItemModel* lines_;
    Filter* shown_;
    QTreeView* view_;
};

}  // namespace pipespec::designer
