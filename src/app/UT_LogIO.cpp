#include <BrindleBaseCore/app/UT_Log.h>
#include <BrindleBaseCore/app/UT_Tracking.h>

#include <QtCore/QDateTime>
#include <QtCore/QSysInfo>

#include <pwd.h>
#include <unistd.h>

namespace {

// Created by create(), destroyed by close(); written from the main thread.
std::unique_ptr<UT_Log>& shared()
{
    static std::unique_ptr<UT_Log> log;
    return log;
}

QString computerShortName()
{
    return QSysInfo::machineHostName().section(QLatin1Char('.'), 0, 0);
}

QString userLoginName()
{
    passwd entry{};
    passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found)
        return QString::fromLocal8Bit(found->pw_name);
    return qEnvironmentVariable("USER");
}

void trackAction(QString const& text)
{
    UT_Tracking::instance().trackAction(text);
}

} // namespace

namespace UT_LogIO {

bool create(QString const& folder)
{
    if (!shared())
        shared() = std::make_unique<UT_Log>();
    return shared()->create(folder);
}

bool close()
{
    if (!shared())
        return false;
    shared().reset();
    return true;
}

bool isOpen()
{
    return shared() && shared()->isOpen();
}

bool pause()
{
    return shared() && shared()->close();
}

bool resume()
{
    return shared() && shared()->reopen();
}

bool logAction(QString const& text)
{
    trackAction(text);
    return shared() && shared()->logAction(text);
}

bool copyLog(QString const& folder, QString const& suffix)
{
    return shared() && shared()->copyLog(folder, suffix);
}

QString buildLogFileName(bool withExtension)
{
    QString name =
        QStringLiteral("%1_%2_%3")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")),
                 computerShortName(), userLoginName());
    if (withExtension)
        name += QStringLiteral(".log");
    return name;
}

QString createMsg(char const* message, char const* sourceFile, int line)
{
    QString file = QString::fromLatin1(sourceFile);
    qsizetype cut = file.lastIndexOf(QLatin1Char('/'));
    if (cut < 0)
        cut = file.lastIndexOf(QLatin1Char('\\'));
    return QString::fromLatin1(message) + QStringLiteral(" (") + file.mid(cut + 1) +
           QLatin1Char(',') + QString::number(line) + QLatin1Char(')');
}

UT_Log* sharedLog()
{
    return shared().get();
}

bool add(QString const& operation, QString const& path, bool ok)
{
    return shared() && shared()->add(operation, path, ok);
}

bool add(QString const& operation, QString const& path, QString const& path2, bool ok)
{
    return shared() && shared()->add(operation, path, path2, ok);
}

bool add(QString const& operation, UT_String const& path, bool ok)
{
    return shared() && shared()->add(operation, path, ok);
}

bool add(QString const& operation, UT_String const& path, UT_String const& path2, bool ok)
{
    return shared() && shared()->add(operation, path, path2, ok);
}

bool add(UT_Log::eFileOperation operation, QString const& path, bool ok)
{
    return shared() && shared()->add(operation, path, ok);
}

bool add(UT_Log::eFileOperation operation, QString const& path, QString const& path2, bool ok)
{
    return shared() && shared()->add(operation, path, path2, ok);
}

bool add(UT_Log::eFileOperation operation, UT_String const& path, bool ok)
{
    return shared() && shared()->add(operation, path, ok);
}

bool add(UT_Log::eFileOperation operation, UT_String const& path, UT_String const& path2, bool ok)
{
    return shared() && shared()->add(operation, path, path2, ok);
}

Scope::Scope(QString const& name)
    : m_name(name)
{
    UT_Log* log = sharedLog();
    if (!log)
        return;
    QString const text = QStringLiteral("Start %1").arg(m_name);
    trackAction(text);
    log->logAction(text);
    log->setIndent(log->indent() + 2);
}

Scope::~Scope()
{
    UT_Log* log = sharedLog();
    if (!log)
        return;
    log->setIndent(log->indent() - 2);
    QString const text = QStringLiteral("End %1").arg(m_name);
    trackAction(text);
    log->logAction(text);
}

} // namespace UT_LogIO
