#include "componentsearch/PipeCompSearch.h"

#include "diagnostics/ErrorTail.h"
#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "frame/QueryColumns.h"
#include "objectmodel/QueryInterfaces.h"
#include "platform/store/Database.h"
#include "platform/store/ObjectFactory.h"
#include "qtplatform/GridMenu.h"
#include "qtplatform/ObjectCommands.h"
#include "qtplatform/QtGrid.h"
#include "selectors/StateTable.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <vector>

namespace pipespec::componentsearch {

namespace {
// The first entry of both lists: no criterion.
constexpr std::string_view kNoValueKey = "KNoValue";
constexpr std::string_view kNoValueText = "*** ???";
constexpr double kNoValue = -1;
// The table of nominal diameters when the database names none (option 235).
constexpr std::string_view kDiameterTablePath = "@3D|01|DIN|05";
constexpr int kDiameterTableOption = 235;
// In a base database: the norm-dimension tables by norm (option 367).
constexpr int kNormDimensionTablesOption = 367;
// The standard table of function codes, by its number.
constexpr int kFunctionCodeTable = 4849;
constexpr int kEntryKey = Qt::UserRole;
constexpr int kEntryTag = Qt::UserRole + 1;

QString qt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }
QString translated(std::string_view literal) { return qt(diagnostics::utilities().Translate(literal)); }

void addEntry(QComboBox& combo, std::string_view key, std::string_view text, double tag)
{
    combo.addItem(qt(text));
    combo.setItemData(combo.count() - 1, qt(key), kEntryKey);
    combo.setItemData(combo.count() - 1, tag, kEntryTag);
}

// A list with its first entry only, selected.
void startList(QComboBox& combo)
{
    combo.clear();
    combo.clearEditText();
    addEntry(combo, kNoValueKey, kNoValueText, kNoValue);
}

void addValue(QComboBox& combo, IWorkset& workset, const ObjectRef& item)
{
    const auto value = std::dynamic_pointer_cast<IStandardValue>(item);
    if (!value) return;
    // Appended, not added: GCC 12 warns falsely about "K" + name at -O3.
    addEntry(combo, std::string("K").append(value->Name()), value->Description(), workset.ParseNumber(value->Value()));
}

// The table's values in the order of their descriptions, compared as byte
// strings (upper case before lower case); equal descriptions keep the
// table's order.
std::vector<int> SortByDescription(const IObjectCollection& values)
{
    std::vector<int> index(static_cast<std::size_t>(values.Count()));
    std::iota(index.begin(), index.end(), 1);
    std::vector<std::string> text(index.size() + 1);
    for (const int i : index) text[static_cast<std::size_t>(i)] = values.Item(i)->Description();
    std::stable_sort(index.begin(), index.end(), [&](int a, int b) {
        return text[static_cast<std::size_t>(a)] < text[static_cast<std::size_t>(b)];
    });
    return index;
}

}  // namespace

// The grid's events, as the control answers them; the grid holds it weakly.
class PipeCompSearch::GridEvents final : public IQGridEvents {
public:
    explicit GridEvents(PipeCompSearch& control) : control_(control) {}
    int Version() override { return 10; }
    void PopUp(const PopUpMenuRef& popup) override { control_.PopUp(*popup); }
    void PopUpCmd(const PopUpMenuRef&, std::string_view key) override { control_.PopUpCmd(key); }

private:
    PipeCompSearch& control_;
};

PipeCompSearch::PipeCompSearch(QWidget* parent)
    : ControlFrame(cls::PipeCompSearch, parent),
      LabFCode(new QLabel(this)),
      CmbFCode(new QComboBox(this)),
      LabND(new QLabel(this)),
      CmbND(new QComboBox(this)),
      TBar(new QToolBar(this)),
      autoFind_(new QAction(this)),
      find_(new QAction(this)),
      QGrid(new qtplatform::QtGrid("QGrid", this)),
      events_(std::make_shared<GridEvents>(*this))
{
    CmbFCode->setObjectName("CmbFCode");
    CmbND->setObjectName("CmbND");
    CmbND->setEditable(true);
    CmbND->setInsertPolicy(QComboBox::NoInsert);
    for (auto* combo : {CmbFCode, CmbND}) {
        combo->setMinimumContentsLength(16);
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    }
    LabFCode->setBuddy(CmbFCode);
    LabND->setBuddy(CmbND);
    // The toolbar keeps room for both buttons; the lists give way first.
    TBar->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout;
    row->addWidget(LabFCode);
    row->addWidget(CmbFCode);
    row->addSpacing(24);
    row->addWidget(LabND);
    row->addWidget(CmbND);
    row->addSpacing(24);
    row->addWidget(TBar);
    row->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(row);
    layout->addWidget(QGrid, 1);

    connectHandler(CmbFCode, &QComboBox::activated, "Private Sub 'CmbFCode_lick'", [this](int) { CmbFCode_lick(); });
    connectHandler(CmbND, &QComboBox::activated, "Private Sub 'CmbND_Click'", [this](int) { CmbND_Click(); });
    // A typed diameter counts when the user confirms it.
    connectHandler(CmbND->lineEdit(), &QLineEdit::returnPressed, "Private Sub 'CmbND_Click'",
                   [this] { CmbND_Click(); });
    connectHandler(autoFind_, &QAction::triggered, "Private Sub 'TBar_ButtonClick'",
                   [this](bool) { TBar_ButtonClick("AutoFind"); });
    connectHandler(find_, &QAction::triggered, "Private Sub 'TBar_ButtonClick'",
                   [this](bool) { TBar_ButtonClick("Find"); });
    handle("Private Sub 'TBarInit'", [&] { TBarInit(); });
    startList(*CmbFCode);
    startList(*CmbND);
    retranslate();
}

PipeCompSearch::~PipeCompSearch() = default;

void PipeCompSearch::retranslate()
{
    LabFCode->setText(translated(msg::FunctionCode));
    LabND->setText(translated(msg::NominalDiameter));
    autoFind_->setText(translated(msg::SearchAtOnce));
    autoFind_->setToolTip(translated(msg::SearchAtOnce));
    find_->setText(translated(msg::Search));
    find_->setToolTip(translated(msg::Search));
}

// ---- criteria ------------------------------------------------------------

void PipeCompSearch::InitFunctionCode()
{
    handle("Private Sub 'InitFunctionCode'", [&] {
        startList(*CmbFCode);
        if (!gWorkset) return;
        const auto path = diagnostics::utilities().StandardTablePath(kFunctionCodeTable);
        const auto table = addtopipeclass::GetStandardTable(path, gWorkset->CurrentProject());
        if (!table) return;
        const auto values = table->Values();
        for (const int at : SortByDescription(*values)) addValue(*CmbFCode, *gWorkset, values->Item(at));
    });
    CmbFCode->setCurrentIndex(0);
}

void PipeCompSearch::InitND()
{
    handle("Private Sub 'InitND'", [&] {
        startList(*CmbND);
        if (!gWorkset) return;
        const auto& names = diagnostics::names();
        addtopipeclass::StandardTableRef table;
        const auto globals = must(gWorkset).Globals();
        if (names.IsBaseDatabase()) {
            const auto norm = must(mPipeClass).Spec(names.Range().NormDimensionRef());
            const auto tables = globals->getOption(kNormDimensionTablesOption).objectAs<IStandardTable>();
            const auto byNorm = asTable(must(must(tables).StandardTables()).Item(must(norm).ValueText()));
            table = asTable(must(must(byNorm).StandardTables()).Item("A50"));
        } else {
            table = globals->getOption(kDiameterTableOption).objectAs<IStandardTable>();
            if (!table) table = addtopipeclass::GetStandardTable(kDiameterTablePath, gWorkset->CurrentProject());
        }
        if (!table) return;
        const auto values = table->Values();
        for (int i = 1; i <= values->Count(); ++i) addValue(*CmbND, *gWorkset, values->Item(i));
    });
    CmbND->setCurrentIndex(0);
}

void PipeCompSearch::TBarInit()
{
    if (toolbarReady_) return;
    toolbarReady_ = true;
    autoFind_->setObjectName("AutoFind");
    autoFind_->setCheckable(true);
    autoFind_->setIcon(qtplatform::standardImage("std_AutoFind"));
    find_->setObjectName("Find");
    find_->setIcon(qtplatform::standardImage("std_Find"));
    TBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    TBar->addAction(autoFind_);
    TBar->addAction(find_);
    find_->setEnabled(!AutoFind());
}

bool PipeCompSearch::AutoFind() const { return autoFind_->isChecked(); }

void PipeCompSearch::CmbFCode_lick()
{
    const auto at = CmbFCode->currentIndex();
    const double value = at >= 0 ? CmbFCode->itemData(at, kEntryTag).toDouble() : 0;
    if (value == m_FCode) return;
    m_FCode = value;
    QueryRefresh(AutoFind());
}

void PipeCompSearch::CmbND_Click()
{
    // The entry on show, unless the user typed over it.
    const auto at = CmbND->currentIndex();
    const bool picked = at >= 0 && CmbND->currentText() == CmbND->itemText(at);
    const double value = picked ? CmbND->itemData(at, kEntryTag).toDouble()
                                : must(gWorkset).ParseNumber(CmbND->currentText().toStdString());
    if (value == m_ND) return;
    m_ND = value;
    QueryRefresh(AutoFind());
}

bool PipeCompSearch::pick(double functionCode, double diameter)
{
    const int code = CmbFCode->findData(functionCode, kEntryTag);
    const int dn = CmbND->findData(diameter, kEntryTag);
    if (code < 0 || dn < 0) return false;
    CmbFCode->setCurrentIndex(code);
    emit CmbFCode->activated(code);
    CmbND->setCurrentIndex(dn);
    emit CmbND->activated(dn);
    return true;
}

void PipeCompSearch::TBar_ButtonClick(std::string_view key)
{
    if (key == "AutoFind") {
        find_->setEnabled(!AutoFind());
        QueryRefresh(AutoFind());
    } else if (key == "Find") {
        QueryRefresh(true);
    }
}

// ---- search and results --------------------------------------------------

void PipeCompSearch::Refresh()
{
    const diagnostics::Trace trace(classString(), "Refresh");
    trace.enter();
    handle("Private Sub 'Refresh'", [&] {
        TBarInit();
        if (!mPipeClass) return;
        gWorkset = mPipeClass->Workset();
        InitFunctionCode();
        InitND();
        if (!m_Search) m_Search = gWorkset->NewPipeSpecHelper(diagnostics::tools().Names());
        m_Search->SetSearchRoot(mPipeClass);
        if (!gQueryI) gQueryI = QueryCreate();
        QGrid->setWorkset(std::dynamic_pointer_cast<platform::StoreWorkset>(gWorkset));
        QGrid->SetEventSink(events_);
        gQueryI->Top()->SetObjects(GetOrgCollection());
        gQueryI->Refresh();
        QGrid->SetQuery(gQueryI);
    });
    trace.leave();
}

QueryRef PipeCompSearch::QueryCreate()
{
    QueryRef query;
    handle("Private Function 'QueryCreate'", [&] {
        query = platform::createQuery(platform::kQueryKind);
        const auto& names = diagnostics::names();
        auto& columns = *query->Top()->Columns();
        for (const auto& [key, title, source, width] :
             {std::tuple{"PipeClass", msg::PipeClass, sourcekind::Owner, 4},
              std::tuple{"Component", msg::Component, sourcekind::BaseObject, 7}}) {
            const auto column = frame::appendColumn(columns, key, title, valuekind::Name, width, false);
            column->Source()->Set(source, "");
            column->SetObjectColumn(true);
        }
        frame::appendColumn(columns, "Description", msg::Description, valuekind::Description, 15, false);
        const auto bound = [&](std::string_view key, std::string_view title, const std::string& attribute) {
            const auto column = frame::appendColumn(columns, key, title, valuekind::DisplayValue, 5, false);
            frame::showRangeBound(*column, attribute);
            column->SetGrouping(0);
        };
        bound("NameRangeLower", msg::NominalDiameterFrom, names.Range().NameRangeLowerAttr());
        bound("NameRangeUpper", msg::NominalDiameterTo, names.Range().NameRangeUpperAttr());
    });
    return query;
}

CollectionRef PipeCompSearch::GetOrgCollection()
{
    CollectionRef found;
    handle("Private Function 'GetOrgCollection'", [&] {
        if (!m_Search || m_FCode <= kNoValue || m_ND <= kNoValue) return;
        found = m_Search->FindComponents(0, std::to_string(std::lround(m_FCode)), std::to_string(std::lround(m_ND)));
    });
    return found;
}

void PipeCompSearch::QueryRefresh(bool find)
{
    const diagnostics::Trace trace(classString(), "QueryRefresh");
    trace.enter();
    handle("Private Sub 'QueryRefresh'", [&] {
        if (!find || !gQueryI) return;
        gQueryI->Top()->SetObjects(GetOrgCollection());
        gQueryI->Refresh();
        QGrid->Refresh();
    });
    trace.leave();
}

void PipeCompSearch::PopUp(IPopUpMenu& popup)
{
    handle("Private Sub 'IQGridEvents_PopUp'", [&] {
        const auto sel = QGrid->SelectedObjects();
        popup.Add("NavigateOriginal", msg::NavigateOriginal);
        popup.SetImage("NavigateOriginal", "std_Navigate");
        popup.Add("NavigatePipeClass", msg::NavigatePipeClass);
        popup.SetImage("NavigatePipeClass", "std_Navigate");
        popup.Add("Dummy", "---");
        if (!m_PropertiesCommand) m_PropertiesCommand = new qtplatform::PropertiesCommand(this);
        m_PropertiesCommand->AddToPopUp(popup, QGrid->CurrentObject());
        if (!sel || sel->Count() != 1) {
            for (const auto* key : {"NavigateOriginal", "NavigatePipeClass", "PROPERTIES"}) popup.Disable(key);
        }
    });
}

void PipeCompSearch::PopUpCmd(std::string_view key)
{
    handle("Private Sub 'IQGridEvents_PopUpCmd'", [&] {
        if (key == "NavigatePipeClass" || key == "NavigateOriginal")
            navigateTo(QGrid->CurrentObject(), key == "NavigateOriginal");
    });
}

void PipeCompSearch::shutdownParts()
{
    m_Search = nullptr;
    QGrid->ShutDown();
    if (gQueryI) gQueryI->ShutDown();
    gQueryI = nullptr;
    if (m_PropertiesCommand) m_PropertiesCommand->ShutDown();
    m_PropertiesCommand = nullptr;
    mPipeClass = nullptr;
    gWorkset = nullptr;
}

}  // namespace pipespec::componentsearch
