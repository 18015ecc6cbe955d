#include "qtplatform/PictureByObject.h"

#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QStyle>

#include <map>

namespace pipespec::qtplatform {

namespace {

// The names table, if a host installed one: the kinds that need it are then
// told apart, else they show as plain devices.
std::shared_ptr<const INameTable> installedNames() { return diagnostics::tools().Names(); }

bool isSelector(const DeviceRef& device, const INameTable& names)
{
    for (auto at = device; at; at = asDevice(at->Owner())) {
        if (at->Name() == names.SelectorRoot()) return true;
        if (addtopipeclass::IsPipeClass(at)) return false;
    }
    return false;
}

ObjectKind kindOfDevice(const DeviceRef& device)
{
    if (device->SystemType() == systemtype::Root) return ObjectKind::Project;
    if (addtopipeclass::IsPipeClass(device)) return ObjectKind::PipeClass;
    const auto names = installedNames();
    if (names && isSelector(device, *names)) return ObjectKind::Selector;
    if (addtopipeclass::IsPipeClass(device->Owner())) return ObjectKind::Element;
    if (device->IsFolder()) return ObjectKind::Folder;
    if (names && (device->Spec(names->GD().VFCD()) || device->Spec(names->Pipe().VSTD()))) return ObjectKind::Component;
    return ObjectKind::Device;
}

// A letter on a rounded square of a colour, at the sizes a view asks for.
QIcon drawn(QChar letter, QColor colour)
{
    QIcon icon;
    for (const int side : {16, 24, 32}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(colour.darker(140));
        painter.setBrush(colour);
        const qreal inset = side / 16.0;
        painter.drawRoundedRect(QRectF(inset, inset, side - 2 * inset, side - 2 * inset), side / 5.0, side / 5.0);
        QFont font = QApplication::font();
        font.setBold(true);
        font.setPixelSize(side * 11 / 16);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(0, 0, side, side), Qt::AlignCenter, QString(letter));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon standard(QStyle::StandardPixmap which) { return QApplication::style()->standardIcon(which); }

QIcon made(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::Project: return standard(QStyle::SP_DriveHDIcon);
    case ObjectKind::Folder: return standard(QStyle::SP_DirIcon);
    case ObjectKind::PipeClass: return drawn(u'P', QColor(0x1f, 0x6f, 0xb5));
    case ObjectKind::Element: return drawn(u'E', QColor(0x2e, 0x8b, 0x57));
    case ObjectKind::Selector: return drawn(u'S', QColor(0xc0, 0x6c, 0x14));
    case ObjectKind::Component: return drawn(u'K', QColor(0x6a, 0x5a, 0xcd));
    case ObjectKind::Device: return drawn(u'D', QColor(0x70, 0x78, 0x80));
    case ObjectKind::Chapter: return drawn(u'C', QColor(0x8b, 0x5a, 0x2b));
    case ObjectKind::Attribute: return drawn(u'A', QColor(0x99, 0x99, 0x99));
    case ObjectKind::Table: return standard(QStyle::SP_FileDialogDetailedView);
    case ObjectKind::Value: return standard(QStyle::SP_FileIcon);
    case ObjectKind::Other: break;
    }
    return {};
}

}  // namespace

ObjectKind kindOfObject(const ObjectRef& object)
{
    if (const auto device = asDevice(object)) return kindOfDevice(device);
    if (const auto spec = asSpec(object))
        return spec->OwnSpecifications()->Count() > 0 ? ObjectKind::Chapter : ObjectKind::Attribute;
    if (asTable(object)) return ObjectKind::Table;
    if (std::dynamic_pointer_cast<IStandardValue>(object)) return ObjectKind::Value;
    return ObjectKind::Other;
}

QIcon pictureOfKind(ObjectKind kind)
{
    // Drawn once per process; an icon is a shared handle.
    static std::map<ObjectKind, QIcon> pictures;
    auto found = pictures.find(kind);
    if (found == pictures.end()) found = pictures.emplace(kind, made(kind)).first;
    return found->second;
}

}  // namespace pipespec::qtplatform
