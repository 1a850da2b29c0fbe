#include "document/RestorePoints.h"

#include "document/ChartJson.h"
#include "document/MergeEdits.h"
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

QString timeText(const QDateTime& savedAt)
{
    return savedAt.toUTC().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
}

QString fileNameFor(const RestorePoint& point)
{
    QString user = point.author.user;
    user.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9._-]")), QStringLiteral("_"));
    return timeText(point.savedAt) + u'-' + (user.isEmpty() ? QStringLiteral("unknown") : user) + kSuffix;
}

// The points of the folder of `path` that saves after `savedAt` wrote, oldest first. Files not named
// as a save names its point are none of them.
QStringList newerPoints(const QString& path, const QDateTime& savedAt)
{
    static const QRegularExpression named(QStringLiteral("^\\d{8}-\\d{6}-\\d{3}-"));
    const QFileInfo self(path);
    const QDir dir = self.absoluteDir();
    const QString after = timeText(savedAt);
    QStringList newer;
    for (const QString& name : dir.entryList({u'*' + kSuffix}, QDir::Files, QDir::Name)) {
        const QFileInfo file(dir.filePath(name));
        if (named.match(name).hasMatch() && name.left(after.size()) > after && file != self)
            newer << file.filePath();
    }
    return newer;
}

// Only the per-user rows of the point in `path`: the lines before its chart, which stays packed.
std::optional<UserData> readUserData(const QString& path, QString* problem)
{
    const auto fail = [&](const QString& why) {
        *problem = QFileInfo(path).fileName() + QStringLiteral(": ") + why;
        return std::nullopt;
    };
    std::optional<QByteArray> head = Gzip::firstLines(path, 2, kFileLimit);
    if (!head)
        return fail(QStringLiteral("not a gzip file, or a damaged one"));
    if (head->endsWith(','))
        head->chop(1);
    QJsonParseError parse;
    const QJsonObject root = QJsonDocument::fromJson(*head + '}', &parse).object();
    if (parse.error != QJsonParseError::NoError || !root.contains(QStringLiteral("restorePoint"))
        || !root.contains(QStringLiteral("userData")))
        return fail(QStringLiteral("not a restore point (%1)").arg(parse.errorString()));
    std::optional<UserData> rows = userDataFrom(root.value(QStringLiteral("userData")).toArray());
    if (!rows)
        return fail(QStringLiteral("the per-user rows are not in the expected form"));
    return rows;
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
        || !gzip.finish() || !PrivateFiles::commit(file)) {
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

std::optional<RestorePoint> RestorePoints::readForRestore(
    const QString& path, QString* problem, QString* unreadableNewer)
{
    std::optional<RestorePoint> point = read(path, problem);
    if (!point)
        return std::nullopt;
    QSet<int> members;
    for (const MemberRecord& member : point->tables.members)
        members.insert(member.K_MemberID);
    for (const QString& newer : newerPoints(path, point->savedAt)) {
        const std::optional<UserData> rows = readUserData(newer, problem);
        if (!rows) {
            *unreadableNewer = newer;
            return std::nullopt;
        }
        for (UserDataRows& table : MergeEdits::rowsToPutBack(*rows, members, members))
            point->userData.push_back(std::move(table));
    }
    return point;
}

} // namespace sable
