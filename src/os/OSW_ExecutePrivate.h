// The private record of OSW_Execute.
#pragma once

#include <BrindleBaseCore/os/OSW_Execute.h>

#include <atomic>
#include <set>

struct OSW_Execute::Private
{
    // The six pipe slots, in this order.
    enum Slot
    {
        ChildStdinRead,
        ParentStdinWrite,
        ParentStdoutRead,
        ChildStdoutWrite,
        ParentStderrRead,
        ChildStderrWrite,
        SlotCount
    };

    std::atomic<int> references{1};
    bool detached = false;
    bool stdioPipes = false;
    QString workingDirectory;
    quint32 pid = 0;
    OSW_Handle handles[SlotCount] = {-1, -1, -1, -1, -1, -1};
    std::set<OSW_Handle> inheritedHandles;
    // Set once the child's status has been read (the child is reaped).
    bool reaped = false;
    int exitStatus = 0;
    bool killed = false; // ended by kill(): its status reads as 0

    void closeHandles();
    // Creates the three pipes; a pipe that cannot be made leaves its slots invalid.
    void createPipes();
    // Without pipes: reports that stdio is not enabled and returns false.
    bool checkPipes() const;
};
