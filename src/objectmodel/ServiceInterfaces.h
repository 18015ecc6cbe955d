#pragma once

// The process-wide services every procedure reports through, the host
// window services, and the outside helper objects the logic calls on.

#include "objectmodel/NameTableInterface.h"
#include "objectmodel/ObjectModel.h"

#include <memory>
#include <string>
#include <string_view>

namespace pipespec {

// Message box flags and answers.
namespace mb {
inline constexpr int OkOnly = 0;
inline constexpr int Critical = 16;
inline constexpr int Exclamation = 48;
inline constexpr int YesNoExclamation = 52;
inline constexpr int Information = 64;
inline constexpr int AnswerOk = 1;
inline constexpr int AnswerYes = 6;
inline constexpr int AnswerNo = 7;
}  // namespace mb

// Trace and the name table. Trace text is diagnostics: English, never shown.
class IGlobalTools {
public:
    virtual ~IGlobalTools() = default;
    virtual std::shared_ptr<const INameTable> Names() const = 0;
    virtual bool TraceEnabled(std::string_view cls, std::string_view function) const = 0;
    virtual void TraceText(std::string_view cls, std::string_view function, std::string_view text) = 0;
    virtual void TraceObject(std::string_view cls, std::string_view function, std::string_view label,
                             const ObjectRef& object) = 0;
    virtual void TraceEnter(std::string_view cls, std::string_view function) = 0;
    virtual void TraceLeave(std::string_view cls, std::string_view function) = 0;
    virtual void TraceLeaveText(std::string_view cls, std::string_view function, std::string_view text) = 0;
    virtual void TraceValue(std::string_view cls, std::string_view function, std::string_view label,
                            const Variant& value) = 0;
};

class IWindowService;
class IForm {
public:
    virtual ~IForm() = default;
};

class IWindowService {
public:
    virtual ~IWindowService() = default;
    virtual void ShowForm(IForm& form) = 0;
    virtual void CloseForm(IForm& form) = 0;
};

class IMainWindow {
public:
    virtual ~IMainWindow() = default;
    virtual std::shared_ptr<IWindowService> WindowService() const = 0;
    // Shows the properties of the object where the window keeps them.
    virtual void ShowProperties(const ObjectRef& object) = 0;
};

// Long work that the user watches and may stop between two items.
class IProgress {
public:
    virtual ~IProgress() = default;
    // Before item `done` (counted from 0) of the total, named `current`;
    // false once the user cancelled: the caller stops before that item.
    virtual bool Step(int done, std::string_view current) = 0;
};

class ILook {
public:
    virtual ~ILook() = default;
    virtual int BackColor() const = 0;
    virtual int Color(int number) const = 0;
};

// Error reports, texts for users, message boxes and the timing log.
class IUtilities {
public:
    virtual ~IUtilities() = default;
    // Never throws: it is what every error tail ends in.
    virtual void ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept = 0;
    virtual std::string Translate(std::string_view text) const = 0;
    virtual void BeginRefresh() = 0;
    virtual void WriteLog(std::string_view text) = 0;
    virtual std::shared_ptr<IMainWindow> MainWindow() const = 0;
    virtual int MessageBox(std::string_view text, int flags, std::string_view title) = 0;
    virtual std::shared_ptr<ILook> Look() const = 0;
    virtual std::string StandardTablePath(int number) const = 0;
    // Progress of work on `total` items under that title, for as long as
    // the object lives.
    virtual std::unique_ptr<IProgress> BeginProgress(std::string_view title, int total) = 0;
};

class ITab {
public:
    virtual ~ITab() = default;
    virtual void SetImage(std::string_view key) = 0;
    virtual int Index() const = 0;
    virtual void SetSelected(bool selected) = 0;
};

class ITabs {
public:
    virtual ~ITabs() = default;
    virtual std::shared_ptr<ITab> Add(int index, std::string_view caption) = 0;
    virtual void Clear() = 0;
    virtual std::shared_ptr<ITab> Item(int index) const = 0;
};

// The caller-supplied check of CheckValid; result is in/out.
class IElementFilter {
public:
    virtual ~IElementFilter() = default;
    virtual bool CheckElement(const DeviceRef& pipeClass, const DeviceRef& object, Variant& result) = 0;
};

class IPipeSpecHelper {
public:
    virtual ~IPipeSpecHelper() = default;
    virtual void SetPipeClass(const DeviceRef& pipeClass) = 0;
    virtual void SetSearchRoot(const DeviceRef& root) = 0;
    virtual CollectionRef FindComponents(int mode, std::string_view functionCode, std::string_view nominalDiameter) = 0;
    virtual std::string GenericTypeOfFunctionCode(DeviceRef& menuRoot, long functionCode) = 0;
};

}  // namespace pipespec
