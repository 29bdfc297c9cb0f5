#include "stringifier/query_component_stringifier.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

#include "model/callbacks.h"
#include "stringifier/dialects.h"
#include "stringifier/text_buffer.h"

namespace QB {

namespace {

// In an ordinary statement.
constexpr std::size_t expectedRanges = 128;

/// Of two ranges of one component, none of which lies in the other.
bool endsBefore(QBRange a, QBRange b) {
    return std::tuple(a.location + a.length, a.location) <
           std::tuple(b.location + b.length, b.location);
}

}  // namespace

std::unique_ptr<QBQueryComponentStringifier> QBQueryComponentStringifier::createStringifier(
    QBDatabaseInfo info) {
    switch (info.databaseType) {
        case DatabaseTypeMySQL:
            return std::make_unique<QBQueryComponentStringifier_MYSQL>(info);
        case DatabaseTypePostgreSQL:
            return std::make_unique<QBQueryComponentStringifier_PGSQL>(info);
        case DatabaseTypeOracle:
            return std::make_unique<QBQueryComponentStringifier_ORA>(info);
        case DatabaseTypeSQLite:
            return std::make_unique<QBQueryComponentStringifier_SQLITE>(info);
        case DatabaseTypeSQLServer:
            return std::make_unique<QBQueryComponentStringifier_MSSQL>(info);
        case DatabaseTypeMariaDB:
            return std::make_unique<QBQueryComponentStringifier_MARIADB>(info);
        case DatabaseTypeMongoDB:
            return std::make_unique<QBQueryComponentStringifier_MONGODB>(info);
        case DatabaseTypeNone:
        case DatabaseTypeReserved:
            break;
    }
    return nullptr;
}

QBQueryComponentStringifier::QBQueryComponentStringifier(QBDatabaseInfo info)
    : m_databaseInfo(info) {}

QBQueryComponentStringifier::~QBQueryComponentStringifier() = default;

void QBQueryComponentStringifier::setCurrentSchema(const std::string& schema) {
    m_currentSchema = schema;
}

void QBQueryComponentStringifier::setQuoteName(QuoteName quote) {
    m_quoteName = std::move(quote);
}

void QBQueryComponentStringifier::setParameter(const std::string& key, const QBVariant& value) {
    m_parameters.emplace(key, value);
}

/// Writes a node into one buffer. What is still to be written is one list: a deferred piece makes
/// way for the pieces of what it stands for, so nothing is ever nested.
class QBQueryComponentStringifier::Flattening {
public:
    Flattening(QBQueryComponentStringifier& stringifier, ComponentRangeList& ranges)
        : m_stringifier(stringifier), m_pieces(stringifier.m_pieces), m_ranges(ranges) {}

    std::string run(const StringifiedNode& root) {
        StringifiedPiece* piece = start(root, nullptr);
        while (piece)
            piece = write(piece);
        return m_text.take();
    }

private:
    /// Writes the text of @p node; gives its pieces with @p rest behind them.
    StringifiedPiece* start(const StringifiedNode& node, StringifiedPiece* rest) {
        const std::size_t from = m_text.size();
        m_text.write(node.text);
        if (!node.firstPiece()) {
            if (node.component) addRange(node.component, from);
            return rest;
        }
        if (node.component) rest = closing(node.component, from, rest);
        node.lastPiece()->next = rest;
        return node.firstPiece();
    }

    StringifiedPiece* closing(const Component::AbstractQueryComponent* component, std::size_t from,
                              StringifiedPiece* rest) {
        StringifiedPiece* close = m_pieces.take();
        close->kind = StringifiedPiece::Close;
        close->subject = component;
        close->size = from;
        close->next = rest;
        return close;
    }

    /// Gives what comes after it.
    StringifiedPiece* write(StringifiedPiece* piece) {
        StringifiedPiece* next = piece->next;
        switch (piece->kind) {
            case StringifiedPiece::Text:
                m_text.write(textOf(piece));
                break;
            case StringifiedPiece::Line:
                m_text.write(textOf(piece));
                m_text.writeNewline(piece->level);
                break;
            case StringifiedPiece::Name:
                m_text.write(
                    m_stringifier.quoted(*static_cast<const std::string*>(piece->subject)));
                break;
            case StringifiedPiece::Deferred: {
                const StringifiedPiece deferred = *piece;
                m_pieces.recycle(piece);
                return start(deferred.operation(m_stringifier, deferred.subject, deferred.level),
                             next);
            }
            case StringifiedPiece::Open:
                closeOf(piece)->size = m_text.size();
                break;
            case StringifiedPiece::Close:
                addRange(static_cast<const Component::AbstractQueryComponent*>(piece->subject),
                         piece->size);
                break;
        }
        m_pieces.recycle(piece);
        return next;
    }

    static std::string_view textOf(const StringifiedPiece* piece) {
        return {static_cast<const char*>(piece->subject), piece->size};
    }

    static StringifiedPiece* closeOf(const StringifiedPiece* open) {
        return const_cast<StringifiedPiece*>(static_cast<const StringifiedPiece*>(open->subject));
    }

    void addRange(const Component::AbstractQueryComponent* component, std::size_t from) {
        m_ranges.emplace_back(component, QBRange{static_cast<std::int32_t>(from),
                                                 static_cast<std::int32_t>(m_text.size() - from)});
    }

    QBQueryComponentStringifier& m_stringifier;
    StringifiedPieces& m_pieces;
    ComponentRangeList& m_ranges;
    TextBuffer m_text;
};

std::string QBQueryComponentStringifier::flatten(StringifiedNode root, ComponentRangeList& ranges) {
    return Flattening(*this, ranges).run(root);
}

std::string QBQueryComponentStringifier::stringifyQuery(
    const Component::AbstractQueryComponent* component) {
    m_ranges.clear();
    m_pieces.clear();
    resetRun();
    ComponentRangeList ranges;
    ranges.reserve(expectedRanges);
    std::string text = flatten(stringifyComponent(component, 0, {}), ranges);
    m_ranges = std::move(ranges);
    m_pieces.clear();
    return text;
}

QBQueryComponentStringifier::Ranges QBQueryComponentStringifier::componentRanges() const {
    // Sorted first, so that every insertion goes to the end of the map, which keeps the first range
    // of a component met twice: what ended first lies before the others.
    ComponentRangeList sorted = m_ranges;
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
        if (a.first != b.first) return std::less<>()(a.first, b.first);
        return endsBefore(a.second, b.second);
    });
    Ranges ranges;
    for (const auto& [component, range] : sorted)
        ranges.emplace_hint(ranges.end(), component, range);
    return ranges;
}

std::string QBQueryComponentStringifier::quoted(const std::string& name) const {
    if (m_quoteName) return m_quoteName(name);
    return Callback::formatIdentifier(name, m_databaseInfo.databaseType,
                                      m_databaseInfo.databaseVersion);
}

const QBVariant* QBQueryComponentStringifier::parameter(const std::string& key) const {
    const auto found = m_parameters.find(key);
    return found == m_parameters.end() ? nullptr : &found->second;
}

void QBQueryComponentStringifier::resetRun() {}

}  // namespace QB
