#include "qtplatform/QueryTableModel.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/ServiceRegistry.h"
#include "platform/query/QueryCells.h"

#include <QApplication>
#include <QStyle>

namespace pipespec::qtplatform {

namespace {
constexpr std::string_view kClass = "QueryTableModel";

QString toQString(const std::string& text) { return QString::fromStdString(text); }
}  // namespace

QueryTableModel::QueryTableModel(QObject* parent)
    : QAbstractTableModel(parent),
      objectIcon_(QApplication::style()->standardIcon(QStyle::SP_FileIcon))
{
}

void QueryTableModel::setQuery(QueryRef query)
{
    query_ = std::move(query);
    reload();
}

void QueryTableModel::reload()
{
    beginResetModel();
    columns_.clear();
    rows_ = 0;
    if (query_) {
        const auto columns = query_->Top()->Columns();
        for (int i = 1; i <= columns->Count(); ++i) columns_.push_back(columns->Item(i));
        rows_ = query_->RowCount();
    }
    endResetModel();
}

void QueryTableModel::valuesChanged()
{
    if (columns_.empty()) return;
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    if (rows_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1));
}

QueryColumnRef QueryTableModel::column(int section) const
{
    if (section < 0 || static_cast<std::size_t>(section) >= columns_.size()) return nullptr;
    return columns_[static_cast<std::size_t>(section)];
}

int QueryTableModel::sectionOf(const QueryColumnRef& column) const
{
    for (std::size_t section = 0; section < columns_.size(); ++section)
        if (columns_[section] == column) return static_cast<int>(section);
    return -1;
}

ObjectRef QueryTableModel::rowObject(int row) const
{
    if (!query_ || row < 0 || row >= rows_ || row >= query_->RowCount()) return nullptr;
    return query_->RowObject(row + 1);
}

int QueryTableModel::rowOf(const ObjectRef& object) const
{
    if (!object) return -1;
    for (int row = 0; row < rows_; ++row)
        if (same(rowObject(row), object)) return row;
    return -1;
}

bool QueryTableModel::isCheckBox(const QModelIndex& index) const
{
    const auto& shown = column(index.column());
    // Only a check-box column draws its two states as a box; other extended
    // columns show their object or value whatever items their server offers.
    if (!shown || shown->ExtendedKind() != extendedkind::CheckBox || !rowObject(index.row())) return false;
    return query_->CellItemsKind(index.row() + 1, shown) == cellitems::TwoState;
}

int QueryTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int QueryTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QueryTableModel::Cell QueryTableModel::readCell(const QModelIndex& index) const
{
    Cell cell;
    diagnostics::Procedure(kClass, "readCell").run([&] {
        if (!rowObject(index.row())) return;
        cell.checkBox = isCheckBox(index);
        ++reads_.cellReads;
        cell.value = query_->CellValue(index.row() + 1, column(index.column()));
    });
    return cell;
}

// Only the text, the check state and the tool tip read the cell; the other
// roles follow from the column alone.
QVariant QueryTableModel::roleData(const QModelIndex& index, int role, std::optional<Cell>& cell) const
{
    const auto& shown = column(index.column());
    if (!shown) return {};
    const auto read = [&]() -> const Cell& {
        if (!cell) cell = readCell(index);
        return *cell;
    };
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::ToolTipRole:
        if (read().checkBox) return {};
        return toQString(platform::cells::text(read().value));
    case Qt::CheckStateRole:
        if (shown->ExtendedKind() == extendedkind::None || !read().checkBox) return {};
        return platform::cells::flag(read().value) ? Qt::Checked : Qt::Unchecked;
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (shown->Numeric() ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::DecorationRole: return shown->ObjectColumn() ? QVariant(objectIcon_) : QVariant();
    default: return {};
    }
}

QVariant QueryTableModel::data(const QModelIndex& index, int role) const
{
    ++reads_.dataCalls;
    std::optional<Cell> cell;
    return roleData(index, role, cell);
}

void QueryTableModel::multiData(const QModelIndex& index, QModelRoleDataSpan roleDataSpan) const
{
    ++reads_.dataCalls;
    std::optional<Cell> cell;
    for (auto& entry : roleDataSpan) entry.setData(roleData(index, entry.role(), cell));
}

QVariant QueryTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const auto& shown = orientation == Qt::Horizontal ? column(section) : nullptr;
    if (!shown || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QAbstractTableModel::headerData(section, orientation, role);
    return toQString(diagnostics::utilities().Translate(shown->Title()));
}

Qt::ItemFlags QueryTableModel::flags(const QModelIndex& index) const
{
    const auto& shown = column(index.column());
    if (!shown) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    // Whether an editable extended cell is a check box is asked only when the
    // user acts on it, not at every paint.
    if (shown->Editable()) flags |= Qt::ItemIsEditable;
    if (shown->Editable() && shown->ExtendedKind() != extendedkind::None) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

bool QueryTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!writer_ || !column(index.column()) || (role != Qt::EditRole && role != Qt::CheckStateRole)) return false;
    const bool checkBox = role == Qt::CheckStateRole;
    const Variant given = checkBox ? Variant(value.toInt() == Qt::Checked) : Variant(value.toString().toStdString());
    if (!writer_({index.row(), column(index.column()), given, checkBox})) return false;
    // A cell may show what another column of the row reads from.
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    return true;
}

Qt::DropActions QueryTableModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

}  // namespace pipespec::qtplatform
