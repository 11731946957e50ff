// UT_Timecode::getTimeInFrames on arbitrary text at a rate taken from the input.
#include <BrindleBaseCore/data/UT_FrameRate.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    double fps = 24;
    if (size >= sizeof fps) {
        std::memcpy(&fps, data, sizeof fps);
        data += sizeof fps;
        size -= sizeof fps;
    }
    QString const text =
        QString::fromUtf8(reinterpret_cast<char const*>(data), static_cast<qsizetype>(size));
    UT_FrameRate const rate(fps);
    (void)UT_Timecode::getTimeInFrames(text, rate);
    (void)rate.numerator();
    (void)rate.denominator();
    (void)rate.fpsRound();
    return 0;
}
