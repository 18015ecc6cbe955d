#pragma once

// The database the designer has open, with the designer's one undo state:
// every user action in the window is one step of it (the window brackets its
// actions, the controls switch back to it), Edit → Undo takes the newest
// back. The document is modified from the first change after an open or a
// save until the next save, and tells the window after each action.

#include "objectmodel/ObjectModel.h"
#include "platform/DatabaseFile.h"
#include "platform/store/Database.h"

#include <QObject>

#include <filesystem>
#include <memory>
#include <optional>

namespace pipespec::designer {

class Document final : public QObject {
    Q_OBJECT

public:
    // Opens `path`, else the user's own database made from the sample.
    explicit Document(const std::optional<std::filesystem::path>& path, QObject* parent = nullptr);
    ~Document() override;

    platform::Database& database() const { return *file_->database(); }
    std::shared_ptr<platform::StoreWorkset> workset() const { return file_->database()->workset(); }
    const std::shared_ptr<const platform::JsonNameTable>& names() const { return file_->names(); }
    const std::filesystem::path& path() const { return file_->path(); }
    bool isJsonProject() const { return file_->isJsonProject(); }
    bool isModified() const { return modified_; }

    bool canUndo() const { return undo_->undoSteps() > 0; }
    bool canRedo() const { return undo_->redoSteps() > 0; }
    void undo();
    void redo();
    // The undo state the designer wants current: the controls' rollback target.
    const std::shared_ptr<platform::UndoState>& undoState() const { return undo_; }

    // Writes the changes to the database file: error ReadOnly for a JSON project.
    void save();
    // Writes the whole database to a new file, kept from then on.
    void saveAs(const std::filesystem::path& target);

signals:
    // After each action and each undo or redo: the database shows its new state.
    void changed();
    void modifiedChanged(bool modified);

private:
    class Observer;
    void setModified(bool modified);

    std::optional<platform::DatabaseFile> file_;
    std::shared_ptr<platform::UndoState> undo_;
    std::shared_ptr<Observer> observer_;
    bool modified_ = false;
};

}  // namespace pipespec::designer
