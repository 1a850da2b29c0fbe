#include "document/RestorePoints.h"

#include "document/ChartJson.h"
#include "platform/Gzip.h"
#include "platform/PrivateFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSaveFile>

namespace sable {
namespace {

const QString kSuffix = QStringLiteral(".json.gz");
constexpr qint64 kHeaderLimit = 64 * 1024;
constexpr qint64 kFileLimit = qint64(4) * 1024 * 1024 * 1024;

QJsonObject metaOf(const RestorePoint& point)
{
    return {{QStringLiteral("savedAt"), point.savedAt.toUTC().toString(Qt::ISODateWithMs)},
        {QStringLiteral("user"), point.author.user}, {QStringLiteral("host"), point.author.host},
        {QStringLiteral("program"), point.author.program},
        {QStringLiteral("changes"), QJsonArray::fromStringList(point.changes)}};
}

void readMeta(const QJsonObject& meta, QDateTime& savedAt, SaveAuthor& author, QStringList& changes)
{
    savedAt = QDateTime::fromString(meta.value(QStringLiteral("savedAt")).toString(), Qt::ISODateWithMs);
    author = {meta.value(QStringLiteral("user")).toString(), meta.value(QStringLiteral("host")).toString(),
        meta.value(QStringLiteral("program")).toString()};
    changes.clear();
    for (const QJsonValue& line : meta.value(QStringLiteral("changes")).toArray())
        changes << line.toString();
}

QJsonArray userDataJson(const UserData& data)
{
    QJsonArray tables;
    for (const UserDataRows& table : data) {
        QJsonArray rows;
        for (const QVariantList& row : table.rows)
            rows.append(QJsonArray::fromVariantList(row));
        tables.append(QJsonObject {{QStringLiteral("table"), table.table},
            {QStringLiteral("columns"), QJsonArray::fromStringList(table.columns)}, {QStringLiteral("rows"), rows}});
    }
    return tables;
}

// Only the server's per-user tables and their own columns are put back, whatever the file says.
std::optional<UserData> userDataFrom(const QJsonArray& tables)
{
    static const QRegularExpression name(QStringLiteral("^SD_(Antenna|MyMember|MyGroup|LeavedMemo)$"));
    static const QRegularExpression column(QStringLiteral("^[A-Za-z_]+$"));
    UserData data;
    for (const QJsonValue& value : tables) {
        const QJsonObject table = value.toObject();
        UserDataRows rows {table.value(QStringLiteral("table")).toString(), {}, {}};
        for (const QJsonValue& c : table.value(QStringLiteral("columns")).toArray())
            rows.columns << c.toString();
        if (!name.match(rows.table).hasMatch() || rows.columns.isEmpty()
            || rows.columns.filter(column).size() != rows.columns.size())
            return std::nullopt;
        for (const QJsonValue& row : table.value(QStringLiteral("rows")).toArray()) {
            const QVariantList values = row.toArray().toVariantList();
            if (values.size() != rows.columns.size())
                return std::nullopt;
            rows.rows.push_back(values);
        }
        data.push_back(std::move(rows));
    }
    return data;
}

QString fileNameFor(const RestorePoint& point)
{
    QString user = point.author.user;
    user.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9._-]")), QStringLiteral("_"));
    return point.savedAt.toUTC().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")) + u'-'
        + (user.isEmpty() ? QStringLiteral("unknown") : user) + kSuffix;
}

} // namespace

RestorePoints::RestorePoints(QString folder, int kept)
    : m_folder(std::move(folder))
    , m_kept(std::max(1, kept))
{ }

QString RestorePoints::defaultFolder(const QString& home)
{
    return QDir(home).filePath(QStringLiteral("backups"));
}

bool RestorePoints::prepare(QString* problem) const
{
    QDir dir(m_folder);
    // Restore points hold every user's data: their folder is its owner's only, like the files.
    if (!dir.exists() && !PrivateFiles::makePath(m_folder)) {
        *problem = m_folder;
        return false;
    }
    // A folder that exists can still refuse files (its rights, a full disk): try one.
    QSaveFile probe(dir.filePath(QStringLiteral(".write-test")));
    if (!probe.open(QIODevice::WriteOnly) || probe.write("x", 1) != 1) {
        *problem = m_folder + QStringLiteral(": ") + probe.errorString();
        return false;
    }
    probe.cancelWriting();
    return true;
}

bool RestorePoints::write(const RestorePoint& point, QString* problem) const
{
    QByteArray head = "{\"restorePoint\": " + QJsonDocument(metaOf(point)).toJson(QJsonDocument::Compact) + ",\n";
    head += "\"userData\": " + QJsonDocument(userDataJson(point.userData)).toJson(QJsonDocument::Compact) + ",\n";
    head += "\"chart\": ";
    QSaveFile file(QDir(m_folder).filePath(fileNameFor(point)));
    // What the server's users typed lives in these files: for the owner's eyes only.
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        *problem = file.fileName() + QStringLiteral(": ") + file.errorString();
        return false;
    }
    // Packed as it is written: the text of a large chart is never held whole beside the chart.
    Gzip::Writer gzip(file);
    if (gzip.write(head) != head.size() || !ChartJson::write(point.tables, gzip) || gzip.write("}\n", 2) != 2
        || !gzip.finish() || !file.commit()) {
        *problem = file.fileName() + QStringLiteral(": ") + file.errorString();
        return false;
    }
    prune();
    return true;
}

void RestorePoints::prune() const
{
    QDir dir(m_folder);
    const QStringList files = dir.entryList({u'*' + kSuffix}, QDir::Files, QDir::Name | QDir::Reversed);
    for (qsizetype i = m_kept; i < files.size(); ++i)
        dir.remove(files[i]);
}

std::vector<RestorePointInfo> RestorePoints::list() const
{
    std::vector<RestorePointInfo> points;
    QDir dir(m_folder);
    for (const QString& name : dir.entryList({u'*' + kSuffix}, QDir::Files, QDir::Name | QDir::Reversed)) {
        const QString path = dir.filePath(name);
        std::optional<QByteArray> line = Gzip::firstLine(path, kHeaderLimit);
        if (!line || !line->endsWith(','))
            continue;
        line->chop(1);
        const QJsonObject header = QJsonDocument::fromJson(*line + '}').object();
        if (!header.contains(QStringLiteral("restorePoint")))
            continue;
        RestorePointInfo info {path, {}, {}, {}};
        readMeta(header.value(QStringLiteral("restorePoint")).toObject(), info.savedAt, info.author, info.changes);
        points.push_back(std::move(info));
    }
    return points;
}

std::optional<RestorePoint> RestorePoints::read(const QString& path, QString* problem)
{
    const auto fail = [&](const QString& why) {
        *problem = QFileInfo(path).fileName() + QStringLiteral(": ") + why;
        return std::nullopt;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const std::optional<QByteArray> json = Gzip::decompress(file.readAll(), kFileLimit);
    if (!json)
        return fail(QStringLiteral("not a gzip file, or a damaged one"));
    QJsonParseError parse;
    const QJsonObject root = QJsonDocument::fromJson(*json, &parse).object();
    if (parse.error != QJsonParseError::NoError || !root.contains(QStringLiteral("restorePoint")))
        return fail(QStringLiteral("not a restore point (%1)").arg(parse.errorString()));
    RestorePoint point;
    readMeta(root.value(QStringLiteral("restorePoint")).toObject(), point.savedAt, point.author, point.changes);
    const std::optional<UserData> userData = userDataFrom(root.value(QStringLiteral("userData")).toArray());
    if (!userData)
        return fail(QStringLiteral("the per-user rows are not in the expected form"));
    point.userData = *userData;
    QString chartProblem;
    std::optional<ChartTables> tables = ChartJson::read(root.value(QStringLiteral("chart")).toObject(), &chartProblem);
    if (!tables)
        return fail(chartProblem);
    point.tables = std::move(*tables);
    return point;
}

} // namespace sable
