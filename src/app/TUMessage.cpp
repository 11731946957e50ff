#include <BrindleBaseCore/app/TUMessage.h>

#include "ProgramName.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>
#include <QtCore/QObject>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace {

std::atomic<TUMessage*> currentInstance{nullptr};
// Set by the destruction of any channel and never cleared.
std::atomic<bool> destroyed{false};

std::mutex& creationMutex()
{
    static std::mutex mutex;
    return mutex;
}

void writeToStdErr(QByteArray const& bytes)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

void writeToStdErr(char const* text)
{
    writeToStdErr(QByteArray(text));
}

QString translate(char const* text)
{
    return QCoreApplication::translate("TUMessage", text);
}

} // namespace

TUMessage::TUMessage(QString const& name, bool debugMode, bool secondFlag)
    : m_debugMode(debugMode)
    , m_name(name)
    , m_secondFlag(secondFlag)
{}

TUMessage::TUMessage(TUMessage const& other) = default;

TUMessage::~TUMessage()
{
    destroyed = true;
    // A channel deleted by its owner must not stay installed.
    TUMessage* self = this;
    currentInstance.compare_exchange_strong(self, nullptr);
}

TUMessage& TUMessage::instance()
{
    TUMessage* current = currentInstance.load(std::memory_order_acquire);
    if (current)
        return *current;
    std::lock_guard lock(creationMutex());
    if (!currentInstance.load())
        createInstance(brindle_app::programName(), false, true);
    return *currentInstance.load();
}

void TUMessage::createInstance(QString const& name, bool debugMode, bool secondFlag)
{
    if (destroyed)
        writeToStdErr("TUMessage::createInstance: The TUMessage singleton has already been "
                      "destroyed.\nWill recreate (Phoenix) the singleton once more!!!\n");
    TUMessage* old = currentInstance.load();
    if (old) {
        // "createInstace" is the channel's own spelling of this message.
        char const* text = "TUMessage::createInstace: Request to allocate a second TUMessage "
                           "singleton";
        QString const source = QString::fromLatin1(text);
        QString const translated = translate(text);
        writeToStdErr(source.toLocal8Bit() + '\n' + translated.toLocal8Bit() + '\n');
        old->warning(source, translated);
    }
    auto* created = new TUMessage(name, debugMode, secondFlag);
    delete old;
    currentInstance = created;
}

void TUMessage::setInstance(TUMessage* p)
{
    TUMessage* old = currentInstance.load();
    if (old) {
        QString const text =
            QStringLiteral("TUMessage::setInstance: Request to set a second TUMessage singleton");
        old->warning(text, text);
        delete old;
    }
    // Installing the channel that was just destroyed would leave a dangling
    // channel: the next report creates the default one instead.
    currentInstance = p == old ? nullptr : p;
}

void TUMessage::releaseInstance()
{
    TUMessage* old = currentInstance.load();
    if (!old)
        writeToStdErr("TUMessage::releaseInstance():  The TUMessage singleton does not exists\n");
    if (destroyed)
        writeToStdErr("TUMessage::releaseInstance():  The TUMessage singleton has already been "
                      "released once\n");
    delete old;
    currentInstance = nullptr;
}

void TUMessage::LogToStdErr(QString const& message)
{
    QString const line =
        QStringLiteral("[%1][%2@%3] %4")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd-hh.mm.ss")))
            .arg(qint64(::getpid()))
            .arg(qint64(::gettid()))
            .arg(message);
    writeToStdErr(line.toLocal8Bit() + '\n');
}

void TUMessage::warning(QString const& text, QString const& translated, bool*)
{
    writeLog('W', text, translated, true);
}

void TUMessage::warning(QString const& text, QString const& translated)
{
    warning(text, translated, nullptr);
}

void TUMessage::fatalError(QString const& text, QString const& translated, int code)
{
    writeLog('E', text, translated, true);
    close();
    std::exit(code >= 2 && code <= 8 ? code : 1);
}

void TUMessage::error(QString const& text, QString const& translated, int code)
{
    writeLog('E', text, translated, true);
    m_errorSeen = true;
    if (code > 0)
        updateErrorCode(unsigned(code));
}

void TUMessage::information(QString const& text, QString const& translated)
{
    writeLog('I', text, translated, true);
}

void TUMessage::trace(MSG_Text const& text, int code)
{
    trace(text.getText(), text.getTranslatedText(), code);
}

void TUMessage::trace(QString const& text, QString const& translated, int code)
{
    writeLog('T', text, translated, false);
    if (code > 0)
        updateErrorCode(unsigned(code));
}

void TUMessage::traceLater(QString const& text, QString const& translated, int code)
{
    trace(text, translated, code);
}

void TUMessage::debug(QString const& text, QString const& translated)
{
    if (m_debugMode)
        writeLog('D', text, translated, false);
}

void TUMessage::setDebugMode(bool on)
{
    m_debugMode = on;
    char const* text = on ? "Debug mode : ON" : "Debug mode : OFF";
    trace(QString::fromLatin1(text), translate(text), 0);
}

bool TUMessage::getDebugMode()
{
    return m_debugMode;
}

bool TUMessage::isDebugMode()
{
    return m_debugMode == true;
}

void TUMessage::setDirectMode(bool on)
{
    m_directMode = on;
}

bool TUMessage::isDirectMode()
{
    return m_directMode;
}

void TUMessage::setSilent(bool on)
{
    m_silent = on;
}

bool TUMessage::isSilent() const
{
    return m_silent;
}

void TUMessage::setTimeLogging(bool on)
{
    m_timeLogging = on;
}

bool TUMessage::isTimeLogging() const
{
    return m_timeLogging;
}

void TUMessage::suspendReport(bool suspend)
{
    if (suspend) {
        ++m_suspendCount;
        return;
    }
    // No floor: an unbalanced resume wraps around (intended).
    if (--m_suspendCount == 0)
        interactiveReport('Z', QString(), nullptr);
}

bool TUMessage::isReportSuspended()
{
    return m_suspendCount != 0;
}

void TUMessage::close() {}

void TUMessage::catchErrorCode(unsigned int code)
{
    if (code != 0)
        updateErrorCode(code);
}

unsigned int TUMessage::getErrorCode()
{
    if (m_errorSeen && m_errorCode == 0)
        m_errorCode = 100;
    return m_errorCode;
}

QString TUMessage::getLogContent()
{
    return QString();
}

void TUMessage::clearLog() {}

void TUMessage::initLog() {}

void TUMessage::baseWriteLog(QString const& text, QString const&)
{
    QByteArray line;
    if (m_timeLogging)
        line = QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")).toUtf8() + ' ';
    line += text.toUtf8();
    line += '\n';
    writeToStdErr(line);
}

void TUMessage::writeLog(char, QString const& text, QString const& translated, bool)
{
    baseWriteLog(text, translated);
}

void TUMessage::interactiveReport(char, QString const&, bool*) {}

bool TUMessage::okToUseFile(QString const& first, QString const& second)
{
    QFileInfo const firstInfo(first);
    QFileInfo const secondInfo(second);
    QDateTime const now = QDateTime::currentDateTime();
    auto olderThanTwoWeeks = [&](QFileInfo const& info) {
        qint64 const wholeDays = info.lastModified().secsTo(now) / 86400;
        return wholeDays > 14;
    };
    bool const firstExists = firstInfo.exists();
    bool const secondExists = secondInfo.exists();
    if (!firstExists && secondExists)
        return olderThanTwoWeeks(secondInfo);
    if (firstExists && !secondExists)
        return firstInfo.lastModified().secsTo(now) > 86400;
    if (firstExists && secondExists)
        return olderThanTwoWeeks(secondInfo);
    return true;
}

void TUMessage::lflush() {}

QString TUMessage::getMsgTypeText(char type)
{
    switch (type) {
    case 'I':
        return QStringLiteral("I:");
    case 'T':
        return QStringLiteral("T:");
    case 'W':
        return QStringLiteral("W:");
    case 'E':
        return QStringLiteral("E:");
    case 'D':
        return QStringLiteral("D:");
    default:
        return QString();
    }
}

void TUMessage::updateErrorCode(unsigned int code)
{
    if (code == 0)
        return;
    if (m_errorCode == 0 || code < m_errorCode)
        m_errorCode = code;
}

// --- MSG_Scope ---------------------------------------------------------------

MSG_Scope::MSG_Scope(MSG_Text const& text, Action action, ErrorCode::Type code)
    : MSG_Text(text)
    , m_action(action)
{
    errorCode(code);
}

MSG_Scope::MSG_Scope(QString const& text, Action action)
    : MSG_Text(text)
    , m_action(action)
{}

MSG_Scope::MSG_Scope(char const* context, char const* source, Action action, ErrorCode::Type code)
    : MSG_Text(context, source, WithContext)
    , m_action(action)
{
    errorCode(code);
}

MSG_Scope::MSG_Scope(char const* source)
    : MSG_Text(source, QObject::tr(source), WithTranslatedText)
    , m_action(Error)
{}

MSG_Scope::MSG_Scope(char const* source, QString const& translated, Action action)
    : MSG_Text(source, translated, WithTranslatedText)
    , m_action(action)
{}

MSG_Scope::MSG_Scope(char const* source, QString const& translated, Action action, bool flag)
    : MSG_Text(source, translated, WithTranslatedText)
    , m_action(action)
    , m_flag(flag)
{}

MSG_Scope::MSG_Scope(char const* source, Action action)
    : MSG_Text(QString::fromLatin1(source))
    , m_action(action)
{}

MSG_Scope::~MSG_Scope()
{
    QString const& text = getText();
    QString const& translated = getTranslatedText();
    int const code = int(errorCode());
    switch (m_action) {
    case Warning:
        TUMessage::instance().warning(text, translated);
        break;
    case WarningWithFlag:
        TUMessage::instance().warning(text, translated, &m_flag);
        break;
    case Error:
        TUMessage::instance().error(text, translated, code);
        break;
    case FatalError:
        TUMessage::instance().fatalError(text, translated, code);
        break;
    case Information:
        TUMessage::instance().information(text, translated);
        break;
    case Trace:
        TUMessage::instance().trace(text, translated, code);
        break;
    case Debug:
        TUMessage::instance().debug(text, translated);
        break;
    case TraceLater:
        TUMessage::instance().traceLater(text, translated, code);
        break;
    }
}

// --- guards ------------------------------------------------------------------

TUMessageSilent::TUMessageSilent()
    : m_wasSilent(TUMessage::instance().isSilent())
{
    TUMessage::instance().setSilent(true);
}

TUMessageSilent::~TUMessageSilent()
{
    TUMessage::instance().setSilent(m_wasSilent);
}

TUMessageSuspend::TUMessageSuspend()
{
    TUMessage::instance().suspendReport(true);
}

TUMessageSuspend::~TUMessageSuspend()
{
    TUMessage::instance().suspendReport(false);
}

TUMessageUnsuspend::TUMessageUnsuspend()
    : m_savedCount(TUMessage::instance().m_suspendCount)
{
    TUMessage::instance().m_suspendCount = 0;
}

TUMessageUnsuspend::~TUMessageUnsuspend()
{
    TUMessage::instance().m_suspendCount = m_savedCount;
}
