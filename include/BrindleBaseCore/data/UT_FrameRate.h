#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

/// A frame rate in frames per second. The double constructor snaps a rate
/// within 0.0001 of a predefined rate to that rate, so 23.976 becomes exactly
/// 24000/1001. A rate is valid when it is greater than 0. Plain value.
class BRINDLE_EXPORT UT_FrameRate
{
public:
    enum PredefinedFrameRate : int
    {
        Rate8 = 0,
        Rate10 = 1,
        Rate12 = 2,
        Rate15 = 3,
        Rate23_976 = 4, // 24000/1001
        Rate24 = 5,
        Rate25 = 6,
        Rate29_97 = 7, // 30000/1001
        Rate30 = 8,
        PredefinedFrameRateCount = 9
    };

    /// The default rate, 24.
    UT_FrameRate();
    /// Snapped to the predefined rates.
    UT_FrameRate(double fps);
    /// Stored as given, without snapping.
    UT_FrameRate(quint32 fps);
    UT_FrameRate(int fps);
    UT_FrameRate(UT_FrameRate const&) = default;
    UT_FrameRate(UT_FrameRate&&) = default;
    UT_FrameRate& operator=(UT_FrameRate const&) = default;
    UT_FrameRate& operator=(UT_FrameRate&&) = default;

    static UT_FrameRate defaultFrameRate();
    static UT_FrameRate nullFrameRate();
    /// The rate of the table entry; `index` must be 0 to 8 (not checked).
    static UT_FrameRate predefinedFrameRate(PredefinedFrameRate index);

    double fps() const { return m_fps; }
    /// Rounded up: 23.976 gives 24, 29.97 gives 30.
    int fpsRound() const;
    /// The exact rational form: 24000/1001, 30000/1001, 60000/1001 and
    /// 120000/1001 for the NTSC-style rates (59.94 and 119.88 too, although they
    /// are not predefined), otherwise round(fps * 1000)/1000.
    int numerator() const;
    int denominator() const;
    bool isValid() const { return m_fps > 0; }

    /// Exact comparisons of the stored doubles.
    bool operator==(UT_FrameRate const& other) const { return m_fps == other.m_fps; }
    bool operator!=(UT_FrameRate const& other) const { return m_fps != other.m_fps; }
    bool operator<(UT_FrameRate const& other) const { return m_fps < other.m_fps; }
    bool operator>(UT_FrameRate const& other) const { return m_fps > other.m_fps; }

private:
    /// fps * 1000 + 0.5, truncated.
    int milliFps() const;

    double m_fps;
};

class BRINDLE_EXPORT UT_Timecode
{
public:
    /// Frames of "hours:minutes:seconds.frames" at the rate: frames +
    /// trunc(fps * total seconds), without drop-frame correction. Leading
    /// fields may be left out; a last field without '.' is all frames ("10" is
    /// 10 frames, intended). A field that is not a decimal number counts 0; a
    /// result beyond the 32-bit range gives 0xFFFFFFFF.
    static quint32 getTimeInFrames(QString const& timecode, UT_FrameRate const& frameRate);
};
