#pragma once

// The component search: the components of a pipe class by function code and
// nominal diameter, each picked from a drop-down list (the diameter may also
// be typed). With "AutoFind" pressed every change of a criterion searches at
// once and "Find" is greyed; without it the search waits for "Find". The
// search is the pipe-spec helper's; the results are a fixed query of five
// columns with a small menu (navigation, properties).

#include "frame/ControlFrame.h"
#include "objectmodel/Grid.h"

#include <memory>
#include <string_view>

class QAction;
class QComboBox;
class QLabel;
class QToolBar;

namespace pipespec::qtplatform {
class PropertiesCommand;
class QtGrid;
}  // namespace pipespec::qtplatform

namespace pipespec::componentsearch {

class PipeCompSearch final : public frame::ControlFrame {
    Q_OBJECT

public:
    explicit PipeCompSearch(QWidget* parent = nullptr);
    ~PipeCompSearch() override;

    // Picks the entries of those values in the two lists, as a user does;
    // false when a list has no such entry.
    bool pick(double functionCode, double diameter);

    // What a user reaches on screen.
    [[nodiscard]] QComboBox& functionCodes() const { return *CmbFCode; }
    [[nodiscard]] QComboBox& diameters() const { return *CmbND; }
    [[nodiscard]] QAction& autoFind() const { return *autoFind_; }
    [[nodiscard]] QAction& find() const { return *find_; }
    [[nodiscard]] qtplatform::QtGrid& grid() const { return *QGrid; }

protected:
    void Refresh() override;
    void shutdownParts() override;
    void retranslate() override;

private:
    class GridEvents;

    void InitFunctionCode();
    void InitND();
    void TBarInit();
    [[nodiscard]] bool AutoFind() const;
    void CmbFCode_lick();
    void CmbND_Click();
    void TBar_ButtonClick(std::string_view key);
    [[nodiscard]] QueryRef QueryCreate();
    void QueryRefresh(bool find);
    [[nodiscard]] CollectionRef GetOrgCollection();
    void PopUp(IPopUpMenu& popup);
    void PopUpCmd(std::string_view key);

    QLabel* LabFCode;  // Owned by this control, their Qt parent.
    QComboBox* CmbFCode;
    QLabel* LabND;
    QComboBox* CmbND;
    QToolBar* TBar;
    QAction* autoFind_;
    QAction* find_;
    qtplatform::QtGrid* QGrid;
    qtplatform::PropertiesCommand* m_PropertiesCommand = nullptr;  // made at the first menu, a child of this

    double m_FCode = 0;
    double m_ND = 0;
    QueryRef gQueryI;
    std::shared_ptr<IPipeSpecHelper> m_Search;
    std::shared_ptr<GridEvents> events_;
    bool toolbarReady_ = false;
};

}  // namespace pipespec::componentsearch
