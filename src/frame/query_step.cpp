#include "frame/query_step.h"

#include <algorithm>
#include <iterator>

#include "model/record_archive.h"

namespace QB {
namespace {

/// One list of the fields for both directions.
template <typename Archive, typename Entry>
void exchangeEntry(Archive& archive, Entry& entry) {
    archive.number(entry.componentId);
    archive.number(entry.rect.origin.x);
    archive.number(entry.rect.origin.y);
    archive.number(entry.rect.size.width);
    archive.number(entry.rect.size.height);
    archive.flag(entry.isSizedByUser);
    archive.flag(entry.isSelected);
}

template <typename Archive, typename Arrangement>
void exchange(Archive& archive, Arrangement& arrangement) {
    archive.number(arrangement.canvas.width);
    archive.number(arrangement.canvas.height);
    archive.number(arrangement.scrollOrigin.x);
    archive.number(arrangement.scrollOrigin.y);
    archive.list(arrangement.entries, [&archive](auto& entry) { exchangeEntry(archive, entry); });
}

std::size_t sizeOf(const QByteArray& bytes) {
    return static_cast<std::size_t>(bytes.size());
}

/// Of what is not on the heap anyway: short texts are kept in the object.
std::size_t heapSize(const std::string& text) {
    return text.capacity() > std::string().capacity() ? text.capacity() + 1 : 0;
}

}  // namespace

TextDifference::TextDifference(const std::string& before, const std::string& after) {
    const auto [endOfPrefix, endInAfter] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto restBefore = std::make_reverse_iterator(endOfPrefix);
    const auto restAfter = std::make_reverse_iterator(endInAfter);
    const auto [suffixBefore, suffixAfter] =
        std::mismatch(before.rbegin(), restBefore, after.rbegin(), restAfter);
    m_prefix = static_cast<std::size_t>(endOfPrefix - before.begin());
    m_removed.assign(endOfPrefix, suffixBefore.base());
    m_inserted.assign(endInAfter, suffixAfter.base());
}

std::string TextDifference::applied(const std::string& before) const {
    return replaced(before, m_prefix, m_removed, m_inserted);
}

std::string TextDifference::reverted(const std::string& after) const {
    return replaced(after, m_prefix, m_inserted, m_removed);
}

std::string TextDifference::replaced(const std::string& text, std::size_t prefix,
                                     const std::string& removed, const std::string& inserted) {
    std::string result;
    result.reserve(text.size() - removed.size() + inserted.size());
    result.append(text, 0, prefix).append(inserted);
    return result.append(text, prefix + removed.size(), std::string::npos);
}

std::size_t TextDifference::size() const {
    return heapSize(m_removed) + heapSize(m_inserted);
}

QByteArray encodeArrangement(const DiagramArrangement& arrangement) {
    RecordWriter writer;
    exchange(writer, arrangement);
    return QByteArray::fromStdString(writer.take());
}

DiagramArrangement decodeArrangement(const QByteArray& bytes) {
    RecordReader reader({bytes.constData(), sizeOf(bytes)});
    DiagramArrangement arrangement;
    exchange(reader, arrangement);
    return arrangement;
}

std::size_t QueryStep::memoryUse(const QueryStep* former) const {
    std::size_t size = sizeof(QueryStep) + record.size();
    size += static_cast<std::size_t>(text().size()) * sizeof(QChar);
    for (const QueryPlace* place : {&placeBefore, &placeAfter})
        size += place->layerPath.capacity() * sizeof(long);
    const QByteArray& before = placeBefore.arrangement;
    const bool isShared =
        former && former->placeAfter.arrangement.constData() == before.constData();
    if (!isShared) size += sizeOf(before);
    if (placeAfter.arrangement.constData() != before.constData())
        size += sizeOf(placeAfter.arrangement);
    return size;
}

}  // namespace QB
