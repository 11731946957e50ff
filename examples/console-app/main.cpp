// A command-line program that starts through BAPP_CoreApplication, keeps an
// action log of what it does and shows reports through a channel of its own.
#include <BrindleBaseCore/app.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <cstdio>

namespace {

// Reports go to standard output, one line each, prefixed with the type letter;
// errors also keep their code for the exit status.
class ConsoleChannel : public TUMessage
{
public:
    ConsoleChannel()
        : TUMessage(QStringLiteral("console-app"), false, false)
    {}

    int reports = 0;

protected:
    void information(QString const& text, QString const& translated) override
    {
        print('I', text, translated);
    }
    void warning(QString const& text, QString const& translated) override
    {
        print('W', text, translated);
    }
    void error(QString const& text, QString const& translated, int code) override
    {
        print('E', text, translated);
        catchErrorCode(unsigned(code));
    }

private:
    void print(char type, QString const& text, QString const& translated)
    {
        ++reports;
        std::printf("[%c] %s\n", type, qPrintable(translated.isEmpty() ? text : translated));
    }
};

} // namespace

int main(int argc, char** argv)
{
    BAPP_CoreApplication app(argc, argv);

    auto* channel = new ConsoleChannel; // owned by TUMessage from here on
    TUMessage::setInstance(channel);

    QTemporaryDir work;
    if (!work.isValid() || !UT_LogIO::create(work.path())) {
        MSG_Scope("cannot create the action log", MSG_Scope::Error);
        return 1;
    }
    UT_LogIO::logAction(QStringLiteral("console-app started"));

    QString const scene = QDir(work.path()).filePath(QStringLiteral("scene.txt"));
    {
        UT_LogIO::Scope saving(QStringLiteral("save"));
        QFile file(scene);
        bool const ok = file.open(QIODevice::WriteOnly) && file.write("frames 1-24\n") > 0;
        file.close();
        UT_LogIO::add(UT_Log::eFileOperation::Create, scene, ok);
        MSG_Scope(QStringLiteral("saved %1").arg(QDir::toNativeSeparators(scene)),
                  MSG_Scope::Information);
    }
    bool const removed = QFile::remove(scene);
    UT_LogIO::add(UT_Log::eFileOperation::Delete, scene, removed);
    if (QFile::exists(scene))
        MSG_Scope("the scene was not removed", MSG_Scope::Warning);

    // The log is read back to show what it recorded.
    QString const logName = UT_LogIO::sharedLog()->fileName();
    UT_LogIO::close();
    QFile log(logName);
    int lines = 0;
    if (log.open(QIODevice::ReadOnly))
        lines = QString::fromUtf8(log.readAll()).count(QLatin1Char('\n'));
    std::printf("log: %d lines, channel: %d reports, error code %u\n", lines, channel->reports,
                channel->getErrorCode());

    // header line, action, Start, Create, End, Delete
    bool const ok = lines == 6 && channel->reports == 1 && channel->getErrorCode() == 0;
    TUMessage::releaseInstance();
    return ok ? 0 : 1;
}
