// UT_StringServices::EvaluateCondition: operator precedence parsing with
// explicit stacks, so that no input can exhaust the call stack.
#include <BrindleBaseCore/text/UT_StringServices.h>

#include <string_view>
#include <vector>

namespace UT_StringServices {

namespace {

enum class Token
{
    Name,
    Not,
    And,
    Or,
    Open,
    Close,
    End,
    Bad
};

class Lexer
{
public:
    explicit Lexer(std::string const& text)
        : m_text(text)
    {}

    // The next token; for a name, name() holds it.
    Token next()
    {
        while (m_pos < m_text.size() && isSpace(m_text[m_pos]))
            ++m_pos;
        if (m_pos == m_text.size())
            return Token::End;
        char c = m_text[m_pos];
        if (isNameChar(c)) {
            std::size_t start = m_pos;
            while (m_pos < m_text.size() && isNameChar(m_text[m_pos]))
                ++m_pos;
            m_name = std::string_view(m_text).substr(start, m_pos - start);
            if (m_name == "not")
                return Token::Not;
            if (m_name == "and")
                return Token::And;
            if (m_name == "or")
                return Token::Or;
            return Token::Name;
        }
        ++m_pos;
        switch (c) {
        case '!':
            return Token::Not;
        case '(':
            return Token::Open;
        case ')':
            return Token::Close;
        case '&':
        case '|':
            if (m_pos < m_text.size() && m_text[m_pos] == c) {
                ++m_pos;
                return c == '&' ? Token::And : Token::Or;
            }
            return Token::Bad;
        default:
            return Token::Bad;
        }
    }

    std::string_view name() const { return m_name; }

private:
    static bool isSpace(char c)
    {
        return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
    }
    static bool isNameChar(char c)
    {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    }

    std::string const& m_text;
    std::size_t m_pos = 0;
    std::string_view m_name;
};

int precedence(Token op)
{
    switch (op) {
    case Token::Not:
        return 3;
    case Token::And:
        return 2;
    case Token::Or:
        return 1;
    default:
        return 0; // an open parenthesis: never reduced by an operator
    }
}

// Applies the operator on top of ops to the values; false on a missing operand.
bool reduce(std::vector<Token>& ops, std::vector<bool>& values)
{
    Token op = ops.back();
    ops.pop_back();
    if (op == Token::Not) {
        if (values.empty())
            return false;
        values.back() = !values.back();
        return true;
    }
    if (values.size() < 2)
        return false;
    bool right = values.back();
    values.pop_back();
    values.back() = op == Token::And ? values.back() && right : values.back() || right;
    return true;
}

} // namespace

bool EvaluateCondition(std::string const& expression, std::set<std::string> const& defined)
{
    Lexer lexer(expression);
    std::vector<Token> ops;
    std::vector<bool> values;
    bool expectOperand = true;
    for (;;) {
        Token token = lexer.next();
        if (expectOperand) {
            switch (token) {
            case Token::Name:
                values.push_back(defined.find(std::string(lexer.name())) != defined.end());
                expectOperand = false;
                break;
            case Token::Not:
            case Token::Open:
                ops.push_back(token);
                break;
            default:
                return false;
            }
            continue;
        }
        switch (token) {
        case Token::And:
        case Token::Or:
            while (!ops.empty() && precedence(ops.back()) >= precedence(token)) {
                if (!reduce(ops, values))
                    return false;
            }
            ops.push_back(token);
            expectOperand = true;
            break;
        case Token::Close:
            while (!ops.empty() && ops.back() != Token::Open) {
                if (!reduce(ops, values))
                    return false;
            }
            if (ops.empty())
                return false;
            ops.pop_back();
            break;
        case Token::End:
            while (!ops.empty()) {
                if (ops.back() == Token::Open || !reduce(ops, values))
                    return false;
            }
            return values.size() == 1 && values.back();
        default:
            return false;
        }
    }
}

} // namespace UT_StringServices
