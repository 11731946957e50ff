// The subcommand registry of the brindle tool.
//
// Each subcommand lives in its own source file and registers itself:
//
//   static int runFrame(brindle::Invocation& cmd) { ... }
//   BRINDLE_COMMAND(frame, "frame N [--fps R] ...", "Formats a frame number", runFrame);
//
// Exit statuses: 0 success, 1 failure, 2 usage error. Errors go to standard
// error as one line "brindle NAME: message".
#pragma once

#include <QtCore/QCommandLineParser>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace brindle {

enum ExitStatus { Success = 0, Failure = 1, Usage = 2 };

struct Command;

// What a subcommand is given: its name, its arguments (without the program and
// subcommand names) and a parser prepared with --help.
class Invocation
{
public:
    Invocation(Command const& command, QStringList arguments);

    QString name() const;
    QStringList const& arguments() const { return m_arguments; }
    QCommandLineParser& parser() { return m_parser; }

    // Parses the arguments with the options added to parser(). Returns false
    // and sets *status when the command must end now (--help printed: 0; bad
    // option: message printed, 2).
    bool parse(int* status);

    // Writes "brindle NAME: message" to standard error and returns the status.
    int fail(QString const& message, int status = Failure) const;
    int usageError(QString const& message) const { return fail(message, Usage); }

private:
    Command const& m_command;
    QStringList m_arguments;
    QCommandLineParser m_parser;
};

struct Command
{
    char const* name;
    char const* synopsis;  // "frame N [--fps R]": the usage line without "brindle "
    char const* summary;   // one line for the command list
    int (*run)(Invocation&);
    bool hidden = false;   // not listed by --help (commands for the tests)
};

// All registered commands by name.
std::map<std::string, Command> const& commands();

struct Registrar
{
    explicit Registrar(Command command);
};

// Start-up hooks run, in registration order, after the application object
// exists and before the subcommand (for example to install a crash reporter).
struct StartupHook
{
    explicit StartupHook(void (*hook)());
};
void runStartupHooks();

// Prints a text line to standard output as UTF-8.
void printLine(QString const& text);

} // namespace brindle

#define BRINDLE_COMMAND_CAT2(a, b) a##b
#define BRINDLE_COMMAND_CAT(a, b) BRINDLE_COMMAND_CAT2(a, b)
#define BRINDLE_COMMAND(NAME, SYNOPSIS, SUMMARY, FUNCTION)                                        \
    static ::brindle::Registrar BRINDLE_COMMAND_CAT(brindleCommand_, __LINE__)(                  \
        ::brindle::Command{#NAME, SYNOPSIS, SUMMARY, FUNCTION, false})
#define BRINDLE_HIDDEN_COMMAND(NAME, SYNOPSIS, FUNCTION)                                          \
    static ::brindle::Registrar BRINDLE_COMMAND_CAT(brindleCommand_, __LINE__)(                  \
        ::brindle::Command{#NAME, SYNOPSIS, "", FUNCTION, true})
#define BRINDLE_STARTUP_HOOK(FUNCTION)                                                            \
    static ::brindle::StartupHook BRINDLE_COMMAND_CAT(brindleHook_, __LINE__)(FUNCTION)
