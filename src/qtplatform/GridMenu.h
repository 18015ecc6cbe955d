#pragma once

// The context menu of a grid on screen: a QMenu made from the entries that
// the event sink put into the grid's IPopUpMenu. Texts are translated and
// keep their "&" marks as mnemonics; an entry whose text is dashes becomes a
// separator, a ">" entry a sub-menu holding its "Menu|Entry" entries, a
// disabled entry a disabled action, and an image name the style's icon for
// it. Each action carries its full key as data.
//
// Not supported: image names beyond the platform's standard ones that the
// menus use; such an entry shows no icon.

#include "platform/query/PopUpMenu.h"

#include <QIcon>
#include <functional>

#include <string>
#include <string_view>
#include <vector>

class QAction;
class QMenu;

namespace pipespec::qtplatform {

// Called with the key of a sub-menu (">Solve") as it opens.
using SubMenuOpens = std::function<void(const std::string& key)>;

void fillMenu(QMenu& menu, const std::vector<platform::MenuEntry>& entries, const SubMenuOpens& subMenuOpens);

// The style's icon for one of the platform's standard image names
// ("std_Find"); none for another name.
[[nodiscard]] QIcon standardImage(std::string_view image);

// The full key an action of such a menu carries; empty for a separator.
[[nodiscard]] std::string menuKey(const QAction& action);

}  // namespace pipespec::qtplatform
