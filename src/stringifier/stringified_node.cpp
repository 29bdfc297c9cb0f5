#include "stringifier/stringified_node.h"

#include <utility>

namespace QB {

void StringifiedNode::setText(std::string_view newText) {
    text = newText;
    m_first = m_last = nullptr;
    m_hasChildren = false;
}

void StringifiedNode::appendCopy(std::string childText) {
    assert(m_pieces);
    append(m_pieces->keep(std::move(childText)));
}

void StringifiedNode::appendNumber(std::int32_t number) {
    appendCopy(std::to_string(number));
}

void StringifiedNode::append(StringifiedNode child) {
    m_hasChildren = true;
    if (!child.component) {
        if (!child.text.empty()) append(child.text);
        splice(child);
        return;
    }
    StringifiedPiece* open = push(StringifiedPiece::Open);
    if (!child.text.empty()) pushText(child.text);
    splice(child);
    StringifiedPiece* close = push(StringifiedPiece::Close);
    close->subject = child.component;
    open->subject = close;
}

}  // namespace QB
