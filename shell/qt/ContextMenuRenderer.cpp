#include "shell/qt/ContextMenuRenderer.h"

#include "shell/qt/QtConversions.h"

#include <QAction>
#include <QKeySequence>
#include <algorithm>

namespace vantry {

namespace {

// Qt takes a single ampersand for a mnemonic.
QString menuTitle(const MenuItemContent& item) { return qString(item.title).replace(u'&', QStringLiteral("&&")); }

bool showsItem(const QAction& action, const MenuItemContent& item) {
    return item.separator ? action.isSeparator()
                          : action.text() == menuTitle(item) && (action.menu() != nullptr) == !item.submenu.empty();
}

bool showsItems(const QMenu& menu, const std::vector<MenuItemContent>& items) {
    return std::ranges::equal(menu.actions(), items,
                              [](const QAction* action, const auto& item) { return showsItem(*action, item); });
}

void renderItems(QMenu& menu, const std::vector<MenuItemContent>& items, const MenuItemHandler& chosen);

void addItem(QMenu& menu, const MenuItemContent& item, const MenuItemHandler& chosen) {
    if (item.separator) {
        menu.addSeparator();
    } else if (!item.submenu.empty()) {
        menu.addMenu(menuTitle(item));
    } else {
        QAction* action = menu.addAction(menuTitle(item));
        action->setCheckable(item.checkable);
        if (!item.keyEquivalent.empty())
            action->setShortcut(QKeySequence(QStringLiteral("Ctrl+") + qString(item.keyEquivalent)));
        QObject::connect(action, &QAction::triggered, action, [chosen, item] { chosen(item); });
    }
}

void renderItems(QMenu& menu, const std::vector<MenuItemContent>& items, const MenuItemHandler& chosen) {
    if (!showsItems(menu, items)) {
        menu.clear();
        for (const auto& item : items)
            addItem(menu, item, chosen);
    }
    const auto actions = menu.actions();
    for (std::size_t i = 0; i < items.size(); ++i) {
        QAction* action = actions[static_cast<qsizetype>(i)];
        action->setChecked(items[i].checked);
        action->setEnabled(items[i].enabled);
        if (action->menu())
            renderItems(*action->menu(), items[i].submenu, chosen);
    }
}

} // namespace

void renderContextMenu(QMenu& menu, const ContextMenuContent& content, const MenuItemHandler& chosen) {
    renderItems(menu, content.items, chosen);
}

} // namespace vantry
