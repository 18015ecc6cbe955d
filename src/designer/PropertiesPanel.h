#pragma once

// The properties of the current object: its name and description, then its
// attributes by chapter (own and inherited) with their values. What the
// store lets the user write is editable; each edit is one user action, made
// through the write gate, so one step of the designer's undo state. An
// inherited attribute is stored first where it may be (make persistent).

#include "objectmodel/ObjectModel.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>

class QLabel;
class QLineEdit;
class QTreeView;

namespace pipespec::platform {
class StoreWorkset;
}
namespace pipespec::qtplatform {
class ObjectTreeModel;
}

namespace pipespec::designer {

class PropertiesPanel final : public QWidget {
    Q_OBJECT

public:
    explicit PropertiesPanel(QWidget* parent = nullptr);

    void setObject(const ObjectRef& object, const std::shared_ptr<platform::StoreWorkset>& workset);
    const ObjectRef& object() const { return object_; }
    // Shows the object's fields anew (after a change or an undo).
    void showFields();
    void retranslate();
    QTreeView& attributes() const { return *attributes_; }

private:
    // Runs one write as a user action; false, reported, when the store refuses.
    bool write(const ObjectRef& object, const std::function<void(IBaseObject&)>& change) const;
    void writeField(QLineEdit& field, std::string (IBaseObject::*get)() const,
                    void (IBaseObject::*set)(std::string_view));

    ObjectRef object_;
    std::shared_ptr<platform::StoreWorkset> workset_;
    QLabel* nameLabel_;
    QLabel* descriptionLabel_;
    QLabel* fullNameLabel_;
    QLineEdit* name_;
    QLineEdit* description_;
    QLabel* fullName_;
    QTreeView* attributes_;
    qtplatform::ObjectTreeModel* model_;
};

// Whether the store lets the user write the object now: not read-only, in a
// project the user may write, and stored or storable.
[[nodiscard]] bool writable(const IBaseObject& object);

}  // namespace pipespec::designer
