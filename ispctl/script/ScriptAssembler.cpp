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

using Bytes = std::vector<std::uint8_t>;

class Assembler {
  public:
    explicit Assembler(std::string_view text) : m_lexer(text) {}

    Bytes Run() {
        while (m_lexer.Current().kind != ScriptToken::Kind::End) {
            if (m_lexer.Current().kind != ScriptToken::Kind::LineEnd) {
                Statement();
                ExpectLineEnd();
            } else {
                m_lexer.Take();
            }
        }
        return std::move(m_bytes);
    }

  private:
    /// The operands of one statement as they come in.
    struct Given {
        std::vector<std::optional<std::uint32_t>> values;
        std::optional<Bytes> data;
    };

    void Statement() {
        const ScriptToken name = m_lexer.Take();
        if (name.kind != ScriptToken::Kind::Name) {
            name.Fail("a statement begins with a name");
        }
        if (name.text == "const") {
            Constant();
        } else if (name.text == "bytes") {
            const Bytes bytes = List();
            m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        } else if (const Opcode *opcode = FindOpcode(name.text)) {
            Record(name, *opcode);
        } else {
            name.Fail(fmt::format("{} is no statement", name.text));
        }
    }

    void Constant() {
        const ScriptToken name = m_lexer.Take();
        if (name.kind != ScriptToken::Kind::Name) {
            name.Fail("a constant needs a name");
        }
        Expect('=');
        if (!m_constants.emplace(name.text, Number()).second) {
            name.Fail(fmt::format("{} is defined already", name.text));
        }
    }

    void Record(const ScriptToken &name, const Opcode &opcode) {
        Given given;
        given.values.resize(opcode.operands.size());
        std::size_t next = 0;
        for (bool first = true; !AtLineEnd(); first = false) {
            if (!first) {
                Expect(',');
            }
            ReadOperand(opcode, given, next);
        }
        const bool needsData = opcode.kind == OpcodeKind::BLOCK_WRITE;
        if (needsData && !given.data) {
            name.Fail(fmt::format("{} needs data bytes in braces", name.text));
        }
        m_bytes.push_back(opcode.code);
        for (std::size_t i = 0; i < opcode.operands.size(); ++i) {
            const Operand &operand = opcode.operands[i];
            if (needsData && operand.isBlockLength) {
                given.values[i] = static_cast<std::uint32_t>(given.data->size());
            }
            if (!given.values[i]) {
                name.Fail(fmt::format("{} needs the operand {}", name.text, operand.name));
            }
            for (std::size_t byte = operand.bytes; byte-- > 0;) {
                m_bytes.push_back(static_cast<std::uint8_t>(*given.values[i] >> (8 * byte)));
            }
        }
        if (given.data) {
            m_bytes.insert(m_bytes.end(), given.data->begin(), given.data->end());
        }
    }

    /// One operand; `next` is the place of one without a name, and past them all behind one with
    /// its name.
    void ReadOperand(const Opcode &opcode, Given &given, std::size_t &next) {
        const ScriptToken token = m_lexer.Current();
        if (token.Is('{')) {
            ReadData(token, opcode, given);
            return;
        }
        std::uint32_t value = 0;
        if (token.kind == ScriptToken::Kind::Name) {
            m_lexer.Take();
            if (m_lexer.Current().Is('=')) {
                m_lexer.Take();
                ReadNamed(token, opcode, given);
                next = opcode.operands.size() + 1;
                return;
            }
            value = ConstantValue(token);
        } else {
            value = Number();
        }
        if (next > opcode.operands.size()) {
            token.Fail("an operand without a name cannot follow one with its name");
        }
        if (next < opcode.operands.size() && LengthFollows(opcode, next)) {
            ++next;
        }
        if (next == opcode.operands.size()) {
            token.Fail(fmt::format("{} has no operand more", opcode.name));
        }
        Set(token, opcode.operands[next], given.values[next], value);
        ++next;
    }

    static bool LengthFollows(const Opcode &opcode, std::size_t operand) {
        return opcode.kind == OpcodeKind::BLOCK_WRITE && opcode.operands[operand].isBlockLength;
    }

    void ReadNamed(const ScriptToken &name, const Opcode &opcode, Given &given) {
        if (name.text == kData) {
            ReadData(name, opcode, given);
            return;
        }
        for (std::size_t i = 0; i < opcode.operands.size(); ++i) {
            if (opcode.operands[i].name == name.text) {
                if (LengthFollows(opcode, i)) {
                    name.Fail("the length follows from the data bytes");
                }
                const ScriptToken place = m_lexer.Current();
                if (given.values[i]) {
                    name.Fail(fmt::format("{} is given twice", name.text));
                }
                Set(place, opcode.operands[i], given.values[i], Number());
                return;
            }
        }
        name.Fail(fmt::format("{} has no operand {}", opcode.name, name.text));
    }

    void ReadData(const ScriptToken &place, const Opcode &opcode, Given &given) {
        if (opcode.kind != OpcodeKind::BLOCK_WRITE) {
            place.Fail(fmt::format("{} takes no data bytes", opcode.name));
        }
        if (given.data) {
            place.Fail("data is given twice");
        }
        given.data = List();
        if (given.data->size() > kMaxDataBytes) {
            place.Fail(
                fmt::format("{} data bytes are more than {}", given.data->size(), kMaxDataBytes));
        }
    }

    static void Set(const ScriptToken &place, const Operand &operand,
                    std::optional<std::uint32_t> &slot, std::uint32_t value) {
        if (operand.bytes < 4 && value >> (8 * operand.bytes) != 0) {
            place.Fail(fmt::format("0x{:X} does not fit {}, which has {} byte{}", value,
                                   operand.name, operand.bytes, operand.bytes == 1 ? "" : "s"));
        }
        slot = value;
    }

    /// Bytes in braces; commas or line ends between them.
    Bytes List() {
        Expect('{');
        Bytes bytes;
        SkipNewlines();
        while (!m_lexer.Current().Is('}')) {
            const ScriptToken place = m_lexer.Current();
            const std::uint32_t value = Number();
            if (value > 0xFF) {
                place.Fail(fmt::format("0x{:X} is no byte", value));
            }
            bytes.push_back(static_cast<std::uint8_t>(value));
            SkipNewlines();
            if (!m_lexer.Current().Is('}')) {
                Expect(',');
                SkipNewlines();
            }
        }
        m_lexer.Take();
        return bytes;
    }

    std::uint32_t Number() {
        const ScriptToken token = m_lexer.Take();
        if (token.kind == ScriptToken::Kind::Name) {
            return ConstantValue(token);
        }
        if (token.kind != ScriptToken::Kind::Number) {
            token.Fail("a number is missing here");
        }
        return token.number;
    }

    std::uint32_t ConstantValue(const ScriptToken &name) const {
        const auto found = m_constants.find(name.text);
        if (found == m_constants.end()) {
            name.Fail(fmt::format("{} is no constant", name.text));
        }
        return found->second;
    }

    bool AtLineEnd() const {
        const ScriptToken::Kind kind = m_lexer.Current().kind;
        return kind == ScriptToken::Kind::LineEnd || kind == ScriptToken::Kind::End;
    }

    void SkipNewlines() {
        while (m_lexer.Current().kind == ScriptToken::Kind::LineEnd) {
            m_lexer.Take();
        }
    }

    void ExpectLineEnd() {
        if (!AtLineEnd()) {
            m_lexer.Current().Fail("the statement should end here");
        }
    }

    void Expect(char sign) {
        const ScriptToken token = m_lexer.Take();
        if (!token.Is(sign)) {
            token.Fail(fmt::format("'{}' is missing here", sign));
        }
    }

    ScriptLexer m_lexer;
    std::map<std::string_view, std::uint32_t> m_constants;
    Bytes m_bytes;
};

} // namespace

std::vector<std::uint8_t> AssembleScript(std::string_view text) {
    return Assembler(text).Run();
}

} // namespace ispctl
