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
    static void releaseInstance();
    /// "[yyyy.MM.dd-hh.mm.ss][pid@tid] message" on standard error; needs no instance.
    static void LogToStdErr(QString const& message);

protected:
    virtual void warning(QString const& text, QString const& translated, bool* flag);
    virtual void warning(QString const& text, QString const& translated);
    /// Reports the error, calls close() and ends the process with status code
    /// when it is 2 to 8, otherwise with status 1. Does not return.
    virtual void fatalError(QString const& text, QString const& translated, int code);
    virtual void error(QString const& text, QString const& translated, int code);
    virtual void information(QString const& text, QString const& translated);
    virtual void trace(MSG_Text const& text, int code);
    virtual void trace(QString const& text, QString const& translated, int code);
    virtual void traceLater(QString const& text, QString const& translated, int code);
    /// Written only in debug mode.
    virtual void debug(QString const& text, QString const& translated);

public:
    virtual void setDebugMode(bool on);
    virtual bool getDebugMode();
    virtual bool isDebugMode();
    virtual void setDirectMode(bool on);
    virtual bool isDirectMode();
    virtual void setSilent(bool on);
    virtual bool isSilent() const;
    /// Prefixes each line of the base channel with the time of day.
    virtual void setTimeLogging(bool on);
    virtual bool isTimeLogging() const;
    /// Nested: true suspends, false resumes; the end of the outermost suspension
    /// calls interactiveReport('Z', {}, nullptr).
    virtual void suspendReport(bool suspend);
    virtual bool isReportSuspended();
    virtual void close();
    /// Keeps the most severe (smallest non-zero) code; 0 is ignored.
    virtual void catchErrorCode(unsigned int code);
    /// The kept code; 100 when an error was reported without any code.
    virtual unsigned int getErrorCode();
    virtual QString getLogContent();
    virtual void clearLog();

protected:
    virtual void initLog();
    virtual void baseWriteLog(QString const& text, QString const& translated);
    virtual void writeLog(char type, QString const& text, QString const& translated, bool report);
    virtual void interactiveReport(char type, QString const& text, bool* flag);
    /// Whether a cached file may be used, from the modification times of
    /// first and second (see the rules in the implementation).
    virtual bool okToUseFile(QString const& first, QString const& second);
    virtual void lflush();
    /// "I:", "T:", "W:", "E:", "D:" for those letters, otherwise empty.
    virtual QString getMsgTypeText(char type);
    virtual void updateErrorCode(unsigned int code);

    bool m_debugMode;
    bool m_directMode = false;
    QString m_name;
    QString m_logPath;
    bool m_silent = false;
    bool m_secondFlag;
    quint32 m_suspendCount = 0;
    bool m_timeLogging = false;
    quint32 m_errorCode = 0;
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
        Warning = 0,
        WarningWithFlag = 1,
        Error = 2,
        FatalError = 3, // does not return
        Information = 4,
        Trace = 5,
        Debug = 6,
        TraceLater = 7
    };

    MSG_Scope(MSG_Text const& text, Action action, ErrorCode::Type code = ErrorCode::NoError);
    /// The string as text and translation.
    MSG_Scope(QString const& text, Action action);
    MSG_Scope(char const* context, char const* source, Action action,
              ErrorCode::Type code = ErrorCode::NoError);
    /// An error whose translation is QObject::tr(source).
    explicit MSG_Scope(char const* source);
    MSG_Scope(char const* source, QString const& translated, Action action);
    MSG_Scope(char const* source, QString const& translated, Action action, bool flag);
    /// The source as both strings, without looking up a translation.
    MSG_Scope(char const* source, Action action);
    MSG_Scope(MSG_Scope const& other) = default;
    MSG_Scope& operator=(MSG_Scope const& other) = default;
    ~MSG_Scope();

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
    TUMessageSilent();
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
    TUMessageSuspend();
    ~TUMessageSuspend();
    TUMessageSuspend(TUMessageSuspend const&) = delete;
    TUMessageSuspend& operator=(TUMessageSuspend const&) = delete;
};

/// Lifts every suspension for the guard's lifetime. It sets the nesting count
/// directly, bypassing suspendReport, so neither end flushes held reports (intended).
class BRINDLE_EXPORT TUMessageUnsuspend
{
public:
    TUMessageUnsuspend();
    ~TUMessageUnsuspend();
    TUMessageUnsuspend(TUMessageUnsuspend const&) = delete;
    TUMessageUnsuspend& operator=(TUMessageUnsuspend const&) = delete;

private:
    quint32 m_savedCount;
};
