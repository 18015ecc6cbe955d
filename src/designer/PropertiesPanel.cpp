#include "designer/PropertiesPanel.h"

#include "designer/DesignerHost.h"
#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "platform/store/Database.h"
#include "qtplatform/ObjectTreeView.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <QVBoxLayout>

namespace pipespec::designer {

namespace {

constexpr const char* kClass = "PipeSpecDesigner.Properties";

bool isChapter(const ObjectRef& object)
{
    const auto spec = asSpec(object);
    return spec && spec->Specifications()->Count() > 0;
}

std::vector<ObjectRef> members(const CollectionRef& collection)
{
    std::vector<ObjectRef> all;
    for (int i = 1; i <= collection->Count(); ++i) all.push_back(collection->Item(i));
    return all;
}

// A device's attributes and chapters, a chapter's attributes.
std::vector<ObjectRef> attributesOf(const ObjectRef& owner)
{
    if (const auto device = asDevice(owner)) return members(device->Specs());
    if (const auto spec = asSpec(owner)) return members(spec->Specifications());
    return {};
}

}  // namespace

bool writable(const IBaseObject& object)
{
    const auto project = object.Project();
    if (object.ReadOnly() || object.IsDeleted() || !project || (project->AccessRights() & 1) == 0) return false;
    return !object.SystemTemporary() || object.CanMakePersistent();
}

PropertiesPanel::PropertiesPanel(QWidget* parent)
    : QWidget(parent),
      nameLabel_(new QLabel(this)),
      descriptionLabel_(new QLabel(this)),
      fullNameLabel_(new QLabel(this)),
      name_(new QLineEdit(this)),
      description_(new QLineEdit(this)),
      fullName_(new QLabel(this)),
      attributes_(new QTreeView(this))
{
    auto write = [this](const ObjectRef& object, const std::string& value) {
        return this->write(object, [&](IBaseObject&) { asSpec(object)->SetValue(value); });
    };
    model_ = new qtplatform::ObjectTreeModel(
        {{msg::window::Attribute, [](const ObjectRef& o) { return o->Name(); }, {}, {}},
         {msg::window::Value, [](const ObjectRef& o) { return isChapter(o) ? std::string() : asSpec(o)->Value(); },
          [](const ObjectRef& o) { return !isChapter(o) && writable(*o); }, write},
         {msg::Description, [](const ObjectRef& o) { return o->Description(); }, {}, {}}},
        attributesOf, this);
    attributes_->setModel(model_);
    attributes_->setAlternatingRowColors(true);
    attributes_->setUniformRowHeights(true);
    attributes_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                 QAbstractItemView::AnyKeyPressed);
    attributes_->header()->setStretchLastSection(true);

    fullName_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fullName_->setWordWrap(true);
    auto* form = new QFormLayout;
    form->addRow(nameLabel_, name_);
    form->addRow(descriptionLabel_, description_);
    form->addRow(fullNameLabel_, fullName_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(form);
    layout->addWidget(attributes_, 1);
    connect(name_, &QLineEdit::editingFinished, this,
            [this] { writeField(*name_, &IBaseObject::Name, &IBaseObject::SetName); });
    connect(description_, &QLineEdit::editingFinished, this,
            [this] { writeField(*description_, &IBaseObject::Description, &IBaseObject::SetDescription); });
    retranslate();
    setObject(nullptr, nullptr);
}

void PropertiesPanel::setObject(const ObjectRef& object, const std::shared_ptr<platform::StoreWorkset>& workset)
{
    object_ = object;
    workset_ = workset;
    model_->setOwner(object, workset);
    attributes_->expandToDepth(0);
    attributes_->resizeColumnToContents(0);
    showFields();
}

void PropertiesPanel::showFields()
{
    const bool any = object_ && !object_->IsDeleted();
    const bool mayWrite = any && writable(*object_);
    name_->setText(any ? QString::fromStdString(object_->Name()) : QString());
    description_->setText(any ? QString::fromStdString(object_->Description()) : QString());
    fullName_->setText(any ? QString::fromStdString(object_->SystemFullName()) : shown(msg::window::NoObject));
    name_->setReadOnly(!mayWrite);
    description_->setReadOnly(!mayWrite);
    name_->setEnabled(any);
    description_->setEnabled(any);
}

void PropertiesPanel::retranslate()
{
    nameLabel_->setText(shown(msg::Name));
    descriptionLabel_->setText(shown(msg::Description));
    fullNameLabel_->setText(shown(msg::window::FullName));
    model_->retranslate();
    showFields();
}

bool PropertiesPanel::write(const ObjectRef& object, const std::function<void(IBaseObject&)>& change) const
{
    if (!workset_ || !object) return false;
    return diagnostics::Procedure(kClass, "Write").run([&] {
        ActionScope action(*workset_);
        makePersistent(*object);
        change(*object);
    });
}

void PropertiesPanel::writeField(QLineEdit& field, std::string (IBaseObject::*get)() const,
                                 void (IBaseObject::*set)(std::string_view))
{
    if (!object_ || field.isReadOnly()) return;
    const auto text = field.text().toStdString();
    if (text == ((*object_).*get)()) return;
    if (!write(object_, [&](IBaseObject& object) { (object.*set)(text); })) showFields();
}

}  // namespace pipespec::designer
