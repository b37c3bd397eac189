#include "tests/AppleScript/AppleScript.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "Text/UTF8.h"

namespace orvane::test {
namespace {

using Value = AppleScriptValue;

/// AppleScript's integers end here; beyond are reals, which are not known.
constexpr std::int64_t largestInteger = (1 << 29) - 1;
/// A loop that takes more is taken for one without an end.
constexpr int mostRounds = 100'000;

/// The language's error numbers.
constexpr int cannotCoerce = -1700;
constexpr int cannotGet = -1728;
constexpr int isNotDefined = -2753;

/// No name of a variable: the language's own words, and what the commands and classes of the script are
/// called.
const std::set<std::string, std::less<>> reservedWords{
    "about",  "above",       "after",  "against", "and",         "apart",     "around",   "as",
    "aside",  "at",          "back",   "before",  "beginning",   "behind",    "below",    "beneath",
    "beside", "between",     "but",    "by",      "considering", "contain",   "contains", "continue",
    "copy",   "count",       "div",    "does",    "eighth",      "else",      "end",      "equal",
    "equals", "error",       "every",  "exit",    "false",       "fifth",     "first",    "for",
    "fourth", "from",        "front",  "get",     "given",       "global",    "if",       "ignoring",
    "in",     "instead",     "into",   "is",      "it",          "item",      "its",      "last",
    "local",  "me",          "middle", "mod",     "my",          "ninth",     "not",      "of",
    "on",     "onto",        "or",     "out",     "over",        "prop",      "property", "put",
    "ref",    "reference",   "repeat", "result",  "return",      "returning", "script",   "second",
    "set",    "seventh",     "since",  "sixth",   "some",        "tell",      "tenth",    "text",
    "that",   "the",         "then",   "third",   "through",     "thru",      "timeout",  "times",
    "to",     "transaction", "true",   "try",     "until",       "where",     "while",    "whose",
    "with",   "without",
};

struct Token {
    enum class Kind { word, integer, text, symbol, endOfLine };
    Kind kind;
    /// A word in small letters, the digits, what a text means, the symbol.
    std::string text;
    int line;
};

[[noreturn]] void refuse(int line, const std::string& what) {
    throw UnknownAppleScript("line " + std::to_string(line) + ": not known: " + what);
}

constexpr auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
constexpr auto isLetter = [](char c) {
    const char small = lowercasedASCII(c);
    return (small >= 'a' && small <= 'z') || c == '_';
};

class Lexer {
  public:
    explicit Lexer(std::string_view source) : rest_(source) {}

    std::vector<Token> tokens() {
        while (!rest_.empty()) takeToken();
        add(Token::Kind::endOfLine, "");
        return std::move(tokens_);
    }

  private:
    void takeToken() {
        const char c = rest_.front();
        if (c == ' ' || c == '\t') {
            rest_.remove_prefix(1);
        } else if (c == '\n' || c == '\r') {
            rest_.remove_prefix(rest_.starts_with("\r\n") ? 2 : 1);
            add(Token::Kind::endOfLine, "");
            ++line_;
        } else if (c == '"') {
            takeText();
        } else if (isDigit(c)) {
            add(Token::Kind::integer, take(isDigit));
            if (!rest_.empty() && (isLetter(rest_.front()) || rest_.front() == '.'))
                refuse(line_, "a number");
        } else if (isLetter(c)) {
            auto word = take([](char each) { return isLetter(each) || isDigit(each); });
            std::transform(word.begin(), word.end(), word.begin(), lowercasedASCII);
            add(Token::Kind::word, word);
        } else if (c == '(' || c == ')' || c == '&' || c == '+') {
            rest_.remove_prefix(1);
            add(Token::Kind::symbol, std::string(1, c));
        } else {
            refuse(line_, std::string("the character ") + c);
        }
    }

    void takeText() {
        std::string text;
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            char c = rest_[i];
            if (c == '"') {
                rest_.remove_prefix(i + 1);
                add(Token::Kind::text, text);
                return;
            }
            if (c == '\n' || c == '\r') refuse(line_, "a text over several lines");
            if (c == '\\') {
                constexpr std::string_view escapes = "\"\\nrt";
                constexpr std::string_view meanings = "\"\\\n\r\t";
                if (++i == rest_.size()) break;
                const auto place = escapes.find(rest_[i]);
                if (place == std::string_view::npos) refuse(line_, std::string("the escape \\") + rest_[i]);
                c = meanings[place];
            }
            text += c;
        }
        refuse(line_, "a text without an end");
    }

    std::string take(FunctionRef<bool(char)> belongs) {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), belongs);
        const std::string taken(rest_.begin(), end);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    void add(Token::Kind kind, const std::string& text) { tokens_.push_back({kind, text, line_}); }

    std::string_view rest_;
    int line_ = 1;
    std::vector<Token> tokens_;
};

struct Expression {
    enum class Kind {
        constant,
        variable,
        is,
        isAtMost,
        joined,
        sum,
        item,
        count,
        quotedForm,
        systemAttribute
    };
    Kind kind;
    int line;
    Value constant{};
    std::string name{};
    std::vector<Expression> operands{};
};

struct Statement {
    enum class Kind { set, doShellScript, repeatWhile, ifElse };
    Kind kind;
    int line;
    Expression expression;
    std::string name{};
    std::vector<Statement> body{};
    std::vector<Statement> otherwise{};
};

struct Handler {
    std::string parameter;
    std::vector<Statement> body;
};

class Parser {
  public:
    explicit Parser(std::string_view source) : tokens_(Lexer(source).tokens()) {}

    Handler script() {
        skipEmptyLines();
        Handler handler;
        expect({"on", "run"});
        handler.parameter = variableName();
        expectEndOfLine();
        handler.body = statements();
        expect({"end", "run"});
        expectEndOfLine();
        skipEmptyLines();
        if (at_ < tokens_.size()) refuseToken();
        return handler;
    }

  private:
    std::vector<Statement> statements() {
        std::vector<Statement> found;
        for (skipEmptyLines(); !next("end") && !next("else"); skipEmptyLines()) found.push_back(statement());
        return found;
    }

    Statement statement() {
        const int line = token().line;
        if (accept({"set"})) {
            auto name = variableName();
            expect({"to"});
            return ended({Statement::Kind::set, line, expression(), std::move(name)});
        }
        if (accept({"do", "shell", "script"})) {
            Statement statement{Statement::Kind::doShellScript, line, expression()};
            expect({"with", "administrator", "privileges"});
            return ended(std::move(statement));
        }
        if (accept({"repeat", "while"})) {
            auto statement = ended({Statement::Kind::repeatWhile, line, expression()});
            statement.body = statements();
            expect({"end", "repeat"});
            return ended(std::move(statement));
        }
        if (accept({"if"})) {
            Statement statement{Statement::Kind::ifElse, line, expression()};
            expect({"then"});
            statement = ended(std::move(statement));
            statement.body = statements();
            if (accept({"else"})) {
                expectEndOfLine();
                statement.otherwise = statements();
            }
            expect({"end", "if"});
            return ended(std::move(statement));
        }
        refuseToken();
    }

    Expression expression() {
        auto left = joined();
        const int line = token().line;
        if (!accept({"is"})) return left;
        const bool isOrder = accept({"less", "than", "or", "equal", "to"});
        return operation(isOrder ? Expression::Kind::isAtMost : Expression::Kind::is, line, std::move(left),
                         joined());
    }

    Expression joined() {
        auto left = sum();
        while (acceptSymbol("&")) left = operation(Expression::Kind::joined, line(), std::move(left), sum());
        return left;
    }

    Expression sum() {
        auto left = operand();
        while (acceptSymbol("+")) left = operation(Expression::Kind::sum, line(), std::move(left), operand());
        return left;
    }

    Expression operand() {
        const int line = token().line;
        if (accept({"item"})) {
            auto place = simpleOperand();
            expect({"of"});
            return operation(Expression::Kind::item, line, std::move(place), simpleOperand());
        }
        if (accept({"quoted", "form", "of"}))
            return operation(Expression::Kind::quotedForm, line, simpleOperand());
        return simpleOperand();
    }

    Expression simpleOperand() {
        const auto current = token();
        if (acceptSymbol("(")) {
            auto inner = inParentheses();
            if (!acceptSymbol(")")) refuseToken();
            return inner;
        }
        if (current.kind == Token::Kind::text) {
            ++at_;
            if (!isValidUTF8(current.text)) refuse(current.line, "text that is no UTF-8");
            return {Expression::Kind::constant, current.line, {current.text}};
        }
        if (current.kind == Token::Kind::integer) {
            ++at_;
            return {Expression::Kind::constant, current.line, {integer(current)}};
        }
        return {Expression::Kind::variable, current.line, {}, variableName()};
    }

    /// A command takes what follows it as far as it can: only in parentheses is it plain where it ends.
    Expression inParentheses() {
        const int line = token().line;
        if (accept({"count", "of"})) return operation(Expression::Kind::count, line, simpleOperand());
        if (accept({"system", "attribute"})) {
            return operation(Expression::Kind::systemAttribute, line, simpleOperand());
        }
        return expression();
    }

    template <typename... Operands>
    static Expression operation(Expression::Kind kind, int line, Operands... operands) {
        Expression made{kind, line};
        (made.operands.push_back(std::move(operands)), ...);
        return made;
    }

    static std::int64_t integer(const Token& token) {
        std::int64_t number = 0;
        const auto* const end = token.text.data() + token.text.size();
        const auto [last, error] = std::from_chars(token.text.data(), end, number);
        if (error != std::errc() || last != end || number > largestInteger) refuse(token.line, token.text);
        return number;
    }

    std::string variableName() {
        const auto& current = token();
        if (current.kind != Token::Kind::word || reservedWords.contains(current.text)) refuseToken();
        ++at_;
        return current.text;
    }

    const Token& token() const {
        if (at_ >= tokens_.size()) refuse(tokens_.back().line, "a script without an end");
        return tokens_[at_];
    }
    int line() const { return token().line; }
    bool next(std::string_view word) const {
        return token().kind == Token::Kind::word && token().text == word;
    }
    [[noreturn]] void refuseToken() const {
        refuse(line(), token().kind == Token::Kind::endOfLine ? "the end of the line" : token().text);
    }

    /// All of these words or none.
    bool accept(std::initializer_list<std::string_view> words) {
        auto place = at_;
        for (const auto word : words) {
            if (place >= tokens_.size() || tokens_[place].kind != Token::Kind::word ||
                tokens_[place].text != word) {
                return false;
            }
            ++place;
        }
        at_ = place;
        return true;
    }
    bool acceptSymbol(std::string_view symbol) {
        if (token().kind != Token::Kind::symbol || token().text != symbol) return false;
        ++at_;
        return true;
    }
    void expect(std::initializer_list<std::string_view> words) {
        if (!accept(words)) refuseToken();
    }
    void expectEndOfLine() {
        if (token().kind != Token::Kind::endOfLine) refuseToken();
        ++at_;
    }
    Statement ended(Statement statement) {
        expectEndOfLine();
        return statement;
    }
    void skipEmptyLines() {
        while (at_ < tokens_.size() && tokens_[at_].kind == Token::Kind::endOfLine) ++at_;
    }

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
};

/// What `do shell script` makes of what a command writes: the Mac's line endings, and none at the end.
std::string withAlteredLineEndings(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    std::replace(text.begin(), text.end(), '\n', '\r');
    return text;
}

std::string quotedForm(const std::string& text) {
    constexpr std::string_view quote = "'\\''";
    std::string quoted(1, '\'');
    for (std::size_t begin = 0;;) {
        const auto end = text.find('\'', begin);
        quoted.append(text, begin, end - begin);
        if (end == std::string::npos) return quoted + '\'';
        quoted += quote;
        begin = end + 1;
    }
}

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

class Run {
  public:
    explicit Run(const AppleScriptSystem& system) : system_(system) {}

    Value handler(const Handler& handler, const std::vector<std::string>& arguments) {
        Value::List list;
        for (const auto& argument : arguments) list.push_back({textOf(argument, 1)});
        variables_[handler.parameter] = {std::move(list)};
        statements(handler.body);
        if (!result_) refuse(1, "a script without a result");
        return *result_;
    }

  private:
    void statements(const std::vector<Statement>& all) {
        for (const auto& each : all) statement(each);
    }

    void statement(const Statement& statement) {
        switch (statement.kind) {
            case Statement::Kind::set:
                result_ = variables_[statement.name] = value(statement.expression);
                break;
            case Statement::Kind::doShellScript:
                result_ = {{shellScript(value(statement.expression), statement.line)}};
                break;
            case Statement::Kind::repeatWhile:
                for (int round = 0; boolean(statement.expression); ++round) {
                    if (round == mostRounds) refuse(statement.line, "a loop without an end");
                    statements(statement.body);
                }
                break;
            case Statement::Kind::ifElse:
                statements(boolean(statement.expression) ? statement.body : statement.otherwise);
                break;
        }
    }

    std::string shellScript(const Value& command, int line) const {
        const auto* const text = std::get_if<std::string>(&command.held);
        if (text == nullptr) throw AppleScriptError(cannotCoerce, "Can’t make it into type text.");
        if (text->find('\0') != std::string::npos) refuse(line, "a command with a zero byte");
        const auto end = system_.shell(*text);
        if (end.status == 0) return textOf(withAlteredLineEndings(end.output), line);
        const auto errors = textOf(withAlteredLineEndings(end.errors), line);
        throw AppleScriptError(end.status,
                               errors.empty() ? "The command exited with a non-zero status." : errors);
    }

    Value value(const Expression& expression) {
        const auto operand = [&](std::size_t i) { return value(expression.operands.at(i)); };
        switch (expression.kind) {
            case Expression::Kind::constant:
                return expression.constant;
            case Expression::Kind::variable:
                return variable(expression.name);
            case Expression::Kind::is:
                return {isSame(operand(0), operand(1), expression.line)};
            case Expression::Kind::isAtMost:
                return {isAtMost(operand(0), operand(1), expression.line)};
            case Expression::Kind::joined:
                return joined(operand(0), operand(1), expression.line);
            case Expression::Kind::sum:
                return sum(operand(0), operand(1), expression.line);
            case Expression::Kind::item:
                return item(operand(0), operand(1), expression.line);
            case Expression::Kind::count:
                return count(operand(0), expression.line);
            case Expression::Kind::quotedForm:
                return quoted(operand(0));
            case Expression::Kind::systemAttribute:
                return attribute(operand(0), expression.line);
        }
        refuse(expression.line, "an expression");
    }

    Value variable(const std::string& name) const {
        const auto found = variables_.find(name);
        if (found == variables_.end()) {
            throw AppleScriptError(isNotDefined, "The variable " + name + " is not defined.");
        }
        return found->second;
    }

    bool boolean(const Expression& expression) {
        const auto condition = value(expression);
        if (const auto* const truth = std::get_if<bool>(&condition.held)) return *truth;
        if (std::holds_alternative<std::string>(condition.held))
            refuse(expression.line, "text as a condition");
        throw AppleScriptError(cannotCoerce, "Can’t make it into type boolean.");
    }

    /// Values of two classes are never the same; texts are, whatever the case.
    static bool isSame(const Value& left, const Value& right, int line) {
        if (left.held.index() != right.held.index()) return false;
        const auto* const text = std::get_if<std::string>(&left.held);
        if (text == nullptr) {
            if (std::holds_alternative<Value::List>(left.held)) refuse(line, "comparing lists");
            return left == right;
        }
        const auto& other = std::get<std::string>(right.held);
        if (!isASCII(*text) || !isASCII(other)) refuse(line, "comparing letters beyond ASCII");
        return std::equal(text->begin(), text->end(), other.begin(), other.end(),
                          [](char a, char b) { return lowercasedASCII(a) == lowercasedASCII(b); });
    }

    static bool isAtMost(const Value& left, const Value& right, int line) {
        const auto* const number = std::get_if<std::int64_t>(&left.held);
        if (number == nullptr) refuse(line, "the order of what is no integer");
        return *number <= coercedToInteger(right, line);
    }

    static Value joined(const Value& left, const Value& right, int line) {
        const auto* const text = std::get_if<std::string>(&left.held);
        if (text == nullptr) refuse(line, "joining something to what is no text");
        if (const auto* const other = std::get_if<std::string>(&right.held)) return {*text + *other};
        if (const auto* const number = std::get_if<std::int64_t>(&right.held)) {
            return {*text + std::to_string(*number)};
        }
        refuse(line, "joining that to a text");
    }

    static Value sum(const Value& left, const Value& right, int line) {
        const auto sum = coercedToInteger(left, line) + coercedToInteger(right, line);
        if (sum > largestInteger) refuse(line, "an integer of that size");
        return {sum};
    }

    static std::int64_t coercedToInteger(const Value& value, int line) {
        if (const auto* const number = std::get_if<std::int64_t>(&value.held)) return *number;
        const auto* const text = std::get_if<std::string>(&value.held);
        if (text == nullptr) refuse(line, "counting with what is neither integer nor text");
        std::int64_t number = 0;
        const auto* const end = text->data() + text->size();
        const auto [last, error] = std::from_chars(text->data(), end, number);
        // Spaces, signs and fractions have rules of their own.
        const bool isPlain = error == std::errc() && last == end && number >= 0 && number <= largestInteger;
        if (isPlain) return number;
        if (text->find_first_of("0123456789") != std::string::npos) refuse(line, "the number in a text");
        throw AppleScriptError(cannotCoerce, "Can’t make it into type number.");
    }

    static Value item(const Value& place, const Value& container, int line) {
        const auto* const number = std::get_if<std::int64_t>(&place.held);
        const auto* const list = std::get_if<Value::List>(&container.held);
        if (number == nullptr || list == nullptr) refuse(line, "an item of that");
        if (*number < 1 || static_cast<std::size_t>(*number) > list->size()) {
            throw AppleScriptError(cannotGet, "Can’t get item " + std::to_string(*number) + ".");
        }
        return (*list)[static_cast<std::size_t>(*number) - 1];
    }

    static Value count(const Value& container, int line) {
        const auto* const list = std::get_if<Value::List>(&container.held);
        if (list == nullptr) refuse(line, "the count of that");
        return {static_cast<std::int64_t>(list->size())};
    }

    static Value quoted(const Value& value) {
        const auto* const text = std::get_if<std::string>(&value.held);
        if (text == nullptr) throw AppleScriptError(cannotGet, "Can’t get quoted form.");
        return {quotedForm(*text)};
    }

    /// In what encoding the system takes a variable's letters beyond ASCII is not written anywhere.
    Value attribute(const Value& name, int line) const {
        const auto* const text = std::get_if<std::string>(&name.held);
        if (text == nullptr) refuse(line, "an attribute that is no text");
        const auto variable = system_.variable(*text);
        if (!isASCII(variable)) refuse(line, "an attribute with letters beyond ASCII");
        return {variable};
    }

    static std::string textOf(const std::string& bytes, int line) {
        if (!isValidUTF8(bytes)) refuse(line, "text that is no UTF-8");
        return bytes;
    }

    const AppleScriptSystem& system_;
    std::map<std::string, Value> variables_;
    std::optional<Value> result_;
};

}  // namespace

AppleScriptValue runAppleScript(std::string_view source, const std::vector<std::string>& arguments,
                                const AppleScriptSystem& system) {
    return Run(system).handler(Parser(source).script(), arguments);
}

AppleScriptValue runScriptRunner(const std::vector<std::string>& arguments, const AppleScriptSystem& system) {
    if (arguments.size() < 3 || arguments[0] != "-e" || arguments[2] != "--") {
        throw UnknownAppleScript("these arguments of the script runner");
    }
    return runAppleScript(arguments[1], {arguments.begin() + 3, arguments.end()}, system);
}

}  // namespace orvane::test
