#include "qtplatform/QtGrid.h"

#include "diagnostics/ErrorTail.h"
#include "platform/store/Collections.h"
#include "platform/store/Database.h"
#include "qtplatform/GridCellDelegate.h"
#include "qtplatform/GridMenu.h"
#include "qtplatform/ObjectDrag.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace pipespec::qtplatform {

namespace {
// Every entry from Qt's event loop ends in this error tail: no exception
// crosses back into Qt.
constexpr std::string_view kClass = "QtGrid";

// The characters of the grid's font that make one width unit.
constexpr int kCharactersPerUnit = 4;

using diagnostics::Procedure;

// What a drag over the grid is told: the effect the sink answered, if any.
// An entering drag of objects is taken even without one, so that the grid
// hears its moves and the sink may answer otherwise over another row.
void answerDrag(QDragMoveEvent& event, int effect, bool entering)
{
    if (effect != dropeffect::None) {
        event.setDropAction(toDropAction(effect));
        event.accept();
        return;
    }
    if (entering && carriesObjects(event.mimeData())) return event.accept();
    event.ignore();
}
}  // namespace

QtGrid::QtGrid(std::string settingsName, QWidget* parent)
    : QTableView(parent),
      model_(new QueryTableModel(this)),
      settings_(std::make_shared<platform::GridSettings>(std::move(settingsName)))
{
    model_->setCellWriter([this](const QueryTableModel::CellEdit& edit) { return writeCell(edit); });
    setModel(model_);
    setItemDelegate(new GridCellDelegate([this](const QModelIndex& index) { return mayOpenEditor(index); }, this));
    settings_->setLoadedHandler([grid = QPointer<QtGrid>(this)] {
        if (grid) grid->applyLoadedLayout();
    });
    setUpRows();
    setUpHeads();
}

void QtGrid::setUpRows()
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setDragDropMode(DragDrop);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &QtGrid::noteSelection);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        currentObject_ = model_->rowObject(current.row());
        if (current.isValid()) currentColumn_ = model_->column(current.column());
    });
}

void QtGrid::setUpHeads()
{
    auto* head = horizontalHeader();
    head->setSectionsClickable(true);
    head->setSectionsMovable(true);
    head->setSortIndicatorShown(true);
    head->setSortIndicator(-1, Qt::AscendingOrder);
    head->setContextMenuPolicy(Qt::CustomContextMenu);
    head->viewport()->setAcceptDrops(true);
    head->viewport()->installEventFilter(this);
    connect(head, &QHeaderView::sectionClicked, this, &QtGrid::clickHead);
    connect(head, &QHeaderView::sectionMoved, this,
            [this](int section, int /*oldVisual*/, int newVisual) { columnMoved(section, newVisual); });
    connect(head, &QHeaderView::customContextMenuRequested, this, [this, head](const QPoint& at) {
        if (const auto column = model_->column(head->logicalIndexAt(at))) showMenu(head->mapToGlobal(at), column);
    });
}

void QtGrid::setColumnsMovable(bool on) { horizontalHeader()->setSectionsMovable(on); }

int QtGrid::pixelsPerUnit() const { return kCharactersPerUnit * fontMetrics().averageCharWidth(); }

// ---- What it shows ------------------------------------------------------

ObjectRef QtGrid::CurrentSpecification() const
{
    if (!currentColumn_ || !currentObject_) return nullptr;
    const int current = currentIndex().row();
    const int row = same(model_->rowObject(current), currentObject_) ? current : model_->rowOf(currentObject_);
    if (row < 0) return nullptr;
    auto shown = model_->query()->CellObject(row + 1, currentColumn_);
    return asSpec(shown) ? shown : nullptr;
}

CollectionRef QtGrid::SelectedObjects() const
{
    auto selected = std::make_shared<platform::FreeCollection>();
    for (const auto& object : selection_) selected->Add(object);
    return selected;
}

void QtGrid::noteSelection()
{
    auto rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    selection_.clear();
    for (const auto& row : rows)
        if (auto object = model_->rowObject(row.row())) selection_.push_back(std::move(object));
}

void QtGrid::SetQuery(const QueryRef& query)
{
    selectionModel()->clear();
    currentObject_ = nullptr;
    currentColumn_ = nullptr;
    if (query) placeColumnsAsLoaded(*query);
    model_->setQuery(query);
    layOutColumns({});
    showSortIndicator();
}

void QtGrid::Refresh() { reload(shownWidths()); }

void QtGrid::ShutDown()
{
    model_->setQuery(nullptr);
    events_.reset();
    selection_.clear();
    currentObject_ = nullptr;
    currentColumn_ = nullptr;
}

void QtGrid::reload(const Widths& kept)
{
    // What the user chose is kept by object: the rows may have moved.
    const auto selected = std::exchange(selection_, {});
    const auto current = std::exchange(currentObject_, nullptr);
    const auto column = currentColumn_;
    model_->reload();
    layOutColumns(kept);
    showSortIndicator();
    chooseAgain(selected, current, column);
}

void QtGrid::chooseAgain(const std::vector<ObjectRef>& selected, const ObjectRef& current, const QueryColumnRef& column)
{
    std::unordered_set<const IBaseObject*> wanted;
    for (const auto& object : selected) wanted.insert(object.get());
    QItemSelection again;
    int currentRow = -1;
    for (int row = 0; (!wanted.empty() || current) && row < model_->rowCount(); ++row) {
        const auto object = model_->rowObject(row);
        if (current && same(object, current)) currentRow = row;
        if (!wanted.count(object.get())) continue;
        const auto cell = model_->index(row, 0);
        // Neighbouring rows make one range, also when all are selected.
        if (!again.isEmpty() && again.last().bottom() == row - 1)
            again.last() = QItemSelectionRange(again.last().topLeft(), cell);
        else
            again.select(cell, cell);
    }
    selectionModel()->select(again, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    noteSelection();
    // Setting the current cell names a column; the current column stays as
    // it was while the query still has it.
    if (currentRow >= 0)
        selectionModel()->setCurrentIndex(model_->index(currentRow, std::max(0, model_->sectionOf(column))),
                                          QItemSelectionModel::NoUpdate);
    currentColumn_ = model_->sectionOf(column) < 0 ? nullptr : column;
}

QtGrid::Widths QtGrid::shownWidths() const
{
    Widths widths;
    for (int section = 0; section < model_->columnCount(); ++section)
        if (!isColumnHidden(section)) widths.emplace_back(model_->column(section), columnWidth(section));
    return widths;
}

void QtGrid::layOutColumns(const Widths& kept)
{
    const int unit = pixelsPerUnit();
    for (int section = 0; section < model_->columnCount(); ++section) {
        const auto column = model_->column(section);
        const int units = settings_->columnWidth(*column);
        setColumnHidden(section, !column->Visible() || units == 0);
        if (isColumnHidden(section)) continue;
        const auto same =
            std::find_if(kept.begin(), kept.end(), [&](const auto& entry) { return entry.first == column; });
        // A column is at least as wide as its title, so that no head is cut.
        setColumnWidth(section, same != kept.end()
                                    ? same->second
                                    : std::max(units * unit, horizontalHeader()->sectionSizeHint(section)));
    }
}

void QtGrid::placeColumnsAsLoaded(IQuery& query) const
{
    const auto columns = query.Top()->Columns();
    std::vector<std::pair<int, QueryColumnRef>> placed;
    for (int i = 1; i <= columns->Count(); ++i)
        if (const auto position = settings_->columnPosition(*columns->Item(i)))
            placed.emplace_back(*position, columns->Item(i));
    std::stable_sort(placed.begin(), placed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [position, column] : placed) {
        columns->Remove(column->Key());
        int placedAt = 0;
        columns->Insert(column, position, placedAt);
    }
}

void QtGrid::applyLoadedLayout()
{
    if (!model_->query()) return;
    placeColumnsAsLoaded(*model_->query());
    reload({});
}

void QtGrid::saveSettings(ObjectSetNode& node) const
{
    const int unit = pixelsPerUnit();
    for (int section = 0; section < model_->columnCount(); ++section) {
        const auto column = model_->column(section);
        const int units =
            isColumnHidden(section)
                ? settings_->columnWidth(*column)
                : std::max(1, static_cast<int>(std::lround(static_cast<double>(columnWidth(section)) / unit)));
        platform::GridSettings::store(node, *column, units, section + 1);
    }
}

void QtGrid::showSortIndicator()
{
    const auto& query = model_->query();
    int section = -1;
    auto order = Qt::AscendingOrder;
    if (query && query->Sorts()->Count() > 0) {
        const auto first = query->Sorts()->Item(0);
        if (first->Direction() != sortdirection::None) section = model_->sectionOf(first->Column());
        if (first->Direction() == sortdirection::Descending) order = Qt::DescendingOrder;
    }
    horizontalHeader()->setSortIndicator(section, order);
}

// ---- What the user does -------------------------------------------------

template <class Action>
void QtGrid::watchingChange(Action&& action)
{
    const auto current = currentIndex();
    const auto selection = selectionModel()->selection();
    action();
    if (currentIndex() == current && selectionModel()->selection() == selection) return;
    Procedure(kClass, "Change").run([&] { events_.raise([](IQGridEvents& sink) { sink.Change(); }); });
}

void QtGrid::mousePressEvent(QMouseEvent* event)
{
    watchingChange([&] { QTableView::mousePressEvent(event); });
}

void QtGrid::mouseMoveEvent(QMouseEvent* event)
{
    watchingChange([&] { QTableView::mouseMoveEvent(event); });
}

void QtGrid::mouseReleaseEvent(QMouseEvent* event)
{
    watchingChange([&] { QTableView::mouseReleaseEvent(event); });
}

void QtGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    watchingChange([&] { QTableView::mouseDoubleClickEvent(event); });
    Procedure(kClass, "DblClick").run([&] { events_.raise([](IQGridEvents& sink) { sink.DblClick(); }); });
}

void QtGrid::keyPressEvent(QKeyEvent* event)
{
    // Help is the control's: F1 goes on to the widget that holds the grid.
    if (event->key() == Qt::Key_F1) return event->ignore();
    if (columnsDeletable_ && event->key() == Qt::Key_Delete && event->modifiers() == Qt::ControlModifier)
        return deleteCurrentColumn();
    watchingChange([&] { QTableView::keyPressEvent(event); });
}

void QtGrid::contextMenuEvent(QContextMenuEvent* event) { showMenu(event->globalPos(), nullptr); }

void QtGrid::showMenu(const QPoint& at, const QueryColumnRef& headColumn)
{
    Procedure procedure(kClass, headColumn ? "TitlePopUp" : "PopUp");
    std::shared_ptr<platform::PopUpMenu> menu;
    if (!procedure.run([&] { menu = platform::openMenu(headColumn, events_); }) || menu->entries().empty()) return;
    QMenu shown(this);
    fillMenu(shown, menu->entries(), [&](const std::string& key) {
        procedure.step([&] { platform::openSubMenu(menu, key, headColumn, events_); });
    });
    const auto* chosen = shown.exec(at);
    if (chosen) procedure.step([&] { platform::chooseMenuEntry(menu, menuKey(*chosen), headColumn, events_); });
}

void QtGrid::clickHead(int section)
{
    Procedure(kClass, "HeadClick").run([&] {
        const auto column = model_->column(section);
        if (!column || !model_->query()) return;
        currentColumn_ = column;
        if (platform::clickHead(*model_->query(), column, events_)) return Refresh();
        showSortIndicator();
    });
}

void QtGrid::columnMoved(int section, int newVisual)
{
    Procedure(kClass, "ColumnsChanged").run([&] {
        const auto column = model_->column(section);
        if (!column || !model_->query()) return;
        // The query keeps the order: the column moves there, and the heads,
        // shown anew, follow it.
        const auto kept = shownWidths();
        platform::moveColumn(*model_->query(), column, newVisual + 1, events_);
        reload(kept);
    });
}

void QtGrid::deleteCurrentColumn()
{
    Procedure(kClass, "BeforeColumnsDelete").run([&] {
        if (!currentColumn_ || !model_->query()) return;
        const auto kept = shownWidths();
        if (!platform::deleteColumns(*model_->query(), {currentColumn_}, events_)) return;
        currentColumn_ = nullptr;
        reload(kept);
    });
}

bool QtGrid::mayOpenEditor(const QModelIndex& index)
{
    bool may = false;
    Procedure(kClass, "BeforeCellEdit").run([&] {
        const auto column = model_->column(index.column());
        may = column && !model_->isCheckBox(index) &&
              platform::beginCellEdit(model_->rowObject(index.row()), column, events_);
    });
    return may;
}

bool QtGrid::writeCell(const QueryTableModel::CellEdit& edit)
{
    bool written = false;
    Procedure(kClass, "AfterCellEdit").run([&] {
        const auto& query = model_->query();
        if (!query) return;
        // A check box has no editor: the click asks and writes at once.
        if (edit.checkBox && !platform::beginCellEdit(model_->rowObject(edit.row), edit.column, events_)) return;
        written = platform::finishCellEdit(*query, edit.row + 1, edit.column, edit.value, events_);
    });
    return written;
}

// ---- Drag and drop ------------------------------------------------------

void QtGrid::startDrag(Qt::DropActions /*supportedActions*/)
{
    Procedure(kClass, "OLEStartDrag").run([&] {
        const Variant dragged(SelectedObjects());
        const int allowed = platform::startDrag(dragged, events_);
        if (allowed == dropeffect::None) return;
        const int effect = dragObjects(*this, workset_.get(), dragged, allowed);
        events_.raise([&](IQGridEvents& sink) { sink.OLECompleteDrag(effect); });
    });
}

QueryColumnRef QtGrid::headAt(const QPointF& position) const
{
    return model_->column(horizontalHeader()->logicalIndexAt(position.toPoint()));
}

void QtGrid::dragOver(QDragMoveEvent& event, const QueryColumnRef& headColumn, bool entering)
{
    dragEffect_ = dropeffect::None;
    Procedure(kClass, headColumn ? "OLETitleDragOver" : "OLEDragOver").run([&] {
        if (!carriesObjects(event.mimeData())) return;
        dragEffect_ = platform::dragOver(workset_ ? workset_->DragObject() : Variant(), headColumn, events_);
    });
    answerDrag(event, dragEffect_, entering);
}

void QtGrid::drop(QDropEvent& event, const QueryColumnRef& headColumn)
{
    int effect = std::exchange(dragEffect_, dropeffect::None);
    Procedure(kClass, headColumn ? "OLETitleDragDrop" : "OLEDragDrop").run([&] {
        if (!carriesObjects(event.mimeData())) return;
        effect = platform::drop(workset_ ? workset_->DragObject() : Variant(), effect, headColumn, events_);
    });
    if (effect == dropeffect::None) return event.ignore();
    event.setDropAction(toDropAction(effect));
    event.accept();
}

void QtGrid::dragEnterEvent(QDragEnterEvent* event) { dragOver(*event, nullptr, true); }

void QtGrid::dragMoveEvent(QDragMoveEvent* event) { dragOver(*event, nullptr, false); }

void QtGrid::dropEvent(QDropEvent* event) { drop(*event, nullptr); }

bool QtGrid::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != horizontalHeader()->viewport()) return QTableView::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto& move = static_cast<QDragMoveEvent&>(*event);
        dragOver(move, headAt(move.position()), event->type() == QEvent::DragEnter);
        return true;
    }
    case QEvent::Drop: {
        auto& dropped = static_cast<QDropEvent&>(*event);
        drop(dropped, headAt(dropped.position()));
        return true;
    }
    default: return QTableView::eventFilter(watched, event);
    }
}

}  // namespace pipespec::qtplatform
