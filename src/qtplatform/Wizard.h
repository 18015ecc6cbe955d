#pragma once

// The wizard beside the component list: a panel with the catalogue
// components that its engine accepts for the pipe class, searchable, from
// which the user drags components onto the list; and the engine, which is the
// element check the list passes to CheckValid and which solves template
// classes and their structure elements (what solving means is told in
// WizardEngine).

#include "objectmodel/Wizard.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace pipespec::qtplatform {

class WizardEngine;

class Wizard final : public IWizard {
public:
    // The panel is made as a child of `parent`, hidden.
    explicit Wizard(QWidget* parent);
    ~Wizard() override;
    Wizard(const Wizard&) = delete;
    Wizard& operator=(const Wizard&) = delete;

    void SetPipeClass(const DeviceRef& pipeClass) override;
    void SetVisible(bool visible) override;
    // Reads the accepted components of the pipe class anew.
    void Init() override;
    void ShutDown() override;
    // A message box with the values solving works from for that object.
    void ShowPPFValues(const DeviceRef& object) override;
    std::shared_ptr<IWizardEngine> Engine() const override;

    // The panel the list places; empty after ShutDown.
    QWidget* panel() const;

private:
    class Panel;
    // Owned by its Qt parent: empty once the parent took it along, or after ShutDown.
    QPointer<Panel> panel_;
    std::shared_ptr<WizardEngine> engine_;
    DeviceRef pipeClass_;
};

}  // namespace pipespec::qtplatform
