// Lists the small faults that could have been made in a C++ file, or prints the file with one of them.
//
//     mutants FILE           a line each: number, line in the file, change and source line, separated by tabs
//     mutants FILE NUMBER    the file with that fault
//
// An operator, constant or condition changed, a statement or branch dropped, two statements or arguments swapped, a
// lock that is not held or not as long, one name in the place of another of its type.
//
// It knows the language by its tokens alone and relies on the layout of clang-format: what stands between two spaces is
// a binary operator, and a statement begins its line. A fault that does not compile is for its user to find out.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct Token {
    enum class Kind { Word, Number, Text, Symbol };

    Kind kind;
    std::size_t begin;
    std::size_t end;
};

struct Mutant {
    std::size_t begin;
    std::size_t end;
    std::string replacement;
    std::string change;
};

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

// Comments, directives and white space are no tokens.
class Lexer {
  public:
    explicit Lexer(std::string_view source) : text(source) {}

    std::vector<Token> tokens() {
        std::vector<Token> all;
        while (skipSeparators(), place < text.size()) {
            const std::size_t begin = place;
            const Token::Kind kind = skipToken();
            all.push_back({kind, begin, place});
        }
        return all;
    }

  private:
    bool isAt(std::string_view mark) const { return text.substr(place, mark.size()) == mark; }

    void skipPast(std::string_view mark) { place = std::min(text.find(mark, place), text.size() - 1) + mark.size(); }

    void skipSeparators() {
        for (;;) {
            place = std::min(text.find_first_not_of(" \n", place), text.size());
            if (isAt("//") || isAt("#")) {
                skipPast("\n");
            } else if (isAt("/*")) {
                skipPast("*/");
            } else {
                return;
            }
        }
    }

    Token::Kind skipToken() {
        const char first = text[place];
        if (first == '"' || first == '\'') {
            skipQuoted(first);
            return Token::Kind::Text;
        }
        if (isWordCharacter(first)) {
            const bool isNumber = std::isdigit(static_cast<unsigned char>(first)) != 0;
            while (place < text.size() && (isWordCharacter(text[place]) || (isNumber && isWithinNumber()))) {
                ++place;
            }
            return isNumber ? Token::Kind::Number : Token::Kind::Word;
        }
        static constexpr std::array<std::string_view, 22> kLong{
            "<=>", "<<=", ">>=", "->", "::", "==", "!=", "<=", ">=", "&&", "||",
            "++",  "--",  "+=",  "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<"};
        const auto* const found = std::find_if(kLong.begin(), kLong.end(), [&](auto mark) { return isAt(mark); });
        place += found == kLong.end() ? 1 : found->size();
        return Token::Kind::Symbol;
    }

    // Returns true for a decimal point, a digit separator, or the sign of an exponent of a hexadecimal number.
    bool isWithinNumber() const {
        return text[place] == '.' || text[place] == '\'' || (text[place - 1] == 'p' && text[place] == '-');
    }

    void skipQuoted(char quote) {
        for (++place; text[place] != quote; ++place) {
            place += text[place] == '\\' ? 1 : 0;
        }
        ++place;
    }

    const std::string_view text;
    std::size_t place = 0;
};

class Finder {
  public:
    explicit Finder(std::string_view source) : text(source), tokens(Lexer(source).tokens()) { findNames(); }

    std::vector<Mutant> mutants() {
        for (std::size_t index = 0; index < tokens.size(); ++index) {
            if (const std::size_t past = pastUntouched(index); past > index) {
                index = past - 1;
                continue;
            }
            changeOperator(index);
            changeConstant(index);
            changeCondition(index);
            changeStatement(index);
            changeOrder(index);
            changeLock(index);
            dropBranch(index);
            swapArguments(index);
            changeSource(index);
        }
        return std::move(found);
    }

  private:
    std::string_view at(std::size_t index) const {
        return index < tokens.size() ? text.substr(tokens[index].begin, tokens[index].end - tokens[index].begin) : "";
    }

    bool isWord(std::size_t index) const { return index < tokens.size() && tokens[index].kind == Token::Kind::Word; }

    // Returns the index past the end of what carries no behaviour of its own: assertions, and what only the compiler
    // asks.
    std::size_t pastUntouched(std::size_t index) const {
        const std::string_view word = at(index);
        if (word == "assert" || word == "static_assert" || word == "using" || word == "requires") {
            return pastStatement(index);
        }
        if (word == "template" && at(index + 1) == "<") {
            std::size_t depth = 0;
            for (++index; index < tokens.size(); ++index) {
                depth += at(index) == "<" ? 1 : 0;
                depth -= at(index) == ">" ? 1 : 0;
                if (depth == 0) {
                    return index + 1;
                }
            }
        }
        // `= 0;` of a pure virtual operation and `if constexpr (…)` stay as they are.
        if (word == "=" && at(index + 1) == "0" && (at(index - 1) == ")" || at(index - 1) == "const")) {
            return index + 2;
        }
        if (word == "constexpr" && at(index - 1) == "if") {
            return pastClosing(index + 1);
        }
        return index;
    }

    // Returns the index past the bracket that closes the one at `index`.
    std::size_t pastClosing(std::size_t index) const {
        std::size_t depth = 0;
        for (; index < tokens.size(); ++index) {
            const std::string_view token = at(index);
            depth += token == "(" || token == "[" || token == "{" ? 1 : 0;
            depth -= token == ")" || token == "]" || token == "}" ? 1 : 0;
            if (depth == 0) {
                return index + 1;
            }
        }
        return index;
    }

    // Returns the index past the semicolon that ends the statement.
    std::size_t pastStatement(std::size_t index) const {
        while (index < tokens.size() && at(index) != ";") {
            const std::string_view token = at(index);
            index = token == "(" || token == "[" || token == "{" ? pastClosing(index) : index + 1;
        }
        return std::min(index + 1, tokens.size());
    }

    // Returns the same for a statement of any kind but a loop, and for an `if` with all that belongs to it.
    std::size_t pastWhole(std::size_t index) const {
        if (at(index) == "{") {
            return pastClosing(index);
        }
        if (at(index) != "if") {
            return pastStatement(index);
        }
        const std::size_t past = pastWhole(pastClosing(index + 1));
        return at(past) == "else" ? pastWhole(past + 1) : past;
    }

    std::string textOf(std::size_t first, std::size_t past) const {
        return std::string(text.substr(tokens[first].begin, tokens[past - 1].end - tokens[first].begin));
    }

    void add(std::size_t first, std::size_t past, std::string replacement, const std::string& change) {
        found.push_back({tokens[first].begin, tokens[past - 1].end, std::move(replacement), change});
    }

    void replace(std::size_t index, const std::string& replacement) {
        add(index, index + 1, replacement, std::string(at(index)) + " -> " + replacement);
    }

    void changeOperator(std::size_t index) {
        static constexpr std::array<std::pair<std::string_view, std::string_view>, 23> kOperators{
            {{"==", "!="}, {"!=", "=="}, {"<", "<="},  {"<=", "<"},  {">", ">="}, {">=", ">"},
             {"&&", "||"}, {"||", "&&"}, {"+", "-"},   {"-", "+"},   {"*", "/"},  {"/", "*"},
             {"%", "*"},   {"+=", "-="}, {"-=", "+="}, {"^", "|"},   {"|", "&"},  {"&", "|"},
             {"<<", ">>"}, {"++", "--"}, {"--", "++"}, {"*=", "/="}, {"|=", "&="}}};
        if (at(index) == "!") {
            add(index, index + 1, "", "! removed");
        }
        const auto* const match = std::find_if(kOperators.begin(), kOperators.end(),
                                               [&](const auto& entry) { return entry.first == at(index); });
        if (tokens[index].kind != Token::Kind::Symbol || match == kOperators.end()) {
            return;
        }
        const bool isBinary =
            text[tokens[index].begin - 1] == ' ' && (text[tokens[index].end] == ' ' || text[tokens[index].end] == '\n');
        if (isBinary || at(index) == "++" || at(index) == "--") {
            replace(index, std::string(match->second));
        }
    }

    void changeConstant(std::size_t index) {
        const Token& token = tokens[index];
        if (at(index) == "true" || at(index) == "false") {
            replace(index, at(index) == "true" ? "false" : "true");
        } else if (token.kind == Token::Kind::Number) {
            // The result is another one also among large floating-point numbers.
            const bool isReal = at(index).find_first_of(".p") != std::string_view::npos;
            replace(index, "(" + std::string(at(index)) + (isReal ? " / 2 + 1)" : " + 1)"));
        } else if (token.kind == Token::Kind::Text && at(index) != "\"\"") {
            const std::string quoted(at(index));
            replace(index,
                    quoted.front() == '"' ? quoted.substr(0, quoted.size() - 1) + "~\"" : "(" + quoted + " ^ 1)");
        }
    }

    // Makes it true, and makes it false, where the condition declares nothing.
    void changeCondition(std::size_t index) {
        const bool isLoop = at(index) == "while";
        if ((at(index) != "if" && !isLoop) || at(index + 1) != "(") {
            return;
        }
        const std::size_t past = pastClosing(index + 1);
        for (std::size_t place = index + 2; place < past; ++place) {
            if (at(place) == "=") {
                return;
            }
        }
        for (const char* value : {"true", "false"}) {
            if (!isLoop || value == std::string_view("false")) {
                add(index + 1, past, std::string("(") + value + ")", "condition -> " + std::string(value));
            }
        }
    }

    void changeStatement(std::size_t index) {
        if (index == 0 || !beginsStatement(index)) {
            return;
        }
        const std::size_t past = pastStatement(index);
        if (at(index) == "return") {
            if (at(index + 1) == ";") {
                add(index, past, ";", "statement removed");
            } else if (!isPlain(at(past - 2))) {
                add(index, past, "return {};", "value returned -> {}");
            }
        } else if (at(index) == "break" || at(index) == "continue" || isCallOrAssignment(index)) {
            add(index, past, ";", "statement removed");
        }
    }

    // These are the same as {}, or changed elsewhere.
    static bool isPlain(std::string_view value) {
        return value == "true" || value == "false" || value == "nullptr" || value == "nullopt" || value == "}";
    }

    bool beginsStatement(std::size_t index) const {
        const std::size_t lineBegin = text.rfind('\n', tokens[index].begin) + 1;
        const bool beginsLine = text.find_first_not_of(' ', lineBegin) == tokens[index].begin;
        const std::string_view before = at(index - 1);
        return beginsLine && (before == ";" || before == "{" || before == "}" || before == ":");
    }

    // Returns true also for the name of an enumerator, but not for that of a macro.
    static bool isTypeName(std::string_view word) {
        return std::isupper(static_cast<unsigned char>(word[0])) != 0 &&
               std::any_of(word.begin(), word.end(), [](unsigned char letter) { return std::islower(letter) != 0; });
    }

    // Returns true for `++x;`, `a.b(…);` or `a[i] = …;`, but not for a declaration or constructor.
    bool isCallOrAssignment(std::size_t index) const {
        if (isTypeName(at(index)) && at(index + 1) != "::") {
            return false;
        }
        if (at(index) == "++" || at(index) == "--") {
            return true;
        }
        const std::size_t first = index;
        while (index < tokens.size()) {
            const std::string_view token = at(index);
            if (token == "=" || token == "+=" || token == "-=" || token == "*=" || token == "++" || token == "--") {
                return index > first;
            }
            if (token == ";") {
                return index > first && at(index - 1) == ")";
            }
            const bool isCall = token == "(" || token == "[";
            const bool isPath = token == "." || token == "->" || token == "::" || (isWord(index) && !isWord(index + 1));
            if (!isCall && !isPath) {
                return false;
            }
            index = isCall ? pastClosing(index) : index + 1;
        }
        return false;
    }

    // Returns true for `const std::lock_guard lock(mutex);`.
    bool isLock(std::size_t index) const {
        const std::size_t name = index + (at(index) == "const" ? 3 : 2);
        return at(name - 1) == "::" && (at(name) == "lock_guard" || at(name) == "unique_lock");
    }

    // Swaps two that call, assign or decide. A declaration counts too, if it calls; two of them seldom mind the order.
    void changeOrder(std::size_t index) {
        if (index == 0 || !beginsStatement(index)) {
            return;
        }
        const std::size_t next = isStep(index) || isCallingDeclaration(index) ? pastWhole(index) : tokens.size();
        if (next < tokens.size() && beginsStatement(next) &&
            (isStep(next) || (isStep(index) && isCallingDeclaration(next)))) {
            const std::size_t past = pastWhole(next);
            add(index, past, textOf(next, past) + "\n" + textOf(index, next), "swapped with the next statement");
        }
    }

    bool isStep(std::size_t index) const {
        return (at(index) == "if" && at(index + 1) == "(") || isCallOrAssignment(index);
    }

    // Returns true for `const auto x = f(…);`, but not for what defines a function, nor a lock.
    bool isCallingDeclaration(std::size_t index) const {
        static constexpr std::array<std::string_view, 9> kOthers{"return", "for",   "while", "switch", "do",
                                                                 "else",   "class", "enum",  "struct"};
        if (!isWord(index) || isLock(index) || std::find(kOthers.begin(), kOthers.end(), at(index)) != kOthers.end()) {
            return false;
        }
        const std::size_t past = pastStatement(index);
        std::size_t place = index;
        while (place < past && (isWord(place) || at(place) == "::" || at(place) == "<" || at(place) == ">" ||
                                at(place) == "&" || at(place) == "*")) {
            ++place;
        }
        return at(place) == "=" && at(past - 2) == ")";
    }

    void changeLock(std::size_t index) {
        if (index == 0 || !beginsStatement(index) || !isLock(index)) {
            return;
        }
        const std::size_t next = pastStatement(index);
        add(index, next, ";", "lock removed");
        const std::size_t past = at(next) == "for" || at(next) == "while" ? tokens.size() : pastWhole(next);
        if (past < tokens.size() && at(past) != "}") {
            add(index, past, "{ " + textOf(index, past) + " }", "lock held for one statement");
        }
    }

    // A changed condition does not cover this: a branch whose condition declares something, `else`, and `?:`.
    void dropBranch(std::size_t index) {
        if (at(index) == "else") {
            add(index, pastWhole(index + 1), "", "else dropped");
        } else if (at(index) == "?") {
            add(index, index + 1, "&& false ?", "left of ?: dropped");
            add(index, index + 1, "|| true ?", "right of ?: dropped");
        } else if (at(index) == "if" && at(index + 1) == "(" && at(index - 1) != "else") {
            const std::size_t past = pastClosing(index + 1);
            const std::string condition = textOf(index + 1, past);
            if (condition.find(" = ") != std::string::npos) {
                add(index, pastWhole(index), ";", "branch dropped");
            }
        }
    }

    // Swaps neighbours among those of a log line or a format, and two plain names of any call.
    void swapArguments(std::size_t index) {
        if (!isWord(index) || at(index + 1) != "(") {
            return;
        }
        const bool isFormat = at(index).starts_with("VIG_LOG_") || at(index) == "format" || at(index) == "print";
        const std::size_t past = pastClosing(index + 1);
        std::vector<std::pair<std::size_t, std::size_t>> arguments;
        std::size_t first = index + 2;
        for (std::size_t place = first; place < past; ++place) {
            if (at(place) == "(" || at(place) == "[" || at(place) == "{") {
                place = pastClosing(place) - 1;
            } else if ((at(place) == "," || place == past - 1) && place > first) {
                arguments.emplace_back(first, place);
                first = place + 1;
            }
        }
        for (std::size_t place = 1; place < arguments.size(); ++place) {
            const auto& [leftFirst, leftPast] = arguments[place - 1];
            const auto& [rightFirst, rightPast] = arguments[place];
            const bool areNames =
                leftPast - leftFirst == 1 && rightPast - rightFirst == 1 && isWord(leftFirst) && isWord(rightFirst);
            if (isFormat ? tokens[leftFirst].kind != Token::Kind::Text : areNames) {
                add(leftFirst, rightPast, textOf(rightFirst, rightPast) + ", " + textOf(leftFirst, leftPast),
                    "arguments swapped: " + std::string(at(leftFirst)) + ", " + std::string(at(rightFirst)));
            }
        }
    }

    // It names a parameter or variable of a function, as far as it can be seen in the text: its type stands before it.
    struct Name {
        std::size_t declared;
        std::size_t past;  // the end of the block in which it is known
        std::string type;
    };

    void findNames() {
        for (std::size_t index = 1; index < tokens.size(); ++index) {
            const std::string_view after = at(index + 1);
            if (!isWord(index) || (after != "=" && after != ";" && after != "," && after != ")")) {
                continue;
            }
            std::string type;
            std::size_t place = index - 1;
            for (; place > 0 && isPartOfType(place); --place) {
                type = at(place) == "const" ? type : std::string(at(place)) + " " + type;
            }
            const std::string_view before = at(place);
            const bool isParameter = before == "(" || before == ",";
            if (type.empty() || isNoType(at(place + 1)) ||
                (!isParameter && before != ";" && before != "{" && before != "}")) {
                continue;
            }
            names.push_back({index, isParameter ? pastBodyBehind(index) : pastBlock(index), type});
        }
    }

    // Returns true for the first word of what only looks like a declaration of a name; `auto` could be any type.
    static bool isNoType(std::string_view word) {
        static constexpr std::array<std::string_view, 11> kOthers{
            "auto", "using", "class", "struct", "enum", "namespace", "typename", "return", "delete", "friend", "case"};
        return std::find(kOthers.begin(), kOthers.end(), word) != kOthers.end();
    }

    bool isPartOfType(std::size_t index) const {
        const std::string_view token = at(index);
        return isWord(index) || token == "::" || token == "<" || token == ">" || token == "&" || token == "*";
    }

    // Returns the end of the block around it.
    std::size_t pastBlock(std::size_t index) const {
        while (index < tokens.size() && at(index) != "}") {
            index = at(index) == "{" ? pastClosing(index) : index + 1;
        }
        return index;
    }

    // Returns the end of the body that follows the list of parameters; the index itself, if none does.
    std::size_t pastBodyBehind(std::size_t index) const {
        std::size_t place = index;
        while (place < tokens.size() && at(place) != ")") {
            place = at(place) == "(" ? pastClosing(place) : place + 1;
        }
        for (++place; place < tokens.size() && at(place) != "{"; ++place) {
            if (!isPartOfType(place)) {
                return index;
            }
        }
        return pastClosing(place);
    }

    // Takes the last other name of the same type in the place of a name that is read.
    void changeSource(std::size_t index) {
        const std::string_view before = at(index - 1);
        if (!isWord(index) || before == "." || before == "->" || before == "::") {
            return;
        }
        const auto isKnown = [&](const Name& name) { return name.declared < index && index < name.past; };
        const auto own = std::find_if(names.rbegin(), names.rend(), [&](const Name& name) {
            return isKnown(name) && at(name.declared) == at(index);
        });
        if (own == names.rend()) {
            return;
        }
        const auto other = std::find_if(names.rbegin(), names.rend(), [&](const Name& name) {
            return isKnown(name) && name.type == own->type && at(name.declared) != at(index);
        });
        if (other != names.rend()) {
            replace(index, std::string(at(other->declared)));
        }
    }

    const std::string_view text;
    const std::vector<Token> tokens;
    std::vector<Name> names;
    std::vector<Mutant> found;
};

void print(std::string_view source, std::size_t number, const Mutant& mutant) {
    const std::size_t lineBegin = source.rfind('\n', mutant.begin) + 1;
    const std::size_t textBegin = source.find_first_not_of(' ', lineBegin);
    const std::size_t lineEnd = source.find('\n', mutant.begin);
    const auto line = 1 + std::count(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(mutant.begin), '\n');
    std::cout << number << '\t' << line << '\t' << mutant.change << '\t'
              << source.substr(textBegin, lineEnd - textBegin) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    std::ifstream file(argc > 1 ? argv[1] : "");
    if (!file || argc > 3) {
        std::cerr << "usage: mutants FILE [NUMBER]\n";
        return 2;
    }
    const std::string source{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::vector<Mutant> mutants = Finder(source).mutants();
    if (argc == 2) {
        for (std::size_t number = 0; number < mutants.size(); ++number) {
            print(source, number, mutants[number]);
        }
        return 0;
    }
    const Mutant& mutant = mutants.at(std::stoul(argv[2]));
    std::cout << source.substr(0, mutant.begin) << mutant.replacement << source.substr(mutant.end);
    return 0;
}
