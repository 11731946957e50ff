#include <BrindleBaseCore/data/UT_FrameRate.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kPredefinedRates[UT_FrameRate::PredefinedFrameRateCount] = {
    8, 10, 12, 15, 24000.0 / 1001, 24, 25, 30000.0 / 1001, 30};

double snapped(double fps)
{
    for (double rate : kPredefinedRates) {
        if (std::abs(fps - rate) <= 0.0001)
            return rate;
    }
    return fps;
}

// A double truncated toward zero into [low, high]; NaN gives 0.
template <typename T>
T clampedTruncation(double value)
{
    if (!(value > double(std::numeric_limits<T>::lowest())))
        return value < 0 ? std::numeric_limits<T>::lowest() : T(0);
    if (value >= double(std::numeric_limits<T>::max()))
        return std::numeric_limits<T>::max();
    return T(value);
}

} // namespace

UT_FrameRate::UT_FrameRate()
    : m_fps(24)
{}

UT_FrameRate::UT_FrameRate(double fps)
    : m_fps(snapped(fps))
{}

UT_FrameRate::UT_FrameRate(quint32 fps)
    : m_fps(fps)
{}

UT_FrameRate::UT_FrameRate(int fps)
    : m_fps(fps)
{}

UT_FrameRate UT_FrameRate::defaultFrameRate()
{
    return UT_FrameRate(24.0);
}

UT_FrameRate UT_FrameRate::nullFrameRate()
{
    return UT_FrameRate(0.0);
}

UT_FrameRate UT_FrameRate::predefinedFrameRate(PredefinedFrameRate index)
{
    return UT_FrameRate(kPredefinedRates[index]);
}

int UT_FrameRate::fpsRound() const
{
    return clampedTruncation<int>(std::ceil(m_fps));
}

int UT_FrameRate::milliFps() const
{
    return clampedTruncation<int>(m_fps * 1000 + 0.5);
}

int UT_FrameRate::denominator() const
{
    switch (milliFps()) {
    case 23976:
    case 29970:
    case 59940:
    case 119880:
        return 1001;
    default:
        return 1000;
    }
}

int UT_FrameRate::numerator() const
{
    int const m = milliFps();
    switch (m) {
    case 23976:
        return 24000;
    case 29970:
        return 30000;
    case 59940:
        return 60000;
    case 119880:
        return 120000;
    default:
        return m;
    }
}

quint32 UT_Timecode::getTimeInFrames(QString const& timecode, UT_FrameRate const& frameRate)
{
    auto number = [](QStringView field) -> quint64 {
        bool ok = false;
        uint const value = field.toUInt(&ok, 10);
        return ok ? value : 0;
    };
    QList<QStringView> const fields = QStringView(timecode).split(u':');
    QList<QStringView> const last = fields.last().split(u'.');
    qsizetype const n = fields.size();
    quint64 const hours = n >= 3 ? number(fields[n - 3]) : 0;
    quint64 const minutes = n >= 2 ? number(fields[n - 2]) : 0;
    quint64 const seconds = last.size() >= 2 ? number(last[last.size() - 2]) : 0;
    quint64 const frames = number(last.last());

    double const totalSeconds = double((hours * 60 + minutes) * 60 + seconds);
    quint64 const limit = std::numeric_limits<quint32>::max();
    quint64 const scaled = clampedTruncation<quint64>(frameRate.fps() * totalSeconds);
    return quint32(std::min(limit, frames + std::min(scaled, limit)));
}
