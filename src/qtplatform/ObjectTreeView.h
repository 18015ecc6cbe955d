#pragma once

// A tree of database objects below one or more roots: each device shows its
// own devices, read when its node is first expanded, so that a large
// catalogue costs nothing until the user opens it. The tree follows the
// database through the workset's change notices: rows come, go, move and
// change in place, and the nodes the user opened stay open.
//
// The holder of the tree decides, as a node's children are read, which of
// them the tree shows (setBeforeExpand); hears of the object the user makes
// current (currentObjectChanged); and drags the selected objects out as the
// workset's DragObject, as the grid does.

#include "objectmodel/ObjectModel.h"

#include <QAbstractItemModel>
#include <QTreeView>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class QSortFilterProxyModel;

namespace pipespec::platform {
class StoreWorkset;
}

namespace pipespec::qtplatform {

// Decides whether `child`, met as the children of `parent` are read, is shown.
using BeforeExpand = std::function<bool(const ObjectRef& parent, const ObjectRef& child)>;
// The children of an object, in the database's order.
using ChildrenOf = std::function<std::vector<ObjectRef>(const ObjectRef& parent)>;

// One column of the tree. Its title is a message literal, translated by the
// installed host each time it is shown. A column with a `write` is edited
// where `editable` says so; the write reports its own failures and answers
// whether it took.
struct TreeColumn {
    std::string_view title;  // a literal that lives as long as the program
    std::function<std::string(const ObjectRef&)> text;
    std::function<bool(const ObjectRef&)> editable;
    std::function<bool(const ObjectRef&, const std::string&)> write;
};

// The own devices of a device.
[[nodiscard]] std::vector<ObjectRef> ownDevices(const ObjectRef& parent);

// The rows of the tree, the first column with the object's picture. By
// default the devices below each device, by name and description.
class ObjectTreeModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    explicit ObjectTreeModel(QObject* parent = nullptr);
    ObjectTreeModel(std::vector<TreeColumn> columns, ChildrenOf children, QObject* parent = nullptr);
    ~ObjectTreeModel() override;

    // Shows these objects as the top rows; the workset's changes are followed.
    void setRoots(const std::vector<ObjectRef>& roots, const std::shared_ptr<platform::StoreWorkset>& workset);
    // Shows the children of `owner` as the top rows (none for empty).
    void setOwner(const ObjectRef& owner, const std::shared_ptr<platform::StoreWorkset>& workset);
    // The object found first, in tree order, for which `match` holds; the
    // whole tree is read for it.
    ObjectRef find(const std::function<bool(const ObjectRef&)>& match);
    void setBeforeExpand(BeforeExpand filter) { beforeExpand_ = std::move(filter); }
    // Reads every node below the roots, for a search over the whole tree.
    void readAll();
    // The index of the object, reading the nodes on its way down from its
    // root; invalid when the object is not below a root or is filtered out.
    QModelIndex reveal(const ObjectRef& object);
    ObjectRef objectAt(const QModelIndex& index) const;
    // Asks the views to show the header texts anew (the language changed).
    void retranslate();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    struct Node {
        ObjectRef object;
        Node* parent = nullptr;
        std::vector<std::unique_ptr<Node>> children;
        bool read = false;
    };
    class Follower;

    Node* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOf(const Node& node) const;
    int rowOf(const Node& node) const;
    // The children the tree shows for `node` now, in the database's order.
    std::vector<ObjectRef> shownChildren(const Node& node) const;
    // Brings a read node's rows in line with the database, row by row.
    void syncChildren(Node& node);
    void forget(const Node& node);
    void objectChanged(const ChangeNotice& notice);
    void follow(const std::shared_ptr<platform::StoreWorkset>& workset);

    std::vector<TreeColumn> columns_;
    ChildrenOf childrenOf_;
    Node root_;
    std::unordered_map<const IBaseObject*, Node*> nodes_;
    BeforeExpand beforeExpand_;
    std::shared_ptr<Follower> follower_;
};

class ObjectTreeView final : public QTreeView {
    Q_OBJECT

public:
    explicit ObjectTreeView(QWidget* parent = nullptr);

    void setRoots(const std::vector<ObjectRef>& roots, const std::shared_ptr<platform::StoreWorkset>& workset);
    void setBeforeExpand(BeforeExpand filter) { model_->setBeforeExpand(std::move(filter)); }
    // Shows only objects whose name or description holds `text`, with the
    // nodes above them; empty shows all. The whole tree is read for it.
    void setNameFilter(const QString& text);
    // Opens the nodes above the object, selects it and scrolls it into view;
    // false when the tree does not show it.
    bool reveal(const ObjectRef& object);
    ObjectRef currentObject() const;
    std::vector<ObjectRef> selectedObjects() const;
    ObjectTreeModel& treeModel() const { return *model_; }
    void retranslate() { model_->retranslate(); }

signals:
    void currentObjectChanged(const pipespec::ObjectRef& object);

protected:
    void startDrag(Qt::DropActions supportedActions) override;

private:
    ObjectTreeModel* model_;         // Owned by this view, its Qt parent.
    QSortFilterProxyModel* filter_;  // Likewise.
    std::shared_ptr<platform::StoreWorkset> workset_;
};

}  // namespace pipespec::qtplatform
