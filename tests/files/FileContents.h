// Whole-file helpers shared by the file tests.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

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

} // namespace files_test
