#include "qtplatform/HelpBrowser.h"

#include "diagnostics/DataDirectory.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace pipespec::qtplatform {

namespace {

QString objectNameOf(const QString& className) { return "help:" + className; }

// The page, or, for a class without one, its name and where its page belongs.
void load(QTextBrowser& browser, const QString& className)
{
    const auto page = helpPage(className);
    const auto file = QString::fromStdString(page.string());
    std::error_code ignored;
    if (std::filesystem::exists(page, ignored)) {
        browser.setSource(QUrl::fromLocalFile(file));
        return;
    }
    browser.setHtml("<h3>" + className.toHtmlEscaped() + "</h3><p><code>" + file.toHtmlEscaped() + "</code></p>");
}

}  // namespace

std::filesystem::path helpPage(const QString& className)
{
    return diagnostics::dataDirectory() / "help" / (className.toStdString() + ".html");
}

QDialog* showHelp(QWidget& from, const QString& className)
{
    auto* window = from.window();
    if (auto* open = window->findChild<QDialog*>(objectNameOf(className), Qt::FindDirectChildrenOnly)) {
        open->raise();
        return open;
    }
    auto* dialog = new QDialog(window);  // Owned by the window, its Qt parent, until it closes.
    dialog->setObjectName(objectNameOf(className));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(className);
    auto* browser = new QTextBrowser(dialog);  // Owned by the dialog.
    browser->setOpenExternalLinks(true);
    load(*browser, className);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);  // Owned by the dialog.
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    auto* layout = new QVBoxLayout(dialog);  // Owned by the dialog.
    layout->addWidget(browser);
    layout->addWidget(buttons);
    dialog->resize(480, 360);
    dialog->show();
    return dialog;
}

}  // namespace pipespec::qtplatform
