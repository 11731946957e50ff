#include <BrindleBaseCore/text/UT_Format.h>

#include <cstdio>

UT_String UT_Format::formatFrame(unsigned frame, unsigned rate, bool forceHours, frameFormat format)
{
    char text[64];
    switch (format) {
    case Timecode: {
        unsigned perHour = rate * 3600;
        unsigned perMinute = rate * 60;
        if (perHour == 0) // rate 0, or a rate whose hour wraps to 0 in 32 bits
            return {};
        unsigned hours = frame / perHour;
        unsigned minutes = (frame - hours * perHour) / perMinute;
        unsigned rest = frame - hours * perHour - minutes * perMinute;
        unsigned seconds = rest / rate;
        unsigned frames = rest % rate;
        // Printed as int on purpose: the fields keep the wrap of 32-bit arithmetic.
        if (hours != 0 || forceHours)
            std::snprintf(text, sizeof text, "%.2d:%.2d:%.2d:%.2d", int(hours), int(minutes),
                          int(seconds), int(frames));
        else if (minutes != 0)
            std::snprintf(text, sizeof text, "%.2d:%.2d:%.2d", int(minutes), int(seconds),
                          int(frames));
        else
            std::snprintf(text, sizeof text, "%.2d:%.2d", int(seconds), int(frames));
        break;
    }
    case FrameNumber:
        std::snprintf(text, sizeof text, "%d", int(frame));
        break;
    case FeetAndFrames:
        std::snprintf(text, sizeof text, "%d:%d", int(frame >> 4), int(frame & 15));
        break;
    default:
        return {};
    }
    return UT_String(text);
}

UT_String UT_FormatFrame(unsigned frame, unsigned rate, bool forceHours)
{
    return UT_Format::formatFrame(frame, rate, forceHours, UT_Format::Timecode);
}
