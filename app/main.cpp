#include <QFile>
#include <QGuiApplication>
#include <QQuickWindow>

#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "app/CommandLine.h"
#include "app/OrrowinApp.h"
#include "app/screens/MainWindow.h"
#include "app/screens/bridge/PressControl.h"
#include "platform/posix/Descriptors.h"
#include "platform/posix/StandardError.h"
#include "platform/posix/Threads.h"
#include "platform/simulated/LiveMachine.h"
#ifdef QUORVANE_MACOS
#include "platform/macos/MacHost.h"
#else
#include "platform/linux/LinuxHost.h"
#endif

namespace {

using namespace quorvane;

// Exit statuses.
constexpr int cannotRun = 1;
constexpr int badUsage = 2;

// Of which half are in use with all effects on. Qt and GLib abort when they get none.
constexpr std::size_t neededDescriptors = 64;

// All of Qt's messages go to standard error: without a terminal, Qt may log to the journal instead.
void printQtMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                    const QString& message) {
    printError(message.toStdString());
}

std::variant<Scenario, ScenarioError> demoScenario() {
    QFile demo(":/scenarios/demo.scenario");
    if (!demo.open(QIODevice::ReadOnly))
        return ScenarioError{"it is not in the program"};
    return parseScenario(demo.readAll().toStdString());
}

// None, with the error printed, if the scenario cannot be loaded.
std::optional<Scenario> scenarioOf(const CommandLine& commandLine) {
    const bool demo = commandLine.mode == CommandLine::Mode::Demo;
    auto scenario = demo ? demoScenario() : loadScenario(commandLine.scenarioFile);
    if (const auto* error = std::get_if<ScenarioError>(&scenario)) {
        printError(error->in(demo ? "the demo" : commandLine.scenarioFile));
        return std::nullopt;
    }
    return std::get<Scenario>(std::move(scenario));
}

void pressForScenario(QWindow& window, std::string_view control) {
    if (!pressControl(window, control))
        printError(std::string("the scenario presses \"")
                       .append(control)
                       .append("\", but there is no such control to press now"));
}

void playScenario(LiveMachine& machine, MainWindow& window) {
    machine.start(
        {.press =
             [&window](std::string_view control) { pressForScenario(window.window(), control); },
         // Set by the machine, which has the event taps.
         .key = {},
         .quit = [&window] { window.close(); }});
}

int runWindow(QGuiApplication& application, Host::TerminationSignals& termination,
              Host::SingleInstance& instance, const std::optional<Scenario>& scenario) {
    Host::Platform host;
    std::optional<LiveMachine> machine;
    if (scenario)
        machine.emplace(*scenario, host.platform());
    const Platform platform = machine ? machine->platform() : host.platform();

    OrrowinApp app(platform);
    const std::unique_ptr<ContentView> content = app.makeContentView();
    Host::Desktop desktop;
    MainWindow window(*content, platform, desktop);
    QObject::connect(&window, &MainWindow::appeared, &window, [&machine, &window] {
        if (machine)
            playScenario(*machine, window);
    });
    QObject::connect(&window, &MainWindow::closed, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    termination.listen([&window] { window.close(); });
    if (!window.show())
        return cannotRun;
    instance.serve(window.window(), [&window] { window.close(); });
    const int status = QGuiApplication::exec();
    termination.ignore();
    instance.ignore();
    return status;
}

// Without a graphics card, Qt Quick would run OpenGL on the processor and draw the whole window for
// every step of the glow; its software renderer draws only what changed.
void chooseRenderer() {
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND") && !Host::hasGraphicsCard())
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
}

// `name` is not const because QGuiApplication keeps it in its argv.
// NOLINTNEXTLINE(readability-non-const-parameter)
int run(char* name, const std::optional<Scenario>& scenario) {
    if (!canOpenFiles(neededDescriptors)) {
        printError("too few file descriptors (\"ulimit -n\" tells how many there are)");
        return cannotRun;
    }
    Host::TerminationSignals termination;
    Host::SingleInstance instance(scenario ? Host::SingleInstance::Kind::Simulated
                                           : Host::SingleInstance::Kind::Single);
    if (!instance.message().empty())
        printError(instance.message());
    if (instance.isSecond())
        return 0;
    Host::DisplayServer display;
    if (!display.error().empty()) {
        printError(display.error());
        return cannotRun;
    }
    if (scenario)
        printError("SIMULATED MACHINE: the devices are a scenario's, not those of this machine");
    qInstallMessageHandler(printQtMessage);
    chooseRenderer();
    // Qt gets none of the options.
    int count = 1;
    std::array<char*, 2> arguments{name, nullptr};
    QGuiApplication application(count, arguments.data());
    display.release();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // A dock finds the icon by this name.
    QGuiApplication::setDesktopFileName("org.quorvane.Quorvane");
    return runWindow(application, termination, instance, scenario);
}

int stop() {
    switch (Host::stopRunning()) {
    case StopResult::NothingRuns:
        std::puts("quorvane: not running");
        return 0;
    case StopResult::Stopped:
        return 0;
    case StopResult::Failed:
        break;
    }
    printError("the one that is running could not be ended");
    return cannotRun;
}

int execute(char* name, const CommandLine& commandLine) {
    switch (commandLine.mode) {
    case CommandLine::Mode::Help:
        std::fputs(std::string(commandLineHelp()).c_str(), stdout);
        return 0;
    case CommandLine::Mode::Version:
        std::puts("quorvane " QUORVANE_VERSION);
        return 0;
    case CommandLine::Mode::Run:
        return run(name, std::nullopt);
    case CommandLine::Mode::Stop:
        return stop();
    case CommandLine::Mode::Simulate:
    case CommandLine::Mode::Demo:
        break;
    }
    const std::optional<Scenario> scenario = scenarioOf(commandLine);
    return scenario ? run(name, scenario) : badUsage;
}

} // namespace

int main(int argc, char** argv) {
    // Writing to a closed pipe must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    tellUncaughtExceptions();

    const auto commandLine = parseCommandLine({argv, static_cast<std::size_t>(argc)});
    if (const auto* error = std::get_if<CommandLineError>(&commandLine)) {
        printError(error->description + " (--help tells what there is)");
        return badUsage;
    }
    // Whoever starts a program may leave out even its name.
    std::string name = argc > 0 ? argv[0] : "quorvane";
    return execute(name.data(), std::get<CommandLine>(commandLine));
}
