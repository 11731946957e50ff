// Tokenizing, numbers, typed reads, syntax errors and the writers of TULex.
#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/app/TULex.h>
#include <BrindleBaseCore/app/TUMessage.h>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> tokens(TULex& lex, bool raw = false)
{
    std::vector<std::string> out;
    while (!lex.eof()) {
        out.push_back(lex.asString());
        lex.get(raw);
    }
    return out;
}

std::vector<std::string> tokens(char const* text)
{
    TULex lex(text);
    return tokens(lex);
}

// A channel that records what it is given instead of writing it.
class RecordingChannel : public TUMessage
{
public:
    RecordingChannel()
        : TUMessage(QStringLiteral("test"), false, true)
    {}
    QStringList texts;
    QStringList translations;
    bool clearFlag = false;
    int flagged = 0;

protected:
    void warning(QString const& text, QString const& translated, bool* flag) override
    {
        if (flag) {
            ++flagged;
            if (clearFlag)
                *flag = false;
        }
        TUMessage::warning(text, translated, flag);
    }
    void writeLog(char, QString const& text, QString const& translated, bool) override
    {
        texts << text;
        translations << translated;
    }
};

class LexerReports : public ::testing::Test
{
protected:
    void SetUp() override
    {
        channel = new RecordingChannel;
        TUMessage::setInstance(channel);
    }
    void TearDown() override { TUMessage::releaseInstance(); }
    RecordingChannel* channel = nullptr;
};

} // namespace

TEST(Lexer, DefaultDialectSplitsNamesPunctuationAndStrings)
{
    EXPECT_EQ(tokens("size=12.5, name"),
              (std::vector<std::string>{"size", "=", "12.5", ",", "name"}));
    EXPECT_EQ(tokens("a\\b/c.d~e+f-g_h"), (std::vector<std::string>{"a\\b/c.d~e+f-g_h"}));
    EXPECT_EQ(tokens("x\r\ny\t z"), (std::vector<std::string>{"x", "y", "z"}));
    EXPECT_EQ(tokens("caf\xC3\xA9!"), (std::vector<std::string>{"caf\xC3\xA9", "!"}));
    EXPECT_EQ(tokens("\"a\\\"b\" \"c\\\\d\" \"e\rf\""),
              (std::vector<std::string>{"a\"b", "c\\d", "ef"}));
    // '#' is an ordinary character in the default dialect.
    EXPECT_EQ(tokens("#x"), (std::vector<std::string>{"#", "x"}));
    EXPECT_TRUE(tokens("").empty());
    EXPECT_TRUE(tokens(" \t\r\n\n").empty());
    TULex nullText(static_cast<char const*>(nullptr));
    EXPECT_TRUE(nullText.eof());
}

TEST(Lexer, RawTokensRunToTheNextBlank)
{
    TULex lex("size=12.5, name \"q\"");
    lex.get(true); // the first token was read without raw: "size"
    EXPECT_EQ(lex.asString(), "=12.5,");
    lex.get(true);
    EXPECT_EQ(lex.asString(), "name");
    lex.get(true);
    EXPECT_EQ(lex.asString(), "q");
}

TEST(Lexer, CommaDrivenDialect)
{
    TULex lex("x");
    lex.setCommaDriven(false); // any call switches it on, the argument is ignored
    std::string text = "1,2\n# a comment, with commas\n\"a b\",-(x),#\n";
    TULex csv(text.c_str());
    csv.setCommaDriven(true);
    std::vector<std::string> got{csv.asString()};
    for (csv.get(); !csv.eof(); csv.get())
        got.push_back(csv.asString());
    // The first token "1" was read before the switch, in the default dialect.
    EXPECT_EQ(got, (std::vector<std::string>{"1", ",", "2", "a", "b", ",", "-", "(x", ")", ","}));

    TULex raw("ab,cd ef");
    raw.setCommaDriven(true);
    raw.get(true);
    EXPECT_EQ(raw.asString(), ",cd");
}

TEST(Lexer, LineCounting)
{
    TULex lex("a\nb\n\"x\ny\" c\n\nd");
    EXPECT_EQ(lex.getLineNo(), 2u); // the line feed after "a" is consumed with it
    lex.get();                      // b
    EXPECT_EQ(lex.getLineNo(), 3u);
    lex.get(); // the quoted string spans two lines but is not counted
    EXPECT_EQ(lex.asString(), "x\ny");
    EXPECT_EQ(lex.getLineNo(), 3u);
    lex.get();
    EXPECT_EQ(lex.asString(), "c");
    lex.get();
    EXPECT_EQ(lex.asString(), "d");
    EXPECT_EQ(lex.getLineNo(), 5u);

    TULex skip("a b c\nd e\n");
    skip.get(); // b
    skip.skipToNextLine();
    EXPECT_EQ(skip.asString(), "d");
    skip.skipToNextLine();
    EXPECT_TRUE(skip.eof());
}

TEST(Lexer, NumbersAreConvertedOncePerToken)
{
    TULex lex("12 12.0 12a -7 +3 1e3 99999999999 inf . 0x10");
    EXPECT_TRUE(lex.isInt());
    EXPECT_TRUE(lex.isDouble());
    EXPECT_EQ(int(lex), 12);
    EXPECT_EQ(double(lex), 12.0);
    lex.get();
    EXPECT_FALSE(lex.isInt());
    EXPECT_TRUE(lex.isDouble());
    lex.get();
    EXPECT_FALSE(lex.isInt());
    EXPECT_FALSE(lex.isDouble());
    lex.get();
    EXPECT_EQ(int(lex), -7);
    lex.get();
    EXPECT_EQ(int(lex), 3);
    lex.get();
    EXPECT_FALSE(lex.isInt());
    EXPECT_EQ(double(lex), 1000.0);
    lex.get();
    EXPECT_TRUE(lex.isInt());
    EXPECT_EQ(int(lex), 2147483647);
    lex.get();
    EXPECT_TRUE(lex.isDouble());
    lex.get();
    EXPECT_FALSE(lex.isDouble());
    lex.get();
    EXPECT_FALSE(lex.isInt()); // base 10 only
}

TEST(Lexer, NumbersIgnoreTheProcessLocale)
{
    char const* old = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    TULex lex("2.5");
    EXPECT_TRUE(lex.isDouble());
    EXPECT_EQ(double(lex), 2.5);
    std::setlocale(LC_NUMERIC, old ? old : "C");
}

TEST(Lexer, ComparisonsAndConversions)
{
    TULex lex("\"h\xE9llo\"");
    EXPECT_TRUE(lex == std::string("h\xE9llo"));
    EXPECT_TRUE(lex == QString::fromUtf8("h\xC3\xA9llo")); // Latin-1 reading
    EXPECT_TRUE(lex != "h");
    EXPECT_EQ(QString(lex), QString::fromUtf8("h\xC3\xA9llo"));
    TULex utf8("caf\xC3\xA9");
    EXPECT_EQ(utf8.fromUtf8(), QString::fromUtf8("caf\xC3\xA9"));
}

TEST_F(LexerReports, TypedReads)
{
    TULex lex("5 -3 2.5 y N n Y x");
    int i = 0;
    unsigned u = 0;
    double d = 0;
    bool b = false;
    EXPECT_TRUE(lex.get_int(i));
    EXPECT_EQ(i, 5);
    EXPECT_TRUE(lex.get_uint(u));
    EXPECT_EQ(u, static_cast<unsigned>(-3));
    EXPECT_TRUE(lex.get_double(d));
    EXPECT_EQ(d, 2.5);
    EXPECT_TRUE(lex.get_bool(b));
    EXPECT_TRUE(b);
    EXPECT_TRUE(lex.parseBool(b));
    EXPECT_FALSE(b);
    EXPECT_FALSE(lex.parseBool(b)); // lower-case n is refused here
    EXPECT_TRUE(lex.isError());
    ASSERT_EQ(channel->texts.size(), 1);
    EXPECT_EQ(channel->texts[0],
              QStringLiteral("Syntax error at line 1:\n Expecting Y or N while reading n  (N)"));
    EXPECT_TRUE(lex.get_bool(b)); // ... but accepted by get_bool
    EXPECT_FALSE(b);
    EXPECT_TRUE(lex.get_bool(b));
    EXPECT_TRUE(b);
    EXPECT_FALSE(lex.get_bool(b)); // "x": no error
    EXPECT_EQ(channel->texts.size(), 1);
    EXPECT_FALSE(lex.get_int(i));
    EXPECT_EQ(i, 0);
    EXPECT_EQ(channel->texts.last(),
              QStringLiteral("Syntax error at line 1:\n Expecting number. (x)"));
}

TEST_F(LexerReports, ErrorsNameTheLineAndToken)
{
    TULex lex("12\nabc\n");
    int i = 0;
    ASSERT_TRUE(lex.get_int(i));
    lex.syntaxErr(MSG_Text("ctx", "Bad value.", MSG_Text::WithContext));
    // After a successful number read the report names the number just consumed,
    // with the line at which the following read started.
    EXPECT_EQ(channel->texts.last(), QStringLiteral("Syntax error at line 2:\n Bad value. (12)"));
    EXPECT_FALSE(lex.get_int(i));
    EXPECT_EQ(channel->texts.last(),
              QStringLiteral("Syntax error at line 3:\n Expecting number. (abc)"));

    TULex open("a \"never closed");
    open.get();
    EXPECT_TRUE(open.isError());
    EXPECT_EQ(open.asString(), "never closed");
    EXPECT_EQ(channel->texts.last(),
              QStringLiteral("Syntax error at line 1:\n missing \" (never closed)"));
    open.get();
    EXPECT_TRUE(open.eof());
}

TEST_F(LexerReports, ParseDoubleRefusesNegativesWhenAsked)
{
    TULex lex("width -2 height 0 depth -1");
    double d = 1;
    EXPECT_TRUE(lex.parseDouble(d, false));
    EXPECT_EQ(d, 0.0);
    EXPECT_EQ(
        channel->texts.last(),
        QStringLiteral("Syntax error at line 1:\n Expected float value greater then 0. (-2)"));
    int reports = int(channel->texts.size());
    EXPECT_TRUE(lex.parseDouble(d, false)); // zero is accepted
    EXPECT_EQ(channel->texts.size(), reports);
    EXPECT_TRUE(lex.parseDouble(d, true));
    EXPECT_EQ(d, -1.0);
}

TEST_F(LexerReports, YesToAllStopsReportsOnceTheChannelSaysSo)
{
    TULex lex("a b c");
    lex.enableYesToAll();
    lex.syntaxErr(MSG_Text("ctx", "one", MSG_Text::WithContext));
    EXPECT_EQ(channel->flagged, 1);
    channel->clearFlag = true;
    lex.syntaxErr(MSG_Text("ctx", "two", MSG_Text::WithContext));
    lex.syntaxErr(MSG_Text("ctx", "three", MSG_Text::WithContext));
    EXPECT_EQ(channel->flagged, 2);
    EXPECT_EQ(channel->texts.size(), 2);
}

TEST(Lexer, OpenFileReadsWholeFiles)
{
    QTemporaryDir dir;
    QString const path = dir.filePath(QString::fromUtf8("sc\xC3\xA8ne.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    std::string big(3 * 1048576 + 17, 'x');
    file.write("first\nsecond ");
    file.write(big.data(), qint64(big.size()));
    file.close();

    TULex lex;
    EXPECT_FALSE(lex.openFile(dir.filePath(QStringLiteral("missing"))));
    ASSERT_TRUE(lex.openFile(path));
    EXPECT_EQ(lex.asString(), "first");
    lex.get();
    EXPECT_EQ(lex.asString(), "second");
    lex.get();
    EXPECT_EQ(lex.asString().size(), big.size());
    EXPECT_EQ(lex.getLineNo(), 2u);
}

TEST(Lexer, VersionStampAndCompatibilitySetting)
{
    TULex lex;
    EXPECT_EQ(lex.versionNumber(), 2501u);
    EXPECT_EQ(lex.buildNumber(), 24106u);
    lex.setVersionNumber(7);
    EXPECT_EQ(lex.versionNumber(), 7u);
    auto const value = static_cast<TULex::CompatWithVersion>(4);
    EXPECT_EQ(TULex::compatWithVersion(true, value), value);
    EXPECT_EQ(TULex::compatWithVersion(false, TULex::CompatCurrent), value);
    TULex::compatWithVersion(true, TULex::CompatCurrent);
}

// Whatever the text, what a writer writes reads back as one token equal to it.
TEST(Lexer, WritersRoundTripAnyText)
{
    std::mt19937 rng(12345);
    std::u32string const pool = U"ab Z09_-.\"\\\r\n\t#,=()'\u00e9\u20ac\U0001F600";
    for (int round = 0; round < 3000; ++round) {
        QString text;
        int const length = int(rng() % 12);
        for (int i = 0; i < length; ++i)
            text += QString::fromUcs4(&pool[rng() % pool.size()], 1);
        if (text.isEmpty())
            continue;

        std::ostringstream utf8;
        TULex::writeString(utf8, text);
        utf8 << ' ';
        TULex::writeNameUtf8(utf8, text);
        utf8 << '\n';
        std::string const written = utf8.str();
        TULex lex(written.c_str());
        EXPECT_EQ(lex.fromUtf8(), text) << written;
        lex.get();
        EXPECT_EQ(lex.fromUtf8(), text) << written;
        lex.get();
        EXPECT_TRUE(lex.eof()) << written;

        std::ostringstream latin1;
        TULex::writeName(latin1, text);
        std::string const latin = latin1.str();
        TULex lexLatin(latin.c_str());
        EXPECT_EQ(QString(lexLatin), QString::fromLatin1(text.toLatin1())) << latin;
        lexLatin.get();
        EXPECT_TRUE(lexLatin.eof());
    }
    std::ostringstream bare;
    TULex::writeName(bare, QStringLiteral("plain_name-1.0"));
    EXPECT_EQ(bare.str(), "plain_name-1.0");
}
