// brindle matrix: prints a 4x4 matrix with its inverse, its determinant and
// whether it is a 2D transform.
#include "Command.h"

#include <BrindleBaseCore/math/Matrix4x4.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// Splits text into numbers separated by blanks or commas; '#' starts a
// comment that runs to the end of the line. Returns false and names the bad
// word in *bad.
bool parseNumbers(QString const& text, QList<double>* numbers, QString* bad)
{
    static const QRegularExpression separators(QStringLiteral("[\\s,]+"));
    for (QString line : text.split(QLatin1Char('\n'))) {
        qsizetype hash = line.indexOf(QLatin1Char('#'));
        if (hash >= 0)
            line.truncate(hash);
        for (QString const& word : line.split(separators, Qt::SkipEmptyParts)) {
            bool ok = false;
            double value = word.toDouble(&ok);
            if (!ok) {
                *bad = word;
                return false;
            }
            numbers->append(value);
        }
    }
    return true;
}

// Prints with five decimals; values that would show as -0.00000 show as 0.
void printMatrix(Math::Matrix4x4 m, char const* label)
{
    for (int i = 0; i < 16; ++i) {
        double& v = m(Math::Row(i % 4), Math::Column(i / 4));
        if (std::fabs(v) < 5e-6)
            v = 0.0;
    }
    m.print(label);
}

bool readInput(QString const& path, QString* text)
{
    QFile file;
    bool opened = path == QStringLiteral("-")
                      ? file.open(stdin, QIODevice::ReadOnly)
                      : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    if (!opened)
        return false;
    *text = QString::fromUtf8(file.readAll());
    return true;
}

int runMatrix(brindle::Invocation& cmd)
{
    cmd.parser().addPositionalArgument(
        QStringLiteral("input"),
        QStringLiteral("Sixteen numbers row by row, given as sixteen arguments, or the name of a "
                       "file holding them ('-' or nothing: standard input). Numbers are separated "
                       "by blanks or commas; '#' starts a comment."),
        QStringLiteral("[FILE | N1 ... N16]"));
    // Negative numbers look like options to the parser: it only sees the
    // arguments when one of them is an option indeed.
    QStringList args = cmd.arguments();
    bool plain = std::all_of(args.begin(), args.end(), [](QString const& a) {
        bool number = false;
        a.toDouble(&number);
        return number || !a.startsWith(QLatin1Char('-')) || a == QStringLiteral("-");
    });
    if (!plain) {
        int status = 0;
        if (!cmd.parse(&status))
            return status;
        args = cmd.parser().positionalArguments();
    }
    QString text, source;
    if (args.size() > 1) {
        text = args.join(QLatin1Char(' '));
        source = QStringLiteral("the arguments");
    } else {
        source = args.isEmpty() ? QStringLiteral("-") : args.first();
        if (!readInput(source, &text))
            return cmd.fail(QStringLiteral("cannot read '%1'").arg(source));
        if (source == QStringLiteral("-"))
            source = QStringLiteral("standard input");
    }
    QList<double> numbers;
    QString bad;
    if (!parseNumbers(text, &numbers, &bad))
        return cmd.fail(QStringLiteral("not a number in %1: '%2'").arg(source, bad));
    if (numbers.size() != 16) {
        return cmd.fail(
            QStringLiteral("expected 16 numbers in %1, got %2").arg(source).arg(numbers.size()));
    }

    Math::Matrix4x4 m;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c)
            m(Math::Row(r), Math::Column(c)) = numbers[4 * r + c];
    }
    printMatrix(m, "matrix");
    try {
        printMatrix(m.getInverse(), "inverse");
    } catch (Math::Matrix4x4::Singularity const&) {
        std::printf("inverse: singular\n");
    }
    std::printf("determinant: %.10g\n", m.determinant());
    if (!m.isTransform2d()) {
        std::printf("2D transform: no\n");
        return brindle::Success;
    }
    Math::Vector2d translation, scale;
    double degrees = 0;
    if (m.extractParameters(translation, degrees, scale)) {
        std::printf(
            "2D transform: yes (translate %.6g %.6g, rotate %.6g degrees, scale %.6g %.6g)\n",
            translation.x(), translation.y(), degrees, scale.x(), scale.y());
    } else {
        std::printf("2D transform: yes (degenerate)\n");
    }
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(matrix, "matrix [FILE | N1 ... N16]",
                "Prints a 4x4 matrix, its inverse, determinant and 2D parameters", runMatrix);
