#include "qtplatform/PCOMRange.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/ServiceRegistry.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace pipespec::qtplatform {

namespace {

constexpr std::string_view kClass = "PCOMRange";
// Room around a cell's text.
constexpr int kCellPadding = 16;

using diagnostics::Procedure;

QString qt(const std::string& text) { return QString::fromStdString(text); }

// The texts of a list attribute's rows, empty rows left out.
QStringList rowsOf(const SpecRef& list)
{
    QStringList rows;
    if (!list) return rows;
    for (int i = 0; i < list->RowCount(); ++i)
        if (auto value = list->GetXValue(i); !value.empty()) rows << qt(value);
    return rows;
}

QString valueOf(const DeviceRef& device, const std::string& name)
{
    const auto spec = device ? device->Spec(name) : nullptr;
    return spec ? qt(spec->Value()) : QString();
}

int raised(double& size, int needed)
{
    const int taken = std::max(static_cast<int>(std::lround(size)), needed);
    size = taken;
    return taken;
}

}  // namespace

PCOMRange::PCOMRange(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)), head_(new QToolButton(this))
{
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setSpacing(1);
    head_->setObjectName("head");
    head_->setCheckable(true);
    head_->setAutoRaise(true);
    head_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    grid_->addWidget(head_, 1, 0);
    connect(head_, &QToolButton::clicked, this, [this] { highlight(); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // The range, and a highlighted head, stand out in the colour of a selection.
    setStyleSheet("QToolButton { border: 1px solid palette(mid); background: palette(base); min-height: 20px; }"
                  "QToolButton:checked { background: palette(highlight); color: palette(highlighted-text); }");
}

void PCOMRange::Init(const DeviceRef& component, const DeviceRef& pipeSpecCDev, bool firstRow)
{
    Procedure(kClass, "Sub Init").run([&] {
        component_ = component;
        pipeClass_ = pipeSpecCDev;
        firstRow_ = firstRow;
        clearCells();
        Reload();
    });
}

void PCOMRange::Reload()
{
    Procedure(kClass, "Sub Reload").run([&] {
        const auto& names = diagnostics::names();
        head_->setText(component_ ? qt(component_->Name() + " - " + component_->Description()) : QString());
        const auto offered = rowsOf(pipeClass_ ? pipeClass_->Spec(names.NameRangeListAttr()) : nullptr);
        if (offered != shownDiameters()) showDiameters(offered);
        const auto held = rowsOf(component_ ? component_->Spec(names.NameRangeListAttr()) : nullptr);
        for (auto* cell : cells_) cell->setChecked(held.contains(cell->objectName()));
        applySizes();
        if (const int needed = neededHeadWidth(); needed > headWidth_) {
            double size = needed;
            emit DoResizeHead(size);
        }
        if (const int needed = neededColumnWidth(); needed > columnWidth_) {
            double size = needed;
            emit DoResizeColumns(size);
        }
        emit DoResize();
    });
}

QStringList PCOMRange::shownDiameters() const
{
    QStringList shown;
    for (const auto* cell : cells_) shown << cell->objectName();
    return shown;
}

void PCOMRange::showDiameters(const QStringList& diameters)
{
    clearCells();
    for (int column = 1; const auto& diameter : diameters) {
        if (firstRow_) {
            auto* title = new QLabel(diameter, this);  // Owned by this row.
            title->setAlignment(Qt::AlignCenter);
            grid_->addWidget(title, 0, column);
            titles_.push_back(title);
        }
        auto* cell = new QToolButton(this);  // Owned by this row.
        cell->setObjectName(diameter);
        cell->setCheckable(true);
        cell->setFocusPolicy(Qt::NoFocus);
        // The cells take the clicks here, so that a cell's state is always the range's.
        cell->installEventFilter(this);
        grid_->addWidget(cell, 1, column++);
        cells_.push_back(cell);
    }
}

void PCOMRange::clearCells()
{
    for (auto* widget : titles_) delete widget;  // Each is a Qt child of this row; deleting takes it out.
    for (auto* widget : cells_) delete widget;
    titles_.clear();
    cells_.clear();
}

void PCOMRange::RemoveHighlight()
{
    highlighted_ = false;
    head_->setChecked(false);
}

void PCOMRange::highlight()
{
    Procedure(kClass, "Sub Head_Click").run([&] {
        highlighted_ = true;
        head_->setChecked(true);
        emit DoHighlight(index_, component_);
    });
}

void PCOMRange::SetColumnWidth(double& size)
{
    columnWidth_ = raised(size, neededColumnWidth());
    applySizes();
}

void PCOMRange::SetHeadSize(double& size)
{
    headWidth_ = raised(size, neededHeadWidth());
    applySizes();
}

void PCOMRange::applySizes()
{
    head_->setFixedWidth(std::max(headWidth_, neededHeadWidth()));
    const int width = std::max(columnWidth_, neededColumnWidth());
    for (auto* title : titles_) title->setFixedWidth(width);
    for (auto* cell : cells_) cell->setFixedWidth(width);
    adjustSize();
}

int PCOMRange::neededColumnWidth() const
{
    int widest = 0;
    for (const auto* cell : cells_) widest = std::max(widest, fontMetrics().horizontalAdvance(cell->objectName()));
    return widest + kCellPadding;
}

int PCOMRange::neededHeadWidth() const { return fontMetrics().horizontalAdvance(head_->text()) + kCellPadding; }

void PCOMRange::Shutdown()
{
    clearCells();
    component_ = nullptr;
    pipeClass_ = nullptr;
}

void PCOMRange::InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass)
{
    addtopipeclass::PCOMRangeControl().InitNDRange(element, pipeClass);
}

RangeData PCOMRange::range() const
{
    const auto& names = diagnostics::names();
    const auto bound = [&](const std::string& attribute) {
        return valueOf(component_, names.NameRange() + "." + attribute);
    };
    return {bound(names.NameRangeLowerAttr()), bound(names.NameRangeUpperAttr()),
            rowsOf(component_ ? component_->Spec(names.NameRangeListAttr()) : nullptr)};
}

QToolButton* PCOMRange::cell(const QString& diameter) const
{
    const auto found = std::find_if(cells_.begin(), cells_.end(),
                                    [&](const QToolButton* cell) { return cell->objectName() == diameter; });
    return found == cells_.end() ? nullptr : *found;
}

bool PCOMRange::eventFilter(QObject* watched, QEvent* event)
{
    const bool press = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (!press && event->type() != QEvent::MouseButtonRelease) return false;
    auto* cell = qobject_cast<QToolButton*>(watched);
    const auto* click = static_cast<QMouseEvent*>(event);
    if (!cell || (click->button() != Qt::LeftButton && click->button() != Qt::RightButton)) return false;
    if (!press && cell->rect().contains(click->position().toPoint()))
        setBound(cell->objectName(), click->button() == Qt::RightButton);
    return true;
}

void PCOMRange::setBound(const QString& diameter, bool upper)
{
    Procedure(kClass, "Sub Cell_Click").run([&] {
        if (!component_) return;
        auto bounds = range();
        (upper ? bounds.upper : bounds.lower) = diameter;
        const auto workset = component_->Workset();
        {
            ActionScope action(must(workset));
            if (!addtopipeclass::SetNDRange(component_, pipeClass_, bounds.lower.toStdString(),
                                            bounds.upper.toStdString()))
                return;
        }
        Reload();
        emit Changed();
        emit RangeChanged(index_, range());
    });
}

}  // namespace pipespec::qtplatform
