#include <fmt/format.h>
#include <map>
#include <optional>

#include "script/ScriptLexer.h"
#include "script/ScriptOpcodes.h"
#include "script/ScriptText.h"

namespace ispctl {
namespace {

constexpr std::size_t kMaxDataBytes = 0xFFFF;
constexpr std::string_view kData = "data";
constexpr std::string_view kConstant = "const";
constexpr std::string_view kBytes = "bytes";
constexpr std::string_view kDdc = "ddc";

using Bytes = std::vector<std::uint8_t>;

class Assembler {
  public:
    explicit Assembler(std::string_view text) : m_lexer(text, m_script.errors) {}

    AssembledScript Run() {
        while (m_lexer.Current().kind != ScriptToken::Kind::End) {
            if (m_lexer.Current().kind == ScriptToken::Kind::Newline) {
                m_lexer.Next();
                continue;
            }
            try {
                Statement();
                ExpectEndOfLine();
            } catch (const ScriptError &error) {
                m_script.errors.Add(error);
                SkipStatement();
            }
        }
        return std::move(m_script);
    }

  private:
    /// The operands of one statement, collected first because named ones may come in any order.
    struct GivenOperands {
        std::vector<std::optional<std::uint32_t>> values;
        std::optional<Bytes> data;
    };

    void Statement() {
        const ScriptToken name = m_lexer.Next();
        if (name.kind != ScriptToken::Kind::Name) {
            name.Fail("expected a statement name");
        }
        if (name.text == kConstant) {
            Constant();
        } else if (name.text == kBytes) {
            const Bytes bytes = List();
            Records().insert(Records().end(), bytes.begin(), bytes.end());
        } else if (name.text == kDdc) {
            Ddc(name);
        } else if (const Opcode *opcode = FindOpcode(name.text)) {
            Record(name, *opcode);
        } else {
            name.Fail(fmt::format("unknown statement {}", name.text));
        }
    }

    void Constant() {
        const ScriptToken name = Take();
        if (name.kind != ScriptToken::Kind::Name) {
            name.Fail("expected a constant name");
        }
        if (m_constants.contains(name.text)) {
            name.Fail(fmt::format("{} is already defined", name.text));
        }
        try {
            Expect('=');
            m_constants.emplace(name.text, Number());
        } catch (const ScriptError &) {
            m_constants.emplace(name.text, 0); // known, so that only this line has an error
            throw;
        }
    }

    void Ddc(const ScriptToken &name) {
        DdcStatement statement;
        statement.line = name.line;
        statement.column = name.column;
        const ScriptToken verb = Take();
        if (verb.text != "get" && verb.text != "set") {
            verb.Fail("expected get or set");
        }
        statement.request.feature = static_cast<std::uint8_t>(Number("feature", 1));
        if (verb.text == "set") {
            statement.request.kind = DdcRequest::Kind::Set;
            if (m_lexer.Current().Is(',')) {
                m_lexer.Next();
            }
            statement.request.value = static_cast<std::uint16_t>(Number("value", 2));
        }
        m_script.steps.back().ddc = statement;
        m_script.steps.emplace_back();
    }

    std::uint32_t Number(std::string_view operand, std::size_t bytes) {
        const ScriptToken token = m_lexer.Current();
        std::optional<std::uint32_t> value;
        Set(token, {operand, bytes, false}, value, Number());
        return *value;
    }

    Bytes &Records() {
        return m_script.steps.back().records;
    }

    /// After an error: continues after the statement. Braces that are never closed end at the next
    /// line that begins like a statement.
    void SkipStatement() {
        bool beginsLine = m_isAtNextStatement;
        m_isAtNextStatement = false;
        while (m_lexer.Current().kind != ScriptToken::Kind::End) {
            const ScriptToken &token = m_lexer.Current();
            const bool isNewline = token.kind == ScriptToken::Kind::Newline;
            if ((isNewline && !m_inBraces) || (beginsLine && IsStatement(token))) {
                break;
            }
            m_inBraces = m_inBraces && !token.Is('}');
            beginsLine = isNewline;
            m_lexer.Next();
        }
        m_inBraces = false;
    }

    static bool IsStatement(const ScriptToken &token) {
        return token.kind == ScriptToken::Kind::Name &&
               (token.text == kConstant || token.text == kBytes || token.text == kDdc ||
                FindOpcode(token.text) != nullptr);
    }

    void Record(const ScriptToken &name, const Opcode &opcode) {
        GivenOperands given;
        given.values.resize(opcode.operands.size());
        std::size_t next = 0;
        for (bool first = true; !AtEndOfLine(); first = false) {
            if (!first) {
                Expect(',');
            }
            ReadOperand(opcode, given, next);
        }
        const bool needsData = opcode.kind == OpcodeKind::BLOCK_WRITE;
        if (needsData && !given.data) {
            name.Fail(fmt::format("missing data bytes in braces for {}", name.text));
        }
        Bytes record{opcode.code};
        for (std::size_t i = 0; i < opcode.operands.size(); ++i) {
            const Operand &operand = opcode.operands[i];
            if (needsData && operand.isBlockLength) {
                given.values[i] = static_cast<std::uint32_t>(given.data->size());
            }
            if (!given.values[i]) {
                name.Fail(fmt::format("missing operand {1} of {0}", name.text, operand.name));
            }
            for (std::size_t byte = operand.bytes; byte-- > 0;) {
                record.push_back(static_cast<std::uint8_t>(*given.values[i] >> (8 * byte)));
            }
        }
        if (given.data) {
            record.insert(record.end(), given.data->begin(), given.data->end());
        }
        Records().insert(Records().end(), record.begin(), record.end());
    }

    /// Reads one operand. next is the index of the next positional operand; a named operand sets it
    /// past the last one, because no positional operand may follow.
    void ReadOperand(const Opcode &opcode, GivenOperands &given, std::size_t &next) {
        const ScriptToken token = m_lexer.Current();
        if (token.Is('{')) {
            ReadData(token, opcode, given);
            return;
        }
        std::uint32_t value = 0;
        if (token.kind == ScriptToken::Kind::Name) {
            m_lexer.Next();
            if (m_lexer.Current().Is('=')) {
                m_lexer.Next();
                ReadNamed(token, opcode, given);
                next = opcode.operands.size() + 1;
                return;
            }
            value = ConstantValue(token);
        } else {
            value = Number();
        }
        if (next > opcode.operands.size()) {
            token.Fail("positional operand after a named one");
        }
        if (next < opcode.operands.size() && LengthFollows(opcode, next)) {
            ++next;
        }
        if (next == opcode.operands.size()) {
            token.Fail(fmt::format("too many operands for {}", opcode.name));
        }
        Set(token, opcode.operands[next], given.values[next], value);
        ++next;
    }

    static bool LengthFollows(const Opcode &opcode, std::size_t operand) {
        return opcode.kind == OpcodeKind::BLOCK_WRITE && opcode.operands[operand].isBlockLength;
    }

    void ReadNamed(const ScriptToken &name, const Opcode &opcode, GivenOperands &given) {
        if (name.text == kData) {
            ReadData(name, opcode, given);
            return;
        }
        for (std::size_t i = 0; i < opcode.operands.size(); ++i) {
            if (opcode.operands[i].name == name.text) {
                if (LengthFollows(opcode, i)) {
                    name.Fail("the length is computed from the data bytes");
                }
                const ScriptToken value = m_lexer.Current();
                if (given.values[i]) {
                    name.Fail(fmt::format("{} is given twice", name.text));
                }
                Set(value, opcode.operands[i], given.values[i], Number());
                return;
            }
        }
        name.Fail(fmt::format("{} has no operand named {}", opcode.name, name.text));
    }

    void ReadData(const ScriptToken &token, const Opcode &opcode, GivenOperands &given) {
        if (opcode.kind != OpcodeKind::BLOCK_WRITE) {
            token.Fail(fmt::format("{} has no data bytes", opcode.name));
        }
        if (given.data) {
            token.Fail("data is given twice");
        }
        given.data = List();
        if (given.data->size() > kMaxDataBytes) {
            token.Fail(fmt::format("{} data bytes, at most {} are allowed", given.data->size(),
                                   kMaxDataBytes));
        }
    }

    static void Set(const ScriptToken &token, const Operand &operand,
                    std::optional<std::uint32_t> &slot, std::uint32_t value) {
        if (operand.bytes < 4 && value >> (8 * operand.bytes) != 0) {
            token.Fail(fmt::format("0x{:X} does not fit in {} ({} byte{})", value, operand.name,
                                   operand.bytes, operand.bytes == 1 ? "" : "s"));
        }
        slot = value;
    }

    /// Reads bytes in braces, separated by commas; newlines are allowed between them.
    Bytes List() {
        const ScriptToken brace = m_lexer.Current();
        Expect('{');
        m_inBraces = true;
        Bytes bytes;
        SkipNewlinesInBraces(brace);
        while (!m_lexer.Current().Is('}')) {
            const ScriptToken token = m_lexer.Current();
            const std::uint32_t value = Number();
            if (value > 0xFF) {
                token.Fail(fmt::format("0x{:X} does not fit in a byte", value));
            }
            bytes.push_back(static_cast<std::uint8_t>(value));
            SkipNewlinesInBraces(brace);
            if (!m_lexer.Current().Is('}')) {
                Expect(',');
                SkipNewlinesInBraces(brace);
            }
        }
        m_inBraces = false;
        m_lexer.Next();
        return bytes;
    }

    /// The current token; the end of a line stays, so that an error there skips no other line.
    ScriptToken Take() {
        return AtEndOfLine() ? m_lexer.Current() : m_lexer.Next();
    }

    std::uint32_t Number() {
        const ScriptToken token = Take();
        if (token.kind == ScriptToken::Kind::Name) {
            return ConstantValue(token);
        }
        if (token.kind != ScriptToken::Kind::Number) {
            token.Fail("expected a number");
        }
        return token.number;
    }

    std::uint32_t ConstantValue(const ScriptToken &name) const {
        const auto found = m_constants.find(name.text);
        if (found == m_constants.end()) {
            name.Fail(fmt::format("unknown constant {}", name.text));
        }
        return found->second;
    }

    bool AtEndOfLine() const {
        const ScriptToken::Kind kind = m_lexer.Current().kind;
        return kind == ScriptToken::Kind::Newline || kind == ScriptToken::Kind::End;
    }

    /// Fails at the brace, which is what has to be corrected, if the text or another statement
    /// shows that it is never closed.
    void SkipNewlinesInBraces(const ScriptToken &brace) {
        bool beginsLine = false;
        while (m_lexer.Current().kind == ScriptToken::Kind::Newline) {
            m_lexer.Next();
            beginsLine = true;
        }
        const ScriptToken &token = m_lexer.Current();
        m_isAtNextStatement = beginsLine && IsStatement(token) && !m_constants.contains(token.text);
        if (m_isAtNextStatement || token.kind == ScriptToken::Kind::End) {
            brace.Fail("this brace is never closed");
        }
    }

    void ExpectEndOfLine() {
        if (!AtEndOfLine()) {
            m_lexer.Current().Fail("expected end of line");
        }
    }

    void Expect(char sign) {
        const ScriptToken token = Take();
        if (!token.Is(sign)) {
            token.Fail(fmt::format("expected '{}'", sign));
        }
    }

    AssembledScript m_script; ///< before the lexer, which reports to it
    ScriptLexer m_lexer;
    std::map<std::string_view, std::uint32_t> m_constants;
    bool m_inBraces = false;
    bool m_isAtNextStatement = false; ///< after an error: no token of it was read yet
};

} // namespace

AssembledScript AssembleScript(std::string_view text) {
    return Assembler(text).Run();
}

} // namespace ispctl
