#include "platform/query/PopUpMenu.h"

namespace pipespec::platform {

namespace {
// The entry of that key among entries and their sub-menus; for both constnesses.
template <class Entries>
auto findIn(Entries& entries, std::string_view key) -> decltype(&entries.front())
{
    for (auto& top : entries) {
        if (top.key == key) return &top;
        for (auto& sub : top.entries)
            if (sub.key == key) return &sub;
    }
    return nullptr;
}

MenuEntry entryOf(std::string_view key, std::string_view text)
{
    MenuEntry entry;
    entry.key = key;
    entry.text = text;
    return entry;
}
}  // namespace

void PopUpMenu::Add(std::string_view key, std::string_view text)
{
    const auto bar = key.find('|');
    if (bar == std::string_view::npos) {
        entries_.push_back(entryOf(key, text));
        return;
    }
    const auto menuName = key.substr(0, bar);
    const auto menuKey = std::string(">").append(menuName);
    auto* menu = entry(menuKey);
    if (!menu) menu = &entries_.emplace_back(entryOf(menuKey, menuName));
    menu->entries.push_back(entryOf(key, text));
}

void PopUpMenu::AddCommand(std::string_view key, std::string_view text, std::function<void()> command)
{
    Add(key, text);
    entry(key)->command = std::move(command);
}

void PopUpMenu::SetImage(std::string_view key, std::string_view image)
{
    if (auto* found = entry(key)) found->image = image;
}

void PopUpMenu::Disable(std::string_view key)
{
    if (auto* found = entry(key)) found->enabled = false;
}

MenuEntry* PopUpMenu::entry(std::string_view key) { return findIn(entries_, key); }

const MenuEntry* PopUpMenu::find(std::string_view key) const { return findIn(entries_, key); }

std::vector<std::string> PopUpMenu::keys() const
{
    std::vector<std::string> all;
    for (const auto& top : entries_) {
        all.push_back(top.key);
        for (const auto& sub : top.entries) all.push_back(sub.key);
    }
    return all;
}

}  // namespace pipespec::platform
