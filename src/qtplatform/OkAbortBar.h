#pragma once

// The OK and abort pair at the foot of a form. Either button raises its own
// event and then ClickClose, so that a form with one way out listens to
// ClickClose alone. The captions are message texts and follow a switch of
// the language.

#include <QWidget>

class QPushButton;

namespace pipespec::qtplatform {

class OkAbortBar final : public QWidget {
    Q_OBJECT

public:
    explicit OkAbortBar(QWidget* parent = nullptr);

    // A disabled OK cannot be clicked; abort always can.
    void setOkEnabled(bool enabled);
    [[nodiscard]] bool okEnabled() const;

    [[nodiscard]] QPushButton* okButton() const { return ok_; }
    [[nodiscard]] QPushButton* abortButton() const { return abort_; }

signals:
    void ClickOk();
    void ClickAbort();
    void ClickClose();

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QPushButton* ok_;     // Owned by this bar, its Qt parent.
    QPushButton* abort_;  // Owned by this bar.
};

}  // namespace pipespec::qtplatform
