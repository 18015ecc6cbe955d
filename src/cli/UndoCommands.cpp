// undo and redo: each run that saves is one step, kept in the database file,
// so a later run can take back what an earlier one saved.

#include "cli/Commands.h"
#include "cli/Session.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace pipespec::cli {

namespace {

using nlohmann::json;

struct Direction {
    bool (DatabaseFile::*take)();
    const char* done;     // "undone"
    const char* nothing;  // "Nothing to undo"
};

constexpr Direction kUndo{&DatabaseFile::undo, "undone", "Nothing to undo"};
constexpr Direction kRedo{&DatabaseFile::redo, "redone", "Nothing to redo"};

int takeStep(const Arguments& args, std::ostream& out, const Direction& direction)
{
    Session session(args, DatabaseFile::Use::Change);
    auto& file = session.file();
    const bool taken = (file.*direction.take)();
    const json report = {{"file", file.path().string()},
                         {direction.done, taken},
                         {"undoSteps", file.undoSteps()},
                         {"redoSteps", file.redoSteps()}};
    if (args.flag("--json"))
        printJson(report, out);
    else if (taken)
        out << file.path().string() << ": the last step is " << direction.done << "; " << file.undoSteps()
            << " to undo, " << file.redoSteps() << " to redo.\n";
    else
        out << direction.nothing << " in " << file.path().string() << ".\n";
    return taken ? exitcode::Success : exitcode::Refused;
}

}  // namespace

int runUndo(const Arguments& args, std::ostream& out) { return takeStep(args, out, kUndo); }
int runRedo(const Arguments& args, std::ostream& out) { return takeStep(args, out, kRedo); }

}  // namespace pipespec::cli
