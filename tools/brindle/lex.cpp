// brindle lex: prints the tokens of a text file, one per line with its line number.
#include "Command.h"

#include <BrindleBaseCore/app/TULex.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>

namespace {

// Line feeds and other control characters inside quoted tokens are shown escaped
// so that every token stays on its own output line.
QByteArray printable(std::string const& token)
{
    QByteArray out;
    out.reserve(qsizetype(token.size()));
    for (char c : token) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\\')
            out += "\\\\";
        else
            out += c;
    }
    return out;
}

int runLex(brindle::Invocation& cmd)
{
    QCommandLineOption comma(QStringLiteral("comma"),
                             QStringLiteral("Comma-driven dialect: commas stand alone, '#' starts "
                                            "a comment line."));
    QCommandLineOption raw(QStringLiteral("raw"),
                           QStringLiteral("Raw tokens: each runs to the next blank, tab or line "
                                          "feed."));
    cmd.parser().addOption(comma);
    cmd.parser().addOption(raw);
    cmd.parser().addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The text to read."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const files = cmd.parser().positionalArguments();
    if (files.size() != 1)
        return cmd.usageError(QStringLiteral("expected one FILE"));
    QString const path = files.first();
    if (!QFileInfo(path).isFile())
        return cmd.fail(QStringLiteral("cannot read '%1': no such file").arg(path));

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return cmd.fail(QStringLiteral("cannot read '%1': %2").arg(path, file.errorString()));
    // A lexer reads its first token when it is made, in the default dialect and
    // not raw: a leading dummy token lets the chosen dialect and mode apply from
    // the file's first token on.
    QByteArray const text = QByteArrayLiteral("x ") + file.readAll();
    bool const rawTokens = cmd.parser().isSet(raw);
    TULex lex(text);
    if (cmd.parser().isSet(comma))
        lex.setCommaDriven(true);
    lex.get(rawTokens);
    for (; !lex.eof(); lex.get(rawTokens)) {
        QByteArray line =
            QByteArray::number(lex.getTokenLineNo()) + '\t' + printable(lex.asString());
        line += '\n';
        std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    }
    return lex.isError() ? brindle::Failure : brindle::Success;
}

} // namespace

BRINDLE_COMMAND(lex, "lex [--comma] [--raw] FILE",
                "Prints the tokens of a text file with their line numbers", runLex);
