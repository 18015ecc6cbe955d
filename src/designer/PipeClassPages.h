#pragma once

// The pages of the pipe class on show, one tab per control: the component
// list (PipeSpecComp), the selectors (PipeSpecSelector), the nominal-diameter
// ranges (PipeSpecNDRange) and the component search (PipeCompSearch).
//
// The pages are the host of their controls, in the host's order: a control
// is made for each database, given the shared document and the designer's
// undo state; before a pipe class is shown, the control is asked whether it
// can serve it (ValidChapter), and a refusal is explained on the page in
// words instead; Shutdown comes before a control is destroyed. A page whose
// control is not built yet says what it will show.

#include "frame/ControlFrame.h"
#include "objectmodel/ObjectModel.h"
#include "qtplatform/PictureByObject.h"

#include <QDomDocument>
#include <QTabWidget>

#include <functional>
#include <string_view>
#include <vector>

class QLabel;
class QStackedWidget;

namespace pipespec::designer {

class PipeClassPages final : public QTabWidget {
    Q_OBJECT

public:
    explicit PipeClassPages(QWidget* parent = nullptr);
    ~PipeClassPages() override;

    // Makes the controls anew for the database of that undo state; empty: no
    // database, no controls.
    void setDocument(const UndoStateRef& undoState);
    void setPipeClass(const DeviceRef& pipeClass);
    const DeviceRef& pipeClass() const { return pipeClass_; }
    // The control of that name ("PipeSpecComp"), if it is built.
    frame::ControlFrame* control(std::string_view name) const;
    // The control of the page on show, if it serves the pipe class on show.
    frame::ControlFrame* currentControl() const;
    // Shows the page of that control name ("PipeSpecSelector"), short name
    // ("selectors") or caption; false if there is none.
    bool showPage(const QString& name);
    void retranslate();

private:
    struct Page {
        const char* control = "";
        const char* alias = "";                                            // the short name a command line takes
        qtplatform::ObjectKind picture = qtplatform::ObjectKind::Element;  // what the page is about
        std::string_view caption;                                          // message literals
        std::string_view purpose;
        std::function<frame::ControlFrame*()> make;  // empty while the control is not built
        QStackedWidget* stack = nullptr;             // the notice, and the control once made
        frame::ControlFrame* made = nullptr;
        bool serves = false;  // the control serves the pipe class on show
        QString refusal;      // why it does not, in words
        QLabel* heading = nullptr;
        QLabel* subject = nullptr;
        QLabel* text = nullptr;
    };
    QWidget* notice(Page& page);
    void offer(Page& page);
    void shutDownControls();
    void showNotices();

    std::vector<Page> pages_;
    DeviceRef pipeClass_;
    int chosen_ = 0;  // the page the user last chose while a class was shown
    UndoStateRef undoState_;
    QDomDocument pipeSpecXml_;  // shared by the controls, never read here
};

}  // namespace pipespec::designer
