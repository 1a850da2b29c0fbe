#include "document/ChartJson.h"

#include "document/ChartFileCheck.h"
#include "document/JsonSliceReader.h"
#include "platform/PrivateFiles.h"

#include <QBuffer>
#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringEncoder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace sable::ChartJson {
namespace {

// --- Writing: streamed, a row a line, so that a large chart needs no document tree in memory ---

// Bytes gathered before they go to the device: the file is written as it is made, never held whole.
constexpr qsizetype kFlushAt = 256 * 1024;

class JsonWriter
{
public:
    explicit JsonWriter(QIODevice& device)
        : m_device(device)
    {
        m_out.reserve(static_cast<size_t>(kFlushAt) + 4096);
    }
    void beginArray(const char* name)
    {
        m_out += m_bFirstArray ? "{\n" : "\n  ],\n";
        m_out += "  \"";
        m_out += name;
        m_out += "\": [";
        m_bFirstArray = false;
        m_bFirstRow = true;
    }
    void beginRow()
    {
        m_out += m_bFirstRow ? "\n    {" : ",\n    {";
        m_bFirstRow = false;
        m_bFirstField = true;
    }
    void field(const char* name, int value)
    {
        key(name);
        char digits[16];
        const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        m_out.append(digits, static_cast<size_t>(end - digits));
    }
    void field(const char* name, const QString& value)
    {
        key(name);
        string(value);
    }
    void endRow()
    {
        m_out += '}';
        if (m_out.size() >= static_cast<size_t>(kFlushAt))
            flush();
    }
    // False when the device refused a write.
    bool finish()
    {
        m_out += "\n  ]\n}\n";
        flush();
        return m_bOk;
    }

private:
    void flush()
    {
        if (m_bOk && !PrivateFiles::writeAll(m_device, m_out.data(), static_cast<qint64>(m_out.size())))
            m_bOk = false;
        m_out.clear(); // keeps the capacity for the next rows
    }
    void key(const char* name)
    {
        m_out += m_bFirstField ? "\"" : ", \"";
        m_out += name;
        m_out += "\": ";
        m_bFirstField = false;
    }
    void escape(unsigned char c)
    {
        switch (c) {
        case '"':
            m_out += "\\\"";
            break;
        case '\\':
            m_out += "\\\\";
            break;
        case '\n':
            m_out += "\\n";
            break;
        case '\r':
            m_out += "\\r";
            break;
        case '\t':
            m_out += "\\t";
            break;
        default:
            m_out += "\\u00";
            m_out += "0123456789abcdef"[c >> 4];
            m_out += "0123456789abcdef"[c & 15];
        }
    }
    void string(const QString& value)
    {
        m_out += '"';
        // Encoded straight into the buffer (three bytes at most for each UTF-16 unit); most texts need
        // no escape and stay as they were encoded.
        const size_t start = m_out.size();
        m_out.resize(start + static_cast<size_t>(value.size()) * 3);
        char* end = m_encoder.appendToBuffer(m_out.data() + start, value);
        m_out.resize(static_cast<size_t>(end - m_out.data()));
        if (m_encoder.hasError()) {
            // Half a surrogate pair: written as every other conversion of the program writes it.
            m_encoder.resetState();
            m_out.resize(start);
            const QByteArray utf8 = value.toUtf8();
            m_out.append(utf8.constData(), static_cast<size_t>(utf8.size()));
        }
        const auto needsEscape = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; };
        if (std::any_of(m_out.cbegin() + static_cast<std::ptrdiff_t>(start), m_out.cend(), needsEscape)) {
            const std::string utf8 = m_out.substr(start);
            m_out.resize(start);
            escaped(utf8);
        }
        m_out += '"';
    }
    void escaped(std::string_view utf8)
    {
        // Runs of bytes that need no escape are copied at once.
        size_t plain = 0;
        for (size_t i = 0; i < utf8.size(); ++i) {
            const auto c = static_cast<unsigned char>(utf8[i]);
            if (c >= 0x20 && c != '"' && c != '\\')
                continue;
            m_out.append(utf8.substr(plain, i - plain));
            escape(c);
            plain = i + 1;
        }
        m_out.append(utf8.substr(plain));
    }

    QIODevice& m_device;
    // A standard string: its appends of a few bytes cost a fraction of QByteArray's, and a file
    // is made of little else.
    std::string m_out;
    // Stateless: half a surrogate pair at the end of one text must not reach into the next.
    QStringEncoder m_encoder {QStringEncoder::Utf8, QStringEncoder::Flag::Stateless};
    bool m_bFirstArray = true;
    bool m_bFirstRow = true;
    bool m_bFirstField = true;
    bool m_bOk = true;
};

void writeAuthorities(JsonWriter& json, const char* name, const char* grantee, const std::vector<AuthorityRecord>& list)
{
    json.beginArray(name);
    for (const AuthorityRecord& a : list) {
        json.beginRow();
        json.field("K_FolderID", a.K_FolderID);
        json.field(grantee, a.grantee);
        json.field("Authority", FileBoxLists::levelToText(a.level));
        json.endRow();
    }
}

// --- Reading ---------------------------------------------------------------------------------------

// Reads the fields of one row, remembering the first problem with its place.
class RowReader
{
public:
    RowReader(const QJsonValue& row, const QString& place, QString* error)
        : m_row(row.toObject())
        , m_place(place)
        , m_error(error)
    {
        if (!row.isObject())
            fail(QStringLiteral("%1: expected an object").arg(place));
    }
    int number(const char* name)
    {
        const QJsonValue value = m_row.value(QLatin1String(name));
        const double number = value.toDouble();
        if (!value.isDouble() || number != std::trunc(number)) {
            fail(QStringLiteral("%1.%2: expected a whole number").arg(m_place, QLatin1String(name)));
            return 0;
        }
        // Every identifier and position is a 32-bit column: a larger number would be stored cut.
        if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
            fail(QStringLiteral("%1.%2: %3 is outside the 32-bit range")
                     .arg(m_place, QLatin1String(name), QString::number(number, 'f', 0)));
            return 0;
        }
        return static_cast<int>(number);
    }
    QString text(const char* name)
    {
        const QJsonValue value = m_row.value(QLatin1String(name));
        if (!value.isString())
            fail(QStringLiteral("%1.%2: expected a string").arg(m_place, QLatin1String(name)));
        return value.toString();
    }
    bool ok() const { return m_error->isEmpty(); }

private:
    void fail(const QString& problem)
    {
        if (m_error->isEmpty())
            *m_error = problem;
    }

    QJsonObject m_row;
    QString m_place;
    QString* m_error;
};

MemberRecord readMember(RowReader& row)
{
    MemberRecord m;
    m.K_MemberID = row.number("K_MemberID");
    m.MemberID = row.text("MemberID");
    m.MemberName = row.text("MemberName");
    m.Passwd = row.text("Passwd");
    m.Gender = row.number("Gender") == 0 ? 0 : 1;
    m.bPublic = row.number("bPublic") != 0;
    m.Email = row.text("Email");
    m.HP = row.text("HP");
    m.Address = row.text("Address");
    m.HomePhone = row.text("HomePhone");
    m.OfficePhone = row.text("OfficePhone");
    m.BirthDay = row.text("BirthDay");
    m.Description = row.text("Description");
    m.bSolar = row.number("bSolar") != 0;
    m.bAdmin = row.number("bAdmin") != 0;
    return m;
}

// One array of the file and what a row of it adds to the tables.
struct ArrayKind
{
    const char* name;
    bool bOptional; // files written before the directory sync have no links: none are kept
    void (*read)(RowReader& row, ChartTables& tables);
};

const std::vector<ArrayKind>& arrayKinds()
{
    static const std::vector<ArrayKind> kinds = {
        {"members", false, [](RowReader& row, ChartTables& t) { t.members.push_back(readMember(row)); }},
        {"groups", false,
            [](RowReader& row, ChartTables& t) {
                t.groups.push_back({row.number("K_GroupID"), row.text("GroupName"), row.number("K_GroupID_P"),
                    row.number("Position"), row.number("Depth")});
            }},
        {"relations", false,
            [](RowReader& row, ChartTables& t) {
                t.relations.push_back({row.number("K_MemberID"), row.number("K_GroupID"), row.number("K_RankID"),
                    row.number("Position")});
            }},
        {"ranks", false,
            [](RowReader& row, ChartTables& t) {
                t.ranks.insert(t.ranks.count(), {row.number("K_RankID"), row.text("RankName")});
            }},
        {"folders", false,
            [](RowReader& row, ChartTables& t) {
                t.fileBox.folders.push_back({row.number("K_FolderID"), row.text("FolderPath")});
            }},
        {"groupAuthorities", false,
            [](RowReader& row, ChartTables& t) {
                t.fileBox.groupAuthorities.push_back({row.number("K_FolderID"), row.number("K_GroupID"),
                    FileBoxLists::levelFromText(row.text("Authority"))});
            }},
        {"userAuthorities", false,
            [](RowReader& row, ChartTables& t) {
                t.fileBox.userAuthorities.push_back({row.number("K_FolderID"), row.number("K_MemberID"),
                    FileBoxLists::levelFromText(row.text("Authority"))});
            }},
        {"directoryLinks", true,
            [](RowReader& row, ChartTables& t) {
                t.links.set(row.number("K_MemberID"), DirectoryLink {row.text("EntryID"), row.text("EntryDN")});
            }},
    };
    return kinds;
}

QString rowPlace(const ArrayKind& kind, qsizetype index)
{
    return QStringLiteral("%1[%2]").arg(QLatin1String(kind.name)).arg(index);
}

QString notAnArray(const ArrayKind& kind)
{
    return QStringLiteral("%1: expected an array").arg(QLatin1String(kind.name));
}

// Departments arrive as a load reads them: ordered by Depth, then Position.
void orderAsLoaded(ChartTables& tables)
{
    std::stable_sort(tables.groups.begin(), tables.groups.end(), [](const GroupRow& a, const GroupRow& b) {
        return std::pair(a.Depth, a.Position) < std::pair(b.Depth, b.Position);
    });
}

// Reads the rows of one array from the stream, each element parsed on its own.
bool readStreamedRows(JsonSliceReader& in, const ArrayKind& kind, ChartTables& tables, QString* error)
{
    if (!in.beginArray()) {
        *error = in.failed() ? in.error() : notAnArray(kind);
        return false;
    }
    QByteArray text;
    qint64 offset = 0;
    for (qsizetype i = 0; in.nextElement(&text, &offset); ++i) {
        QJsonParseError parse;
        const QJsonDocument element = QJsonDocument::fromJson(text, &parse);
        if (parse.error != QJsonParseError::NoError && text.startsWith('{')) {
            *error = QStringLiteral("not JSON at offset %1: %2").arg(offset + parse.offset).arg(parse.errorString());
            return false;
        }
        RowReader row(element.isObject() ? QJsonValue(element.object()) : QJsonValue(), rowPlace(kind, i), error);
        kind.read(row, tables);
        if (!row.ok())
            return false;
    }
    *error = in.error();
    return !in.failed();
}

} // namespace

QByteArray write(const ChartTables& tables)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    write(tables, buffer);
    return bytes;
}

bool write(const ChartTables& tables, QIODevice& out)
{
    JsonWriter json(out);
    json.beginArray("groups");
    for (const GroupRow& g : tables.groups) {
        json.beginRow();
        json.field("K_GroupID", g.K_GroupID);
        json.field("GroupName", g.GroupName);
        json.field("K_GroupID_P", g.K_GroupID_P);
        json.field("Position", g.Position);
        json.field("Depth", g.Depth);
        json.endRow();
    }
    json.beginArray("members");
    for (const MemberRecord& m : tables.members) {
        json.beginRow();
        json.field("K_MemberID", m.K_MemberID);
        json.field("MemberID", m.MemberID);
        json.field("MemberName", m.MemberName);
        json.field("Passwd", m.Passwd);
        json.field("Gender", m.Gender);
        json.field("bPublic", m.bPublic ? 1 : 0);
        json.field("Email", m.Email);
        json.field("HP", m.HP);
        json.field("Address", m.Address);
        json.field("HomePhone", m.HomePhone);
        json.field("OfficePhone", m.OfficePhone);
        json.field("BirthDay", m.BirthDay);
        json.field("Description", m.Description);
        json.field("bSolar", m.bSolar ? 1 : 0);
        json.field("bAdmin", m.bAdmin ? 1 : 0);
        json.endRow();
    }
    json.beginArray("relations");
    for (const RelationRow& r : tables.relations) {
        json.beginRow();
        json.field("K_MemberID", r.K_MemberID);
        json.field("K_GroupID", r.K_GroupID);
        json.field("K_RankID", r.K_RankID);
        json.field("Position", r.Position);
        json.endRow();
    }
    json.beginArray("ranks");
    for (const RankRecord& rank : tables.ranks.ranks()) {
        json.beginRow();
        json.field("K_RankID", rank.K_RankID);
        json.field("RankName", rank.RankName);
        json.endRow();
    }
    json.beginArray("folders");
    for (const FolderRecord& folder : tables.fileBox.folders) {
        json.beginRow();
        json.field("K_FolderID", folder.K_FolderID);
        json.field("FolderPath", folder.FolderPath);
        json.endRow();
    }
    writeAuthorities(json, "groupAuthorities", "K_GroupID", tables.fileBox.groupAuthorities);
    writeAuthorities(json, "userAuthorities", "K_MemberID", tables.fileBox.userAuthorities);
    json.beginArray("directoryLinks");
    QList<int> linked = tables.links.all().keys();
    std::sort(linked.begin(), linked.end());
    for (const int memberId : linked) {
        const DirectoryLink* link = tables.links.find(memberId);
        json.beginRow();
        json.field("K_MemberID", memberId);
        json.field("EntryID", link->entryId);
        json.field("EntryDN", link->dn);
        json.endRow();
    }
    return json.finish();
}

std::optional<ChartTables> read(const QJsonObject& root, QString* error)
{
    error->clear();
    ChartTables tables;
    for (const ArrayKind& kind : arrayKinds()) {
        const QJsonValue array = root.value(QLatin1String(kind.name));
        if (kind.bOptional && array.isUndefined())
            continue;
        if (!array.isArray()) {
            *error = notAnArray(kind);
            return std::nullopt;
        }
        const QJsonArray rows = array.toArray();
        for (qsizetype i = 0; i < rows.size(); ++i) {
            RowReader row(rows[i], rowPlace(kind, i), error);
            kind.read(row, tables);
            if (!row.ok())
                return std::nullopt;
        }
    }
    orderAsLoaded(tables);
    return tables;
}

std::optional<ChartTables> readFile(QIODevice& in, QString* error)
{
    error->clear();
    ChartTables tables;
    JsonSliceReader json(in);
    if (!json.beginObject()) {
        *error = json.error();
        return std::nullopt;
    }
    QSet<QString> seen;
    QString key;
    while (json.nextKey(&key)) {
        const auto kind = std::find_if(arrayKinds().begin(), arrayKinds().end(),
            [&key](const ArrayKind& k) { return key == QLatin1String(k.name); });
        if (kind == arrayKinds().end()) {
            if (!json.skipValue())
                break;
            continue;
        }
        if (seen.contains(key)) {
            *error = QStringLiteral("%1: the array appears twice").arg(key);
            return std::nullopt;
        }
        seen.insert(key);
        if (!readStreamedRows(json, *kind, tables, error))
            return std::nullopt;
    }
    if (json.failed() || !json.atEnd()) {
        *error = json.error();
        return std::nullopt;
    }
    for (const ArrayKind& kind : arrayKinds()) {
        if (!kind.bOptional && !seen.contains(QLatin1String(kind.name))) {
            *error = notAnArray(kind);
            return std::nullopt;
        }
    }
    const QStringList problems = ChartFileCheck::problems(tables);
    if (!problems.isEmpty()) {
        *error = problems.join(QStringLiteral("; "));
        return std::nullopt;
    }
    orderAsLoaded(tables);
    return tables;
}

} // namespace sable::ChartJson
