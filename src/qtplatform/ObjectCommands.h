#pragma once

// The platform's standard commands on objects, as a control's context menu
// offers them. Each command object puts its own entries into the menu it is
// given, with their commands (IPopUpMenu::AddCommand), runs them when chosen,
// and lets go of what it holds at ShutDown. A control makes them at its
// first menu and keeps them until its own shutdown.

#include "objectmodel/Grid.h"
#include "objectmodel/ObjectModel.h"

#include <QObject>
#include <QStringList>

#include <string_view>
#include <vector>

namespace pipespec::qtplatform {

// Deletes the objects it was given, after the user confirmed, as one undo
// step of the workset, then tells AfterExecute. Entry key "DELETE".
class DeleteCommand final : public QObject {
    Q_OBJECT

public:
    static constexpr std::string_view Key = "DELETE";

    explicit DeleteCommand(QObject* parent = nullptr);
    // The objects the entry deletes; nothing or an empty collection gives a
    // disabled entry.
    void AddToPopUp(IPopUpMenu& popup, const CollectionRef& objects);
    // What the entry runs (also the Delete key): asks, deletes what may be
    // deleted, then AfterExecute, also when the user said no or nothing
    // was deleted.
    void Execute();
    void ShutDown();

signals:
    void AfterExecute();

private:
    CollectionRef objects_;
};

// The list as text: the selected rows copied as tab-separated lines (key
// "LIST_COPY"), the whole list exported as a CSV file (key "LIST_EXPORT").
// It reads the rows and columns of the grid's query as shown.
class ListCommand final : public QObject {
    Q_OBJECT

public:
    static constexpr std::string_view CopyKey = "LIST_COPY";
    static constexpr std::string_view ExportKey = "LIST_EXPORT";

    explicit ListCommand(IQGrid& grid, QObject* parent = nullptr);
    void AddToPopUp(IPopUpMenu& popup, const CollectionRef& objects);
    // The visible columns' titles, then one line per row of those objects,
    // cells as the grid shows them, separated by `separator`.
    QString text(const CollectionRef& objects, QChar separator) const;
    // Writes the whole list as CSV to that file, or asks for a file when
    // none is given (scripts and tests give one).
    void Export(const QString& fileName = {}) const;
    void ShutDown();

private:
    // The titles, then the cells of each row of those objects (all rows for nothing).
    std::vector<QStringList> lines(const CollectionRef& objects) const;

    IQGrid* grid_;
    CollectionRef objects_;
};

// Shows the properties of one object through the main window (key
// "PROPERTIES").
class PropertiesCommand final : public QObject {
    Q_OBJECT

public:
    static constexpr std::string_view Key = "PROPERTIES";

    explicit PropertiesCommand(QObject* parent = nullptr);
    void AddToPopUp(IPopUpMenu& popup, const ObjectRef& object);
    void ShutDown();

private:
    ObjectRef object_;
};

}  // namespace pipespec::qtplatform
