#include "shell/qt/ContextMenuRenderer.h"

#include "shell/qt/QtConversions.h"

#include <QAction>
#include <variant>

namespace vantry {

namespace {

// Qt takes a single ampersand for a mnemonic.
QString menuTitle(const std::string& title) { return qString(title).replace(u'&', QStringLiteral("&&")); }

/// Adds an entry to a menu.
struct Adder {
    QMenu& menu;
    const MenuItemHandler& chosen;

    void operator()(const MenuItemContent& item) const {
        QAction* action = menu.addAction(menuTitle(item.title));
        action->setCheckable(item.checked.has_value());
        QObject::connect(action, &QAction::triggered, action, [chosen = chosen, item] { chosen(item); });
    }
    void operator()(const SubmenuContent& submenu) const {
        QMenu& inner = *menu.addMenu(menuTitle(submenu.title));
        for (const MenuItemContent& item : submenu.items)
            Adder{inner, chosen}(item);
    }
    void operator()(const MenuSeparator& /*separator*/) const { menu.addSeparator(); }
};

/// Gives an entry of a menu the state that it has in a content.
struct StateSetter {
    QAction& action;

    void operator()(const MenuItemContent& item) const { action.setChecked(item.checked.value_or(false)); }
    void operator()(const SubmenuContent& submenu) const {
        action.setEnabled(submenu.enabled);
        const auto inner = action.menu()->actions();
        for (std::size_t i = 0; i < submenu.items.size(); ++i)
            StateSetter{*inner[static_cast<qsizetype>(i)]}(submenu.items[i]);
    }
    void operator()(const MenuSeparator& /*separator*/) const {}
};

} // namespace

void renderContextMenu(QMenu& menu, const ContextMenuContent& content, const MenuItemHandler& chosen) {
    if (menu.actions().size() != static_cast<qsizetype>(content.entries.size())) {
        menu.clear();
        for (const MenuEntry& entry : content.entries)
            std::visit(Adder{menu, chosen}, entry);
    }
    const auto actions = menu.actions();
    for (std::size_t i = 0; i < content.entries.size(); ++i)
        std::visit(StateSetter{*actions[static_cast<qsizetype>(i)]}, content.entries[i]);
}

} // namespace vantry
