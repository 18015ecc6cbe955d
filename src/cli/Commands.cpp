#include "cli/Commands.h"

#include "cli/Chooser.h"
#include "cli/Session.h"
#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Text.h"
#include "selectors/SciptCallLib.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <iostream>
#include <ostream>

namespace pipespec::cli {

namespace {

using nlohmann::json;
using Use = DatabaseFile::Use;

std::vector<std::string> with(std::vector<std::string> own, const std::vector<std::string>& common)
{
    own.insert(own.end(), common.begin(), common.end());
    return own;
}

constexpr bool kTakesComponents = true;

Arguments::Spec accepting(std::vector<std::string> flags, std::vector<std::string> options, bool words = false)
{
    return {with(std::move(flags), kCommonFlags), with(std::move(options), kCommonOptions), words};
}

// What the logic said on the way besides its results: the boxes it showed,
// with the answer it got, the errors it reported and, if asked for, its trace.
json whatWasSaid(const diagnostics::HeadlessUtilities& host, const diagnostics::HeadlessTools& tracer, bool withTrace)
{
    json said = {{"messages", json::array()}, {"errors", json::array()}};
    if (withTrace) {
        said["trace"] = json::array();
        for (const auto& line : tracer.lines()) said["trace"].push_back(diagnostics::HeadlessTools::format(line));
    }
    for (const auto& box : host.messageBoxes())
        said["messages"].push_back(
            {{"text", box.text}, {"title", box.title}, {"flags", box.flags}, {"answer", box.answer}});
    for (const auto& error : host.errors())
        said["errors"].push_back({{"number", error.number},
                                  {"description", error.description},
                                  {"class", error.cls},
                                  {"function", error.function}});
    return said;
}

void printWhatWasSaid(const json& said, std::ostream& out)
{
    for (const auto& box : said["messages"]) {
        out << "message: " << box["title"].get<std::string>() << ": " << box["text"].get<std::string>();
        out << " [answer " << box["answer"].get<int>() << "]\n";
    }
    for (const auto& error : said["errors"])
        out << "error " << error["number"].get<long>() << " in " << error["function"].get<std::string>() << ": "
            << error["description"].get<std::string>() << "\n";
    if (said.contains("trace"))
        for (const auto& line : said["trace"]) out << "trace: " << line.get<std::string>() << "\n";
}

// Saves what this run changed, unless it is a dry run or the database is a
// JSON project, and puts in the report what became of the changes.
void keepChanges(Session& session, bool dryRun, json& report)
{
    const auto file = session.file().path().string();
    report["file"] = file;
    report["saved"] = false;
    if (dryRun) {
        report["notSaved"] = "--dry-run";
    } else if (session.file().isJsonProject()) {
        report["notSaved"] = file + " is a JSON project, which the command line only reads; 'pipespec save --db " +
                             file + " --as FILE.pspec' makes a database file of it";
    } else {
        const auto summary = session.file().save();
        report["saved"] = true;
        report["written"] = summary.written;
        report["removed"] = summary.removed;
    }
}

void printKept(const json& report, std::ostream& out)
{
    if (!report["saved"].get<bool>()) {
        out << "The project is not saved: " << report["notSaved"].get<std::string>() << "\n";
        return;
    }
    out << "Saved to " << report["file"].get<std::string>() << ": " << report["written"].get<std::size_t>()
        << " objects written, " << report["removed"].get<std::size_t>() << " removed.\n";
}

// ---- validate ----------------------------------------------------------

int runValidate(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    json report = {{"pipeClass", pipeClass->SystemFullName()}, {"components", json::array()}};
    for (const auto& component : session.catalogueComponents()) {
        session.tracer().clear();
        session.host().clear();
        Variant checkResult;
        const bool valid = addtopipeclass::CheckValid(component, pipeClass, true, checkResult, nullptr);
        json entry = {{"component", component->SystemFullName()}, {"valid", valid}};
        if (!valid) {
            // The refusal is the last line CheckValid traced, or the error that stopped it.
            std::string why;
            for (const auto& line : session.tracer().lines())
                if (line.function == "CheckValid" && line.kind == diagnostics::TraceKind::Text) why = line.text;
            if (why.empty() && !session.host().errors().empty()) why = session.host().errors().back().description;
            entry["why"] = why;
        }
        report["components"].push_back(entry);
    }

    if (args.flag("--json")) {
        printJson(report, out);
        return exitcode::Success;
    }
    out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
    std::size_t refused = 0;
    for (const auto& entry : report["components"]) {
        const bool valid = entry["valid"].get<bool>();
        out << (valid ? "  may become an element:  " : "  refused:                ")
            << entry["component"].get<std::string>() << "\n";
        if (!valid) ++refused;
        if (entry.contains("why")) out << "      " << entry["why"].get<std::string>() << "\n";
    }
    // A catalogue runs to hundreds of lines; the count closes them.
    const auto total = report["components"].size();
    out << total << " components: " << total - refused << " may become an element, " << refused << " refused.\n";
    return exitcode::Success;
}

// ---- add ---------------------------------------------------------------

std::string valueOf(const IDevice& element, const std::string& qualifiedName)
{
    const auto spec = element.Spec(qualifiedName);
    return spec ? spec->DisplayValue() : std::string();
}

json describeElement(const DeviceRef& element)
{
    const auto& names = diagnostics::names();
    const auto chapter = names.NameRange() + ".";
    json range = json::array();
    if (const auto list = element->Spec(names.NameRangeListAttr()))
        for (int i = 0; i < list->RowCount(); ++i) range.push_back(list->GetXValue(i));
    const auto base = element->CDevice();
    return {{"element", element->SystemFullName()},
            {"name", element->Name()},
            {"cdevice", base ? base->SystemFullName() : std::string()},
            {"lower", valueOf(*element, chapter + names.NameRangeLowerAttr())},
            {"upper", valueOf(*element, chapter + names.NameRangeUpperAttr())},
            {"range", range}};
}

// Every attribute that holds a value, chapter by chapter in the order they
// stand. The walk keeps its own list of open chapters, so that how deep they
// nest costs no stack.
std::vector<SpecRef> leafAttributes(const CollectionRef& specs)
{
    std::vector<SpecRef> leaves;
    // The lists being gone through, innermost last, with the position of the next member.
    std::vector<std::pair<CollectionRef, int>> open{{specs, 1}};
    while (!open.empty()) {
        auto& [list, next] = open.back();
        if (next > list->Count()) {
            open.pop_back();
            continue;
        }
        auto spec = asSpec(list->Item(next++));
        if (auto members = spec->Specifications(); members->Count() > 0)
            open.emplace_back(std::move(members), 1);
        else
            leaves.push_back(std::move(spec));
    }
    return leaves;
}

// Where the question walk left an element of a class for the outside design
// system: the leaf its link names, its shop value and its questions. The
// questions are the attributes the walk marked as taken into the pipe spec;
// asking the tree again would be a second walk, which may ask the engineer
// or change the element.
json walkOf(const DeviceRef& element)
{
    const auto& names = diagnostics::names();
    auto link = element->Spec(names.PDMSNames().Selector());
    if (!link) link = element->Spec(names.PDMS() + "." + names.Selector());
    const auto leaf = link ? link->LinkObject() : nullptr;
    json walk = {{"selector", leaf ? leaf->SystemFullName() : std::string()}, {"questions", json::array()}};
    for (const auto& spec : leafAttributes(element->Specs())) {
        if (!walk.contains("shop") && text::Right(text::UCase(spec->Name()), 4) == "SHOP") walk["shop"] = spec->Value();
        if (text::InStr(spec->Description(), "(in spec)") > 0)
            walk["questions"].push_back({{"question", spec->NestedName()}, {"answer", spec->DisplayValue()}});
    }
    return walk;
}

void printWalk(const json& walk, std::ostream& out)
{
    const auto leaf = walk["selector"].get<std::string>();
    out << "      selector " << (leaf.empty() ? "(none)" : leaf);
    if (walk.contains("shop")) out << ", shop " << walk["shop"].get<std::string>();
    out << "\n";
    for (const auto& q : walk["questions"])
        out << "      question " << q["question"].get<std::string>() << " = " << q["answer"].get<std::string>() << "\n";
}

// Installs the command line's selector choice for one command and puts the
// one it replaced back at the end.
class ChooserInstalled {
public:
    explicit ChooserInstalled(const Arguments& args)
        : chooser_(std::make_shared<CommandLineChooser>(args.option("--choose").value_or("ask"), std::cin, std::cerr)),
          installed_(addtopipeclass::setChooseSelectorView, chooser_)
    {
    }

    int asked() const { return chooser_->asked(); }

private:
    std::shared_ptr<CommandLineChooser> chooser_;
    diagnostics::ScopedService<addtopipeclass::IChooseSelectorView> installed_;
};

int runAdd(const Arguments& args, std::ostream& out)
{
    const bool dryRun = args.flag("--dry-run");
    Session session(args, dryRun ? Use::Read : Use::Change);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    const auto duplicates = args.option("--duplicates").value_or("no");
    if (duplicates != "yes" && duplicates != "no") throw UsageError("--duplicates takes yes or no");
    if (args.positional().empty()) throw UsageError("'add' needs at least one component");
    session.host().setYesNoDefault(duplicates == "yes" ? mb::AnswerYes : mb::AnswerNo);
    const ChooserInstalled chooser(args);
    const bool pdms = pipeClass->Spec(diagnostics::names().PDMS()) != nullptr;

    // Each component is looked up before anything is made, so that a typing
    // error leaves the pipe class as it was.
    const auto components = session.components(args.positional());

    json report = {{"pipeClass", pipeClass->SystemFullName()}, {"elements", json::array()}, {"refused", json::array()}};
    for (const auto& component : components) {
        if (addtopipeclass::NewPipeClassElement(component, pipeClass, false)) {
            if (const auto made = addtopipeclass::CreatedObjects(*session.database().workset()))
                for (const auto& [key, object] : *made) {
                    const auto element = asDevice(object);
                    auto described = describeElement(element);
                    if (pdms) described["walk"] = walkOf(element);
                    report["elements"].push_back(std::move(described));
                }
        } else {
            report["refused"].push_back(component->SystemFullName());
        }
    }
    report["asked"] = chooser.asked();
    report.update(whatWasSaid(session.host(), session.tracer(), args.flag("--trace")));
    keepChanges(session, dryRun, report);

    if (args.flag("--json")) {
        printJson(report, out);
    } else {
        out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
        for (const auto& e : report["elements"]) {
            out << "  made " << e["element"].get<std::string>() << "  from " << e["cdevice"].get<std::string>() << "\n"
                << "      nominal diameter " << e["lower"].get<std::string>() << " to "
                << e["upper"].get<std::string>();
            if (!e["range"].empty()) {
                out << ", range";
                for (const auto& dn : e["range"]) out << " " << dn.get<std::string>();
            }
            out << "\n";
            if (e.contains("walk")) printWalk(e["walk"], out);
        }
        for (const auto& refused : report["refused"]) out << "  not made from " << refused.get<std::string>() << "\n";
        printWhatWasSaid(report, out);
        printKept(report, out);
    }
    return report["refused"].empty() ? exitcode::Success : exitcode::Refused;
}

// ---- questions ---------------------------------------------------------

// The element of the pipe class that the words name; a catalogue component is
// made an element first, as a drop on the list would.
DeviceRef elementFor(const Session& session, const DeviceRef& pipeClass, const std::string& words, json& report)
{
    if (const auto own = asDevice(pipeClass->Devices()->Item(words))) return own;
    const auto component = session.component(words);
    if (same(component->Owner(), pipeClass)) return component;
    const auto element = addtopipeclass::NewPipeClassElement(component, pipeClass, false);
    if (element) report["made"] = element->SystemFullName();
    return element;
}

// Questions shows a walk: an element it makes on the way is not kept.
int runQuestions(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    if (args.positional().size() != 1) throw UsageError("'questions' takes one component");
    const ChooserInstalled chooser(args);

    json report = {{"pipeClass", pipeClass->SystemFullName()}, {"questions", json::array()}, {"saved", false}};
    const auto element = elementFor(session, pipeClass, args.positional().front(), report);
    if (element) {
        report["element"] = element->SystemFullName();
        const auto questions = addtopipeclass::SciptCallLib().ReadQuestions(element, pipeClass);
        // The walk gives the leaf's question first; people read from the top.
        for (int i = questions ? questions->Count() : 0; i >= 1; --i) {
            const auto spec = asSpec(questions->Item(i));
            report["questions"].push_back({{"question", spec->NestedName()}, {"answer", spec->DisplayValue()}});
        }
    }
    // A cancelled choice can delete the element it walked.
    const bool deleted = element && element->IsDeleted();
    report["deleted"] = deleted;
    report["asked"] = chooser.asked();
    report.update(whatWasSaid(session.host(), session.tracer(), args.flag("--trace")));

    if (args.flag("--json")) {
        printJson(report, out);
    } else {
        out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
        if (report.contains("made")) out << "  made " << report["made"].get<std::string>() << "\n";
        if (report.contains("element")) out << "  questions of " << report["element"].get<std::string>() << ":\n";
        for (const auto& q : report["questions"])
            out << "    " << q["question"].get<std::string>() << " = " << q["answer"].get<std::string>() << "\n";
        if (deleted) out << "  the element was deleted: the choice was cancelled\n";
        printWhatWasSaid(report, out);
        out << "The project is not saved: questions only shows the walk; 'add' keeps elements.\n";
    }
    return element && !deleted && !report["questions"].empty() ? exitcode::Success : exitcode::Refused;
}

// ---- selectors ---------------------------------------------------------

// One selector without its children.
json selectorNode(const IDevice& selector)
{
    const auto& sele = diagnostics::names().Sele();
    const auto read = [&](const std::string& name) {
        const auto spec = selector.Spec(name);
        return spec ? spec->Value() : std::string();
    };
    return {{"name", selector.Name()},
            {"question", read(sele.NextQuestion())},
            {"answer", read(sele.Answer())},
            {"type", read(sele.SelectorType())},
            {"defaultAnswer", read(sele.DefaultAnswer())},
            {"children", json::array()}};
}

// The selector tree as nested nodes. Like every walk of a tree here, it keeps
// its own list of open levels rather than the stack.
json selectorOutline(const DeviceRef& root)
{
    json outline = selectorNode(*root);
    // The selectors being gone through, innermost last: their children, the
    // node those go into and the position of the next child. A node's list
    // of children grows only while it is innermost, so the nodes of the
    // levels around it stay where they are.
    struct Level {
        CollectionRef children;
        json* node;
        int next;
    };
    std::vector<Level> open{{root->Devices(), &outline, 1}};
    while (!open.empty()) {
        auto& level = open.back();
        if (level.next > level.children->Count()) {
            open.pop_back();
            continue;
        }
        const auto child = asDevice(level.children->Item(level.next++));
        auto& node = (*level.node)["children"].emplace_back(selectorNode(*child));
        open.push_back({child->Devices(), &node, 1});
    }
    return outline;
}

void printSelector(const json& node, std::size_t depth, std::ostream& out)
{
    out << std::string(2 * depth, ' ') << node["name"].get<std::string>();
    if (!node["answer"].get<std::string>().empty()) out << "  answer " << node["answer"].get<std::string>();
    if (!node["question"].get<std::string>().empty()) out << "  asks " << node["question"].get<std::string>();
    if (!node["type"].get<std::string>().empty()) out << "  type " << node["type"].get<std::string>();
    if (!node["defaultAnswer"].get<std::string>().empty())
        out << "  default " << node["defaultAnswer"].get<std::string>();
    out << "\n";
}

void printOutline(const json& tree, std::ostream& out)
{
    // Nodes still to print, the next one last, with their depth.
    std::vector<std::pair<const json*, std::size_t>> waiting{{&tree, 1}};
    while (!waiting.empty()) {
        const auto [node, depth] = waiting.back();
        waiting.pop_back();
        printSelector(*node, depth, out);
        const auto& children = (*node)["children"];
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            waiting.emplace_back(&*child, depth + 1);
    }
}

int runSelectors(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    const auto root = asDevice(pipeClass->Devices()->Item(diagnostics::names().SelectorRoot()));
    json report = {{"pipeClass", pipeClass->SystemFullName()}};
    if (root) report["tree"] = selectorOutline(root);

    if (args.flag("--json")) {
        printJson(report, out);
    } else if (root) {
        out << "Selectors of " << report["pipeClass"].get<std::string>() << "\n";
        printOutline(report["tree"], out);
    } else {
        out << report["pipeClass"].get<std::string>() << " has no selector tree\n";
    }
    return exitcode::Success;
}

// ---- info --------------------------------------------------------------

// The device and everything below it.
std::size_t countDevices(const DeviceRef& device)
{
    std::size_t count = 0;
    std::vector<DeviceRef> waiting{device};
    while (!waiting.empty()) {
        const auto next = std::move(waiting.back());
        waiting.pop_back();
        ++count;
        const auto children = next->Devices();
        for (int i = 1; i <= children->Count(); ++i) waiting.push_back(asDevice(children->Item(i)));
    }
    return count;
}

// The children of a pipe class that are elements: all but its selector tree.
std::vector<DeviceRef> elementsOf(const DeviceRef& pipeClass)
{
    const auto& selectorRoot = diagnostics::names().SelectorRoot();
    std::vector<DeviceRef> elements;
    const auto children = pipeClass->Devices();
    for (int i = 1; i <= children->Count(); ++i) {
        auto child = asDevice(children->Item(i));
        if (child->Name() != selectorRoot) elements.push_back(std::move(child));
    }
    return elements;
}

int runInfo(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto& file = session.file();
    json report = {{"file", file.path().string()},
                   {"format", file.isJsonProject() ? "JSON project (read only)" : "database file"},
                   {"currentProject", session.currentProject()->Name()},
                   {"projects", json::array()},
                   {"pipeClasses", json::array()}};
    for (const auto& project : session.database().projects()) {
        std::size_t devices = 0;
        for (const auto& root : project->roots().items()) devices += countDevices(root);
        const auto base = project->BaseProject();
        report["projects"].push_back({{"name", project->Name()},
                                      {"base", base ? base->Name() : std::string()},
                                      {"writable", project->writable()},
                                      {"devices", devices}});
    }
    for (const auto& pipeClass : session.pipeClasses())
        report["pipeClasses"].push_back(
            {{"pipeClass", pipeClass->SystemFullName()}, {"elements", elementsOf(pipeClass).size()}});

    if (args.flag("--json")) {
        printJson(report, out);
        return exitcode::Success;
    }
    out << report["file"].get<std::string>() << " (" << report["format"].get<std::string>() << ")\n"
        << "Current project " << report["currentProject"].get<std::string>() << "\nProjects:\n";
    for (const auto& p : report["projects"]) {
        out << "  " << p["name"].get<std::string>();
        if (!p["base"].get<std::string>().empty()) out << "  on " << p["base"].get<std::string>();
        out << "  " << p["devices"].get<std::size_t>() << " devices" << (p["writable"].get<bool>() ? "" : ", read only")
            << "\n";
    }
    out << "Pipe classes:\n";
    for (const auto& c : report["pipeClasses"])
        out << "  " << c["pipeClass"].get<std::string>() << "  " << c["elements"].get<std::size_t>() << " elements\n";
    return exitcode::Success;
}

// ---- export ------------------------------------------------------------

// Attributes with their values, chapter by chapter; a list or range
// attribute adds its rows.
json attributesOf(const DeviceRef& device)
{
    json attributes = json::array();
    for (const auto& spec : leafAttributes(device->Specs())) {
        json attribute = {{"name", spec->NestedName()}, {"value", spec->DisplayValue()}};
        if (spec->RowCount() > 0) {
            attribute["rows"] = json::array();
            for (int row = 0; row < spec->RowCount(); ++row) attribute["rows"].push_back(spec->GetXValue(row));
        }
        attributes.push_back(std::move(attribute));
    }
    return attributes;
}

int runExport(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    json report = {{"pipeClass", pipeClass->SystemFullName()},
                   {"attributes", attributesOf(pipeClass)},
                   {"elements", json::array()},
                   {"selectors", nullptr}};
    for (const auto& element : elementsOf(pipeClass)) {
        auto described = describeElement(element);
        described["attributes"] = attributesOf(element);
        report["elements"].push_back(std::move(described));
    }
    if (const auto root = asDevice(pipeClass->Devices()->Item(diagnostics::names().SelectorRoot())))
        report["selectors"] = selectorOutline(root);
    printJson(report, out);
    return exitcode::Success;
}

// ---- search ------------------------------------------------------------

// The components of a pipe class with a function code that serve a nominal
// diameter, as the search page finds them.
int runSearch(const Arguments& args, std::ostream& out)
{
    const Session session(args, Use::Read);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    const auto functionCode = args.required("--fcode");
    const auto diameter = args.required("--nd");
    const auto helper = session.database().workset()->NewPipeSpecHelper(diagnostics::tools().Names());
    helper->SetSearchRoot(pipeClass);
    const auto found = helper->FindComponents(0, functionCode, diameter);
    json report = {{"pipeClass", pipeClass->SystemFullName()},
                   {"functionCode", functionCode},
                   {"nominalDiameter", diameter},
                   {"components", json::array()}};
    for (int i = 1; i <= found->Count(); ++i) {
        const auto element = asDevice(found->Item(i));
        auto described = describeElement(element);
        described["pipeClass"] = element->Owner() ? element->Owner()->SystemFullName() : std::string();
        described["description"] = element->Description();
        report["components"].push_back(std::move(described));
    }

    if (args.flag("--json")) {
        printJson(report, out);
        return exitcode::Success;
    }
    for (const auto& entry : report["components"])
        out << entry["element"].get<std::string>() << "  " << entry["description"].get<std::string>() << "  "
            << entry["lower"].get<std::string>() << " - " << entry["upper"].get<std::string>() << "\n";
    out << found->Count() << " components of " << report["pipeClass"].get<std::string>() << " with function code "
        << functionCode << " for DN " << diameter << "\n";
    return exitcode::Success;
}

// ---- save --------------------------------------------------------------

// Every change is saved by the command that makes it; what is left for save
// is to make a database file of what was opened, a JSON project above all.
int runSave(const Arguments& args, std::ostream& out)
{
    const auto target = args.option("--as");
    if (target && std::filesystem::path(*target).extension() == ".json")
        throw UsageError("--as names a database file; JSON projects are only read");
    Session session(args, target ? Use::Read : Use::Change);
    json report;
    if (target) {
        session.file().saveAs(*target);
        report = {{"file", *target}, {"saved", true}, {"written", "everything"}};
    } else {
        keepChanges(session, false, report);
    }

    if (args.flag("--json"))
        printJson(report, out);
    else if (target)
        out << "Saved the database to " << *target << "\n";
    else
        printKept(report, out);
    return report["saved"].get<bool>() ? exitcode::Success : exitcode::Refused;
}

}  // namespace

const std::vector<CommandInfo>& commands()
{
    static const std::vector<CommandInfo> all{
        {"info", "show the database: its file, projects, current project, counts of devices and the pipe classes",
         "info [--json] [--db FILE] [--lang en|de]", accepting({}, {}), runInfo, "open"},
        {"validate",
         "tell, for every catalogue component, whether it may become an element of a pipe class, and why not",
         "validate --class <pipe class> [--json] [--db FILE] [--lang en|de]", accepting({}, {"--class"}), runValidate,
         "check"},
        {"add", "make elements of a pipe class from catalogue components and save them",
         "add --class <pipe class> [--duplicates yes|no] [--choose <answer>|cancel|ask] [--dry-run] [--trace] [--json] "
         "[--db FILE] [--lang en|de] <component>...",
         accepting({"--trace", "--dry-run"}, {"--class", "--duplicates", "--choose"}, kTakesComponents), runAdd},
        {"questions",
         "walk a component down the selector tree of a pipe class and list its questions, top first (never saves)",
         "questions --class <pipe class> [--choose <answer>|cancel|ask] [--trace] [--json] [--db FILE] [--lang en|de] "
         "<component>",
         accepting({"--trace"}, {"--class", "--choose"}, kTakesComponents), runQuestions},
        {"selectors", "show the selector tree of a pipe class with questions, answers and types",
         "selectors --class <pipe class> [--json] [--db FILE] [--lang en|de]", accepting({}, {"--class"}),
         runSelectors},
        {"export", "print one pipe class as JSON: attributes with values, elements with ranges, selector tree",
         "export --class <pipe class> [--json] [--db FILE] [--lang en|de]", accepting({}, {"--class"}), runExport},
        {"search", "find the components of a pipe class by function code and nominal diameter",
         "search --class <pipe class> --fcode <function code> --nd <nominal diameter> [--json] [--db FILE] "
         "[--lang en|de]",
         accepting({}, {"--class", "--fcode", "--nd"}), runSearch},
        {"save", "save the database; with --as, to a new database file (the way to keep a JSON project)",
         "save [--as FILE.pspec] [--json] [--db FILE] [--lang en|de]", accepting({}, {"--as"}), runSave},
        {"undo", "take back the last saved change of the database file, even one of an earlier run",
         "undo [--json] [--db FILE] [--lang en|de]", accepting({}, {}), runUndo},
        {"redo", "put back the last change that undo took back, unless a change was saved since",
         "redo [--json] [--db FILE] [--lang en|de]", accepting({}, {}), runRedo},
    };
    return all;
}

}  // namespace pipespec::cli
