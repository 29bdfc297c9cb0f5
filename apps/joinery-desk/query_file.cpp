#include "apps/joinery-desk/query_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <utility>

#include "apps/joinery-desk/text_file.h"
#include "hostkit/driver_description.h"

namespace QB::Desk {
namespace {

constexpr int formatVersion = 1;
const char* const formatName = "joinery-query";

QString text(const char* source) {
    return QCoreApplication::translate("QueryFile", source);
}

DatabaseType familyOfName(const QString& name) {
    for (int family = DatabaseTypeMySQL; family <= DatabaseTypeMongoDB; ++family)
        if (HostKit::familyName(static_cast<DatabaseType>(family)) == name)
            return static_cast<DatabaseType>(family);
    return DatabaseTypeNone;
}

/// Takes the members of an object one by one; from the first that is not as it should be on, there
/// is an error and nothing more is of use.
class Members {
public:
    explicit Members(const QJsonObject& object) : m_object(object) {}

    QJsonValue take(const char* name, QJsonValue::Type type) {
        const QJsonValue value = m_object.value(QLatin1String(name));
        if (value.type() == type) return value;
        const char* const reason =
            value.isUndefined() ? QT_TRANSLATE_NOOP("QueryFile", "\"%1\" is missing.")
                                : QT_TRANSLATE_NOOP("QueryFile", "\"%1\" is of a wrong type.");
        fail(text(reason).arg(QLatin1String(name)));
        return QJsonValue();
    }
    QString takeText(const char* name) { return take(name, QJsonValue::String).toString(); }
    bool has(const char* name) const { return m_object.contains(QLatin1String(name)); }
    std::optional<QString> takeOptionalText(const char* name) {
        if (!has(name)) return std::nullopt;
        return takeText(name);
    }

    void fail(const QString& reason) {
        if (m_error.isEmpty()) m_error = reason;
    }
    const QString& error() const { return m_error; }

private:
    const QJsonObject m_object;
    QString m_error;
};

void takeFormat(Members& members) {
    const QString format = members.takeText("format");
    if (members.error().isEmpty() && format != QLatin1String(formatName))
        members.fail(text(QT_TRANSLATE_NOOP("QueryFile", "It holds something else.")));
    const double version = members.take("version", QJsonValue::Double).toDouble();
    if (version > formatVersion)
        members.fail(text(QT_TRANSLATE_NOOP("QueryFile",
                                            "A newer version of Joinery has written it: its "
                                            "format is %1, and this one reads %2."))
                         .arg(version)
                         .arg(formatVersion));
    if (version != formatVersion)
        members.fail(text(QT_TRANSLATE_NOOP("QueryFile", "There is no format %1.")).arg(version));
}

DatabaseType takeFamily(Members& members) {
    const QString name = members.takeText("family");
    const DatabaseType family = familyOfName(name);
    if (family == DatabaseTypeNone)
        members.fail(
            text(QT_TRANSLATE_NOOP("QueryFile", "There is no database family \"%1\".")).arg(name));
    return family;
}

QString takeDatabase(Members& members, const QDir& folder) {
    const QString path = members.takeOptionalText("database").value_or(QString());
    return path.isEmpty() ? path : QDir::cleanPath(folder.absoluteFilePath(path));
}

/// A number that is none fits no list, and so does no harm.
std::vector<int> takeListSizes(Members& members) {
    std::vector<int> sizes;
    if (!members.has("listSizes")) return sizes;
    const QJsonArray values = members.take("listSizes", QJsonValue::Array).toArray();
    for (const QJsonValue& value : values)
        sizes.push_back(value.toInt(-1));
    return sizes;
}

QMap<QString, QVariant> takePreferences(Members& members) {
    const QJsonObject object = members.take("preferences", QJsonValue::Object).toObject();
    for (const QJsonValue& value : object)
        if (value.isObject() || value.isArray() || value.isNull())
            members.fail(text(QT_TRANSLATE_NOOP("QueryFile", "\"%1\" is of a wrong type."))
                             .arg(QStringLiteral("preferences")));
    return object.toVariantMap();
}

/// Returns: what is wrong, or empty.
QString takeDocument(const QJsonObject& object, const QDir& folder, QueryDocument& document) {
    Members members(object);
    takeFormat(members);
    document.family = takeFamily(members);
    document.schema = members.takeText("schema");
    document.database = takeDatabase(members, folder);
    document.sql = members.takeText("sql");
    document.text = members.takeOptionalText("text");
    document.listSizes = takeListSizes(members);
    const QJsonArray layouts = members.take("layouts", QJsonValue::Array).toArray();
    document.layouts = QString::fromUtf8(QJsonDocument(layouts).toJson(QJsonDocument::Compact));
    document.preferences = takePreferences(members);
    document.file = members.takeOptionalText("file").value_or(QString());
    document.fileTime = QDateTime::fromString(
        members.takeOptionalText("fileTime").value_or(QString()), Qt::ISODateWithMs);
    return members.error();
}

QString notJson(const QByteArray& bytes, const QJsonParseError& error) {
    return text(QT_TRANSLATE_NOOP("QueryFile", "It is damaged in line %1 (%2)."))
        .arg(bytes.left(error.offset).count('\n') + 1)
        .arg(error.errorString());
}

QString relativeIfBelow(const QDir& folder, const QString& path) {
    const QString root = folder.absolutePath() + QLatin1Char('/');
    return path.startsWith(root) ? path.mid(root.size()) : path;
}

QJsonArray encoded(const std::vector<int>& sizes) {
    QJsonArray values;
    for (const int size : sizes)
        values.append(size);
    return values;
}

QByteArray encoded(const QueryDocument& document, const QDir& folder) {
    QJsonObject object;
    object[QLatin1String("format")] = QLatin1String(formatName);
    object[QLatin1String("version")] = formatVersion;
    object[QLatin1String("family")] = HostKit::familyName(document.family);
    object[QLatin1String("schema")] = document.schema;
    object[QLatin1String("database")] = relativeIfBelow(folder, document.database);
    object[QLatin1String("sql")] = document.sql;
    if (document.text) object[QLatin1String("text")] = *document.text;
    if (!document.listSizes.empty())
        object[QLatin1String("listSizes")] = encoded(document.listSizes);
    object[QLatin1String("layouts")] = QJsonDocument::fromJson(document.layouts.toUtf8()).array();
    object[QLatin1String("preferences")] = QJsonObject::fromVariantMap(document.preferences);
    if (!document.file.isEmpty()) {
        object[QLatin1String("file")] = document.file;
        object[QLatin1String("fileTime")] = document.fileTime.toUTC().toString(Qt::ISODateWithMs);
    }
    return QJsonDocument(object).toJson();
}

}  // namespace

bool isQueryFileName(const QString& path) {
    return QFileInfo(path).suffix().compare(QLatin1String("joinery"), Qt::CaseInsensitive) == 0;
}

QString readQueryFile(const QString& path, QueryDocument& document) {
    QByteArray bytes;
    const QString obstacle = readTextFile(path, largestQueryFile, bytes);
    if (!obstacle.isEmpty()) return obstacle;
    QJsonParseError parsed;
    const QJsonDocument json = QJsonDocument::fromJson(bytes, &parsed);
    QueryDocument read;
    const QString reason = parsed.error == QJsonParseError::NoError
                               ? takeDocument(json.object(), QFileInfo(path).dir(), read)
                               : notJson(bytes, parsed);
    if (!reason.isEmpty())
        return text(QT_TRANSLATE_NOOP("QueryFile", "\"%1\" is not a query of Joinery. %2"))
            .arg(QDir::toNativeSeparators(path), reason);
    document = std::move(read);
    return QString();
}

QString writeQueryFile(const QString& path, const QueryDocument& document) {
    return writeTextFile(path, encoded(document, QFileInfo(path).dir()));
}

}  // namespace QB::Desk
