#include "qtplatform/ObjectTreeView.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Grid.h"
#include "platform/store/Database.h"
#include "qtplatform/ObjectDrag.h"
#include "qtplatform/PictureByObject.h"

#include <QFont>
#include <QSortFilterProxyModel>

#include <algorithm>

namespace pipespec::qtplatform {

namespace {

constexpr const char* kClass = "ObjectTreeView";

QString text(const std::string& s) { return QString::fromStdString(s); }

// A root shows where it belongs: "BASE:@40".
std::string shownName(const IBaseObject& object)
{
    return object.SystemType() == systemtype::Root ? object.SystemFullName() : object.Name();
}

}  // namespace

// Hears the workset's changes for the model, which a Qt parent owns and the
// workset holds weakly through this link.
class ObjectTreeModel::Follower final : public IChangeObserver {
public:
    explicit Follower(ObjectTreeModel& model) : model_(model) {}
    void BeginChanges() override {}
    void ObjectChanged(const ChangeNotice& notice) override
    {
        diagnostics::Procedure(kClass, "ObjectChanged").run([&] { model_.objectChanged(notice); });
    }
    void EndChanges() override {}

private:
    ObjectTreeModel& model_;
};

std::vector<ObjectRef> ownDevices(const ObjectRef& parent)
{
    std::vector<ObjectRef> devices;
    const auto device = asDevice(parent);
    if (!device) return devices;
    const auto children = device->Devices();
    for (int i = 1; i <= children->Count(); ++i) devices.push_back(children->Item(i));
    return devices;
}

ObjectTreeModel::ObjectTreeModel(QObject* parent)
    : ObjectTreeModel({{msg::Name, [](const ObjectRef& o) { return shownName(*o); }, {}, {}},
                       {msg::Description, [](const ObjectRef& o) { return o->Description(); }, {}, {}}},
                      ownDevices, parent)
{
}

ObjectTreeModel::ObjectTreeModel(std::vector<TreeColumn> columns, ChildrenOf children, QObject* parent)
    : QAbstractItemModel(parent),
      columns_(std::move(columns)),
      childrenOf_(std::move(children))
{
    root_.read = true;
}

ObjectTreeModel::~ObjectTreeModel() = default;

void ObjectTreeModel::setRoots(const std::vector<ObjectRef>& roots,
                               const std::shared_ptr<platform::StoreWorkset>& workset)
{
    beginResetModel();
    root_.children.clear();
    nodes_.clear();
    for (const auto& object : roots) {
        auto node = std::make_unique<Node>(Node{object, &root_, {}, false});
        nodes_[object.get()] = node.get();
        root_.children.push_back(std::move(node));
    }
    root_.object = nullptr;
    root_.read = true;
    follow(workset);
    endResetModel();
}

void ObjectTreeModel::setOwner(const ObjectRef& owner, const std::shared_ptr<platform::StoreWorkset>& workset)
{
    beginResetModel();
    root_.children.clear();
    nodes_.clear();
    root_.object = owner;
    root_.read = false;
    if (owner) nodes_[owner.get()] = &root_;
    follow(workset);
    endResetModel();
    fetchMore({});
}

void ObjectTreeModel::follow(const std::shared_ptr<platform::StoreWorkset>& workset)
{
    follower_ = std::make_shared<Follower>(*this);
    if (workset) workset->AddChangeObserver(follower_);
}

ObjectTreeModel::Node* ObjectTreeModel::nodeAt(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : const_cast<Node*>(&root_);
}

int ObjectTreeModel::rowOf(const Node& node) const
{
    const auto& siblings = node.parent->children;
    const auto found =
        std::find_if(siblings.begin(), siblings.end(), [&](const auto& sibling) { return sibling.get() == &node; });
    return static_cast<int>(found - siblings.begin());
}

QModelIndex ObjectTreeModel::indexOf(const Node& node) const
{
    if (&node == &root_) return {};
    return createIndex(rowOf(node), 0, const_cast<Node*>(&node));
}

QModelIndex ObjectTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const auto* node = nodeAt(parent);
    if (row < 0 || static_cast<std::size_t>(row) >= node->children.size() || column < 0 || column >= columnCount())
        return {};
    return createIndex(row, column, node->children[static_cast<std::size_t>(row)].get());
}

QModelIndex ObjectTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid()) return {};
    return indexOf(*nodeAt(child)->parent);
}

int ObjectTreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0) return 0;
    return static_cast<int>(nodeAt(parent)->children.size());
}

int ObjectTreeModel::columnCount(const QModelIndex&) const { return static_cast<int>(columns_.size()); }

QVariant ObjectTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) return {};
    const auto& object = nodeAt(index)->object;
    if (role == Qt::DecorationRole && index.column() == 0) return pictureByObject(object);
    if (role == Qt::ToolTipRole) return text(object->SystemFullName());
    if (role == Qt::FontRole && object->SystemTemporary()) {
        // What is only inherited is shown in italics, as it is not stored here.
        QFont inherited;
        inherited.setItalic(true);
        return inherited;
    }
    if (role != Qt::DisplayRole && role != Qt::EditRole) return {};
    return text(columns_[static_cast<std::size_t>(index.column())].text(object));
}

bool ObjectTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole) return false;
    const auto& column = columns_[static_cast<std::size_t>(index.column())];
    return column.write && column.write(nodeAt(index)->object, value.toString().toStdString());
}

QVariant ObjectTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= columnCount()) return {};
    return text(diagnostics::utilities().Translate(columns_[static_cast<std::size_t>(section)].title));
}

void ObjectTreeModel::retranslate() { emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1); }

bool ObjectTreeModel::hasChildren(const QModelIndex& parent) const
{
    const auto* node = nodeAt(parent);
    if (node->read) return !node->children.empty();
    return node->object && !childrenOf_(node->object).empty();
}

bool ObjectTreeModel::canFetchMore(const QModelIndex& parent) const { return !nodeAt(parent)->read; }

void ObjectTreeModel::fetchMore(const QModelIndex& parent)
{
    auto* node = nodeAt(parent);
    if (node->read) return;
    node->read = true;
    syncChildren(*node);
}

Qt::ItemFlags ObjectTreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) return Qt::NoItemFlags;
    const auto& column = columns_[static_cast<std::size_t>(index.column())];
    const auto editable = column.write && column.editable && column.editable(nodeAt(index)->object);
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
           (editable ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

ObjectRef ObjectTreeModel::objectAt(const QModelIndex& index) const
{
    return index.isValid() ? nodeAt(index)->object : nullptr;
}

std::vector<ObjectRef> ObjectTreeModel::shownChildren(const Node& node) const
{
    std::vector<ObjectRef> shown;
    if (!node.object) return shown;
    for (auto& child : childrenOf_(node.object))
        if (!beforeExpand_ || beforeExpand_(node.object, child)) shown.push_back(std::move(child));
    return shown;
}

void ObjectTreeModel::syncChildren(Node& node)
{
    const auto wanted = shownChildren(node);
    const auto parentIndex = indexOf(node);
    // Rows of objects no longer shown go first, then the rest is walked in
    // order: a row in place stays, a missing one is inserted or moved up.
    for (std::size_t row = node.children.size(); row-- > 0;) {
        const auto& object = node.children[row]->object;
        if (std::find(wanted.begin(), wanted.end(), object) != wanted.end()) continue;
        const int at = static_cast<int>(row);
        beginRemoveRows(parentIndex, at, at);
        forget(*node.children[row]);
        node.children.erase(node.children.begin() + at);
        endRemoveRows();
    }
    for (std::size_t row = 0; row < wanted.size(); ++row) {
        if (row < node.children.size() && node.children[row]->object == wanted[row]) continue;
        const int at = static_cast<int>(row);
        const auto later = std::find_if(node.children.begin() + at, node.children.end(),
                                        [&](const auto& child) { return child->object == wanted[row]; });
        if (later != node.children.end()) {
            const int from = static_cast<int>(later - node.children.begin());
            beginMoveRows(parentIndex, from, from, parentIndex, at);
            auto moved = std::move(*later);
            node.children.erase(later);
            node.children.insert(node.children.begin() + at, std::move(moved));
            endMoveRows();
            continue;
        }
        beginInsertRows(parentIndex, at, at);
        auto child = std::make_unique<Node>(Node{wanted[row], &node, {}, false});
        nodes_[wanted[row].get()] = child.get();
        node.children.insert(node.children.begin() + at, std::move(child));
        endInsertRows();
    }
}

void ObjectTreeModel::forget(const Node& node)
{
    for (const auto& child : node.children) forget(*child);
    const auto found = nodes_.find(node.object.get());
    if (found != nodes_.end() && found->second == &node) nodes_.erase(found);
}

void ObjectTreeModel::objectChanged(const ChangeNotice& notice)
{
    if (notice.kind == ChangeKind::Changed) {
        if (const auto found = nodes_.find(notice.object.get()); found != nodes_.end() && found->second != &root_) {
            const auto at = indexOf(*found->second);
            emit dataChanged(at, at.siblingAtColumn(columnCount() - 1));
        }
        return;
    }
    // Membership: the owners it left and joined show their rows anew, where read.
    for (const auto& owner : {notice.from, notice.to}) {
        const auto found = owner ? nodes_.find(owner.get()) : nodes_.end();
        if (found == nodes_.end()) continue;
        auto& node = *found->second;
        if (node.read)
            syncChildren(node);
        else if (&node != &root_)
            emit dataChanged(indexOf(node), indexOf(node));  // the expand mark may come or go
    }
}

void ObjectTreeModel::readAll()
{
    std::vector<Node*> pending{&root_};
    while (!pending.empty()) {
        auto* node = pending.back();
        pending.pop_back();
        if (!node->read) fetchMore(indexOf(*node));
        for (const auto& child : node->children) pending.push_back(child.get());
    }
}

ObjectRef ObjectTreeModel::find(const std::function<bool(const ObjectRef&)>& match)
{
    readAll();
    std::vector<const Node*> pending{&root_};
    while (!pending.empty()) {
        const auto* node = pending.back();
        pending.pop_back();
        if (node != &root_ && match(node->object)) return node->object;
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
            pending.push_back(child->get());
    }
    return nullptr;
}

QModelIndex ObjectTreeModel::reveal(const ObjectRef& object)
{
    // The way up to a root, then down again reading each node.
    std::vector<ObjectRef> way;
    for (auto at = object; at; at = at->Owner()) {
        way.push_back(at);
        if (nodes_.count(at.get())) break;
    }
    if (way.empty() || !nodes_.count(way.back().get())) return {};
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        const auto found = nodes_.find(step->get());
        if (found == nodes_.end()) return {};
        if (step + 1 != way.rend()) fetchMore(indexOf(*found->second));
    }
    const auto found = nodes_.find(object.get());
    return found == nodes_.end() ? QModelIndex() : indexOf(*found->second);
}

ObjectTreeView::ObjectTreeView(QWidget* parent)
    : QTreeView(parent),
      model_(new ObjectTreeModel(this)),
      filter_(new QSortFilterProxyModel(this))
{
    filter_->setSourceModel(model_);
    filter_->setRecursiveFilteringEnabled(true);
    filter_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    filter_->setFilterKeyColumn(-1);
    setModel(filter_);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setUniformRowHeights(true);
    setAnimated(false);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { emit currentObjectChanged(currentObject()); });
}

void ObjectTreeView::setRoots(const std::vector<ObjectRef>& roots,
                              const std::shared_ptr<platform::StoreWorkset>& workset)
{
    workset_ = workset;
    model_->setRoots(roots, workset);
}

void ObjectTreeView::setNameFilter(const QString& text)
{
    if (!text.isEmpty()) model_->readAll();
    filter_->setFilterFixedString(text);
    if (!text.isEmpty()) expandAll();
}

bool ObjectTreeView::reveal(const ObjectRef& object)
{
    const auto at = filter_->mapFromSource(model_->reveal(object));
    if (!at.isValid()) return false;
    for (auto up = at.parent(); up.isValid(); up = up.parent()) expand(up);
    setCurrentIndex(at);
    scrollTo(at);
    return true;
}

ObjectRef ObjectTreeView::currentObject() const { return model_->objectAt(filter_->mapToSource(currentIndex())); }

std::vector<ObjectRef> ObjectTreeView::selectedObjects() const
{
    std::vector<ObjectRef> objects;
    for (const auto& row : selectionModel()->selectedRows())
        objects.push_back(model_->objectAt(filter_->mapToSource(row)));
    return objects;
}

void ObjectTreeView::startDrag(Qt::DropActions)
{
    diagnostics::Procedure(kClass, "OLEStartDrag").run([&] {
        const auto objects = selectedObjects();
        if (objects.empty() || !workset_) return;
        const auto dragged = workset_->NewCollection();
        for (const auto& object : objects) dragged->Add(object);
        dragObjects(*this, workset_.get(), Variant(dragged), dropeffect::Copy | dropeffect::Link);
    });
}

}  // namespace pipespec::qtplatform
