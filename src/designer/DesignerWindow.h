#pragma once

// The designer's main window: the project explorer (the object tree of the
// current project and its bases, with a filter), the pages of the pipe class
// on show, the properties of the current object, the host's messages, and
// the menus File, Edit and View. It owns the open document; every user
// action it runs is one step of the document's undo state. It is the
// application's navigator: a control that sets PLTObject makes the explorer
// reveal and select that object.

#include "designer/DesignerHost.h"
#include "designer/Document.h"
#include "objectmodel/ObjectModel.h"

#include <QMainWindow>

#include <filesystem>
#include <memory>
#include <optional>

class QAction;
class QActionGroup;
class QDockWidget;
class QLabel;
class QLineEdit;
class QMenu;
class QToolBar;

namespace pipespec::qtplatform {
class ObjectTreeView;
}

namespace pipespec::componentlist {
class PipeSpecComp;
}

namespace pipespec::designer {

class MessageDock;
class PipeClassPages;
class PropertiesPanel;

class DesignerWindow final : public QMainWindow {
    Q_OBJECT

public:
    // The host lives longer than the window; the window shows its messages.
    explicit DesignerWindow(DesignerHost& host, QWidget* parent = nullptr);
    ~DesignerWindow() override;

    // Opens a database or a JSON project (the user's own database for none);
    // a failure is shown and the open document stays. False if not opened.
    bool open(const std::optional<std::filesystem::path>& path);
    // Whether opened and saved files join the recent files (not for a screenshot).
    void setRemembersFiles(bool on) { remembersFiles_ = on; }
    // Saves; a JSON project asks for a database file to save as. False when
    // nothing was saved.
    bool save();
    bool saveAs();
    void setLanguage(const std::string& language);
    // Makes the pipe class current ("--class"): by name or full name.
    bool showPipeClass(const QString& name);
    // Reveals and selects the object in the explorer.
    bool reveal(const ObjectRef& object);
    // The properties dock, shown and raised, on that object (the current one
    // when none is given).
    void showProperties(const ObjectRef& object);
    // Drops the catalogue components of those names on the component list of
    // the class on show, as a user drags them ("--add"). False when a name is
    // no catalogue component or the list does not serve the class.
    bool dropOnComponentList(const QStringList& names);
    // Searches "CODE,DN" on the search page, AutoFind on ("--find").
    bool search(const QString& criteria);

    Document* document() const { return document_; }
    qtplatform::ObjectTreeView& explorer() const { return *explorer_; }
    PipeClassPages& pages() const { return *pages_; }
    PropertiesPanel& properties() const { return *properties_; }
    MessageDock& messages() const { return *messages_; }
    QAction& undoAction() const { return *undo_; }
    QAction& redoAction() const { return *redo_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    class Navigator;

    void makeActions();
    void makeMenus();
    void makeDocks();
    void retranslate();
    void setDocument(Document* document);
    void currentObjectChanged(const ObjectRef& object);
    void documentChanged();
    void showTitle();
    void showStatus();
    void updateActions();
    // Asks to save a modified document: false when the user cancels.
    bool maybeSave();
    void openDialog(bool jsonProject);
    void deleteSelected();
    // The explorer's selection onto the workset's clipboard.
    void copySelected();
    // The clipboard onto the page on show, where its control takes it.
    void paste();
    // The component list, when its page is on show and serves the class.
    componentlist::PipeSpecComp* componentList() const;
    void rememberRecent(const QString& path);
    void showRecent();
    // Runs one user action with its failures reported to the dock and the status bar.
    bool act(const char* function, const std::function<void()>& action);

    DesignerHost& host_;
    Document* document_ = nullptr;  // Owned by this window, its Qt parent.
    std::shared_ptr<Navigator> navigator_;

    qtplatform::ObjectTreeView* explorer_;
    QLineEdit* explorerFilter_;
    PipeClassPages* pages_;
    PropertiesPanel* properties_;
    MessageDock* messages_;
    QDockWidget* explorerDock_;
    QDockWidget* propertiesDock_;
    QDockWidget* messagesDock_;
    QLabel* projectLabel_;
    QLabel* classLabel_;
    QString lastError_;
    bool remembersFiles_ = true;  // the newest error report, for the status bar

    QToolBar* toolBar_ = nullptr;
    QMenu* fileMenu_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QMenu* editMenu_ = nullptr;
    QMenu* viewMenu_ = nullptr;
    QMenu* languageMenu_ = nullptr;
    QAction* openDatabase_ = nullptr;
    QAction* openJson_ = nullptr;
    QAction* save_ = nullptr;
    QAction* saveAs_ = nullptr;
    QAction* quit_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    QAction* copy_ = nullptr;
    QAction* paste_ = nullptr;
    QAction* delete_ = nullptr;
    QAction* showProperties_ = nullptr;
    QAction* german_ = nullptr;
    QAction* english_ = nullptr;
};

}  // namespace pipespec::designer
