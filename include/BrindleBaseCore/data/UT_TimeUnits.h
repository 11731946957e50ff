#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QtGlobal>

#include <memory>

/// The process-wide numbering of timeline cells: how a frame is labelled, which
/// cells carry a label and how cells are banded in colour. System 1 numbers
/// frames 1, 2, 3...; system 2 labels them in groups of 16 ("0:1" for the first
/// frame, "1:0" for the sixteenth) with colour bands of 8 frames; any other
/// value gives plain labels without banding. Frame indexes are 0-based.
///
/// GetInstance() takes no lock: call it first on one thread (at start-up).
class BRINDLE_EXPORT UT_TimeUnits
{
public:
    /// The numbering systems; other values are accepted and give plain labels.
    enum eTimeUnits : qint32
    {
        Frames = 1,    ///< Frames 1, 2, 3...
        FramesBy16 = 2 ///< Groups of 16 frames, "group:frame".
    };

    virtual ~UT_TimeUnits();

    /// The single instance, created with system 1 on the first call; it lives
    /// until the process ends.
    static UT_TimeUnits* GetInstance();

    /// Sets the system (any value is kept).
    void SetNumberingSystem(eTimeUnits system) { m_numberingSystem = system; }
    /// The current system.
    eTimeUnits GetNumberingSystem() const { return m_numberingSystem; }

    /// The label of the frame, in `out`.
    void GetFrameLabel(int frame, UT_String& out) const;
    /// True when the cell shows its label.
    bool ShouldLabelCell(int frame) const;
    /// 0 or 1.
    int GetCellColorIndex(int frame) const;
    /// Number of band colours: 2 in systems 1 and 2, else 1.
    int GetNbColors() const;
    /// Frames per colour band: 8 in system 2, else 10.
    int GetColorDelta() const;
    /// Frames between labelled cells: 16 in system 2, else 10.
    int GetLabelDelta() const;

private:
    UT_TimeUnits() = default;
    UT_TimeUnits(UT_TimeUnits const&) = delete;
    UT_TimeUnits& operator=(UT_TimeUnits const&) = delete;

    static std::unique_ptr<UT_TimeUnits> m_pInstance;
    eTimeUnits m_numberingSystem = Frames;
};
