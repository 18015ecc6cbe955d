#pragma once

// The host services of the designer window: the screen's utilities (real
// message boxes, forms over the window, the language switched while running)
// with the logic's trace lines, error reports and log lines passed to the
// message dock as they come. Before the window is set (a screenshot run, a
// test) boxes are answered as the headless host answers them, so that
// nothing waits for a click nobody makes.

#include "diagnostics/HeadlessHost.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/ServiceInterfaces.h"
#include "qtplatform/QtHost.h"

#include <QObject>
#include <QString>

#include <memory>
#include <utility>

class QWidget;

namespace pipespec::designer {

// One line of the message dock.
struct HostMessage {
    enum class Kind { Error, Trace, Log };
    Kind kind = Kind::Trace;
    QString text;
};

class DesignerHost final : public QObject {
    Q_OBJECT

public:
    // Installs the services for as long as the host lives.
    DesignerHost();
    ~DesignerHost() override;

    void setNames(std::shared_ptr<const INameTable> names);
    // "de" is the literals' own language; any other is a shipped table.
    void setLanguage(const std::string& language);
    const std::string& language() const { return utilities_->language(); }
    // The window message boxes and forms belong to, and where it shows an
    // object's properties; none: boxes are answered unseen.
    void setWindow(QWidget* window, qtplatform::PropertiesViewer viewer = {})
    {
        utilities_->setMainWindow(window, std::move(viewer));
    }

signals:
    void message(const pipespec::designer::HostMessage& message);

private:
    class Tools;
    void tell(HostMessage::Kind kind, std::string_view text);

    std::shared_ptr<Tools> tools_;
    std::shared_ptr<qtplatform::QtUtilities> utilities_;
    std::unique_ptr<diagnostics::ScopedService<IGlobalTools>> toolsInstalled_;
    std::unique_ptr<diagnostics::ScopedService<IUtilities>> utilitiesInstalled_;
};

// A message literal in the language the installed host speaks.
[[nodiscard]] QString shown(std::string_view literal);

}  // namespace pipespec::designer
