#include "core/vhdl/vhdl_tokens.h"

#include "core/vhdl/vhdl_lexer.h"

namespace pellux {

Vector<String> vhdl_tokens(std::string_view source) {
    Vector<String> tokens;
    VhdlLexer lexer(source);
    for (;;) {
        switch (lexer.next()) {
        case VhdlToken::none:
            return tokens;
        case VhdlToken::word:
            tokens.push_back(folded_identifier(lexer.text()));
            break;
        case VhdlToken::extended:
        case VhdlToken::number:
        case VhdlToken::delimiter:
            tokens.emplace_back(lexer.text());
            break;
        case VhdlToken::string:
        case VhdlToken::character:
            break;
        }
    }
}

} // namespace pellux
