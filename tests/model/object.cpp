// The pattern object's life cycle, and the few functions around it that need no algorithm.
#include <cstring>
#include <vector>

#include "compiler.h"
#include "zelcore.h"

namespace model {
namespace {

bool beginsWithAnyRun(const Pattern& pattern) {
    if (pattern.startsWith(0, ".*") || pattern.startsWith(0, ".+")) return pattern.at(2) != '?';
    return pattern.startsWith(0, "(?:.*)") || pattern.startsWith(0, "(?:.+)");
}

bool readOptions(const char* options, Zel32u& flags) {
    flags = 0;
    for (; options && *options; ++options) {
        switch (*options) {
            case 's':
                flags |= zel::kOptionDotAll;
                break;
            case 'm':
                flags |= zel::kOptionMultiLine;
                break;
            case 'i':
                flags |= zel::kOptionIgnoreCase;
                break;
            case 'x':
                flags |= zel::kOptionExtended;
                break;
            case 'g':
                flags |= zel::kOptionGlobal;
                break;
            default:
                return false;
        }
    }
    return true;
}

/// Writes the nodes into the object, then the text of every literal run behind the last node.
void store(const std::vector<Node>& nodes, ZelRegExpState* state) {
    Node* stored = state->nodes();
    char* text = reinterpret_cast<char*>(stored + nodes.size());
    for (size_t k = 0; k < nodes.size(); ++k) {
        Node node = nodes[k];
        if (node.kind == zel::NodeString) {
            std::memcpy(text, node.data, static_cast<size_t>(node.count));
            node.data = text;
            text += node.count;
        }
        stored[k] = node;
    }
}

long long objectSize(const char* pattern) {
    return static_cast<long long>(std::strlen(pattern)) * 24 + 48056;
}

}  // namespace

ZelStatus zelsRegExpGetSize(const char* pSrc, int* pSize) {
    if (!pSrc || !pSize) return zelStatusNullPointer;
    *pSize = static_cast<int>(objectSize(pSrc));
    return zelStatusOk;
}

ZelStatus zelsRegExpInit(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                         int* pErrOffset) {
    if (!pSrc || !pState || !pErrOffset) return zelStatusNullPointer;
    Pattern pattern{pSrc, static_cast<int>(std::strlen(pSrc))};
    Zel32u options;
    if (!readOptions(pOptions, options)) {
        *pErrOffset = 0;
        return zelStatusRegExpOptionsError;
    }
    try {
        int groupCount = checkStructure(pattern, options) + 1;
        pState->magic = zel::kRegExpMagic;
        pState->groupCount = groupCount;
        pState->options = options;
        pState->format = zel::kFormatUtf8;
        Program program = compileProgram(pattern, options, groupCount, beginsWithAnyRun(pattern));
        store(program.nodes, pState);
        pState->matchLimit = zel::kDefaultMatchLimit;
        pState->trailingLiteral = program.trailingLiteral;
        pState->nodeCount = static_cast<int>(program.nodes.size());
    } catch (const CompileError& error) {
        *pErrOffset = error.offset;
        return error.status;
    }
    return zelStatusOk;
}

ZelStatus zelsRegExpInitAlloc(const char* pSrc, const char* pOptions, ZelRegExpState** ppState,
                              int* pErrOffset) {
    if (!ppState) return zelStatusNullPointer;
    int size;
    if (model::zelsRegExpGetSize(pSrc, &size) != zelStatusOk) return zelStatusNullPointer;
    if (objectSize(pSrc) > 0x7FFFFFFF) return zelStatusNullPointer;
    *ppState = static_cast<ZelRegExpState*>(model::zelsMalloc_8u(size));
    if (!*ppState) return zelStatusNullPointer;
    ZelStatus status = model::zelsRegExpInit(pSrc, pOptions, *ppState, pErrOffset);
    if (status != zelStatusOk) {
        model::zelsFree(*ppState);
        *ppState = nullptr;
    }
    return status;
}

ZelStatus zelsRegExpFree(ZelRegExpState* pState) {
    model::zelsFree(pState);
    return zelStatusOk;
}

ZelStatus zelsRegExpSetFormat(int fmt, ZelRegExpState* pState) {
    if (!pState) return zelStatusNullPointer;
    if (fmt != 0 && fmt != 1) return zelStatusBadArgError;
    pState->format = fmt;
    return zelStatusOk;
}

ZelStatus zelsRegExpSetMatchLimit(int limit, ZelRegExpState* pState) {
    if (!pState) return zelStatusNullPointer;
    if (limit < 0) return zelStatusLengthError;
    pState->matchLimit = limit;
    return zelStatusOk;
}

// ---- Memory and version ----

void* zelsMalloc_8u(int len) {
    return len < 1 ? nullptr : zelMalloc(len);
}
void zelsFree(void* ptr) {
    zelFree(ptr);
}

const ZelLibraryVersion* zelchGetLibVersion() {
    static const ZelLibraryVersion version = {
        6, 1, 137, 778, {'m', 'x', 0, 0}, "libzelchmx.so.6.1", "6.1 build 137.56", "Mar 17 2010"};
    return &version;
}

}  // namespace model
