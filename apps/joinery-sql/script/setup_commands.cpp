// What a script works on: server family, tables, files.

#include <QFile>

#include "apps/joinery-sql/dialect_names.h"
#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/text_files.h"

namespace QB::Cli {
namespace {

constexpr std::string_view sqliteMark("SQLite format 3\0", 16);

DeclaredSchema& declaredSchema(const Session& session) {
    session.engine();
    if (!session.declaredSchema()) throw Refusal("the tables come from the open database");
    return *session.declaredSchema();
}

struct QualifiedField {
    QBIdentifierObjectPath table;
    std::string field;
};

QualifiedField takeQualifiedField(const Call& call) {
    const FieldName name = call.words.field("a field");
    if (name.field.empty()) throw Refusal("a key has fields, no *");
    return {call.session.objectPath(name.source), name.field};
}

void takeArrow(Words& words) {
    // Some dialects know the arrow as one word, others do not.
    if (words.skip("->") || (words.skip("-") && words.skip(">"))) return;
    throw Refusal("expected -> between the two fields");
}

bool isDatabase(const QString& file) {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = source.read(static_cast<qint64>(sqliteMark.size()));
    return std::string_view(head.constData(), static_cast<std::size_t>(head.size())) == sqliteMark;
}

}  // namespace

std::string setDialect(Call& call) {
    const std::string name = call.words.keyword("the name of a dialect");
    const auto family = dialectOfName(name);
    if (!family) throw Refusal("there is no dialect " + name + ": one of " + dialectNames());
    const int version = call.words.isAtEnd() ? 0 : call.words.number("a version");
    call.words.end();
    call.session.start(*family, version);
    return {};
}

std::string setSchema(Call& call) {
    const std::string name = call.words.isAtEnd() ? std::string() : call.words.name("a schema");
    call.words.end();
    call.session.engine()->setCurrentSchema(name);
    return {};
}

std::string declareTable(Call& call) {
    DeclaredSchema& declared = declaredSchema(call.session);
    const QBIdentifierObjectPath path = call.session.objectPath(call.words.path("a table"));
    std::vector<std::string> fields;
    do {
        fields.push_back(call.words.name("the name of a field"));
    } while (!call.words.isAtEnd());
    declared.addTable(path, fields);
    return {};
}

std::string declareKey(Call& call) {
    DeclaredSchema& declared = declaredSchema(call.session);
    DeclaredSchema::Key key;
    do {
        const QualifiedField from = takeQualifiedField(call);
        takeArrow(call.words);
        const QualifiedField to = takeQualifiedField(call);
        const bool isFirst = key.fields.empty();
        if (!isFirst && !(from.table == key.from && to.table == key.to))
            throw Refusal("all fields of a key lie in the same two tables");
        key.from = from.table;
        key.to = to.table;
        key.fields.emplace_back(from.field, to.field);
    } while (call.words.skip(","));
    call.words.end();
    declared.addKey(key);
    return {};
}

std::string openFile(Call& call) {
    const std::string name = call.words.rest("the name of a file");
    // File names carry bytes, one a character.
    const QString file = call.session.pathOf(QString::fromLatin1(name.c_str()));
    if (isDatabase(file)) {
        call.session.openDatabase(file);
        return {};
    }
    std::string text;
    const QString problem = readText(file, text);
    if (!problem.isEmpty())
        throw Refusal("cannot read " + name + ": " + problem.toLatin1().toStdString());
    try {
        call.session.parse(text);
    } catch (const Refusal& refusal) {
        throw Refusal(name + " is no SQLite database, and as a query: " + refusal.what());
    }
    return {};
}

std::string parseText(Call& call) {
    if (call.block) {
        call.words.end();
        call.session.parse(*call.block);
    } else {
        call.session.parse(call.words.rest("a SELECT statement"));
    }
    return {};
}

}  // namespace QB::Cli
