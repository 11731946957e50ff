// Entry point of the brindle tool: dispatches to the registered subcommands.
#include "Command.h"

#include <BrindleBaseCore/app/BAPP_Application.h>

#include <cstdio>
#include <vector>

namespace brindle {

namespace {
std::map<std::string, Command>& registry()
{
    static std::map<std::string, Command> commands;
    return commands;
}

void printUsage(FILE* to)
{
    std::fprintf(to, "usage: brindle COMMAND [ARGS...] [-lang LANG] [-langdir DIR] [-nologo]\n"
                     "       brindle COMMAND --help\n\ncommands:\n");
    for (auto const& [name, command] : registry()) {
        if (!command.hidden)
            std::fprintf(to, "  %-10s %s\n", name.c_str(), command.summary);
    }
}
} // namespace

std::vector<void (*)()>& hooks()
{
    static std::vector<void (*)()> list;
    return list;
}

std::map<std::string, Command> const& commands()
{
    return registry();
}

StartupHook::StartupHook(void (*hook)())
{
    hooks().push_back(hook);
}

void runStartupHooks()
{
    for (auto hook : hooks())
        hook();
}

Registrar::Registrar(Command command)
{
    registry().emplace(command.name, command);
}

Invocation::Invocation(Command const& command, QStringList arguments)
    : m_command(command)
    , m_arguments(std::move(arguments))
{
    m_parser.setApplicationDescription(QString::fromUtf8(command.summary));
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
}

QString Invocation::name() const
{
    return QString::fromUtf8(m_command.name);
}

bool Invocation::parse(int* status)
{
    QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Shows this help."));
    m_parser.addOption(help);
    QStringList argv = m_arguments;
    argv.prepend(QStringLiteral("brindle ") + name());
    if (!m_parser.parse(argv)) {
        *status = usageError(m_parser.errorText());
        return false;
    }
    if (m_parser.isSet(help)) {
        QString text = m_parser.helpText();
        // Qt writes "Usage: brindle NAME [options]"; show the real synopsis instead.
        qsizetype endOfFirstLine = text.indexOf(QLatin1Char('\n'));
        text = QStringLiteral("Usage: brindle ") + QString::fromUtf8(m_command.synopsis) +
               text.mid(endOfFirstLine);
        std::fputs(text.toUtf8().constData(), stdout);
        *status = Success;
        return false;
    }
    return true;
}

int Invocation::fail(QString const& message, int status) const
{
    std::fprintf(stderr, "brindle %s: %s\n", m_command.name, message.toUtf8().constData());
    return status;
}

void printLine(QString const& text)
{
    QByteArray line = text.toUtf8();
    line.append('\n');
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
}

} // namespace brindle

int main(int argc, char** argv)
{
    using namespace brindle;
    // Start-up takes the library's own options (-lang, -langdir, -nologo) out
    // of the arguments, wherever they stand, before the subcommand sees them.
    BAPP_Arguments arguments = BAPP_Application::parseArguments(argc, argv);
    BAPP_CoreApplication app(argc, argv, arguments);
    runStartupHooks();
    if (arguments.size() < 1) {
        printUsage(stderr);
        return Usage;
    }
    std::string name = arguments.at(0).toStdString();
    if (name == "--help" || name == "-h" || name == "help") {
        printUsage(stdout);
        return Success;
    }
    auto it = commands().find(name);
    if (it == commands().end()) {
        std::fprintf(stderr, "brindle: unknown command '%s' (see brindle --help)\n", name.c_str());
        return Usage;
    }
    Invocation invocation(it->second, arguments.list().mid(1));
    int status = it->second.run(invocation);
    std::fflush(stdout);
    return status;
}
