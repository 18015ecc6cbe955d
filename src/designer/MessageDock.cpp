#include "designer/MessageDock.h"

#include "diagnostics/Messages.h"

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QStyle>
#include <QTime>
#include <QTreeView>
#include <QVBoxLayout>

namespace pipespec::designer {

namespace {

constexpr int kMostLines = 20000;
constexpr int kKindRole = Qt::UserRole + 1;

std::string_view kindLiteral(HostMessage::Kind kind)
{
    switch (kind) {
    case HostMessage::Kind::Error: return msg::window::KindError;
    case HostMessage::Kind::Trace: return msg::window::KindTrace;
    case HostMessage::Kind::Log: return msg::window::KindLog;
    }
    return {};
}

QIcon kindIcon(HostMessage::Kind kind)
{
    const auto* style = QApplication::style();
    switch (kind) {
    case HostMessage::Kind::Error: return style->standardIcon(QStyle::SP_MessageBoxCritical);
    case HostMessage::Kind::Log: return style->standardIcon(QStyle::SP_MessageBoxInformation);
    case HostMessage::Kind::Trace: break;
    }
    return {};
}

}  // namespace

// Keeps the lines of the chosen kind (-1: all) that hold the filter text.
class MessageDock::Filter final : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void setKind(int kind)
    {
        kind_ = kind;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const auto kind = sourceModel()->index(row, 1, parent).data(kKindRole).toInt();
        return (kind_ < 0 || kind == kind_) && QSortFilterProxyModel::filterAcceptsRow(row, parent);
    }

private:
    int kind_ = -1;
};

MessageDock::MessageDock(QWidget* parent)
    : QWidget(parent),
      kind_(new QComboBox(this)),
      filter_(new QLineEdit(this)),
      clear_(new QPushButton(this)),
      lines_(new QStandardItemModel(0, 3, this)),
      shown_(new Filter(this)),
      view_(new QTreeView(this))
{
    shown_->setSourceModel(lines_);
    shown_->setFilterKeyColumn(2);
    shown_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    view_->setModel(shown_);
    view_->setRootIsDecorated(false);
    view_->setUniformRowHeights(true);
    view_->setAlternatingRowColors(true);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->header()->setStretchLastSection(true);
    view_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    view_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    filter_->setClearButtonEnabled(true);
    clear_->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));

    auto* bar = new QHBoxLayout;
    bar->addWidget(kind_);
    bar->addWidget(filter_, 1);
    bar->addWidget(clear_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(bar);
    layout->addWidget(view_, 1);

    connect(filter_, &QLineEdit::textChanged, shown_, &QSortFilterProxyModel::setFilterFixedString);
    connect(kind_, &QComboBox::currentIndexChanged, this,
            [this](int at) { shown_->setKind(kind_->itemData(at).toInt()); });
    connect(clear_, &QPushButton::clicked, this, [this] { lines_->removeRows(0, lines_->rowCount()); });
    retranslate();
}

void MessageDock::add(const HostMessage& message)
{
    if (lines_->rowCount() >= kMostLines) lines_->removeRows(0, lines_->rowCount() - kMostLines + 1);
    auto* time = new QStandardItem(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
    auto* kind = new QStandardItem(kindIcon(message.kind), shown(kindLiteral(message.kind)));
    kind->setData(static_cast<int>(message.kind), kKindRole);
    auto* text = new QStandardItem(message.text);
    lines_->appendRow({time, kind, text});  // The model owns the items.
    view_->scrollToBottom();
}

void MessageDock::retranslate()
{
    const int chosen = kind_->currentIndex();
    kind_->clear();
    kind_->addItem(shown(msg::window::AllKinds), -1);
    for (const auto kind : {HostMessage::Kind::Error, HostMessage::Kind::Trace, HostMessage::Kind::Log})
        kind_->addItem(kindIcon(kind), shown(kindLiteral(kind)), static_cast<int>(kind));
    kind_->setCurrentIndex(chosen < 0 ? 0 : chosen);
    filter_->setPlaceholderText(shown(msg::window::FilterPrompt));
    clear_->setText(shown(msg::window::Clear));
    lines_->setHorizontalHeaderLabels({shown(msg::window::Time), shown(msg::window::Kind), shown(msg::window::Text)});
    for (int row = 0; row < lines_->rowCount(); ++row) {
        auto* kind = lines_->item(row, 1);
        kind->setText(shown(kindLiteral(static_cast<HostMessage::Kind>(kind->data(kKindRole).toInt()))));
    }
}

QStringList MessageDock::shownLines() const
{
    QStringList shownNow;
    for (int row = 0; row < shown_->rowCount(); ++row)
        shownNow << shown_->index(row, 1).data().toString() + ": " + shown_->index(row, 2).data().toString();
    return shownNow;
}

}  // namespace pipespec::designer
