#pragma once

// The pages of the pipe class on show, one tab per control: the component
// list (PipeSpecComp), the selectors (PipeSpecSelector), the nominal-diameter
// ranges (PipeSpecNDRange) and the component search (PipeCompSearch). The
// tabs are enabled while a pipe class is current. Until a control is built,
// its page says what it will show.

#include "objectmodel/ObjectModel.h"
#include "qtplatform/PictureByObject.h"

#include <QTabWidget>

#include <string_view>
#include <vector>

class QLabel;

namespace pipespec::designer {

class PipeClassPages final : public QTabWidget {
    Q_OBJECT

public:
    explicit PipeClassPages(QWidget* parent = nullptr);

    void setPipeClass(const DeviceRef& pipeClass);
    const DeviceRef& pipeClass() const { return pipeClass_; }
    // Shows the page of that control name ("PipeSpecSelector") or caption;
    // false if there is none.
    bool showPage(const QString& name);
    void retranslate();

private:
    struct Page {
        const char* control;
        qtplatform::ObjectKind picture;  // what the page is about
        std::string_view caption;        // message literals
        std::string_view purpose;
        QLabel* heading;
        QLabel* subject;
        QLabel* text;
    };
    QWidget* placeholder(Page& page);
    void showSubject();

    std::vector<Page> pages_;
    DeviceRef pipeClass_;
};

}  // namespace pipespec::designer
