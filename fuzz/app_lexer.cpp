// Fuzzes the lexer over arbitrary bytes in both dialects, raw and not, with the
// typed reads mixed in; the first input byte chooses the mode.
#include <BrindleBaseCore/app/TULex.h>
#include <BrindleBaseCore/app/TUMessage.h>

#include <QtCore/QByteArray>

#include <cstddef>
#include <cstdint>

namespace {
// Syntax errors are part of the game: keep them off standard error.
class DiscardingChannel : public TUMessage
{
public:
    DiscardingChannel()
        : TUMessage(QStringLiteral("fuzz"), false, true)
    {}

protected:
    void writeLog(char, QString const&, QString const&, bool) override {}
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    static bool const installed = [] {
        TUMessage::setInstance(new DiscardingChannel);
        return true;
    }();
    (void)installed;
    if (size == 0)
        return 0;
    uint8_t const mode = data[0];
    QByteArray const text(reinterpret_cast<char const*>(data + 1), qsizetype(size - 1));
    TULex lex(text);
    if (mode & 1)
        lex.setCommaDriven(true);
    if (mode & 2)
        lex.enableYesToAll();
    unsigned steps = 0;
    while (!lex.eof() && steps++ < 100000) {
        switch ((mode >> 2) & 3) {
        case 0:
            lex.get((steps & 1) != 0);
            break;
        case 1: {
            int i;
            if (!lex.get_int(i))
                lex.get();
            break;
        }
        case 2: {
            double d;
            if (!lex.parseDouble(d, (steps & 1) != 0))
                lex.get();
            break;
        }
        default: {
            bool b;
            (void)lex.isDouble();
            if (!lex.parseBool(b))
                lex.skipToNextLine();
            break;
        }
        }
    }
    return 0;
}
