#pragma once

// Help by class name: a short HTML page per control class, shipped as
// <data>/help/<ClassName>.html, shown in a browser window over the control
// that asked. A class without a page gets a window that says so.

#include <QString>

#include <filesystem>

class QDialog;
class QWidget;

namespace pipespec::qtplatform {

// Where the page of that class lives.
[[nodiscard]] std::filesystem::path helpPage(const QString& className);

// Opens the help window of the class over `from`'s window, one per window
// and class: asking again raises the one already open. It closes with its
// window or its close button and is deleted then.
QDialog* showHelp(QWidget& from, const QString& className);

}  // namespace pipespec::qtplatform
