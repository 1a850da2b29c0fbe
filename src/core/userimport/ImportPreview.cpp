#include "userimport/ImportPreview.h"

#include "Messages.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"
#include "platform/CodePage949.h"
#include "userimport/DepartmentPaths.h"

#include <QSet>

#include <algorithm>

namespace sable {
namespace {

using Fate = ImportRow::Fate;

enum class Choice
{
    Empty,
    First,
    Second,
    Invalid,
};

// The two texts of a choice column, and the plain words a spreadsheet tends to hold instead.
Choice readChoice(int column, const QString& cell)
{
    const QString value = cell.trimmed().toLower();
    if (value.isEmpty())
        return Choice::Empty;
    if (value == MemberColumns::choiceText(column, true))
        return Choice::First;
    if (value == MemberColumns::choiceText(column, false))
        return Choice::Second;
    static const QSet<QString> male {QStringLiteral("남"), QStringLiteral("m"), QStringLiteral("male")};
    static const QSet<QString> female {QStringLiteral("여"), QStringLiteral("f"), QStringLiteral("female")};
    static const QSet<QString> yes {
        QStringLiteral("1"), QStringLiteral("y"), QStringLiteral("yes"), QStringLiteral("true"), QStringLiteral("o")};
    static const QSet<QString> no {
        QStringLiteral("0"), QStringLiteral("n"), QStringLiteral("no"), QStringLiteral("false"), QStringLiteral("x")};
    const bool gender = column == ColGender;
    if ((gender ? male : yes).contains(value))
        return Choice::First;
    if ((gender ? female : no).contains(value))
        return Choice::Second;
    return Choice::Invalid;
}

} // namespace

QString ImportRefusal::describe() const
{
    return field < 0 ? text : ColumnMapping::fieldName(field) + QStringLiteral(": ") + text;
}

// Decides the fate of every row against the document as it stands.
class PreviewBuilder
{
public:
    PreviewBuilder(const OrgChart& chart, const RankList& ranks, const ImportTable& table, const ColumnMapping& mapping,
        ImportPreview& preview)
        : m_chart(chart)
        , m_ranks(ranks)
        , m_table(table)
        , m_mapping(mapping)
        , m_preview(preview)
    { }

    void run()
    {
        indexIds();
        m_preview.m_rows.resize(m_table.rows.size());
        for (size_t i = 0; i < m_table.rows.size(); ++i) {
            ImportRow& row = m_preview.m_rows[i];
            evaluate(m_table.rows[i], row);
            ++m_preview.m_counts[static_cast<size_t>(row.fate)];
        }
        number();
    }

private:
    QString cell(const CsvRecord& record, int field) const
    {
        const int column = m_mapping.column(field);
        return column >= 0 && column < record.fields.size() ? record.fields[column] : QString();
    }

    void indexIds()
    {
        const OrgChart& chart = m_chart;
        m_rowById.reserve(chart.memberCount());
        // One user per login ID, whatever the letter case: "JHKIM" in the file is the user jhkim.
        for (int row = chart.memberCount() - 1; row >= 0; --row)
            m_rowById.insert(chart.member(row).MemberID.toCaseFolded(), row);
        // Lines are kept only for IDs that occur more than once: most files hold none.
        QHash<QString, int> firstLine;
        firstLine.reserve(static_cast<qsizetype>(m_table.rows.size()));
        for (const CsvRecord& record : m_table.rows) {
            const QString id = cell(record, ColMemberID).toCaseFolded();
            if (id.isEmpty())
                continue;
            const auto first = firstLine.constFind(id);
            if (first == firstLine.cend())
                firstLine.insert(id, record.line);
            else if (QList<int>& lines = m_repeatedIds[id]; lines.isEmpty())
                lines << *first << record.line;
            else
                lines << record.line;
        }
    }

    void evaluate(const CsvRecord& record, ImportRow& row)
    {
        row.line = record.line;
        const QString id = cell(record, ColMemberID);
        row.memberRow = m_rowById.value(id.toCaseFolded(), -1);
        row.member = row.memberRow >= 0 ? m_chart.member(row.memberRow) : ImportPreview::newMember();
        readMemberFields(record, row);
        if (row.memberRow >= 0)
            row.member.MemberID = m_chart.member(row.memberRow).MemberID; // the user keeps the ID's spelling
        checkRow(record, id, row);
        readPlacements(record, row);
        if (!row.refusals.empty()) {
            row.fate = Fate::Refused;
        } else if (row.memberRow < 0) {
            row.fate = Fate::New;
        } else if (!changesMember(row)) {
            row.fate = Fate::Unchanged;
        } else if (m_preview.m_mode == ImportMode::AddOnly) {
            row.refusals.push_back({ColMemberID, Msg::kDuplicateId});
            row.fate = Fate::Refused;
        } else {
            row.fate = Fate::Update;
        }
        if (row.isApplied())
            markUsed(row);
    }

    void readMemberFields(const CsvRecord& record, ImportRow& row)
    {
        for (int column = 0; column < MemberColumnCount; ++column) {
            if (!m_mapping.isMapped(column))
                continue;
            const QString value = cell(record, column);
            if (MemberColumns::isChoice(column)) {
                const Choice choice = readChoice(column, value);
                if (choice == Choice::Invalid)
                    row.refusals.push_back({column,
                        Msg::kImportBadChoice.arg(
                            MemberColumns::choiceText(column, true), MemberColumns::choiceText(column, false))});
                else if (choice != Choice::Empty)
                    MemberColumns::setText(
                        row.member, column, MemberColumns::choiceText(column, choice == Choice::First));
                continue;
            }
            const int limit = MemberColumns::byteLimit(column);
            if (limit > 0 && CodePage949::byteLength(value) > limit)
                row.refusals.push_back({column, Msg::kTooLong.arg(limit)});
            MemberColumns::setText(row.member, column, value);
        }
    }

    // The rules of a whole user, and of the row as a line of the file.
    void checkRow(const CsvRecord& record, const QString& id, ImportRow& row)
    {
        if (id.isEmpty())
            row.refusals.push_back({ColMemberID, Msg::kImportEnterId});
        if (const auto repeated = m_repeatedIds.constFind(id.toCaseFolded()); repeated != m_repeatedIds.cend()) {
            QStringList others;
            for (const int line : *repeated) {
                if (line != record.line)
                    others << QString::number(line);
            }
            row.refusals.push_back({ColMemberID, Msg::kImportIdTwice.arg(others.join(QStringLiteral(", ")))});
        }
        if (row.member.MemberName.isEmpty())
            row.refusals.push_back({ColMemberName, Msg::kImportEnterName});
        if (row.member.Passwd.isEmpty())
            row.refusals.push_back({ColPasswd, Msg::kEnterPassword});
        if (m_mapping.isMapped(ColEmail) && !row.member.Email.isEmpty() && !row.member.Email.contains(u'@'))
            row.refusals.push_back({ColEmail, Msg::kImportEmailWithoutAt});
        for (qsizetype i = m_table.columns.size(); i < record.fields.size(); ++i) {
            if (!record.fields[i].isEmpty()) {
                row.refusals.push_back(
                    {-1, Msg::kImportExtraCells.arg(record.fields.size()).arg(m_table.columns.size())});
                break;
            }
        }
    }

    void readPlacements(const CsvRecord& record, ImportRow& row)
    {
        const bool rankGiven = m_mapping.isMapped(FieldRank);
        const QList<QStringList> paths
            = m_mapping.isMapped(FieldDepartment) ? departmentsIn(cell(record, FieldDepartment)) : QList<QStringList>();
        const QStringList ranks = rankGiven ? DepartmentPaths::splitRanks(cell(record, FieldRank)) : QStringList();
        if (!ranks.isEmpty() && ranks.size() != paths.size() && (ranks.size() != 1 || paths.isEmpty())) {
            row.refusals.push_back({FieldRank, Msg::kImportRankCount.arg(paths.size()).arg(ranks.size())});
        }
        // A refused row plans no department and no rank.
        if (!row.refusals.empty())
            return;
        for (qsizetype i = 0; i < paths.size(); ++i) {
            const int department = m_preview.m_departments.resolve(paths[i]);
            if (std::any_of(row.placements.begin(), row.placements.end(),
                    [department](const ImportPlacement& p) { return p.department == department; }))
                continue;
            int rank = ImportPlacement::kRankNotGiven;
            if (rankGiven)
                rank = ranks.isEmpty() ? -1 : m_preview.m_ranks.resolve(ranks.size() == 1 ? ranks[0] : ranks[i]);
            row.placements.push_back({department, rank});
        }
    }

    // Many rows name the same departments: each cell is split once.
    QList<QStringList> departmentsIn(const QString& cell)
    {
        auto known = m_pathsByCell.constFind(cell);
        if (known == m_pathsByCell.cend())
            known = m_pathsByCell.insert(cell, DepartmentPaths::split(cell));
        return *known;
    }

    bool changesMember(const ImportRow& row) const
    {
        const OrgChart& chart = m_chart;
        if (!(row.member == chart.member(row.memberRow)))
            return true;
        for (const ImportPlacement& placement : row.placements) {
            const OrgNode* department = m_preview.m_departments.at(placement.department).node;
            const OrgNode* node = department ? chart.placementIn(department, row.member.K_MemberID) : nullptr;
            if (!node)
                return true;
            if (placement.rank == ImportPlacement::kRankNotGiven)
                continue;
            const int wanted = placement.rank < 0 ? -1 : m_preview.m_ranks.at(placement.rank).rankId;
            if ((placement.rank >= 0 && m_preview.m_ranks.at(placement.rank).bNew)
                || !RankTargets::isSame(m_ranks, node->rankId(), wanted))
                return true;
        }
        return false;
    }

    void markUsed(const ImportRow& row)
    {
        for (const ImportPlacement& placement : row.placements) {
            m_preview.m_departments.markUsed(placement.department);
            m_preview.m_ranks.markUsed(placement.rank);
        }
    }

    void number() { m_preview.finish(m_chart, m_ranks); }

    const OrgChart& m_chart;
    const RankList& m_ranks;
    const ImportTable& m_table;
    const ColumnMapping& m_mapping;
    ImportPreview& m_preview;
    QHash<QString, int> m_rowById;
    QHash<QString, QList<int>> m_repeatedIds; // the lines of each ID that the file holds more than once
    QHash<QString, QList<QStringList>> m_pathsByCell;
};

ImportPreview::ImportPreview(const OrgChart& chart, const RankList& ranks, ImportMode mode)
    : m_mode(mode)
    , m_fingerprint(fingerprintOf(chart, ranks))
    , m_departments(chart)
    , m_ranks(ranks)
{ }

ImportPreview ImportPreview::make(const OrgChart& chart, const RankList& ranks, const ImportTable& table,
    const ColumnMapping& mapping, ImportMode mode)
{
    ImportPreview preview(chart, ranks, mode);
    PreviewBuilder(chart, ranks, table, mapping, preview).run();
    return preview;
}

MemberRecord ImportPreview::newMember()
{
    // As a user typed into the entry row starts: "남자", "공개", "양력", "있음".
    MemberRecord member;
    member.Gender = 0;
    member.bPublic = true;
    member.bSolar = true;
    member.bAdmin = true;
    return member;
}

ImportPreview ImportPreview::begin(const OrgChart& chart, const RankList& ranks, ImportMode mode)
{
    return ImportPreview(chart, ranks, mode);
}

void ImportPreview::addRow(ImportRow row)
{
    ++m_counts[static_cast<size_t>(row.fate)];
    if (row.isApplied()) {
        for (const ImportPlacement& placement : row.placements) {
            m_departments.markUsed(placement.department);
            m_ranks.markUsed(placement.rank);
        }
        m_removals += static_cast<int>(row.removals.size());
    }
    m_rows.push_back(std::move(row));
}

void ImportPreview::finish(const OrgChart& chart, const RankList& ranks)
{
    m_departments.numberNew(chart.nextGroupId());
    m_ranks.numberNew(ranks.nextRankId());
    int next = chart.nextMemberId();
    for (ImportRow& row : m_rows) {
        if (row.fate == ImportRow::Fate::New)
            row.member.K_MemberID = next++;
    }
}

QStringList ImportPreview::newDepartmentPaths() const
{
    QStringList paths;
    for (int i = 0; i < static_cast<int>(m_departments.targets().size()); ++i) {
        const DepartmentTarget& target = m_departments.at(i);
        if (!target.node && target.bUsed)
            paths << m_departments.path(i);
    }
    return paths;
}

QStringList ImportPreview::newRankNames() const
{
    QStringList names;
    for (const RankTarget& target : m_ranks.targets()) {
        if (target.bNew && target.bUsed)
            names << target.name;
    }
    return names;
}

ImportPreview::Fingerprint ImportPreview::fingerprintOf(const OrgChart& chart, const RankList& ranks)
{
    return {&chart, &ranks, chart.revision(), ranks.revision()};
}

bool ImportPreview::isCurrent(const OrgChart& chart, const RankList& ranks) const
{
    return fingerprintOf(chart, ranks) == m_fingerprint;
}

} // namespace sable
