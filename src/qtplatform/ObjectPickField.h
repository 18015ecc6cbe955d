#pragma once

// A field that shows one object of the database, by its icon and name, and
// takes another by a drop: the objects a drag carries are the DragObject of
// the workset of the field's project (qtplatform/ObjectDrag.h). A locked
// field takes no drop. Its owner may narrow what it takes (the DragOver
// filter); the first object of a drop it takes becomes its object, and
// Change is raised.
//
// The icon of an object comes from the owner's icon provider, so that the
// field serves any picture library; without one, the field shows no icon.

#include "objectmodel/ObjectModel.h"

#include <QIcon>
#include <QWidget>

#include <functional>
#include <string>

class QLabel;
class QMimeData;

namespace pipespec::qtplatform {

class ObjectPickField final : public QWidget {
    Q_OBJECT

public:
    using IconProvider = std::function<QIcon(const ObjectRef&)>;
    // True when the field may take the drag object.
    using DropFilter = std::function<bool(const Variant& dragObject)>;

    explicit ObjectPickField(QWidget* parent = nullptr);

    // The project whose workset's drag object a drop delivers.
    void setProject(const ProjectRef& project) { project_ = project; }
    [[nodiscard]] const ProjectRef& project() const noexcept { return project_; }
    // The pick list the field offers its objects from, by name.
    void setPickListName(std::string name) { pickListName_ = std::move(name); }
    [[nodiscard]] const std::string& pickListName() const noexcept { return pickListName_; }
    void setLocked(bool locked) { locked_ = locked; }
    [[nodiscard]] bool locked() const noexcept { return locked_; }
    // Shown at the next Refresh.
    void setObject(const ObjectRef& object) { object_ = object; }
    [[nodiscard]] const ObjectRef& object() const noexcept { return object_; }
    void setIconProvider(IconProvider provider) { iconOf_ = std::move(provider); }
    void setDropFilter(DropFilter filter) { acceptsDrop_ = std::move(filter); }

    // Shows the object's icon and name; nothing when it has none.
    void Refresh();
    // Lets go of the object and the project.
    void Shutdown();

    [[nodiscard]] QString shownText() const;
    [[nodiscard]] bool showsIcon() const;

signals:
    void Change();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    [[nodiscard]] Variant dragObject() const;
    [[nodiscard]] bool takes(const QMimeData* mime) const;

    QLabel* icon_;  // Owned by this field, its Qt parent.
    QLabel* name_;  // Owned by this field.
    ProjectRef project_;
    ObjectRef object_;
    std::string pickListName_;
    bool locked_ = false;
    IconProvider iconOf_;
    DropFilter acceptsDrop_;
};

}  // namespace pipespec::qtplatform
