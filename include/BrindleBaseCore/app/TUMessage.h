// The process-wide report channel, scoped reports and the channel's guards.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QString>

class MSG_Scope;
class TUMessageUnsuspend;

/// The report channel: one instance per process, reached through instance().
/// The base channel writes the source text of each report to standard error;
/// an application installs its own derived channel with setInstance() to show
/// or log reports its own way. Reports are made through MSG_Scope.
///
/// Report types: 'I' information, 'T' trace, 'W' warning, 'E' error, 'D' debug;
/// 'Z' (given to interactiveReport) asks a channel to show what it held back
/// while reports were suspended.
///
/// Nothing is locked apart from the creation of the instance: a channel that
/// receives reports from several threads and needs them ordered locks itself.
/// The order of the virtual operations below is part of the binary interface.
class BRINDLE_EXPORT TUMessage
{
public:
    /// name: the program's name for the default instance. secondFlag is stored
    /// and copied for derived channels; the base channel does not consult it.
    TUMessage(QString const& name, bool debugMode, bool secondFlag);
    /// Copies every setting and the kept error code.
    TUMessage(TUMessage const& other);
    virtual ~TUMessage();

    /// The channel; creates the default one (named after the program) on first use.
    static TUMessage& instance();
    /// Replaces the channel with a new base channel.
    static void createInstance(QString const& name, bool debugMode, bool secondFlag);
    /// Reports a warning through the current channel, destroys it and installs
    /// p. Given the current channel itself, it is destroyed all the same and no
    /// channel is left (the next report creates the default one).
    static void setInstance(TUMessage* p);
    /// Destroys the channel (a line on standard error when there is none).
    static void releaseInstance();
    /// Writes the message on standard error after the prefix
    /// `[yyyy.MM.dd-hh.mm.ss]` `[pid@tid]` (no blank between the two) and a
    /// blank; needs no instance.
    static void LogToStdErr(QString const& message);

protected:
    /// Writes a 'W' report; `flag` is the answer flag of an interactive channel (ignored here).
    virtual void warning(QString const& text, QString const& translated, bool* flag);
    /// warning() without an answer flag.
    virtual void warning(QString const& text, QString const& translated);
    /// Reports the error, calls close() and ends the process with status code
    /// when it is 2 to 8, otherwise with status 1. Does not return.
    virtual void fatalError(QString const& text, QString const& translated, int code);
    /// Writes an 'E' report and keeps `code` (see catchErrorCode()); an error is remembered even
    /// without a code.
    virtual void error(QString const& text, QString const& translated, int code);
    /// Writes an 'I' report.
    virtual void information(QString const& text, QString const& translated);
    /// trace() with the two strings of `text`.
    virtual void trace(MSG_Text const& text, int code);
    /// Writes a 'T' report (not reported interactively) and keeps a positive `code`.
    virtual void trace(QString const& text, QString const& translated, int code);
    /// A trace a channel may defer; here the same as trace().
    virtual void traceLater(QString const& text, QString const& translated, int code);
    /// Written only in debug mode.
    virtual void debug(QString const& text, QString const& translated);

public:
    /// @name Settings
    ///@{

    /// Switches debug mode and traces "Debug mode : ON" or "Debug mode : OFF".
    virtual void setDebugMode(bool on);
    /// Whether debug reports are written.
    virtual bool getDebugMode();
    /// Same as getDebugMode().
    virtual bool isDebugMode();
    /// Stored for derived channels.
    virtual void setDirectMode(bool on);
    /// See setDirectMode().
    virtual bool isDirectMode();
    /// Stored for derived channels (the base channel writes regardless).
    virtual void setSilent(bool on);
    /// See setSilent().
    virtual bool isSilent() const;
    /// Prefixes each line of the base channel with the time of day.
    virtual void setTimeLogging(bool on);
    /// See setTimeLogging().
    virtual bool isTimeLogging() const;
    ///@}
    /// Nested: true suspends, false resumes; the end of the outermost suspension
    /// calls interactiveReport('Z', {}, nullptr).
    virtual void suspendReport(bool suspend);
    /// Whether a suspension is in effect.
    virtual bool isReportSuspended();
    /// Ends the channel's log; nothing here.
    virtual void close();
    /// Keeps the most severe (smallest non-zero) code; 0 is ignored.
    virtual void catchErrorCode(unsigned int code);
    /// The kept code; 100 when an error was reported without any code.
    virtual unsigned int getErrorCode();
    /// The log written so far; empty here.
    virtual QString getLogContent();
    /// Empties the log; nothing here.
    virtual void clearLog();

protected:
    /// Prepares the log; nothing here.
    virtual void initLog();
    /// Writes `text` as one line on standard error (time-prefixed with setTimeLogging()).
    virtual void baseWriteLog(QString const& text, QString const& translated);
    /// Every report ends here: `type` is its letter, `report` whether it is shown interactively.
    /// Here: baseWriteLog().
    virtual void writeLog(char type, QString const& text, QString const& translated, bool report);
    /// Shows a report to the user; nothing here.
    virtual void interactiveReport(char type, QString const& text, bool* flag);
    /// Whether a cached file may be used, from the modification times of
    /// `first` and `second`: true when neither exists; when only `second`
    /// exists, or both do, when `second` is more than 14 whole days old; when
    /// only `first` exists, when it is more than a day old.
    virtual bool okToUseFile(QString const& first, QString const& second);
    /// Flushes the log; nothing here.
    virtual void lflush();
    /// "I:", "T:", "W:", "E:", "D:" for those letters, otherwise empty.
    virtual QString getMsgTypeText(char type);
    /// Keeps `code` when it is more severe than the kept one (0 is ignored).
    virtual void updateErrorCode(unsigned int code);

    /// Whether debug reports are written.
    bool m_debugMode;
    /// See setDirectMode().
    bool m_directMode = false;
    /// The program's name.
    QString m_name;
    /// The log file of a derived channel; unused here.
    QString m_logPath;
    /// See setSilent().
    bool m_silent = false;
    /// The constructor's second flag, for derived channels.
    bool m_secondFlag;
    /// Nesting count of suspendReport().
    quint32 m_suspendCount = 0;
    /// See setTimeLogging().
    bool m_timeLogging = false;
    /// The kept error code (see catchErrorCode()).
    quint32 m_errorCode = 0;
    /// Whether an error was reported.
    bool m_errorSeen = false;

private:
    friend class MSG_Scope;
    friend class TULex; // reports syntax errors with an answer flag it reads back
    friend class TUMessageUnsuspend;
    TUMessage& operator=(TUMessage const&) = delete;
};

/// A report made when the scope ends: holds a text and an action, and hands the
/// text to TUMessage::instance() from its destructor. An action value outside
/// the enumeration reports nothing.
class BRINDLE_EXPORT MSG_Scope : public MSG_Text
{
public:
    /// Fixed underlying type: any int may be cast to an Action; other values
    /// report nothing.
    enum Action : int
    {
        Warning = 0,         ///< TUMessage::warning.
        WarningWithFlag = 1, ///< TUMessage::warning with the address of the answer flag.
        Error = 2,           ///< TUMessage::error.
        FatalError = 3,      ///< TUMessage::fatalError; does not return.
        Information = 4,     ///< TUMessage::information.
        Trace = 5,           ///< TUMessage::trace.
        Debug = 6,           ///< TUMessage::debug.
        TraceLater = 7       ///< TUMessage::traceLater.
    };

    /// Reports `text` with `action` and `code` at the end of the scope.
    MSG_Scope(MSG_Text const& text, Action action, ErrorCode::Type code = ErrorCode::NoError);
    /// The string as text and translation.
    MSG_Scope(QString const& text, Action action);
    /// The source translated in `context`, as MSG_Text does.
    MSG_Scope(char const* context, char const* source, Action action,
              ErrorCode::Type code = ErrorCode::NoError);
    /// An error whose translation is QObject::tr(source).
    explicit MSG_Scope(char const* source);
    /// Source (Latin-1) and translation given.
    MSG_Scope(char const* source, QString const& translated, Action action);
    /// As above, with the initial answer flag.
    MSG_Scope(char const* source, QString const& translated, Action action, bool flag);
    /// The source as both strings, without looking up a translation.
    MSG_Scope(char const* source, Action action);
    /// Copy; both copies report, the copy with code 0 (as MSG_Text).
    MSG_Scope(MSG_Scope const& other) = default;
    /// Copies text, action and flag; keeps this scope's code (as MSG_Text).
    MSG_Scope& operator=(MSG_Scope const& other) = default;
    /// Makes the report.
    ~MSG_Scope();

    /// The report's action.
    Action action() const { return m_action; }
    /// The answer flag whose address a flagged warning receives.
    bool flag() const { return m_flag; }

private:
    Action m_action;
    bool m_flag = false;
};

/// Makes the channel silent for the guard's lifetime, then restores the
/// previous setting.
class BRINDLE_EXPORT TUMessageSilent
{
public:
    /// Makes the channel silent.
    TUMessageSilent();
    /// Restores the earlier setting.
    ~TUMessageSilent();
    TUMessageSilent(TUMessageSilent const&) = delete;
    TUMessageSilent& operator=(TUMessageSilent const&) = delete;

private:
    bool m_wasSilent;
};

/// Suspends reports for the guard's lifetime (suspendReport(true) / (false)).
class BRINDLE_EXPORT TUMessageSuspend
{
public:
    /// suspendReport(true).
    TUMessageSuspend();
    /// suspendReport(false).
    ~TUMessageSuspend();
    TUMessageSuspend(TUMessageSuspend const&) = delete;
    TUMessageSuspend& operator=(TUMessageSuspend const&) = delete;
};

/// Lifts every suspension for the guard's lifetime. It sets the nesting count
/// directly, bypassing suspendReport, so neither end flushes held reports (intended).
class BRINDLE_EXPORT TUMessageUnsuspend
{
public:
    /// Sets the nesting count to 0.
    TUMessageUnsuspend();
    /// Restores the nesting count.
    ~TUMessageUnsuspend();
    TUMessageUnsuspend(TUMessageUnsuspend const&) = delete;
    TUMessageUnsuspend& operator=(TUMessageUnsuspend const&) = delete;

private:
    quint32 m_savedCount;
};
