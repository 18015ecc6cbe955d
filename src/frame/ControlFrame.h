#pragma once

// What every control and form of the designer has around its own work: the
// host interface (Version, WPFControl, UpdateLayout), the pipe class with its
// workset, the designer's undo state, the shared document, the colour of the
// tab backgrounds, the shutdown the host calls before it destroys the
// control, and one error tail for every entry from Qt.
//
// The host's order: construct (InitializeWpfControls), SetPipeSpecXML,
// ActivateRollbackState, SetPipeClass (which runs Refresh), the control in
// use, Shutdown, destroy. Destruction never shuts a control down.
//
// Qt's event handlers of a control run through handle(), and signals of its
// children are wired with connectHandler(): a handler that fails is reported
// with the control's class string and returns, and the control stays in use.
// F1 anywhere in a control opens the help page of its class; a switch of the
// language (QEvent::LanguageChange) runs retranslate().

#include "diagnostics/ErrorTail.h"
#include "objectmodel/ObjectModel.h"
#include "objectmodel/ServiceInterfaces.h"

#include <QDomDocument>
#include <QPointer>
#include <QRect>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pipespec::frame {

// The object by which the host places a control: the area the host gave it
// and the children it re-applies the look to.
class HostObject {
public:
    // Registers the control's child widgets as they stand.
    explicit HostObject(QWidget& control);

    void place(const QRect& area) { placement_ = area; }
    [[nodiscard]] QRect placement() const { return placement_; }
    // Puts the look's background colour on the registered children still alive.
    void applyLook(const ILook& look) const;
    [[nodiscard]] std::size_t registeredCount() const noexcept { return children_.size(); }

private:
    QRect placement_;
    std::vector<QPointer<QWidget>> children_;
};

// A colour of the look (0x00BBGGRR) on screen.
[[nodiscard]] QColor lookColor(int oleColor);

class ControlFrame : public QWidget, public IForm {
    Q_OBJECT

public:
    // The number TabBackGround answers: the look's colour of tab backgrounds.
    static constexpr int kTabBackGroundColor = 4;

    // `cls`: the control's class string ("QuorlPipeSpecComp.PipeSpecComp"),
    // a literal or a diagnostics::cls constant.
    explicit ControlFrame(std::string_view cls, QWidget* parent = nullptr);
    // Terminate: gives up the host object. Shutdown is the host's call.
    ~ControlFrame() override;
    ControlFrame(const ControlFrame&) = delete;
    ControlFrame& operator=(const ControlFrame&) = delete;

    [[nodiscard]] int Version() const noexcept { return 1; }
    // Made on first demand, then the same object until the control is destroyed.
    HostObject& WPFControl();
    // Moves the host object to the control's area and re-applies the look.
    void UpdateLayout();
    // Puts the look's tab colour on the tab control, if any; gives 4, the
    // number of the colour, not the colour.
    virtual int TabBackGround();

    // Whether the control can serve that object, asked by the host before it
    // shows the control; a refusal names the chapter the object lacks and an
    // error number, from which the host tells the user why. A control that
    // needs no chapter serves every object.
    virtual bool ValidChapter(const DeviceRef& vNewValue, std::int32_t& ErrorID, std::string& strSelectChapter);

    [[nodiscard]] DeviceRef PipeClass() const { return mPipeClass; }
    // A pipe class brings its workset and runs Refresh; empty leaves the
    // workset as it was and refreshes nothing.
    virtual void SetPipeClass(const DeviceRef& pipeClass);
    void SetPipeSpecXML(const QDomDocument& document) { m_PipeSpecXML = document; }
    // Stores a given state, then makes the stored one the workset's current
    // undo state. Empty: only make sure the stored state is current.
    void ActivateRollbackState(const UndoStateRef& PipeSpecUndoState);
    // Releases what the control holds; members keep their values.
    void Shutdown();
    [[nodiscard]] bool isShutDown() const noexcept { return shutDown_; }

    [[nodiscard]] std::string_view classString() const noexcept { return cls_; }
    // The class string behind its library name: "PipeSpecComp", "FrmPCOMRange".
    [[nodiscard]] QString className() const;

protected:
    // The control's own work, each behind its own error tail.
    virtual void Refresh() {}
    virtual void shutdownParts() {}
    // Sets the texts for users anew after a switch of the language.
    virtual void retranslate() {}
    // The tab strip TabBackGround colours; none by default.
    virtual QWidget* tabControl() { return nullptr; }
    // Hands the object, or with `toOriginal` the catalogue object it was made
    // from, to the host's navigator ("NAVIGATOR" of the workset's
    // AppGlobals), which reveals it. Without navigator or object: nothing.
    void navigateTo(const ObjectRef& current, bool toOriginal) const;
    // Whether ActivateRollbackState traces its "enter" (most controls do).
    void setTracesRollbackEntry(bool on) noexcept { tracesRollbackEntry_ = on; }

    // The standard handler: the body's failure is reported under `function`
    // ("Sub cmdOk_Click") and the handler returns. True if the body completed.
    template <class F>
    bool handle(std::string_view function, F&& body) noexcept
    {
        return diagnostics::Procedure(cls_, function).run(std::forward<F>(body));
    }
    // Wires a child's signal to a handler of this control behind handle().
    template <class Sender, class Signal, class F>
    void connectHandler(Sender* sender, Signal signal, std::string_view function, F body)
    {
        connect(sender, signal, this,
                [this, function, body](auto&&... args) { this->handle(function, [&] { body(args...); }); });
    }

    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    DeviceRef mPipeClass;
    WorksetRef gWorkset;
    UndoStateRef m_PipeSpecUndoState;
    QDomDocument m_PipeSpecXML;

private:
    void InitializeWpfControls();

    std::string_view cls_;
    std::unique_ptr<HostObject> host_;
    bool tracesRollbackEntry_ = true;
    bool shutDown_ = false;
};

}  // namespace pipespec::frame
