#pragma once

// The host services with a window: the utilities of the designer, with real
// message boxes, its main window and window service for modal forms, the
// look taken from the application's palette, and the language switched
// while the designer runs. What needs no window (the texts, the timing log,
// the standard-table paths, the reports kept for reading back) is the
// headless host's, which these utilities wrap.

#include "diagnostics/HeadlessHost.h"
#include "objectmodel/ServiceInterfaces.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <string_view>

namespace pipespec::qtplatform {

// Forms shown modally over the main window. A form is a QWidget that is an
// IForm (a frame::ControlFrame).
class QtWindowService final : public IWindowService {
public:
    // Shows the form as a modal window and returns once it is closed, by
    // CloseForm or by its window's close button.
    void ShowForm(IForm& form) override;
    // Closes the form; a form that is not shown stays closed.
    void CloseForm(IForm& form) override;
};

// Who shows an object's properties in the window (the designer's properties dock).
using PropertiesViewer = std::function<void(const ObjectRef& object)>;

class QtMainWindow final : public IMainWindow {
public:
    QtMainWindow(QWidget* window, PropertiesViewer viewer)
        : window_(window),
          service_(std::make_shared<QtWindowService>()),
          viewer_(std::move(viewer))
    {
    }
    std::shared_ptr<IWindowService> WindowService() const override { return service_; }
    // Through the viewer the window set; a window without one shows nothing.
    void ShowProperties(const ObjectRef& object) override;
    // The window the forms open over; empty once it is gone.
    [[nodiscard]] QWidget* window() const { return window_; }

private:
    QPointer<QWidget> window_;
    std::shared_ptr<QtWindowService> service_;
    PropertiesViewer viewer_;
};

// The colours of the look, numbered, from the application's palette:
// 0 window, 1 base, 2 text, 3 button, 4 tab background (the alternate base).
class QtLook final : public ILook {
public:
    int BackColor() const override { return Color(0); }
    // A number the look does not have is the window colour.
    int Color(int number) const override;
};

class QtUtilities final : public IUtilities {
public:
    // `mainWindow`: the designer's window, over which boxes and forms open.
    explicit QtUtilities(QWidget* mainWindow = nullptr);
    void setMainWindow(QWidget* mainWindow, PropertiesViewer viewer = {});

    // Who hears each error report and log line as it comes, besides what
    // is kept (the designer's message dock).
    using Listener = std::function<void(std::string_view text)>;
    void setListeners(Listener reports, Listener log);

    // Kept as the headless host keeps it, and, with a main window, shown in
    // a box that does not wait: the handler that reported goes on.
    void ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept override;
    std::string Translate(std::string_view text) const override { return kept_.Translate(text); }
    void BeginRefresh() override { kept_.BeginRefresh(); }
    void WriteLog(std::string_view text) override;
    std::shared_ptr<IMainWindow> MainWindow() const override { return mainWindow_; }
    // A modal box over the main window: the flags' button set and icon, the
    // number of the button pressed; closed without a button, the box's
    // escape button answers. Without a main window nobody would see the box
    // (a test, a screenshot run): answered as the headless host answers.
    int MessageBox(std::string_view text, int flags, std::string_view title) override;
    std::shared_ptr<ILook> Look() const override { return look_; }
    std::string StandardTablePath(int number) const override { return kept_.StandardTablePath(number); }
    // A progress dialog over the main window, with Cancel, that appears
    // when the work lasts; without a main window the headless host's.
    std::unique_ptr<IProgress> BeginProgress(std::string_view title, int total) override;

    // "de", the language of the texts' defaults, or a language shipped in
    // data/lang ("en"). Every widget then hears QEvent::LanguageChange and
    // sets its texts anew. A language without a table: error Configuration.
    void switchLanguage(std::string_view language);
    [[nodiscard]] const std::string& language() const noexcept { return language_; }

    // What was reported, logged and asked, as the headless host keeps it.
    [[nodiscard]] const diagnostics::HeadlessUtilities& kept() const noexcept { return kept_; }
    [[nodiscard]] diagnostics::HeadlessUtilities& kept() noexcept { return kept_; }

private:
    diagnostics::HeadlessUtilities kept_;
    std::shared_ptr<QtMainWindow> mainWindow_;
    std::shared_ptr<QtLook> look_ = std::make_shared<QtLook>();
    std::string language_ = "de";
    Listener reports_;
    Listener log_;
};

}  // namespace pipespec::qtplatform
