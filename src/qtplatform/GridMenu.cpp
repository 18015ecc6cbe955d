#include "qtplatform/GridMenu.h"

#include "diagnostics/ServiceRegistry.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QStyle>

#include <array>
#include <string_view>
#include <utility>

namespace pipespec::qtplatform {

namespace {
// The platform's standard images that menus name, drawn by the style.
constexpr std::array<std::pair<std::string_view, QStyle::StandardPixmap>, 4> kImages{{
    {"std_Navigate", QStyle::SP_ArrowForward},
    {"std_Paste", QStyle::SP_FileDialogContentsView},
    {"std_Find", QStyle::SP_FileDialogDetailedView},
    {"std_AutoFind", QStyle::SP_BrowserReload},
}};

QString shownText(const std::string& text) { return QString::fromStdString(diagnostics::utilities().Translate(text)); }
}  // namespace

void fillMenu(QMenu& menu, const std::vector<platform::MenuEntry>& entries, const SubMenuOpens& subMenuOpens)
{
    for (const auto& entry : entries) {
        if (entry.separator()) {
            menu.addSeparator();
            continue;
        }
        QAction* action = nullptr;
        if (entry.subMenu()) {
            auto* sub = menu.addMenu(shownText(entry.text));  // Owned by `menu`.
            fillMenu(*sub, entry.entries, subMenuOpens);
            QObject::connect(sub, &QMenu::aboutToShow, sub, [key = entry.key, subMenuOpens] { subMenuOpens(key); });
            action = sub->menuAction();
        } else {
            action = menu.addAction(shownText(entry.text));
        }
        action->setData(QString::fromStdString(entry.key));
        action->setIcon(standardImage(entry.image));
        action->setEnabled(entry.enabled);
    }
}

QIcon standardImage(std::string_view image)
{
    for (const auto& [name, pixmap] : kImages)
        if (name == image) return QApplication::style()->standardIcon(pixmap);
    return {};
}

std::string menuKey(const QAction& action) { return action.data().toString().toStdString(); }

}  // namespace pipespec::qtplatform
