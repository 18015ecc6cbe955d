#pragma once

// The range row: the nominal-diameter range of one component of a pipe
// class, as one row of cells, one per diameter the pipe class offers, after
// a head with the component's name. The cells of the range stand pressed.
// The first row of a list also shows the diameters above its cells.
//
// What a user does: a click on a cell makes that diameter the lower bound,
// a right click the upper bound; the range follows the bounds (one user
// action, one undo step) and Changed and RangeChanged are raised. A click on
// the head highlights the row and raises DoHighlight.
//
// The rows of a list keep one head width and one cell width: a row that
// needs more room than it was given asks for it with DoResizeHead or
// DoResizeColumns, and its owner passes the size to every row.
//
// Preparing a new element's range without anyone seeing it (InitNDRange) is
// element creation's own range logic, so the two always agree.

#include "elements/RangeControl.h"
#include "objectmodel/ObjectModel.h"

#include <QDomDocument>
#include <QStringList>
#include <QWidget>

#include <vector>

class QGridLayout;
class QToolButton;
class QLabel;

namespace pipespec::qtplatform {

// What RangeChanged tells: the bounds and the diameters of the range.
struct RangeData {
    QString lower;
    QString upper;
    QStringList diameters;
};

class PCOMRange final : public QWidget, public addtopipeclass::IRangeControl {
    Q_OBJECT

public:
    explicit PCOMRange(QWidget* parent = nullptr);

    // The row's number in its list, which its events carry.
    void setIndex(int index) noexcept { index_ = index; }
    [[nodiscard]] int index() const noexcept { return index_; }
    void SetPipeSpecXML(const QDomDocument& document) { xml_ = document; }
    // Binds the row to a component of a pipe class and shows its range.
    void Init(const DeviceRef& component, const DeviceRef& pipeSpecCDev, bool firstRow);
    // Reads the diameters and the range anew.
    void Reload();
    void RemoveHighlight();
    [[nodiscard]] bool highlighted() const noexcept { return highlighted_; }
    // The width of each cell and of the head, in pixels; a size below what
    // the row needs is raised to that, and the size the row took given back.
    void SetColumnWidth(double& size);
    void SetHeadSize(double& size);
    // Lets go of the component and the pipe class.
    void Shutdown();

    void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass) override;

    [[nodiscard]] RangeData range() const;
    // The cell of a diameter; nullptr when the pipe class does not offer it.
    [[nodiscard]] QToolButton* cell(const QString& diameter) const;
    [[nodiscard]] QToolButton* head() const { return head_; }

signals:
    void Changed();
    void DoHighlight(int index, const pipespec::ObjectRef& component);
    void DoResize();
    void DoResizeColumns(double& size);
    void DoResizeHead(double& size);
    void RangeChanged(int index, const pipespec::qtplatform::RangeData& data);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QStringList shownDiameters() const;
    // Makes a cell (and, in the first row, a title) for each diameter.
    void showDiameters(const QStringList& diameters);
    void clearCells();
    void setBound(const QString& diameter, bool upper);
    void highlight();
    void applySizes();
    [[nodiscard]] int neededColumnWidth() const;
    [[nodiscard]] int neededHeadWidth() const;

    QGridLayout* grid_;                // Owned by this row, its Qt parent.
    QToolButton* head_;                // Owned by this row.
    std::vector<QLabel*> titles_;      // Owned by this row.
    std::vector<QToolButton*> cells_;  // Owned by this row.
    DeviceRef component_;
    DeviceRef pipeClass_;
    QDomDocument xml_;
    int index_ = 0;
    bool firstRow_ = false;
    bool highlighted_ = false;
    int columnWidth_ = 0;
    int headWidth_ = 0;
};

}  // namespace pipespec::qtplatform
