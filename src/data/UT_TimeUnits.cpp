#include <BrindleBaseCore/data/UT_TimeUnits.h>

#include <string>

std::unique_ptr<UT_TimeUnits> UT_TimeUnits::m_pInstance;

UT_TimeUnits::~UT_TimeUnits() = default;

UT_TimeUnits* UT_TimeUnits::GetInstance()
{
    if (!m_pInstance) {
        auto* created = new UT_TimeUnits;
        m_pInstance.reset(created); // an instance made meanwhile is replaced
    }
    return m_pInstance.get();
}

void UT_TimeUnits::GetFrameLabel(int frame, UT_String& out) const
{
    qint64 const n = qint64(frame) + 1;
    std::string label;
    if (m_numberingSystem == FramesBy16)
        label = std::to_string(n / 16) + ':' + std::to_string(n % 16);
    else
        label = std::to_string(n);
    out.assign(label.begin(), label.end());
}

bool UT_TimeUnits::ShouldLabelCell(int frame) const
{
    qint64 const n = qint64(frame) + 1;
    switch (m_numberingSystem) {
    case Frames:
        return n % 10 == 0;
    case FramesBy16:
        return n % 16 == 0;
    default:
        return false;
    }
}

int UT_TimeUnits::GetCellColorIndex(int frame) const
{
    switch (m_numberingSystem) {
    case Frames:
        return (qint64(frame) + 1) % 10 == 0 ? 1 : 0;
    case FramesBy16:
        return (frame / 8) % 2 == 0 ? 1 : 0;
    default:
        return 0;
    }
}

int UT_TimeUnits::GetNbColors() const
{
    return m_numberingSystem == Frames || m_numberingSystem == FramesBy16 ? 2 : 1;
}

int UT_TimeUnits::GetColorDelta() const
{
    return m_numberingSystem == FramesBy16 ? 8 : 10;
}

int UT_TimeUnits::GetLabelDelta() const
{
    return m_numberingSystem == FramesBy16 ? 16 : 10;
}
