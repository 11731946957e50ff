// Small helpers shared by the unit tests.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <string>

namespace brindle_test {

// Runs a program to completion and fills the outputs when given. Returns its
// exit status, 128 when a signal killed it (QProcess does not tell which), or
// -1 when it could not be started.
int runProgram(QString const& program, QStringList const& args, QByteArray* out = nullptr,
               QByteArray* err = nullptr, QByteArray const& input = {});

// Path of the brindle tool built with the tests.
inline QString toolPath()
{
#ifdef BRINDLE_TOOL
    return QStringLiteral(BRINDLE_TOOL);
#else
    return {};
#endif
}

} // namespace brindle_test

#include "TestSupport.inl"
