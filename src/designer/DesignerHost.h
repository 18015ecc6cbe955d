#pragma once

// The host services of the designer window: the logic's trace lines and
// error reports go to the message dock as they come, texts are translated in
// the language the user chose, and message boxes are real ones. Without a
// user (a screenshot run, a test) the boxes are answered as the headless host
// answers them, so that nothing waits for a click nobody makes.

#include "diagnostics/HeadlessHost.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/ServiceInterfaces.h"

#include <QObject>
#include <QString>

#include <memory>

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
    const std::string& language() const { return language_; }
    // The window message boxes belong to; none: boxes are answered unseen.
    void setWindow(QWidget* window) { window_ = window; }

signals:
    void message(const pipespec::designer::HostMessage& message);

private:
    class Tools;
    class Utilities;
    void tell(HostMessage::Kind kind, const std::string& text);

    std::string language_ = "de";
    QWidget* window_ = nullptr;
    std::shared_ptr<Tools> tools_;
    std::shared_ptr<Utilities> utilities_;
    std::unique_ptr<diagnostics::ScopedService<IGlobalTools>> toolsInstalled_;
    std::unique_ptr<diagnostics::ScopedService<IUtilities>> utilitiesInstalled_;
};

// A message literal in the language the installed host speaks.
[[nodiscard]] QString shown(std::string_view literal);

}  // namespace pipespec::designer
