#include "qtplatform/ObjectCommands.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"

#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QSaveFile>

namespace pipespec::qtplatform {

namespace {

constexpr std::string_view kClass = "ObjectCommands";

std::string translated(std::string_view text) { return diagnostics::utilities().Translate(text); }

bool empty(const CollectionRef& objects) { return !objects || objects->Count() == 0; }

// A field of a CSV line: quoted, with its quotes doubled, when it holds a
// separator, a quote or a line break.
QString csvField(QString field)
{
    if (!field.contains(QLatin1Char(',')) && !field.contains(QLatin1Char('"')) && !field.contains(QLatin1Char('\n')) &&
        !field.contains(QLatin1Char('\r')))
        return field;
    field.replace(QLatin1String("\""), QLatin1String("\"\""));
    return QLatin1Char('"') + field + QLatin1Char('"');
}

}  // namespace

// ---- DeleteCommand ------------------------------------------------------

DeleteCommand::DeleteCommand(QObject* parent) : QObject(parent) {}

void DeleteCommand::AddToPopUp(IPopUpMenu& popup, const CollectionRef& objects)
{
    objects_ = objects;
    popup.AddCommand(Key, msg::window::Delete, [this] { Execute(); });
    if (empty(objects_)) popup.Disable(Key);
}

void DeleteCommand::Execute()
{
    diagnostics::Procedure(kClass, "Sub DeleteCommand_Execute").run([&] {
        if (empty(objects_)) return;
        auto& utilities = diagnostics::utilities();
        const auto question =
            text::Replace(translated(msg::window::DeleteObjects), "%1%", std::to_string(objects_->Count()));
        if (utilities.MessageBox(question, mb::YesNoExclamation, translated(msg::window::Delete)) != mb::AnswerYes)
            return;
        const ActionScope action(must(must(objects_->Item(1)).Workset()));
        for (int i = 1; i <= objects_->Count(); ++i) {
            const auto object = objects_->Item(i);
            if (object && !object->IsDeleted() && !object->ReadOnly()) object->Delete();
        }
    });
    emit AfterExecute();
}

void DeleteCommand::ShutDown() { objects_ = nullptr; }

// ---- ListCommand --------------------------------------------------------

ListCommand::ListCommand(IQGrid& grid, QObject* parent) : QObject(parent), grid_(&grid) {}

void ListCommand::AddToPopUp(IPopUpMenu& popup, const CollectionRef& objects)
{
    objects_ = objects;
    popup.AddCommand(CopyKey, msg::window::CopyList, [this] {
        diagnostics::Procedure(kClass, "Sub ListCommand_Copy").run([&] {
            QGuiApplication::clipboard()->setText(text(objects_, QLatin1Char('\t')));
        });
    });
    popup.AddCommand(ExportKey, msg::window::ExportList, [this] { Export(); });
    if (empty(objects_)) popup.Disable(CopyKey);
}

std::vector<QStringList> ListCommand::lines(const CollectionRef& objects) const
{
    std::vector<QStringList> result;
    const auto query = grid_ ? grid_->Query() : nullptr;
    if (!query) return result;
    const auto columns = query->Top()->Columns();
    std::vector<QueryColumnRef> shown;
    QStringList titles;
    for (int i = 1; i <= columns->Count(); ++i) {
        const auto column = columns->Item(i);
        if (!column->Visible() || column->Width() == 0) continue;
        shown.push_back(column);
        titles << QString::fromStdString(translated(column->Title()));
    }
    result.push_back(titles);
    for (int row = 1; row <= query->RowCount(); ++row) {
        if (objects && objects->IndexOf(query->RowObject(row)) < 1) continue;
        QStringList cells;
        for (const auto& column : shown) cells << QString::fromStdString(query->CellText(row, column));
        result.push_back(cells);
    }
    return result;
}

QString ListCommand::text(const CollectionRef& objects, QChar separator) const
{
    QStringList joined;
    for (const auto& line : lines(objects)) joined << line.join(separator);
    return joined.join(QLatin1Char('\n'));
}

void ListCommand::Export(const QString& fileName) const
{
    diagnostics::Procedure(kClass, "Sub ListCommand_Export").run([&] {
        const auto path =
            !fileName.isEmpty()
                ? fileName
                : QFileDialog::getSaveFileName(nullptr, QString::fromStdString(translated(msg::window::ExportList)), {},
                                               QString::fromStdString(translated(msg::window::CsvFiles)));
        if (path.isEmpty()) return;
        QString csv;
        for (const auto& line : lines(nullptr)) {
            QStringList fields;
            for (const auto& cell : line) fields << csvField(cell);
            csv += fields.join(QLatin1Char(',')) + QLatin1String("\r\n");
        }
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(csv.toUtf8()) < 0 || !file.commit())
            throw PlatformError(err::InvalidCall,
                                text::Replace(translated(msg::window::CannotWrite), "%1%", path.toStdString()));
    });
}

void ListCommand::ShutDown()
{
    objects_ = nullptr;
    grid_ = nullptr;
}

// ---- PropertiesCommand --------------------------------------------------

PropertiesCommand::PropertiesCommand(QObject* parent) : QObject(parent) {}

void PropertiesCommand::AddToPopUp(IPopUpMenu& popup, const ObjectRef& object)
{
    object_ = object;
    popup.AddCommand(Key, msg::window::Properties, [this] {
        diagnostics::Procedure(kClass, "Sub PropertiesCommand_Execute").run([&] {
            if (const auto mainWindow = diagnostics::utilities().MainWindow(); mainWindow && object_)
                mainWindow->ShowProperties(object_);
        });
    });
    if (!object_) popup.Disable(Key);
}

void PropertiesCommand::ShutDown() { object_ = nullptr; }

}  // namespace pipespec::qtplatform
