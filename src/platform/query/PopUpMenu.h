#pragma once

// The context menu the grids hand to their event sinks (rules in Grid.h).

#include "objectmodel/Grid.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pipespec::platform {

struct MenuEntry {
    std::string key;  // full key: ">Solve" for a sub-menu, "Solve|SolveTemplate" within it
    std::string text;
    std::string image;
    bool enabled = true;
    std::function<void()> command;   // run when chosen, for an entry of a command object
    std::vector<MenuEntry> entries;  // of a sub-menu

    bool separator() const { return !text.empty() && text.find_first_not_of('-') == std::string::npos; }
    bool subMenu() const { return key.starts_with('>'); }
};

class PopUpMenu final : public IPopUpMenu {
public:
    // An entry "Menu|Entry" whose sub-menu was not added yet makes it, titled "Menu".
    void Add(std::string_view key, std::string_view text) override;
    void AddCommand(std::string_view key, std::string_view text, std::function<void()> command) override;
    void SetImage(std::string_view key, std::string_view image) override;
    void Disable(std::string_view key) override;
    void Clear() override { entries_.clear(); }

    const std::vector<MenuEntry>& entries() const { return entries_; }
    // The entry of that full key, in the menu or in a sub-menu; nullptr if none.
    const MenuEntry* find(std::string_view key) const;
    // Every key in menu order, the entries of a sub-menu right behind it.
    std::vector<std::string> keys() const;

private:
    MenuEntry* entry(std::string_view key);

    std::vector<MenuEntry> entries_;
};

}  // namespace pipespec::platform
