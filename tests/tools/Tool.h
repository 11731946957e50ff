// Runs the brindle tool built with the tests and checks how it fails.
#pragma once

#include "TestSupport.h"

#include "../files/FileContents.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <initializer_list>

namespace tools_test {

struct Result
{
    int status = -1;
    QByteArray out, err;
};

// brindle ARGS with INPUT on its standard input.
inline Result brindle(QStringList const& args, QByteArray const& input = {})
{
    Result r;
    r.status = brindle_test::runProgram(brindle_test::toolPath(), args, &r.out, &r.err, input);
    return r;
}

// brindle ARGS, which must succeed.
inline Result ok(QStringList const& args, QByteArray const& input = {})
{
    Result r = brindle(args, input);
    EXPECT_EQ(r.status, 0) << args.join(' ').toStdString() << ": " << r.err.constData();
    return r;
}

// Writes CONTENT to NAME in DIR and returns the file's path.
inline QString writeFile(QTemporaryDir const& dir, QString const& name, QByteArray const& content)
{
    QString const path = dir.filePath(name);
    files_test::writeFile(path, content);
    return path;
}

// A call that fails with STATUS and says ERR on standard error: the whole of
// it when ERR ends in a newline, else somewhere in it.
struct Failure
{
    QStringList args;
    int status;
    char const* err = "";
    QByteArray input = {};
};

inline void expectFailures(std::initializer_list<Failure> failures)
{
    for (Failure const& f : failures) {
        SCOPED_TRACE(f.args.join(' ').toStdString());
        Result const r = brindle(f.args, f.input);
        EXPECT_EQ(r.status, f.status) << r.err.constData();
        QByteArray const text(f.err);
        if (text.endsWith('\n'))
            EXPECT_EQ(r.err.toStdString(), text.toStdString());
        else
            EXPECT_TRUE(r.err.contains(text)) << r.err.constData();
    }
}

} // namespace tools_test
