// Tokenizing, numbers, typed reads, syntax errors and the writers of TULex.
#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/app/TULex.h>
#include <BrindleBaseCore/app/TUMessage.h>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <tuple>

namespace {

// The remaining tokens, each followed by '|'.
std::string tokens(TULex& lex, bool raw = false)
{
    std::string out;
    for (; !lex.eof(); lex.get(raw))
        out += lex.asString() + "|";
    return out;
}

// A channel that records what it is given instead of writing it.
class RecordingChannel : public TUMessage
{
public:
    using TUMessage::TUMessage;
    QStringList texts;
    bool clearFlag = false; // clears the answer flag of flagged reports

protected:
    void warning(QString const& text, QString const&, bool* flag) override
    {
        texts << text;
        if (flag && clearFlag)
            *flag = false;
    }
};

class LexerReports : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TUMessage::setInstance(channel = new RecordingChannel(QStringLiteral("test"), false, true));
    }
    RecordingChannel* channel = nullptr;
};

} // namespace

TEST(Lexer, DialectsSplitTheText)
{
    // {text, comma-driven, raw reads (after the first token, read before any switch), tokens}
    using Rows = std::initializer_list<std::tuple<char const*, bool, bool, char const*>>;
    for (auto [text, commaDriven, raw, expected] :
         Rows{{"size=12.5, name", false, false, "size|=|12.5|,|name|"},
              {"x\r\ny\t z", false, false, "x|y|z|"},
              {"\"a\\\"b\" \"c\\\\d\" \"e\rf\"", false, false, "a\"b|c\\d|ef|"},
              {"#x", false, false, "#|x|"}, // '#' is ordinary in the default dialect
              {"", false, false, ""},
              {" \t\r\n\n", false, false, ""},
              {"size=12.5, name \"q\"", false, true, "size|=12.5,|name|q|"},
              // The first token "1" is read before the switch, in the default dialect.
              {"1,2\n# a comment, with commas\n\"a b\",-(x),#\n", true, false,
               "1|,|2|a|b|,|-|(x|)|,|"},
              {"ab,cd ef", true, true, "ab|,cd|ef|"}}) {
        TULex lex(text);
        if (commaDriven)
            lex.setCommaDriven(false); // any call switches it on, the argument is ignored
        EXPECT_EQ(tokens(lex, raw), expected) << text;
    }
    EXPECT_TRUE(TULex(static_cast<char const*>(nullptr)).eof());
}

// Long names are scanned in blocks: every byte value, at every place in the
// first blocks, must end the name exactly when its character class says so.
TEST(Lexer, EveryByteEndsANameAsItsClassSays)
{
    std::string const name = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    auto const isName = [](unsigned char c) {
        return c >= 0x80 || std::isalnum(c) || std::strchr("+-./\\_~", c) != nullptr;
    };
    for (int c = 1; c < 256; ++c) {
        for (size_t at = 1; at < 40; ++at) {
            std::string text = name;
            text.insert(at, 1, char(c));
            TULex lex(text.c_str());
            std::string expected = text.substr(0, at);
            if (isName((unsigned char)c))
                expected = text;
            else if (c == '\r')
                expected = name; // dropped inside a token
            ASSERT_EQ(lex.asString(), expected) << "byte " << c << " at " << at;
        }
    }
}

TEST(Lexer, LineCounting)
{
    // A token's line feed is consumed with it; those inside a quoted string are not counted.
    std::string got;
    for (TULex lex("a\nb\n\"x\ny\" c\n\nd"); !lex.eof(); lex.get())
        got += lex.asString() + "@" + std::to_string(lex.getLineNo()) + "|";
    EXPECT_EQ(got, "a@2|b@3|x\ny@3|c@4|d@5|");

    TULex skip("a b c\nd e\n");
    skip.get(); // b
    skip.skipToNextLine();
    EXPECT_EQ(skip.asString(), "d");
    skip.skipToNextLine();
    EXPECT_TRUE(skip.eof());
}

// One text walked token by token: the cached conversion must follow each get().
TEST(Lexer, NumbersAreBase10AndIgnoreTheProcessLocale)
{
    std::string const locale = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8"); // a decimal comma, where installed
    TULex lex("12 12.0 12a -7 +3 1e3 2.5 99999999999 -99999999999 inf .");
    std::ostringstream got;
    for (; !lex.eof(); lex.get()) {
        got << lex.asString();
        if (lex.isInt())
            got << (lex.isDouble() ? " int " : " int only ") << int(lex);
        else if (lex.isDouble())
            got << " double " << double(lex);
        got << '|';
    }
    std::setlocale(LC_NUMERIC, locale.c_str());
    // Values beyond 32 bits saturate.
    EXPECT_EQ(got.str(), "12 int 12|12.0 double 12|12a|-7 int -7|+3 int 3|1e3 double 1000|"
                         "2.5 double 2.5|99999999999 int 2147483647|-99999999999 int -2147483648|"
                         "inf double inf|.|");
    EXPECT_FALSE(TULex("0x10").isInt()) << "base 10 only";
}

TEST(Lexer, ComparisonsAndConversions)
{
    TULex lex("\"h\xE9llo\"");
    EXPECT_TRUE(lex == QString::fromUtf8("h\xC3\xA9llo")); // Latin-1 reading
    EXPECT_TRUE(lex == "h\xE9llo");
    EXPECT_EQ(QString(lex), QString::fromUtf8("h\xC3\xA9llo"));
    TULex utf8("caf\xC3\xA9");
    EXPECT_EQ(utf8.fromUtf8(), QString::fromUtf8("caf\xC3\xA9"));
}

TEST_F(LexerReports, TypedReadsAndTheirReports)
{
    TULex lex("5 -3 2.5 y N n Y x");
    int i = 0;
    unsigned u = 0;
    double d = 0;
    bool b = false;
    EXPECT_TRUE(lex.get_int(i) && i == 5);
    EXPECT_TRUE(lex.get_uint(u) && u == static_cast<unsigned>(-3));
    EXPECT_TRUE(lex.get_double(d) && d == 2.5);
    EXPECT_TRUE(lex.get_bool(b) && b);
    EXPECT_TRUE(lex.parseBool(b) && !b);
    EXPECT_FALSE(lex.parseBool(b)); // lower-case n is refused here
    EXPECT_TRUE(lex.isError());
    EXPECT_TRUE(lex.get_bool(b) && !b); // ... but accepted by get_bool
    EXPECT_TRUE(lex.get_bool(b) && b);
    EXPECT_FALSE(lex.get_bool(b)); // "x": no report
    EXPECT_FALSE(lex.get_int(i) || i != 0);

    // parseDouble() steps over the name first; a refused negative becomes 0.
    TULex sizes("width -2 height 0 depth -1");
    d = 1;
    EXPECT_TRUE(sizes.parseDouble(d, false) && d == 0.0);
    EXPECT_TRUE(sizes.parseDouble(d, false)); // zero is accepted
    EXPECT_TRUE(sizes.parseDouble(d, true) && d == -1.0);
    EXPECT_EQ(channel->texts,
              QStringList({"Syntax error at line 1:\n Expecting Y or N while reading n  (N)",
                           "Syntax error at line 1:\n Expecting number. (x)",
                           "Syntax error at line 1:\n Expected float value greater then 0. (-2)"}));
}

TEST_F(LexerReports, ErrorsNameTheLineAndToken)
{
    TULex lex("12\nabc\n");
    int i = 0;
    ASSERT_TRUE(lex.get_int(i));
    // After a successful number read the report names the number just consumed,
    // with the line at which the following read started.
    lex.syntaxErr(MSG_Text("ctx", "Bad value.", MSG_Text::WithContext));
    EXPECT_FALSE(lex.get_int(i));

    TULex open("a \"never closed");
    open.get();
    EXPECT_TRUE(open.isError());
    EXPECT_EQ(open.asString(), "never closed");
    open.get();
    EXPECT_TRUE(open.eof());
    EXPECT_EQ(channel->texts, QStringList({"Syntax error at line 2:\n Bad value. (12)",
                                           "Syntax error at line 3:\n Expecting number. (abc)",
                                           "Syntax error at line 1:\n missing \" (never closed)"}));
}

TEST_F(LexerReports, YesToAllStopsReportsOnceTheChannelSaysSo)
{
    TULex lex("a b c");
    lex.enableYesToAll();
    lex.syntaxErr(MSG_Text("ctx", "one", MSG_Text::WithContext)); // the flag is kept
    channel->clearFlag = true;
    lex.syntaxErr(MSG_Text("ctx", "two", MSG_Text::WithContext));
    lex.syntaxErr(MSG_Text("ctx", "three", MSG_Text::WithContext));
    EXPECT_EQ(channel->texts.size(), 2);
}

TEST(Lexer, OpenFileReadsWholeFiles)
{
    QTemporaryDir dir;
    QString const path = dir.filePath(QString::fromUtf8("sc\xC3\xA8ne.txt"));
    QByteArray const big(3 * 1048576 + 17, 'x');
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("first\nsecond " + big) > 0 &&
                file.flush());

    TULex lex;
    EXPECT_FALSE(lex.openFile(dir.filePath(QStringLiteral("missing"))));
    ASSERT_TRUE(lex.openFile(path));
    EXPECT_EQ(lex.asString(), "first");
    lex.get();
    EXPECT_EQ(lex.asString(), "second");
    lex.get();
    EXPECT_EQ(lex.asString().size(), size_t(big.size()));
    EXPECT_EQ(lex.getLineNo(), 2u);
}

// Whatever the text, what a writer writes reads back as one token equal to it.
TEST(Lexer, WritersRoundTripAnyText)
{
    std::mt19937 rng(12345);
    std::u32string const pool = U"ab Z09_-.\"\\\r\n\t#,=()'\u00e9\u20ac\U0001F600";
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (int length = 1 + int(rng() % 11); length > 0; --length)
            text += QString::fromUcs4(&pool[rng() % pool.size()], 1);

        std::ostringstream utf8, latin1;
        TULex::writeString(utf8, text);
        utf8 << ' ';
        TULex::writeNameUtf8(utf8, text);
        utf8 << '\n';
        TULex::writeName(latin1, text);
        std::string const written = utf8.str(), latin = latin1.str();
        TULex lex(written.c_str()), lexLatin(latin.c_str());
        std::string const bytes = text.toUtf8().toStdString() + "|";
        EXPECT_EQ(tokens(lex), bytes + bytes) << written;
        EXPECT_EQ(tokens(lexLatin), text.toLatin1().toStdString() + "|") << latin;
    }
    std::ostringstream bare;
    TULex::writeName(bare, QStringLiteral("plain_name-1.0"));
    EXPECT_EQ(bare.str(), "plain_name-1.0");
}
