/// @file
/// Frame numbers as timecode, plain numbers or feet and frames.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

/// Formatting of frame numbers as timecode, plain numbers or feet and frames.
/// Stateless: everything is in the static formatFrame(). Bad input never fails loudly: an unknown
/// format or a rate that would divide by zero gives an empty text. Arithmetic is unsigned 32-bit
/// and wraps (intended), so very large frames or rates give the wrapped timecode rather than an
/// error.
class BRINDLE_EXPORT UT_Format
{
public:
    /// The text forms of a frame. Other values (through static_cast) give an
    /// empty text.
    enum frameFormat
    {
        Timecode = 0,      ///< [hh:]mm:ss:ff, [mm:]ss:ff or ss:ff, two digits each.
        FrameNumber = 1,   ///< The frame as a decimal number.
        FeetAndFrames = 2, ///< feet:frames, 16 frames to the foot ("2:3" for 35).
    };

    /// Timecode: hours appear when not zero or when forceHours is set, minutes
    /// when hours appear or are not zero ("00:01" for frame 1 at 24 per second,
    /// "01:02:12" for 1500), in unsigned 32-bit arithmetic. rate is frames per
    /// second; a rate that would divide by zero (0, or a multiple of 2^28, whose
    /// frames per hour wrap to 0) gives an empty timecode.
    static UT_String formatFrame(unsigned frame, unsigned rate, bool forceHours = false,
                                 frameFormat format = Timecode);
};

/// UT_Format::formatFrame(frame, rate, forceHours, UT_Format::Timecode).
BRINDLE_EXPORT UT_String UT_FormatFrame(unsigned frame, unsigned rate, bool forceHours = false);
