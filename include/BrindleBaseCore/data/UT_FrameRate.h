#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

/// A frame rate in frames per second. The double constructor snaps a rate
/// within 0.0001 of a predefined rate to that rate, so 23.976 becomes exactly
/// 24000/1001. A rate is valid when it is greater than 0. Plain value.
class BRINDLE_EXPORT UT_FrameRate
{
public:
    /// Index into the table of predefined rates.
    enum PredefinedFrameRate : int
    {
        Rate8 = 0,                   ///< 8 fps.
        Rate10 = 1,                  ///< 10 fps.
        Rate12 = 2,                  ///< 12 fps.
        Rate15 = 3,                  ///< 15 fps.
        Rate23_976 = 4,              ///< 24000/1001 fps.
        Rate24 = 5,                  ///< 24 fps.
        Rate25 = 6,                  ///< 25 fps.
        Rate29_97 = 7,               ///< 30000/1001 fps.
        Rate30 = 8,                  ///< 30 fps.
        PredefinedFrameRateCount = 9 ///< Number of predefined rates.
    };

    /// The default rate, 24.
    UT_FrameRate();
    /// Snapped to the predefined rates.
    UT_FrameRate(double fps);
    /// Stored as given, without snapping.
    UT_FrameRate(quint32 fps);
    /// Stored as given, without snapping.
    UT_FrameRate(int fps);
    /// Copy.
    UT_FrameRate(UT_FrameRate const&) = default;
    /// Move.
    UT_FrameRate(UT_FrameRate&&) = default;
    /// Copy.
    UT_FrameRate& operator=(UT_FrameRate const&) = default;
    /// Move.
    UT_FrameRate& operator=(UT_FrameRate&&) = default;

    /// 24 fps.
    static UT_FrameRate defaultFrameRate();
    /// 0 fps (invalid).
    static UT_FrameRate nullFrameRate();
    /// The rate of the table entry; `index` must be 0 to 8 (not checked).
    static UT_FrameRate predefinedFrameRate(PredefinedFrameRate index);

    /// The stored rate.
    double fps() const { return m_fps; }
    /// Rounded up: 23.976 gives 24, 29.97 gives 30.
    int fpsRound() const;
    /// The exact rational form: 24000/1001, 30000/1001, 60000/1001 and
    /// 120000/1001 for the NTSC-style rates (59.94 and 119.88 too, although they
    /// are not predefined), otherwise round(fps * 1000)/1000.
    int numerator() const;
    /// See numerator().
    int denominator() const;
    /// True when the rate is greater than 0.
    bool isValid() const { return m_fps > 0; }

    /// Exact comparisons of the stored doubles.
    bool operator==(UT_FrameRate const& other) const { return m_fps == other.m_fps; }
    /// Exact inequality.
    bool operator!=(UT_FrameRate const& other) const { return m_fps != other.m_fps; }
    /// Exact order.
    bool operator<(UT_FrameRate const& other) const { return m_fps < other.m_fps; }
    /// Exact order.
    bool operator>(UT_FrameRate const& other) const { return m_fps > other.m_fps; }

private:
    /// fps * 1000 + 0.5, truncated.
    int milliFps() const;

    double m_fps;
};

/// Timecode text to frame counts. Never fails: bad fields count 0 and an
/// overflow gives 0xFFFFFFFF (see getTimeInFrames()).
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
