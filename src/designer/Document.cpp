#include "designer/Document.h"

#include <iostream>

namespace pipespec::designer {

// Marks the document modified at the end of each action, as the workset tells it.
class Document::Observer final : public IChangeObserver {
public:
    explicit Observer(Document& document) : document_(document) {}
    void BeginChanges() override {}
    void ObjectChanged(const ChangeNotice&) override { changes_ = true; }
    void EndChanges() override
    {
        if (!std::exchange(changes_, false)) return;
        document_.setModified(true);
        emit document_.changed();
    }

private:
    Document& document_;
    bool changes_ = false;
};

Document::Document(const std::optional<std::filesystem::path>& path, QObject* parent)
    : QObject(parent),
      file_(platform::DatabaseFile::openOrDefault(path, platform::DatabaseFile::Use::Change, std::cerr)),
      undo_(workset()->NewUndoState()),
      observer_(std::make_shared<Observer>(*this))
{
    workset()->SetCurrentUndoState(undo_);
    workset()->AddChangeObserver(observer_);
}

Document::~Document() = default;

void Document::undo()
{
    workset()->SetCurrentUndoState(undo_);
    undo_->Undo();
}

void Document::redo()
{
    workset()->SetCurrentUndoState(undo_);
    undo_->Redo();
}

void Document::save()
{
    file_->save();
    setModified(false);
}

void Document::saveAs(const std::filesystem::path& target)
{
    file_->saveAs(target);
    setModified(false);
}

void Document::setModified(bool modified)
{
    if (modified_ == modified) return;
    modified_ = modified;
    emit modifiedChanged(modified);
}

}  // namespace pipespec::designer
