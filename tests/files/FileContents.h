// Whole-file helpers and a scratch-folder fixture shared by the file tests.
#pragma once

#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace files_test {

inline void writeFile(QString const& path, QByteArray const& content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
}

// "<missing>" when the file cannot be read.
inline QByteArray readFile(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// A fresh folder per test, its files named relative to it.
class FolderTest : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString at(QString const& name) const { return dir.path() + QLatin1Char('/') + name; }
    PL_FileSpec spec(QString const& name) const { return PL_FileSpec(UT_String(at(name))); }
    void write(QString const& name, QByteArray const& content) { writeFile(at(name), content); }
    QByteArray read(QString const& name) const { return readFile(at(name)); }
};

} // namespace files_test
