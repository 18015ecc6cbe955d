#include "selectors/StateTable.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Text.h"

#include <array>
#include <vector>

namespace pipespec::addtopipeclass {

using diagnostics::Procedure;

namespace {
constexpr std::string_view kPdmsFolderPath = "@3D|00|PDMS";
constexpr std::string_view kStateTableName = "STATE";
constexpr std::string_view kFixedColumns =
    "VC11|VC21|Name|State|CATREF|Cate|BLTREF|CMPREF|MATXT|DETREF|OtherCatRef|RefNo|Error|";
constexpr std::string_view kStandardWidth = "1500";
constexpr std::string_view kTextType = "A";

struct StateRow {
    std::string_view name;
    std::string_view value;
    std::string_view description;  // a message literal, or empty
};
constexpr std::array kStateRows{
    StateRow{"01", "0", ""},
    StateRow{"02", "1", msg::Invalid},
    StateRow{"03", "2", msg::Disabled},
    StateRow{"04", "3", msg::CatrefDisabled},
};

std::vector<std::string> split(std::string_view text, std::string_view separator)
{
    std::vector<std::string> pieces;
    for (int start = 1;;) {
        const int at = text::InStr(start, text, separator);
        if (at == 0) {
            pieces.push_back(text::Mid(text, start));
            return pieces;
        }
        pieces.push_back(text::Mid(text, start, at - start));
        start = at + static_cast<int>(separator.size());
    }
}

// A section of the layout text: from its first word up to one character
// before the word that follows it. That one character opens the tail and is
// kept as it is. A missing word fails here, as an invalid cut.
struct Cut {
    std::string head;
    std::string section;
    std::string tail;
};
Cut cut(std::string_view text, std::string_view word, std::string_view nextWord)
{
    const int begin = text::InStr(text, word);
    const int next = text::InStr(text, nextWord);
    return {text::Left(text, begin - 1), text::Mid(text, begin, next - 1 - begin), text::Mid(text, next - 1)};
}

// The choice for a name: its own entry, or failing that the upper-case one.
bool shown(const std::string& name, const ColumnChoice& choice, const ColumnChoice& upper)
{
    if (choice.Exists(name)) return choice.Item(name);
    if (upper.Exists(name)) return upper.Item(name);
    return true;
}

// Whether a column of the fixed list or of the chapter stays visible: an
// attribute that exists only by inheritance is hidden when it is found under
// the upper-case name, and under its own name only when asked to.
bool columnShown(const std::string& name, const ISpecification& chapter, const ColumnChoice& choice,
                 const ColumnChoice& upper, bool hideTemporary)
{
    if (!shown(name, choice, upper)) return false;
    const auto attributes = chapter.Specifications();
    if (const auto exact = attributes->Item(name)) return !(hideTemporary && exact->SystemTemporary());
    if (const auto upperCase = attributes->Item(text::UCase(name))) return !upperCase->SystemTemporary();
    return true;
}

void setIfChanged(ISpecification& chapter, const std::string& text)
{
    if (text != chapter.ControlProperties()) chapter.SetControlProperties(text);
}
}  // namespace

StandardTableRef GetStandardTable(std::string_view path, const ProjectRef& project)
{
    Procedure procedure(cls::AddToPipeClass, "Private Function 'GetStandardTable'");
    StandardTableRef table;
    bool first = true;
    for (const auto& name : split(path, "|")) {
        procedure.step([&] {
            table = asTable(first ? must(project).StandardTables()->Item(name) : must(table).Children()->Item(name));
        });
        first = false;
        if (!table) break;
    }
    if (table) return table;
    ProjectRef base;
    procedure.step([&] { base = must(project).BaseProject(); });
    return base ? GetStandardTable(path, base) : nullptr;
}

StandardTableRef StateTable(const ProjectRef& project)
{
    StandardTableRef result;
    Procedure(cls::AddToPipeClass, "Function StateTable").run([&] {
        result = GetStandardTable(kStateTablePath, project);
        // The family's table is the base project's: its answer stands, even empty.
        if (const auto base = must(project).BaseProject()) result = GetStandardTable(kStateTablePath, base);
        if (result) return;

        const auto folder = GetStandardTable(kPdmsFolderPath, project);
        if (!folder) return;
        if (diagnostics::names().IsBaseDatabase()) {
            diagnostics::Trace(cls::AddToPipeClass, "StateTable")
                .text("ERROR: @3D|00|PDMS not found. Should be there in refDB!");
            return;
        }
        result = asTable(folder->StandardTables()->CreateNewWithName(kStateTableName));
        auto& host = diagnostics::utilities();
        for (const auto& row : kStateRows) {
            auto& value =
                must(std::dynamic_pointer_cast<IStandardValue>(must(result).Values()->CreateNewWithName(row.name)));
            value.SetValue(row.value);
            value.SetDescription(row.description.empty() ? std::string() : host.Translate(row.description));
        }
    });
    return result;
}

SpecRef StateSpecification(const SpecRef& chapter, const std::string& name, const StandardTableRef& table)
{
    SpecRef spec;
    Procedure(cls::AddToPipeClass, "Function StateSpecification").run([&] {
        if (!chapter || name.empty()) return;
        spec = chapter->Spec(name);
        if (!spec) {
            if (chapter->SystemTemporary()) {
                if (!chapter->CanMakePersistent()) return;
                chapter->MakePersistent();
            }
            ColumnChoice choice;
            const auto attributes = chapter->Specifications();
            for (int i = 1; i <= attributes->Count(); ++i) choice.Add(attributes->Item(i)->Name(), true);
            choice.Add(name, true);
            spec = asSpec(chapter->OwnSpecifications()->CreateNewWithName(name));
            HideColumns(chapter, choice, false);
        }
        if (!spec) return;
        if (spec->Description().empty() && makePersistent(*spec)) spec->SetDescription(name);
        if (spec->ValueType() != kTextType && makePersistent(*spec)) spec->SetValueType(kTextType);
        if (table && !same(spec->StandardTable(), table) && makePersistent(*spec)) spec->SetStandardTable(table);
    });
    return spec;
}

void AddStateColumn(const DeviceRef& element)
{
    Procedure(cls::AddToPipeClass, "Sub AddStateColumn").run([&] {
        const auto& pdms = diagnostics::names().PDMSNames();
        const auto table = StateTable(must(element).Workset()->CurrentProject());
        if (const auto state = element->Spec(pdms.StateOwner().State())) {
            if (makePersistent(*state) && !same(state->StandardTable(), table)) state->SetStandardTable(table);
            return;
        }
        auto chapter = element->Spec(pdms.PDMSChapter());
        if (!chapter) return;
        // The attribute goes where the element inherits the chapter from, if
        // that object can be written.
        if (const auto origin = asSpec(chapter->InheritanceOrigin()); origin && makePersistent(*origin))
            chapter = origin;
        StateSpecification(chapter, diagnostics::names().State(), table);
    });
}

void HideColumns(const SpecRef& chapter, const ColumnChoice& choice, bool hideTemporary)
{
    Procedure(cls::AddToPipeClass, "sub HideColumns").run([&] {
        if (choice.Count() == 0) return;
        ColumnChoice upper;
        for (const auto& [name, show] : choice) upper.Add(text::UCase(name), show);
        auto& layout = must(chapter);

        // Titles: the fixed columns, then every shown attribute the text does
        // not mention yet. The old titles only tell where the old widths stand.
        auto titles = cut(layout.ControlProperties(), "ColsTitles", "RowType");
        auto oldTitles = split(titles.section, "|");
        const int colon = text::InStr(oldTitles.front(), ":");
        titles.head += text::Left(oldTitles.front(), colon);
        oldTitles.front() = text::Mid(oldTitles.front(), colon + 1);
        KeyedMap<int> oldIndex;
        for (std::size_t i = 0; i < oldTitles.size(); ++i) oldIndex.Add(oldTitles[i], static_cast<int>(i + 1));

        std::string order(kFixedColumns);
        titles.head += kFixedColumns;
        const auto attributes = layout.Specifications();
        for (std::int16_t i = 1; i <= attributes->Count(); i = text::Inc16(i)) {
            const auto name = attributes->Item(i)->Name();
            if (shown(name, choice, upper) && text::InStr(titles.head, name) == 0) {
                titles.head += name + "|";
                order += name + "|";
            }
        }

        // Widths, one per column of the order; the first width stands for no column.
        auto widths = cut(titles.head + titles.tail, "ColsSizes", "RowTitles");
        const auto oldWidths = split(widths.section, "|");
        widths.head += oldWidths.front();
        auto columns = split(order, "|");
        columns.pop_back();
        for (const auto& name : columns) {
            widths.head += '|';
            if (!columnShown(name, layout, choice, upper, hideTemporary))
                widths.head += '0';
            else if (oldIndex.Exists(name))
                widths.head += oldWidths.at(static_cast<std::size_t>(oldIndex.Item(name)));
            else
                widths.head += kStandardWidth;
        }
        setIfChanged(layout, widths.head + "|" + widths.tail);

        // Column count.
        auto count = cut(layout.ControlProperties(), "Cols", "ColHorizontal");
        const auto word = split(count.section, ":").front();
        setIfChanged(layout, count.head + word + ":" + std::to_string(columns.size()) + count.tail);
    });
}

}  // namespace pipespec::addtopipeclass
