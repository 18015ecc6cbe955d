// pipespec-designer: the designer window on a pipe-class database.
//
//   pipespec-designer [FILE]     a .pspec database or a JSON project; without
//                                one, the user's database made from the sample
//   --screenshot FILE.png        renders the window off screen and exits
//   --page NAME --class NAME     what the screenshot shows
//   --add NAME,... --find CODE,DN  components dropped on the list, a search
//   --lang de|en                 the language (else the one chosen last)

#include "designer/DesignerWindow.h"
#include "designer/PipeClassPages.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QSettings>

#include <iostream>

namespace {

using pipespec::designer::DesignerHost;
using pipespec::designer::DesignerWindow;
using pipespec::designer::HostMessage;

constexpr int kUsage = 2;
constexpr int kDatabase = 3;

// The window at a size that shows every dock and page, drawn into a PNG.
int screenshot(DesignerWindow& window, const QCommandLineParser& options)
{
    window.resize(1440, 900);
    window.show();
    if (options.isSet("class") && !window.showPipeClass(options.value("class"))) {
        std::cerr << "pipespec-designer: there is no pipe class '" << options.value("class").toStdString() << "'\n";
        return kUsage;
    }
    if (options.isSet("add") && !window.dropOnComponentList(options.value("add").split(','))) {
        std::cerr << "pipespec-designer: cannot add " << options.value("add").toStdString()
                  << " to the component list of the class on show\n";
        return kUsage;
    }
    if (options.isSet("page") && !window.pages().showPage(options.value("page"))) {
        std::cerr << "pipespec-designer: there is no page '" << options.value("page").toStdString() << "'\n";
        return kUsage;
    }
    if (options.isSet("find") && !window.search(options.value("find"))) {
        std::cerr << "pipespec-designer: --find takes CODE,DN, as the search page offers them\n";
        return kUsage;
    }
    QApplication::processEvents();
    const auto file = options.value("screenshot");
    if (!window.grab().save(file, "PNG")) {
        std::cerr << "pipespec-designer: cannot write " << file.toStdString() << "\n";
        return kDatabase;
    }
    return 0;
}

}  // namespace

int main(int argc, char* argv[])
{
    // A screenshot needs no display.
    const bool offscreen = [&] {
        for (int i = 1; i < argc; ++i)
            if (std::string_view(argv[i]) == "--screenshot") return true;
        return false;
    }();
    if (offscreen && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication application(argc, argv);
    QApplication::setOrganizationName("pipespec");
    QApplication::setApplicationName("designer");

    QCommandLineParser options;
    options.setApplicationDescription("The pipe-class designer on a pipe-class database.");
    options.addHelpOption();
    options.addPositionalArgument("FILE", "a .pspec database or a .json project (default: the user's database, "
                                          "made from the sample project)");
    options.addOptions({{"screenshot", "render the window to FILE.png off screen and exit", "FILE.png"},
                        {"page",
                         "the page the screenshot shows (components, selectors, ranges, search, or the "
                         "controls' names)",
                         "NAME"},
                        {"class", "the pipe class the screenshot shows", "NAME"},
                        {"add", "catalogue components dropped on the class's component list first", "NAME,..."},
                        {"find", "function code and nominal diameter the search page looks for", "CODE,DN"},
                        {"lang", "the language, de or en", "LANG"}});
    options.process(application);
    if (options.positionalArguments().size() > 1) {
        std::cerr << "pipespec-designer: one FILE at most\n";
        return kUsage;
    }

    DesignerHost host;
    QObject::connect(&host, &DesignerHost::message, [](const HostMessage& message) {
        if (message.kind == HostMessage::Kind::Error)
            std::cerr << "pipespec-designer: " << message.text.toStdString() << "\n";
    });
    const auto language =
        options.isSet("lang") ? options.value("lang") : QSettings().value("language", "en").toString();
    if (language != "de" && language != "en") {
        std::cerr << "pipespec-designer: no texts in language '" << language.toStdString() << "' (de, en)\n";
        return kUsage;
    }
    host.setLanguage(language.toStdString());

    DesignerWindow window(host);
    window.setRemembersFiles(!options.isSet("screenshot"));
    std::optional<std::filesystem::path> file;
    if (!options.positionalArguments().isEmpty()) file = options.positionalArguments().front().toStdString();
    if (!window.open(file)) return kDatabase;
    if (options.isSet("screenshot")) return screenshot(window, options);

    host.setWindow(&window, [&window](const pipespec::ObjectRef& object) { window.showProperties(object); });
    const QSettings settings;
    window.restoreGeometry(settings.value("geometry").toByteArray());
    window.restoreState(settings.value("windowState").toByteArray());
    window.show();
    return QApplication::exec();
}
