#include "qtplatform/Wizard.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "platform/query/Query.h"
#include "platform/store/Database.h"
#include "qtplatform/QtGrid.h"
#include "qtplatform/WizardEngine.h"

#include <QEvent>
#include <QLineEdit>
#include <QVBoxLayout>

#include <string>

namespace pipespec::qtplatform {

using diagnostics::Procedure;

namespace {
constexpr std::string_view kClass = "QuorlPipeSpecWizard.Wizard";
}  // namespace

// The search field over the grid of the components on offer. The query is
// made by the first Init, when the name table its columns read is surely there.
class Wizard::Panel final : public QWidget {
public:
    explicit Panel(QWidget* parent) : QWidget(parent), search(new QLineEdit(this)), grid(new QtGrid("WizardGrid", this))
    {
        retranslate();
        search->setClearButtonEnabled(true);
        grid->setDragDropMode(QAbstractItemView::DragOnly);
        auto* layout = new QVBoxLayout(this);  // Owned by the panel.
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(search);
        layout->addWidget(grid);
        connect(search, &QLineEdit::textChanged, this,
                [this] { Procedure(kClass, "Private Sub 'txtSearch_Change'").run([&] { applySearch(); }); });
    }

    // Shows these components; the workset carries them when they are dragged.
    void showComponents(const CollectionRef& components, const WorksetRef& workset)
    {
        if (!query) makeQuery();
        grid->setWorkset(std::dynamic_pointer_cast<platform::StoreWorkset>(workset));
        query->Top()->SetObjects(components);
        applySearch();
    }

    // Lets go of the query and of the grid's hold on it and on its sink.
    void shutDown()
    {
        grid->ShutDown();
        grid->setWorkset(nullptr);
        if (query) query->ShutDown();
        query = nullptr;
    }

    QLineEdit* search;  // Owned by the panel.
    QtGrid* grid;       // Owned by the panel.

protected:
    void changeEvent(QEvent* event) override
    {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::LanguageChange) retranslate();
    }

private:
    void retranslate()
    {
        search->setPlaceholderText(
            QString::fromStdString(diagnostics::utilities().Translate(msg::window::WizardSearch)));
    }

    void makeQuery()
    {
        const auto& names = diagnostics::names();
        query = std::make_shared<platform::Query>();
        const auto add = [&](std::string_view key, std::string_view title, int valueKind, int width,
                             const std::string& attribute = {}) {
            const auto column = query->Top()->Columns()->Add(key, -1);
            column->SetTitle(title);
            column->SetValueKind(valueKind);
            column->SetWidth(width);
            if (!attribute.empty()) column->Source()->Set(sourcekind::Attribute, attribute);
            return column;
        };
        const auto name = add("Name", msg::window::WizardName, valuekind::Name, 5);
        name->SetObjectColumn(true);
        const auto description = add("Description", msg::window::WizardDescription, valuekind::Description, 12);
        add("FunctionCode", msg::window::WizardFunctionCode, valuekind::Value, 3, names.GD().VFCD());
        add("GenericType", msg::window::WizardGenericType, valuekind::Value, 3, names.Pipe().VSTD());
        const auto diameter = add("NominalDiameter", msg::window::WizardNominalDiameter, valuekind::DisplayValue, 3,
                                  names.Connection().NominalDiameter().First());
        diameter->SetNumeric(true);
        diameter->SetNumericMode(1);
        // The search text: in the name, or else in the description.
        byName = query->Filters()->Add(-1);
        byName->SetColumn(name);
        byName->SetOperator(filteroperator::Contains);
        byName->SetLink(filterlink::Or);
        byDescription = query->Filters()->Add(-1);
        byDescription->SetColumn(description);
        byDescription->SetOperator(filteroperator::Contains);
        grid->SetQuery(query);
    }

    void applySearch()
    {
        if (!query) return;
        const Variant wanted(search->text().toStdString());
        byName->SetValue(wanted);
        byDescription->SetValue(wanted);
        query->Refresh();
        grid->Refresh();
    }

    std::shared_ptr<platform::Query> query;
    QueryFilterRef byName;
    QueryFilterRef byDescription;
};

Wizard::Wizard(QWidget* parent) : panel_(new Panel(parent)), engine_(std::make_shared<WizardEngine>())
{
    panel_->hide();
}

Wizard::~Wizard() { ShutDown(); }

void Wizard::SetPipeClass(const DeviceRef& pipeClass) { pipeClass_ = pipeClass; }

void Wizard::SetVisible(bool visible)
{
    if (panel_) panel_->setVisible(visible);
}

void Wizard::Init()
{
    Procedure(kClass, "Sub Init").run([&] {
        if (!panel_) return;
        if (!pipeClass_) return panel_->showComponents(nullptr, nullptr);
        const auto workset = pipeClass_->Workset();
        const auto offered = must(workset).NewCollection();
        for (const auto& component : engine_->Offers(pipeClass_)) offered->Add(component);
        panel_->showComponents(offered, workset);
    });
}

void Wizard::ShutDown()
{
    Procedure proc(kClass, "Sub ShutDown");
    if (panel_) {
        proc.step([&] { panel_->shutDown(); });
        panel_->hide();
        panel_->deleteLater();
        panel_ = nullptr;
    }
    pipeClass_ = nullptr;
}

void Wizard::ShowPPFValues(const DeviceRef& object)
{
    Procedure(kClass, "Sub ShowPPFValues").run([&] {
        const auto& device = must(object);
        const auto& names = diagnostics::names();
        auto& utilities = diagnostics::utilities();
        const auto notSet = utilities.Translate(msg::window::WizardNotSet);
        // Values as solving compares them; the range as the user reads it.
        const auto valueOf = [&](const std::string& attribute, bool displayed = false) {
            const auto spec = device.Spec(attribute);
            const auto value = !spec ? std::string() : displayed ? spec->DisplayValue() : spec->Value();
            return value.empty() ? notSet : value;
        };
        const auto base = device.CDevice();
        std::string text = device.SystemFullName();
        const auto line = [&](std::string_view label, const std::string& value) {
            text.append(diagnostics::CrLf).append(utilities.Translate(label)).append(": ").append(value);
        };
        line(msg::window::WizardFunctionCode, valueOf(names.GD().VFCD()));
        line(msg::window::WizardGenericType, valueOf(names.Pipe().VSTD()));
        line(msg::window::WizardElementRange, valueOf(names.GD().ElementRangeAttr(), true));
        line(msg::window::WizardNominalPressure, valueOf(WizardEngine::PressureAttribute()));
        line(msg::window::WizardCatalogueObject, base ? base->SystemFullName() : notSet);
        utilities.MessageBox(text, mb::Information, utilities.Translate(msg::window::WizardValues));
    });
}

std::shared_ptr<IWizardEngine> Wizard::Engine() const { return engine_; }

QWidget* Wizard::panel() const { return panel_; }

}  // namespace pipespec::qtplatform
