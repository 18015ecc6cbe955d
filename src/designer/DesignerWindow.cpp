#include "designer/DesignerWindow.h"

#include "componentlist/PipeSpecComp.h"
#include "componentsearch/PipeCompSearch.h"
#include "designer/MessageDock.h"
#include "designer/PipeClassPages.h"
#include "designer/PropertiesPanel.h"
#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/Translate.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Errors.h"
#include "qtplatform/ObjectTreeView.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

namespace pipespec::designer {

namespace {

constexpr const char* kClass = "PipeSpecDesigner";
constexpr int kMostRecent = 8;
constexpr int kStatusMillis = 5000;

QString text(const std::string& s) { return QString::fromStdString(s); }

// A literal with its "%1%" filled.
QString filled(std::string_view literal, const QString& value)
{
    return text(diagnostics::FillPercent1(shown(literal).toStdString(), value.toStdString()));
}

// The pipe class the object belongs to: itself, or its nearest owner that is one.
DeviceRef pipeClassOf(const ObjectRef& object)
{
    for (auto at = object; at; at = at->Owner())
        if (addtopipeclass::IsPipeClass(at)) return asDevice(at);
    return nullptr;
}

}  // namespace

// The application's navigator, as the controls reach it through AppGlobals.
class DesignerWindow::Navigator final : public INavigator {
public:
    explicit Navigator(DesignerWindow& window) : window_(window) {}
    void SetPLTObject(const ObjectRef& object) override { window_.reveal(object); }

private:
    DesignerWindow& window_;
};

DesignerWindow::DesignerWindow(DesignerHost& host, QWidget* parent)
    : QMainWindow(parent),
      host_(host),
      navigator_(std::make_shared<Navigator>(*this)),
      explorer_(new qtplatform::ObjectTreeView),
      explorerFilter_(new QLineEdit),
      pages_(new PipeClassPages(this)),
      properties_(new PropertiesPanel),
      messages_(new MessageDock),
      explorerDock_(new QDockWidget(this)),
      propertiesDock_(new QDockWidget(this)),
      messagesDock_(new QDockWidget(this)),
      projectLabel_(new QLabel(this)),
      classLabel_(new QLabel(this))
{
    setObjectName("DesignerWindow");
    setCentralWidget(pages_);
    setDockOptions(AnimatedDocks | AllowTabbedDocks);
    makeDocks();
    makeActions();
    makeMenus();
    statusBar()->addPermanentWidget(classLabel_);
    statusBar()->addPermanentWidget(projectLabel_);
    connect(&host_, &DesignerHost::message, messages_, &MessageDock::add);
    connect(&host_, &DesignerHost::message, this, [this](const HostMessage& message) {
        if (message.kind == HostMessage::Kind::Error) lastError_ = message.text;
    });
    connect(explorer_, &qtplatform::ObjectTreeView::currentObjectChanged, this, &DesignerWindow::currentObjectChanged);
    connect(pages_, &QTabWidget::currentChanged, this, [this] { updateActions(); });
    connect(explorerFilter_, &QLineEdit::textChanged, explorer_, &qtplatform::ObjectTreeView::setNameFilter);
    retranslate();
    showRecent();
    updateActions();
}

DesignerWindow::~DesignerWindow()
{
    // The database may outlive the window in a test: it must not call a window that is gone.
    if (document_) document_->workset()->appGlobals()->setNavigator(nullptr);
}

void DesignerWindow::makeDocks()
{
    explorerFilter_->setClearButtonEnabled(true);
    explorer_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    auto* explorerPanel = new QWidget;
    auto* explorerLayout = new QVBoxLayout(explorerPanel);
    explorerLayout->setContentsMargins(4, 4, 4, 4);
    explorerLayout->addWidget(explorerFilter_);
    explorerLayout->addWidget(explorer_, 1);
    const auto dock = [this](QDockWidget* widget, const char* name, QWidget* content, Qt::DockWidgetArea area) {
        widget->setObjectName(name);
        widget->setWidget(content);  // The dock owns its content.
        addDockWidget(area, widget);
    };
    dock(explorerDock_, "ExplorerDock", explorerPanel, Qt::LeftDockWidgetArea);
    dock(propertiesDock_, "PropertiesDock", properties_, Qt::RightDockWidgetArea);
    dock(messagesDock_, "MessagesDock", messages_, Qt::BottomDockWidgetArea);
    resizeDocks({explorerDock_, propertiesDock_}, {380, 400}, Qt::Horizontal);
    resizeDocks({messagesDock_}, {170}, Qt::Vertical);
}

void DesignerWindow::makeActions()
{
    const auto action = [this](QKeySequence::StandardKey key, QStyle::StandardPixmap icon, auto slot) {
        auto* made = new QAction(style()->standardIcon(icon), {}, this);
        if (key != QKeySequence::UnknownKey) made->setShortcut(key);
        connect(made, &QAction::triggered, this, slot);
        return made;
    };
    openDatabase_ = action(QKeySequence::Open, QStyle::SP_DialogOpenButton, [this] { openDialog(false); });
    openJson_ = action(QKeySequence::UnknownKey, QStyle::SP_FileIcon, [this] { openDialog(true); });
    save_ = action(QKeySequence::Save, QStyle::SP_DialogSaveButton, [this] { save(); });
    saveAs_ = action(QKeySequence::SaveAs, QStyle::SP_DialogSaveButton, [this] { saveAs(); });
    quit_ = action(QKeySequence::Quit, QStyle::SP_DialogCloseButton, [this] { close(); });
    quit_->setMenuRole(QAction::QuitRole);
    undo_ = action(QKeySequence::Undo, QStyle::SP_ArrowBack, [this] { act("Undo", [this] { document_->undo(); }); });
    redo_ = action(QKeySequence::UnknownKey, QStyle::SP_ArrowForward,
                   [this] { act("Redo", [this] { document_->redo(); }); });
    redo_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    copy_ = action(QKeySequence::Copy, QStyle::SP_FileLinkIcon, [this] { copySelected(); });
    paste_ = action(QKeySequence::Paste, QStyle::SP_DialogApplyButton, [this] { paste(); });
    delete_ = action(QKeySequence::Delete, QStyle::SP_TrashIcon, [this] { deleteSelected(); });
    // Copy and Delete belong to the explorer: in a text field the keys edit the text.
    for (auto* explorerAction : {copy_, delete_}) {
        explorerAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        explorer_->addAction(explorerAction);
    }
    showProperties_ =
        action(QKeySequence::UnknownKey, QStyle::SP_FileDialogInfoView, [this] { showProperties(nullptr); });
    showProperties_->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Return));

    auto* languages = new QActionGroup(this);
    german_ = new QAction(QStringLiteral("Deutsch"), languages);
    english_ = new QAction(QStringLiteral("English"), languages);
    for (auto* language : {german_, english_}) language->setCheckable(true);
    connect(german_, &QAction::triggered, this, [this] { setLanguage("de"); });
    connect(english_, &QAction::triggered, this, [this] { setLanguage("en"); });
}

void DesignerWindow::makeMenus()
{
    fileMenu_ = menuBar()->addMenu(QString());
    fileMenu_->addActions({openDatabase_, openJson_});
    recentMenu_ = fileMenu_->addMenu(QString());
    fileMenu_->addSeparator();
    fileMenu_->addActions({save_, saveAs_});
    fileMenu_->addSeparator();
    fileMenu_->addAction(quit_);
    editMenu_ = menuBar()->addMenu(QString());
    editMenu_->addActions({undo_, redo_});
    editMenu_->addSeparator();
    editMenu_->addActions({copy_, paste_, delete_});
    editMenu_->addSeparator();
    editMenu_->addAction(showProperties_);
    viewMenu_ = menuBar()->addMenu(QString());
    viewMenu_->addActions(
        {explorerDock_->toggleViewAction(), propertiesDock_->toggleViewAction(), messagesDock_->toggleViewAction()});
    viewMenu_->addSeparator();
    languageMenu_ = viewMenu_->addMenu(QString());
    languageMenu_->addActions({german_, english_});

    toolBar_ = addToolBar(QString());
    toolBar_->setObjectName("MainToolBar");
    toolBar_->setIconSize(QSize(16, 16));
    toolBar_->addActions({openDatabase_, save_});
    toolBar_->addSeparator();
    toolBar_->addActions({undo_, redo_});
    toolBar_->addSeparator();
    toolBar_->addActions({delete_, showProperties_});
}

void DesignerWindow::retranslate()
{
    fileMenu_->setTitle(shown(msg::window::MenuFile));
    openDatabase_->setText(shown(msg::window::OpenDatabase));
    openJson_->setText(shown(msg::window::OpenJsonProject));
    recentMenu_->setTitle(shown(msg::window::RecentFiles));
    save_->setText(shown(msg::window::Save));
    saveAs_->setText(shown(msg::window::SaveAs));
    quit_->setText(shown(msg::window::Quit));
    editMenu_->setTitle(shown(msg::window::MenuEdit));
    undo_->setText(shown(msg::window::Undo));
    redo_->setText(shown(msg::window::Redo));
    copy_->setText(shown(msg::window::Copy));
    paste_->setText(shown(msg::window::Paste));
    delete_->setText(shown(msg::window::Delete));
    showProperties_->setText(shown(msg::window::Properties));
    viewMenu_->setTitle(shown(msg::window::MenuView));
    languageMenu_->setTitle(shown(msg::window::MenuLanguage));
    explorerDock_->setWindowTitle(shown(msg::window::ProjectExplorer));
    propertiesDock_->setWindowTitle(shown(msg::window::PropertiesDock));
    messagesDock_->setWindowTitle(shown(msg::window::Messages));
    explorerFilter_->setPlaceholderText(shown(msg::window::FilterPrompt));
    toolBar_->setWindowTitle(shown(msg::window::Toolbar));
    german_->setChecked(host_.language() == "de");
    english_->setChecked(host_.language() != "de");
    explorer_->retranslate();
    pages_->retranslate();
    properties_->retranslate();
    messages_->retranslate();
    showTitle();
    showStatus();
}

void DesignerWindow::setLanguage(const std::string& language)
{
    act("SetLanguage", [&] {
        host_.setLanguage(language);
        QSettings().setValue("language", QString::fromStdString(language));
    });
    retranslate();
}

bool DesignerWindow::open(const std::optional<std::filesystem::path>& path)
{
    if (!maybeSave()) return false;
    std::unique_ptr<Document> opened;
    const bool done = act("Open", [&] { opened = std::make_unique<Document>(path, this); });
    if (!done) return false;
    setDocument(opened.release());  // Owned by this window from now on, its Qt parent.
    diagnostics::utilities().WriteLog(filled(msg::window::Opened, text(document_->path().string())).toStdString());
    rememberRecent(QString::fromStdString(document_->path().string()));
    return true;
}

void DesignerWindow::setDocument(Document* document)
{
    if (document_) {
        document_->workset()->appGlobals()->setNavigator(nullptr);
        document_->deleteLater();
    }
    document_ = document;
    host_.setNames(document_->names());
    const auto workset = document_->workset();
    workset->appGlobals()->setNavigator(navigator_);
    workset->appGlobals()->setTubrixDesignerRun(true);
    std::vector<ObjectRef> roots;
    for (const auto& project : platform::projectChain(workset->CurrentProject()))
        for (const auto& root : project->roots().items()) roots.push_back(root);
    explorer_->setRoots(roots, workset);
    pages_->setDocument(document_->undoState());
    currentObjectChanged(nullptr);
    connect(document_, &Document::changed, this, &DesignerWindow::documentChanged);
    connect(document_, &Document::modifiedChanged, this, &DesignerWindow::showTitle);
    showTitle();
    updateActions();
}

void DesignerWindow::currentObjectChanged(const ObjectRef& object)
{
    properties_->setObject(object, document_ ? document_->workset() : nullptr);
    const auto pipeClass = pipeClassOf(object);
    if (pipeClass != pages_->pipeClass()) pages_->setPipeClass(pipeClass);
    showStatus();
    updateActions();
}

void DesignerWindow::showStatus()
{
    const auto pipeClass = pages_->pipeClass();
    classLabel_->setText(pipeClass ? filled(msg::window::PipeClassIs, text(pipeClass->Name())) : QString());
    projectLabel_->setText(
        document_ ? filled(msg::window::ProjectIs, text(document_->workset()->CurrentProject()->Name())) : QString());
}

void DesignerWindow::documentChanged()
{
    properties_->showFields();
    updateActions();
}

void DesignerWindow::showTitle()
{
    const auto name = document_ ? QFileInfo(QString::fromStdString(document_->path().string())).fileName() : QString();
    setWindowTitle(name + "[*] – " + shown(msg::window::DesignerTitle));
    setWindowModified(document_ && document_->isModified());
    if (document_) setWindowFilePath(QString::fromStdString(document_->path().string()));
}

void DesignerWindow::updateActions()
{
    const bool open = document_ != nullptr;
    save_->setEnabled(open);
    saveAs_->setEnabled(open);
    undo_->setEnabled(open && document_->canUndo());
    redo_->setEnabled(open && document_->canRedo());
    delete_->setEnabled(open && explorer_->currentObject() && writable(*explorer_->currentObject()));
    copy_->setEnabled(open && explorer_->currentObject());
    const auto* list = componentList();
    paste_->setEnabled(list && list->IsPasteEnabled());
}

bool DesignerWindow::act(const char* function, const std::function<void()>& action)
{
    const bool done = diagnostics::Procedure(kClass, function).run(action);
    if (!done) statusBar()->showMessage(lastError_, kStatusMillis);
    updateActions();
    return done;
}

bool DesignerWindow::maybeSave()
{
    if (!document_ || !document_->isModified()) return true;
    const auto answer = QMessageBox::question(
        this, shown(msg::window::DesignerTitle),
        filled(msg::window::SaveChangesTo, QString::fromStdString(document_->path().filename().string())),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel) return false;
    return answer == QMessageBox::Discard || save();
}

bool DesignerWindow::save()
{
    if (!document_) return false;
    if (document_->isJsonProject()) return saveAs();
    bool changedElsewhere = false;
    const bool done = diagnostics::Procedure(kClass, "Save").run([&] {
        try {
            document_->save();
        } catch (const PlatformError& e) {
            changedElsewhere = e.number() == err::FileChanged;
            throw;
        }
    });
    if (done) {
        statusBar()->showMessage(filled(msg::window::SavedTo, QString::fromStdString(document_->path().string())),
                                 kStatusMillis);
        return true;
    }
    if (!changedElsewhere) return false;
    // Another run saved the file since we read it: reload it or keep ours under another name.
    QMessageBox box(QMessageBox::Warning, shown(msg::window::DesignerTitle), shown(msg::window::FileChangedElsewhere),
                    QMessageBox::Cancel, this);
    auto* reload = box.addButton(shown(msg::window::Reload), QMessageBox::DestructiveRole);
    auto* elsewhere = box.addButton(saveAs_->text().remove('&'), QMessageBox::AcceptRole);
    box.exec();
    if (box.clickedButton() == elsewhere) return saveAs();
    if (box.clickedButton() == reload) {
        const auto path = document_->path();
        std::unique_ptr<Document> opened;
        if (act("Reload", [&] { opened = std::make_unique<Document>(path, this); })) setDocument(opened.release());
    }
    return false;
}

bool DesignerWindow::saveAs()
{
    if (!document_) return false;
    const auto target =
        QFileDialog::getSaveFileName(this, saveAs_->text().remove('&'), {}, shown(msg::window::DatabaseFiles));
    if (target.isEmpty()) return false;
    auto path = std::filesystem::path(target.toStdString());
    if (path.extension() != ".pspec") path += ".pspec";
    if (!act("SaveAs", [&] { document_->saveAs(path); })) return false;
    rememberRecent(QString::fromStdString(path.string()));
    showTitle();
    return true;
}

void DesignerWindow::openDialog(bool jsonProject)
{
    const auto chosen = QFileDialog::getOpenFileName(
        this, (jsonProject ? openJson_ : openDatabase_)->text().remove('&'), {},
        jsonProject ? shown(msg::window::JsonProjectFiles) : shown(msg::window::DatabaseFiles));
    if (!chosen.isEmpty()) open(std::filesystem::path(chosen.toStdString()));
}

void DesignerWindow::deleteSelected()
{
    if (!document_) return;
    std::vector<ObjectRef> doomed;
    for (const auto& object : explorer_->selectedObjects())
        if (writable(*object)) doomed.push_back(object);
    if (doomed.empty()) return;
    const auto question = filled(msg::window::DeleteObjects, QString::number(doomed.size())).toStdString();
    if (diagnostics::utilities().MessageBox(question, mb::YesNoExclamation,
                                            shown(msg::window::DesignerTitle).toStdString()) != mb::AnswerYes)
        return;
    act("Delete", [&] {
        ActionScope action(*document_->workset());
        for (const auto& object : doomed)
            if (!object->IsDeleted()) object->Delete();
    });
}

void DesignerWindow::copySelected()
{
    if (document_) document_->workset()->setClipboardObjects(explorer_->selectedObjects());
    updateActions();
}

void DesignerWindow::paste()
{
    if (auto* list = componentList()) act("Paste", [&] { list->Paste(); });
}

componentlist::PipeSpecComp* DesignerWindow::componentList() const
{
    return dynamic_cast<componentlist::PipeSpecComp*>(pages_->currentControl());
}

bool DesignerWindow::showPipeClass(const QString& name)
{
    if (!document_) return false;
    const auto wanted = name.toStdString();
    const auto pipeClass = explorer_->treeModel().find([&](const ObjectRef& object) {
        return (object->Name() == wanted || object->SystemFullName() == wanted) && addtopipeclass::IsPipeClass(object);
    });
    return pipeClass && reveal(pipeClass);
}

bool DesignerWindow::dropOnComponentList(const QStringList& names)
{
    auto* list = dynamic_cast<componentlist::PipeSpecComp*>(pages_->control("PipeSpecComp"));
    if (!document_ || !list || list->PipeClass() != pages_->pipeClass()) return false;
    const auto dropped = document_->workset()->NewCollection();
    for (const auto& name : names) {
        const auto wanted = name.toStdString();
        const auto component = explorer_->treeModel().find([&](const ObjectRef& object) {
            // A catalogue component: no pipe class, and no element of one.
            return object->Name() == wanted && !addtopipeclass::IsPipeClass(object) &&
                   !addtopipeclass::IsPipeClass(object->Owner());
        });
        if (!component) return false;
        dropped->Add(component);
    }
    list->AddCDevicesToPipeClass(dropped);
    return true;
}

bool DesignerWindow::search(const QString& criteria)
{
    auto* search = dynamic_cast<componentsearch::PipeCompSearch*>(pages_->control("PipeCompSearch"));
    const auto parts = criteria.split(',');
    if (!search || parts.size() != 2) return false;
    if (!search->autoFind().isChecked()) search->autoFind().trigger();
    return search->pick(parts[0].toDouble(), parts[1].toDouble());
}

void DesignerWindow::showProperties(const ObjectRef& object)
{
    if (object) reveal(object);
    propertiesDock_->show();
    propertiesDock_->raise();
    properties_->attributes().setFocus();
}

bool DesignerWindow::reveal(const ObjectRef& object)
{
    if (!object || !explorer_->reveal(object)) return false;
    explorerDock_->show();
    explorerDock_->raise();
    return true;
}

void DesignerWindow::rememberRecent(const QString& path)
{
    if (!remembersFiles_) return;
    QSettings settings;
    auto recent = settings.value("recentFiles").toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    while (recent.size() > kMostRecent) recent.removeLast();
    settings.setValue("recentFiles", recent);
    showRecent();
}

void DesignerWindow::showRecent()
{
    recentMenu_->clear();
    const auto recent = QSettings().value("recentFiles").toStringList();
    for (const auto& path : recent) {
        auto* entry = recentMenu_->addAction(QFileInfo(path).fileName());  // Owned by the menu.
        entry->setToolTip(path);
        connect(entry, &QAction::triggered, this, [this, path] { open(std::filesystem::path(path.toStdString())); });
    }
    recentMenu_->setEnabled(!recent.isEmpty());
}

void DesignerWindow::closeEvent(QCloseEvent* event)
{
    if (!maybeSave()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("windowState", saveState());
    event->accept();
}

}  // namespace pipespec::designer
