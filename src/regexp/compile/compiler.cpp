// The loop over the pattern, and what needs no source of its own: literal runs, wildcards with
// their folding, quotations, and the last steps once the nodes are complete.
#include "regexp/compile/compiler.h"

#include <string.h>

#include "regexp/compile/compile.h"
#include "regexp/compile/light_program.h"
#include "regexp/compile/required_text.h"
#include "regexp/compile/structure.h"
#include "regexp/notes.h"
#include "regexp/required_text.h"

namespace zel {
namespace {

/// Bytes that are not simply literal.
constexpr StopTable kStops("$()*+.?[\\^{|", "\t\n\f\r #");

}  // namespace

ZelStatus Compiler::run() {
    for (;;) {
        const Zel8u* const start = p_;
        p_ = kStops.find(p_, flags_);
        if (p_ != start) addLiterals(start, p_ - start);

        ZelStatus status = zelStatusOk;
        switch (*p_) {
            case '\0':
                complete();
                return zelStatusOk;
            case '.':
                ++p_;
                wildcard('.');
                break;
            case '*':
            case '+':
            case '?':
            case '{':
                status = quantifier();
                break;
            case '^':
            case '$':
                flushRun();
                emit(NodePosition, *p_++);
                break;
            case '|':
                bar();
                break;
            case '(':
                status = openParenthesis();
                break;
            case ')':
                status = closeGroup();
                break;
            case '[':
                status = characterClass();
                break;
            case '\\':
                status = escape();
                break;
            case '#':
                p_ = skipLine(p_);
                break;
            default:
                ++p_;  // white space in extended mode
        }
        if (status != zelStatusOk) return status;
    }
}

/// Literal bytes of the pattern. What does not continue the pending run begins another.
void Compiler::addLiterals(const Zel8u* text, long length) {
    if (runLength_ != 0) {
        if (runText_ + runLength_ == text) {
            runLength_ += length;
            return;
        }
        emitRun(runText_, runLength_);
    }
    runText_ = text;
    runLength_ = length;
    runFlags_ = flags_;
}

void Compiler::emitRun(const Zel8u* text, long length) {
    const int node = nodeCount_;
    if (length == 1) {
        emit(NodeLetter, *text);
    } else {
        emit(NodeString, 0, static_cast<int>(length), 0, text);
    }
    noteLiteral(node, runFlags_);
}

/// A character given by an escape: a node of its own.
void Compiler::emitCharacter(Zel32u value) {
    flushRun();
    emit(value < 0x100 ? NodeLetter : NodeLetterUtf8, static_cast<int>(value));
    if (value < 0x100) noteLiteral(nodeCount_ - 1, flags_);
}

/// Whether the node is the wildcard of that letter and not a member of a class.
bool Compiler::isWildcard(int node, int letter) const {
    return nodes_[node].kind == NodeLetterRange && nodes_[node].value == letter &&
           classEnd_ != node + 1;
}

/// The dot or a shorthand. Behind its like it is no node but one repetition more. Should a
/// quantifier of its own follow, that one says how many repetitions are added; quantifier() then
/// takes the bounds noted here.
void Compiler::wildcard(int letter) {
    flushRun();
    const int last = nodeCount_ - 1;
    if (last >= 0 && isWildcard(last, letter)) {
        emit(NodeQuantifierMax, 2, 2);
        foldMin_ = 1;
        foldMax_ = 1;
        foldEnd_ = nodeCount_;
        return;
    }
    if (last >= 1 && isQuantifier(nodes_[last]) && isWildcard(last - 1, letter)) {
        Node& quantifier = nodes_[last];
        foldMin_ = quantifier.value;
        foldMax_ = quantifier.count;
        foldEnd_ = nodeCount_;
        if (quantifier.value < kUnbounded) ++quantifier.value;
        if (quantifier.count < kUnbounded) ++quantifier.count;
        return;
    }
    emit(NodeLetterRange, letter);
}

/// "\Q": literal up to "\E" or the end of the pattern.
void Compiler::quotedText() {
    const Zel8u* const text = p_ + 2;
    const Zel8u* const end = findQuoteEnd(text);
    if (end != text) addLiterals(text, end - text);
    p_ = *end == '\0' ? end : end + 2;
}

/// Keeps the trailing literal only when nothing but quantifiers follows it, and moves the text of
/// the literal runs behind the last node, so that the pattern is no longer needed.
void Compiler::complete() {
    flushRun();
    if (trailingLiteral_ >= 0) {
        for (int i = trailingLiteral_ + 1; i < nodeCount_; ++i) {
            if (isQuantifier(nodes_[i])) continue;
            trailingLiteral_ = kNoTrailingLiteral;
            break;
        }
    }
    Zel8u* text = reinterpret_cast<Zel8u*>(nodes_ + nodeCount_);
    for (Node* node = nodes_; node != nodes_ + nodeCount_; ++node) {
        if (node->kind != NodeString) continue;
        const size_t length = static_cast<size_t>(node->count);
        memcpy(text, node->data, length);
        node->data = text;
        text += length;
    }
    textEnd_ = text;
}

namespace {

/// Whether the pattern begins with an any-run, so that a match that fails at the start of a line
/// would fail further right in it too.
bool beginsWithAnyRun(const Zel8u* p) {
    if (p[0] == '.' && (p[1] == '*' || p[1] == '+')) return p[2] != '?';
    if (p[0] != '(') return false;
    const char* const s = reinterpret_cast<const char*>(p);
    return strncmp(s, "(?:.*)", 6) == 0 || strncmp(s, "(?:.+)", 6) == 0;
}

/// Reads the option string; false when it holds a byte that is no option.
bool readOptions(const char* options, Zel32u& flags) {
    flags = 0;
    if (options == nullptr) return true;
    for (; *options != '\0'; ++options) {
        switch (*options) {
            case 'g':
                flags |= kOptionGlobal;
                break;
            case 'i':
                flags |= kOptionIgnoreCase;
                break;
            case 'm':
                flags |= kOptionMultiLine;
                break;
            case 's':
                flags |= kOptionDotAll;
                break;
            case 'x':
                flags |= kOptionExtended;
                break;
            default:
                return false;
        }
    }
    return true;
}

/// Puts the notes behind the text of the literals.
void addNotes(ZelRegExpState& state, const Compiler& compiler, long nodeRoom) {
    if (!mayHaveNotes(state)) return;
    const auto* text = reinterpret_cast<const Zel8u*>(state.nodes() + state.nodeCount);
    Zel8u* notes = compiler.textEnd();
    // An alternative at top level can do without the others' literals.
    if (notes - text >= kTripleLength && !compiler.hasTopLevelBar())
        notes = addRequiredText(state, notes);
    notes[0] = notes[1] = 0;  // the end of the notes, if there are no more
    addLightProgram(state, notes, nodeRoom);
}

}  // namespace

ZelStatus compilePattern(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                         int* pErrOffset) {
    const Zel8u* const pattern = reinterpret_cast<const Zel8u*>(pSrc);
    Node* const nodes = pState->nodes();
    int nodeCount = 0;
    if (beginsWithAnyRun(pattern)) {
        nodes[nodeCount++] = {NodePosition, kLineStartMarker, 0, 0, nullptr};
    }
    Zel32u flags;
    if (!readOptions(pOptions, flags)) {
        *pErrOffset = 0;
        return zelStatusRegExpOptionsError;
    }
    const Structure structure = checkStructure(pattern, flags);
    if (structure.status != zelStatusOk) {
        *pErrOffset = static_cast<int>(structure.errorAt - pattern);
        return structure.status;
    }
    pState->magic = kRegExpMagic;
    pState->groupCount = structure.groupCount;
    pState->options = flags;
    pState->format = kFormatUtf8;

    Compiler compiler(pattern, flags, structure.groupCount, nodes, nodeCount);
    const ZelStatus status = compiler.run();
    if (status != zelStatusOk) {
        *pErrOffset = static_cast<int>(compiler.errorAt() - pattern);
        return status;
    }
    pState->matchLimit = kDefaultMatchLimit;
    pState->trailingLiteral = compiler.trailingLiteral();
    pState->nodeCount = compiler.nodeCount();
    addNotes(*pState, compiler, compiler.patternEnd() - pattern + 1);
    return zelStatusOk;
}

}  // namespace zel
