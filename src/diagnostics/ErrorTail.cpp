#include "diagnostics/ErrorTail.h"

#include "diagnostics/ServiceRegistry.h"

#include <exception>
#include <new>

namespace pipespec::diagnostics {

namespace {

template <class F>
void traceQuietly(F&& call) noexcept
{
    try {
        call(tools());
    } catch (...) {
        // A trace line is never worth a failure of the procedure it describes.
    }
}

}  // namespace

ErrorInfo currentError() noexcept
{
    try {
        try {
            throw;
        } catch (const PlatformError& e) {
            return {e.number(), e.what()};
        } catch (const std::bad_alloc&) {
            return {err::OutOfMemory, "Out of memory"};
        } catch (const std::exception& e) {
            return {err::Internal, e.what()};
        } catch (...) {
            return {err::Internal, "Unknown error"};
        }
    } catch (...) {
        // Copying the description ran out of memory.
        return {err::OutOfMemory, {}};
    }
}

void Procedure::reportCurrent() noexcept
{
    ++failures_;
    try {
        utilities().ReportError(currentError(), cls_, function_);
    } catch (...) {
        // Making the default services failed; there is no one left to tell.
    }
}

bool Trace::enabled() const noexcept
{
    bool on = false;
    traceQuietly([&](IGlobalTools& t) { on = t.TraceEnabled(cls_, function_); });
    return on;
}

void Trace::enter() const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceEnter(cls_, function_); });
}

void Trace::leave() const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceLeave(cls_, function_); });
}

void Trace::leaveText(std::string_view text) const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceLeaveText(cls_, function_, text); });
}

void Trace::text(std::string_view text) const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceText(cls_, function_, text); });
}

void Trace::object(std::string_view label, const ObjectRef& object) const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceObject(cls_, function_, label, object); });
}

void Trace::value(std::string_view label, const Variant& value) const noexcept
{
    traceQuietly([&](IGlobalTools& t) { t.TraceValue(cls_, function_, label, value); });
}

}  // namespace pipespec::diagnostics
