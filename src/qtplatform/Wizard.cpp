// Until the wizard lands: an empty, hidden panel and no engine, so that
// the controls that hold a wizard link and run.

#include "qtplatform/Wizard.h"

namespace pipespec::qtplatform {

class Wizard::Panel final : public QWidget {
public:
    explicit Panel(QWidget* parent) : QWidget(parent) { hide(); }
};

Wizard::Wizard(QWidget* parent) : panel_(new Panel(parent)) {}

Wizard::~Wizard() = default;

void Wizard::SetPipeClass(const DeviceRef& pipeClass) { pipeClass_ = pipeClass; }

void Wizard::SetVisible(bool visible)
{
    if (panel_) panel_->setVisible(visible);
}

void Wizard::Init() {}

void Wizard::ShutDown()
{
    pipeClass_ = nullptr;
    engine_ = nullptr;
}

void Wizard::ShowPPFValues(const DeviceRef&) {}

std::shared_ptr<IWizardEngine> Wizard::Engine() const { return nullptr; }

QWidget* Wizard::panel() const { return panel_; }

}  // namespace pipespec::qtplatform
