#include "qtplatform/ObjectPickField.h"

#include "diagnostics/ErrorTail.h"
#include "qtplatform/ObjectDrag.h"

#include <QDropEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace pipespec::qtplatform {

namespace {

constexpr std::string_view kClass = "ObjectPickField";
constexpr int kIconSize = 16;

// The first object a drag carries: the object itself, or a collection's first.
ObjectRef firstObject(const Variant& dragged)
{
    if (auto object = dragged.object()) return object;
    const auto collection = dragged.collection();
    return collection && collection->Count() > 0 ? collection->Item(1) : nullptr;
}

}  // namespace

ObjectPickField::ObjectPickField(QWidget* parent) : QWidget(parent), icon_(new QLabel(this)), name_(new QLabel(this))
{
    setAcceptDrops(true);
    icon_->setFixedSize(kIconSize, kIconSize);
    name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QHBoxLayout(this);  // Owned by this field.
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(icon_);
    layout->addWidget(name_, 1);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
}

void ObjectPickField::Refresh()
{
    diagnostics::Procedure(kClass, "Sub Refresh").run([&] {
        const auto icon = object_ && iconOf_ ? iconOf_(object_) : QIcon();
        icon_->setPixmap(icon.isNull() ? QPixmap() : icon.pixmap(kIconSize, kIconSize));
        name_->setText(object_ ? QString::fromStdString(object_->Name()) : QString());
        name_->setToolTip(object_ ? QString::fromStdString(object_->Description()) : QString());
    });
}

void ObjectPickField::Shutdown()
{
    object_ = nullptr;
    project_ = nullptr;
    iconOf_ = nullptr;
    acceptsDrop_ = nullptr;
}

QString ObjectPickField::shownText() const { return name_->text(); }

bool ObjectPickField::showsIcon() const { return !icon_->pixmap().isNull(); }

Variant ObjectPickField::dragObject() const
{
    const auto workset = project_ ? project_->Workset() : nullptr;
    return workset ? workset->DragObject() : Variant();
}

bool ObjectPickField::takes(const QMimeData* mime) const
{
    bool taken = false;
    diagnostics::Procedure(kClass, "Sub DragOver").run([&] {
        if (locked_ || !carriesObjects(mime)) return;
        const auto dragged = dragObject();
        taken = firstObject(dragged) && (!acceptsDrop_ || acceptsDrop_(dragged));
    });
    return taken;
}

void ObjectPickField::dragEnterEvent(QDragEnterEvent* event)
{
    if (takes(event->mimeData())) event->acceptProposedAction();
}

void ObjectPickField::dragMoveEvent(QDragMoveEvent* event)
{
    if (takes(event->mimeData())) event->acceptProposedAction();
}

void ObjectPickField::dropEvent(QDropEvent* event)
{
    if (!takes(event->mimeData())) return;
    event->acceptProposedAction();
    diagnostics::Procedure(kClass, "Sub DragDrop").run([&] {
        object_ = firstObject(dragObject());
        Refresh();
        emit Change();
    });
}

}  // namespace pipespec::qtplatform
