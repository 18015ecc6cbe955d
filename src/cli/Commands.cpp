#include "cli/Commands.h"

#include "cli/Chooser.h"
#include "cli/Session.h"
#include "diagnostics/Services.h"
#include "elements/AddToPipeClass.h"
#include "selectors/SciptCallLib.h"

#include <nlohmann/json.hpp>

#include <iostream>
#include <ostream>

namespace pipespec::cli {

namespace {

using nlohmann::json;

std::vector<std::string> with(std::vector<std::string> own, const std::vector<std::string>& common)
{
    own.insert(own.end(), common.begin(), common.end());
    return own;
}

Arguments::Spec accepting(std::vector<std::string> flags, std::vector<std::string> options)
{
    return {with(std::move(flags), kCommonFlags), with(std::move(options), kCommonOptions)};
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
        said["messages"].push_back({{"text", box.text}, {"title", box.title}, {"flags", box.flags}, {"answer", box.answer}});
    for (const auto& error : host.errors())
        said["errors"].push_back(
            {{"number", error.number}, {"description", error.description}, {"class", error.cls}, {"function", error.function}});
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

// ---- check -------------------------------------------------------------

int runCheck(const Arguments& args, std::ostream& out)
{
    const Session session(args);
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
        out << report.dump(2) << "\n";
        return exitcode::Success;
    }
    out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
    for (const auto& entry : report["components"]) {
        out << (entry["valid"].get<bool>() ? "  may become an element:  " : "  refused:                ")
            << entry["component"].get<std::string>() << "\n";
        if (entry.contains("why")) out << "      " << entry["why"].get<std::string>() << "\n";
    }
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

int runAdd(const Arguments& args, std::ostream& out)
{
    const Session session(args);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    const auto duplicates = args.option("--duplicates").value_or("no");
    if (duplicates != "yes" && duplicates != "no") throw UsageError("--duplicates takes yes or no");
    if (args.positional().empty()) throw UsageError("'add' needs at least one component");
    session.host().setYesNoDefault(duplicates == "yes" ? mb::AnswerYes : mb::AnswerNo);

    // Each component is looked up before anything is made, so that a typing
    // error leaves the pipe class as it was.
    std::vector<DeviceRef> components;
    for (const auto& words : args.positional()) components.push_back(session.component(words));

    json report = {{"pipeClass", pipeClass->SystemFullName()}, {"elements", json::array()}, {"refused", json::array()},
                   {"saved", false}};
    for (const auto& component : components) {
        if (addtopipeclass::NewPipeClassElement(component, pipeClass, false)) {
            if (const auto made = addtopipeclass::CreatedObjects())
                for (const auto& [key, element] : *made) report["elements"].push_back(describeElement(asDevice(element)));
        } else {
            report["refused"].push_back(component->SystemFullName());
        }
    }
    report.update(whatWasSaid(session.host(), session.tracer(), args.flag("--trace")));

    if (args.flag("--json")) {
        out << report.dump(2) << "\n";
    } else {
        out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
        for (const auto& e : report["elements"]) {
            out << "  made " << e["element"].get<std::string>() << "  from " << e["cdevice"].get<std::string>() << "\n"
                << "      nominal diameter " << e["lower"].get<std::string>() << " to " << e["upper"].get<std::string>();
            if (!e["range"].empty()) {
                out << ", range";
                for (const auto& dn : e["range"]) out << " " << dn.get<std::string>();
            }
            out << "\n";
        }
        for (const auto& refused : report["refused"]) out << "  not made from " << refused.get<std::string>() << "\n";
        printWhatWasSaid(report, out);
        out << "The project is not saved: this command line cannot keep changes yet.\n";
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

int runQuestions(const Arguments& args, std::ostream& out)
{
    const Session session(args);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    if (args.positional().size() != 1) throw UsageError("'questions' takes one component");
    const auto chooser = std::make_shared<CommandLineChooser>(args.option("--choose").value_or("ask"), std::cin, std::cerr);
    const auto previous = addtopipeclass::setChooseSelectorView(chooser);

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
    report["asked"] = chooser->asked();
    report.update(whatWasSaid(session.host(), session.tracer(), args.flag("--trace")));
    addtopipeclass::setChooseSelectorView(previous);

    if (args.flag("--json")) {
        out << report.dump(2) << "\n";
    } else {
        out << "Pipe class " << report["pipeClass"].get<std::string>() << "\n";
        if (report.contains("made")) out << "  made " << report["made"].get<std::string>() << "\n";
        if (report.contains("element")) out << "  questions of " << report["element"].get<std::string>() << ":\n";
        for (const auto& q : report["questions"])
            out << "    " << q["question"].get<std::string>() << " = " << q["answer"].get<std::string>() << "\n";
        if (deleted) out << "  the element was deleted: the choice was cancelled\n";
        printWhatWasSaid(report, out);
        out << "The project is not saved: this command line cannot keep changes yet.\n";
    }
    return element && !deleted && !report["questions"].empty() ? exitcode::Success : exitcode::Refused;
}

// ---- selectors ---------------------------------------------------------

json selectorOutline(const DeviceRef& selector)
{
    const auto& sele = diagnostics::names().Sele();
    const auto read = [&](const std::string& name) {
        const auto spec = selector->Spec(name);
        return spec ? spec->Value() : std::string();
    };
    json node = {{"name", selector->Name()},
                 {"question", read(sele.NextQuestion())},
                 {"answer", read(sele.Answer())},
                 {"type", read(sele.SelectorType())},
                 {"defaultAnswer", read(sele.DefaultAnswer())},
                 {"children", json::array()}};
    const auto children = selector->Devices();
    for (int i = 1; i <= children->Count(); ++i) node["children"].push_back(selectorOutline(asDevice(children->Item(i))));
    return node;
}

void printOutline(const json& node, int depth, std::ostream& out)
{
    out << std::string(static_cast<std::size_t>(2 * depth), ' ') << node["name"].get<std::string>();
    if (!node["answer"].get<std::string>().empty()) out << "  answer " << node["answer"].get<std::string>();
    if (!node["question"].get<std::string>().empty()) out << "  asks " << node["question"].get<std::string>();
    if (!node["type"].get<std::string>().empty()) out << "  type " << node["type"].get<std::string>();
    if (!node["defaultAnswer"].get<std::string>().empty()) out << "  default " << node["defaultAnswer"].get<std::string>();
    out << "\n";
    for (const auto& child : node["children"]) printOutline(child, depth + 1, out);
}

int runSelectors(const Arguments& args, std::ostream& out)
{
    const Session session(args);
    const auto pipeClass = session.pipeClass(args.required("--class"));
    const auto root = asDevice(pipeClass->Devices()->Item(diagnostics::names().SelectorRoot()));
    json report = {{"pipeClass", pipeClass->SystemFullName()}};
    if (root) report["tree"] = selectorOutline(root);

    if (args.flag("--json")) {
        out << report.dump(2) << "\n";
    } else if (root) {
        out << "Selectors of " << report["pipeClass"].get<std::string>() << "\n";
        printOutline(report["tree"], 1, out);
    } else {
        out << report["pipeClass"].get<std::string>() << " has no selector tree\n";
    }
    return exitcode::Success;
}

}  // namespace

const std::vector<CommandInfo>& commands()
{
    static const std::vector<CommandInfo> all{
        {"check", "tell, for every catalogue component, whether it may become an element of a pipe class, and why not",
         "check --class <pipe class> [--json] [--db FILE] [--lang en|de]", accepting({}, {"--class"}), runCheck},
        {"add", "make elements of a pipe class from catalogue components",
         "add --class <pipe class> [--duplicates yes|no] [--trace] [--json] [--db FILE] [--lang en|de] <component>...",
         accepting({"--trace"}, {"--class", "--duplicates"}), runAdd},
        {"questions", "walk a component down the selector tree of a pipe class and list its questions, top first",
         "questions --class <pipe class> [--choose <answer>|cancel|ask] [--trace] [--json] [--db FILE] [--lang en|de] <component>",
         accepting({"--trace"}, {"--class", "--choose"}), runQuestions},
        {"selectors", "show the selector tree of a pipe class with questions, answers and types",
         "selectors --class <pipe class> [--json] [--db FILE] [--lang en|de]", accepting({}, {"--class"}), runSelectors},
    };
    return all;
}

}  // namespace pipespec::cli
