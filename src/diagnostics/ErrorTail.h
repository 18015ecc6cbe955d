#pragma once

// The error tail every procedure of the logic ends in: a failure is reported
// through utilities().ReportError with the procedure's class and function
// strings, and then the procedure either leaves at once (run), carries on
// with its next statement (step) or tries the failed statement again
// (retry). No exception ever crosses a procedure boundary.
//
//     bool result = false;
//     Procedure(cls::AddToPipeClass, "Function CheckValid").run([&] { ...; result = true; });
//     return result;
//
// The class and function texts are held by view: pass literals or the cls
// constants, not temporaries.

#include "objectmodel/Errors.h"
#include "objectmodel/Variant.h"

#include <string_view>

namespace pipespec::diagnostics {

// The exception being handled, as a report carries it: a PlatformError keeps
// its number and text, std::bad_alloc is OutOfMemory, anything else Internal.
// Call only inside a catch handler.
[[nodiscard]] ErrorInfo currentError() noexcept;

class Procedure {
public:
    // `function` as reported, e.g. "Function CheckValid" or "Sub InitCatalogOwner".
    Procedure(std::string_view cls, std::string_view function) noexcept : cls_(cls), function_(function) {}

    // The whole body: a failure is reported and the rest of the body skipped,
    // so the procedure's result stays as it stood. True if the body completed.
    template <class F>
    bool run(F&& body) noexcept
    {
        return attempt(body, true);
    }

    // One statement of a long routine: a failure is reported and the caller
    // goes on with its next statement. True if the statement completed.
    template <class F>
    bool step(F&& statement) noexcept
    {
        return attempt(statement, true);
    }

    // Reports each failure and runs the statement again, at most maxAttempts
    // times in all (at least once). True once it completes.
    template <class F>
    bool retry(F&& statement, int maxAttempts) noexcept
    {
        for (int tries = 1;; ++tries) {
            if (attempt(statement, true)) return true;
            if (tries >= maxAttempts) return false;
        }
    }

    // A statement whose failure is neither reported nor counted.
    template <class F>
    bool ignoring(F&& statement) noexcept
    {
        return attempt(statement, false);
    }

    // Failures reported so far.
    int failures() const noexcept { return failures_; }

private:
    template <class F>
    bool attempt(F& statement, bool report) noexcept
    {
        try {
            statement();
            return true;
        } catch (...) {
            if (report) reportCurrent();
            return false;
        }
    }

    void reportCurrent() noexcept;

    std::string_view cls_;
    std::string_view function_;
    int failures_ = 0;
};

// The trace calls of one procedure, bound to its class and trace name
// ("CheckValid"). Tracing never disturbs the logic: a trace that fails is
// dropped.
class Trace {
public:
    Trace(std::string_view cls, std::string_view function) noexcept : cls_(cls), function_(function) {}

    // For a caller that would rather not build a costly text for nothing.
    bool enabled() const noexcept;

    void enter() const noexcept;
    void leave() const noexcept;
    void leaveText(std::string_view text) const noexcept;
    void text(std::string_view text) const noexcept;
    void object(std::string_view label, const ObjectRef& object) const noexcept;
    void value(std::string_view label, const Variant& value) const noexcept;

private:
    std::string_view cls_;
    std::string_view function_;
};

}  // namespace pipespec::diagnostics
