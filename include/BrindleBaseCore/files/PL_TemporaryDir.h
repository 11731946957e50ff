/// @file
/// Temporary folders owned by the process.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

#include <memory>

/// A temporary folder of the process inside the session folder, removed when
/// the object is destroyed or, for objects still alive then, by
/// cleanUpBrindleTempDir() (call it at exit).
class BRINDLE_EXPORT PL_TemporaryDir
{
public:
    PL_TemporaryDir();
    ~PL_TemporaryDir();
    PL_TemporaryDir(PL_TemporaryDir const&) = delete;
    PL_TemporaryDir& operator=(PL_TemporaryDir const&) = delete;

    /// The folder; empty when it could not be created.
    QString path() const;
    /// Whether the folder was created.
    bool isValid() const;
    /// "folder/00000.ext", "folder/00001.ext", ...: safe from many threads.
    QString generateTemporaryName(QString const& extension);
    /// Removes the folders of every PL_TemporaryDir still alive.
    static void cleanUpBrindleTempDir();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
