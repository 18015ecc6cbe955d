#include "cli/Commands.h"

#include "cli/Session.h"
#include "diagnostics/Services.h"
#include "elements/AddToPipeClass.h"

#include <nlohmann/json.hpp>

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
// with the answer it got, and the errors it reported.
json whatWasSaid(const diagnostics::HeadlessUtilities& host)
{
    json said = {{"messages", json::array()}, {"errors", json::array()}};
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
    report.update(whatWasSaid(session.host()));
    if (args.flag("--trace")) {
        report["trace"] = json::array();
        for (const auto& line : session.tracer().lines()) report["trace"].push_back(diagnostics::HeadlessTools::format(line));
    }

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
        if (report.contains("trace"))
            for (const auto& line : report["trace"]) out << "trace: " << line.get<std::string>() << "\n";
        out << "The project is not saved: this command line cannot keep changes yet.\n";
    }
    return report["refused"].empty() ? exitcode::Success : exitcode::Refused;
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
    };
    return all;
}

}  // namespace pipespec::cli
