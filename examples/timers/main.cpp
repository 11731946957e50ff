// An event-loop program with library timers: a periodic timer delivered when
// the loop is idle, a one-shot timer delivered as soon as it expires.
#include <BrindleBaseCore/os.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <cstdio>

namespace {

class Ticker : public PL_Timer
{
public:
    int ticks = 0;
    void TimerNotify() override
    {
        std::printf("tick %d\n", ++ticks);
        if (ticks == 5) {
            StopTimer();
            QCoreApplication::exit(0);
        }
    }
};

class Alarm : public PL_Timer
{
public:
    bool rang = false;
    void TimerNotify() override { rang = true; }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QObject window; // receives the expiries on this thread
    PL_TimerManager::SetUIThread(&window);
    if (!PL_TimerManager::InstallIdleHook())
        return 1;

    Ticker ticker;
    Alarm alarm;
    if (!ticker.StartTimer(20, false, false) || !alarm.StartTimer(10, true, true))
        return 1;
    QTimer::singleShot(10000, &app, [] { QCoreApplication::exit(2); }); // never hang

    int const rc = app.exec();
    std::printf("%d ticks, alarm %s\n", ticker.ticks, alarm.rang ? "rang" : "silent");
    PL_TimerManager::SetUIThread(nullptr);
    return rc == 0 && ticker.ticks == 5 && alarm.rang ? 0 : 1;
}
