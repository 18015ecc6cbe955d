#pragma once

// The dialog that edits the range of one component: one range row
// (PCOMRange1) and the OK and abort pair (OkAbort1) to its right. The
// component list makes one per use and shows it through the host's window
// service; OK, abort and Escape all close it the same way, through the
// window service, as a change of the range is kept as the user makes it.

#include "frame/ControlFrame.h"
#include "qtplatform/OkAbortBar.h"
#include "qtplatform/PCOMRange.h"

namespace pipespec::ranges {

class frmPCOMRange final : public frame::ControlFrame {
    Q_OBJECT

public:
    // The strip right of the row that holds OkAbort1.
    static constexpr int kBarStrip = 192;

    explicit frmPCOMRange(QWidget* parent = nullptr);

    // Binds the form to a component of the pipe class that owns it.
    void Init(const DeviceRef& component);
    // Prepares a new element's range from its pipe class, with no one asked.
    void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass);

    [[nodiscard]] qtplatform::PCOMRange& rangeRow() const { return *PCOMRange1; }

signals:
    void PCOMRange_Changed();

protected:
    void retranslate() override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // "Range for " with the owner, the component and its description.
    void setCaption();
    void Form_Resize();
    void closeForm();

    qtplatform::PCOMRange* PCOMRange1;  // Owned by this form, its Qt parent.
    qtplatform::OkAbortBar* OkAbort1;   // Owned by this form.
    DeviceRef mComponent;               // the component bound by Init
};

}  // namespace pipespec::ranges
