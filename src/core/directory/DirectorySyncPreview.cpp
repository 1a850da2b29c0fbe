#include "directory/DirectorySyncPreview.h"

#include "Messages.h"
#include "directory/PasswordGenerator.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"
#include "platform/CodePage949.h"

#include <QSet>

#include <algorithm>

namespace sable {
namespace {

using Fate = ImportRow::Fate;

// Login IDs are one user's however they are spelt: "JHKIM" and "jhkim" meet.
QString idKey(const QString& id)
{
    return id.toCaseFolded();
}

QString joined(const QStringList& texts)
{
    return texts.join(QStringLiteral(", "));
}

} // namespace

// Meets entries with users and decides every entry's fate against the chart as it stands.
class SyncBuilder
{
public:
    SyncBuilder(const OrgChart& chart, const RankList& ranks, const DirectoryLinks& links,
        const DirectorySnapshot& snapshot, const DirectorySyncOptions& options, DirectorySyncPreview& out)
        : m_chart(chart)
        , m_ranks(ranks)
        , m_links(links)
        , m_snapshot(snapshot)
        , m_options(options)
        , m_out(out)
        , m_preview(out.m_preview)
        , m_target(snapshot.users.size(), -1)
        , m_refusal(snapshot.users.size())
        , m_pathTargets(static_cast<size_t>(snapshot.paths.size()), kUnresolved)
    { }

    void run()
    {
        indexChart();
        indexEntries();
        meetByLink();
        meetByLoginId();
        for (size_t entry = 0; entry < m_snapshot.users.size(); ++entry)
            addEntry(entry);
        addLeavers();
        m_preview.finish(m_chart, m_ranks);
        recordLinks();
    }

private:
    const DirectoryUser& user(size_t entry) const { return m_snapshot.users[entry]; }

    void indexChart()
    {
        m_rowById.reserve(m_chart.memberCount());
        for (int row = 0; row < m_chart.memberCount(); ++row) {
            const QString key = idKey(m_chart.member(row).MemberID);
            if (m_rowById.contains(key))
                m_ambiguousIds.insert(key);
            else
                m_rowById.insert(key, row);
        }
    }

    // Entries that cannot be told apart are refused, each naming the others.
    void indexEntries()
    {
        const size_t count = m_snapshot.users.size();
        m_idKeys.resize(count);
        m_presentEntry.reserve(static_cast<qsizetype>(count));
        QHash<QString, size_t> firstById;
        firstById.reserve(static_cast<qsizetype>(count));
        // Lists are kept only for what occurs more than once: most directories hold none.
        QHash<QString, QList<size_t>> repeatedIds;
        QHash<QString, QList<size_t>> repeatedUniqueIds;
        const auto note = [](QHash<QString, size_t>& first, QHash<QString, QList<size_t>>& repeated, const QString& key,
                              size_t entry) {
            const auto known = first.constFind(key);
            if (known == first.cend())
                first.insert(key, entry);
            else if (QList<size_t>& entries = repeated[key]; entries.isEmpty())
                entries << *known << entry;
            else
                entries << entry;
        };
        for (size_t entry = 0; entry < count; ++entry) {
            const DirectoryUser& u = user(entry);
            if (!u.uniqueId.isEmpty())
                note(m_presentEntry, repeatedUniqueIds, u.uniqueId, entry);
            if (u.problem.isEmpty()) {
                m_idKeys[entry] = idKey(u.fields[ColMemberID]);
                note(firstById, repeatedIds, m_idKeys[entry], entry);
            }
        }
        refuseRepeated(repeatedIds, Msg::kDirIdTwice);
        refuseRepeated(repeatedUniqueIds, Msg::kDirUniqueIdTwice);
    }

    void refuseRepeated(const QHash<QString, QList<size_t>>& index, const QString& text)
    {
        for (const QList<size_t>& entries : index) {
            if (entries.size() < 2)
                continue;
            for (const size_t entry : entries) {
                QStringList others;
                for (const size_t other : entries) {
                    if (other != entry)
                        others << user(other).dn;
                }
                if (m_refusal[entry].isEmpty())
                    m_refusal[entry] = text.arg(joined(others));
            }
        }
    }

    bool isUsable(size_t entry) const { return user(entry).problem.isEmpty() && m_refusal[entry].isEmpty(); }

    void meetByLink()
    {
        for (size_t entry = 0; entry < m_snapshot.users.size(); ++entry) {
            const int memberId = isUsable(entry) ? m_links.memberOf(user(entry).uniqueId) : -1;
            const int row = memberId >= 0 ? m_chart.rowOf(memberId) : -1;
            if (row >= 0) {
                m_target[entry] = row;
                m_claimedBy.insert(row, entry);
            }
        }
    }

    // Entries without a link meet the user of their login ID, unless an entry that is there already
    // keeps that user.
    void meetByLoginId()
    {
        for (size_t entry = 0; entry < m_snapshot.users.size(); ++entry) {
            if (!isUsable(entry) || m_target[entry] >= 0 || user(entry).bDisabled)
                continue;
            const QString& key = m_idKeys[entry];
            if (m_ambiguousIds.contains(key)) {
                m_refusal[entry] = Msg::kDirIdAmbiguous;
                continue;
            }
            const int row = m_rowById.value(key, -1);
            if (row < 0)
                continue;
            if (const auto claimed = m_claimedBy.constFind(row); claimed != m_claimedBy.cend()) {
                m_refusal[entry] = Msg::kDirIdTaken.arg(user(*claimed).dn);
                continue;
            }
            const DirectoryLink* link = m_links.find(m_chart.member(row).K_MemberID);
            if (link && link->entryId != user(entry).uniqueId && m_presentEntry.contains(link->entryId)) {
                m_refusal[entry] = Msg::kDirIdTaken.arg(user(m_presentEntry.value(link->entryId)).dn);
                continue;
            }
            m_target[entry] = row;
            m_claimedBy.insert(row, entry);
        }
    }

    void addEntry(size_t entry)
    {
        const DirectoryUser& u = user(entry);
        const int row = m_target[entry];
        if (isUsable(entry) && u.bDisabled) {
            // A disabled entry of a kept user makes a leaver; one of nobody's is left out.
            if (row < 0 || !m_links.find(m_chart.member(row).K_MemberID))
                ++m_out.m_disabledSkipped;
            return;
        }
        ImportRow out;
        out.origin = u.dn;
        out.memberRow = row;
        out.member = row >= 0 ? m_chart.member(row) : ImportPreview::newMember();
        if (!isUsable(entry)) {
            out.member.MemberID = u.fields[ColMemberID];
            out.member.MemberName = u.fields[ColMemberName];
            out.refusals.push_back({-1, u.problem.isEmpty() ? m_refusal[entry] : u.problem});
        } else {
            readMember(u, out);
            checkMember(out, m_idKeys[entry]);
            if (out.refusals.empty())
                placeMember(u, out);
        }
        out.fate = decideFate(out);
        if (out.fate != Fate::Refused)
            m_rowEntry.push_back({m_preview.rows().size(), entry});
        m_preview.addRow(std::move(out));
    }

    void readMember(const DirectoryUser& u, ImportRow& out)
    {
        for (int column = 0; column < MemberColumnCount; ++column) {
            if (m_snapshot.mapped[static_cast<size_t>(column)])
                MemberColumns::setText(out.member, column, u.fields[static_cast<size_t>(column)]);
        }
        if (out.memberRow < 0)
            out.member.Passwd = PasswordGenerator::generate(m_options.passwordLength, m_options.passwordAlphabet);
    }

    void checkMember(ImportRow& out, const QString& key)
    {
        const int renamedTo = m_rowById.value(key, -1);
        if (out.memberRow >= 0 && renamedTo >= 0 && renamedTo != out.memberRow)
            out.refusals.push_back({ColMemberID, Msg::kDirIdUsedByOther.arg(m_chart.member(renamedTo).MemberID)});
        if (out.member.MemberName.isEmpty())
            out.refusals.push_back({ColMemberName, Msg::kImportEnterName});
        // Fields the directory does not feed are the administrator's: their values are not checked.
        for (int column = 0; column < MemberColumnCount; ++column) {
            const int limit = m_snapshot.mapped[static_cast<size_t>(column)] ? MemberColumns::byteLimit(column) : 0;
            if (limit > 0 && CodePage949::byteLength(MemberColumns::text(out.member, column)) > limit)
                out.refusals.push_back({column, Msg::kTooLong.arg(limit)});
        }
        if (m_snapshot.mapped[ColEmail] && !out.member.Email.isEmpty() && !out.member.Email.contains(u'@'))
            out.refusals.push_back({ColEmail, Msg::kImportEmailWithoutAt});
    }

    // The departments the entry names, with its rank in each; the user's other places go.
    void placeMember(const DirectoryUser& u, ImportRow& out)
    {
        const int rank
            = m_snapshot.bRankGiven ? m_preview.rankTargets().resolve(u.rank) : ImportPlacement::kRankNotGiven;
        static const QList<int> topOnly {-1};
        for (const int path : u.departments.isEmpty() ? topOnly : u.departments) {
            const int department = targetOf(path);
            if (std::none_of(out.placements.begin(), out.placements.end(),
                    [department](const ImportPlacement& p) { return p.department == department; }))
                out.placements.push_back({department, rank});
        }
        if (out.memberRow < 0)
            return;
        const DepartmentTargets& targets = m_preview.departments();
        for (const OrgNode* placement : m_chart.placementsOf(out.member.K_MemberID)) {
            const OrgNode* group = placement->parent();
            if (std::none_of(out.placements.begin(), out.placements.end(),
                    [&](const ImportPlacement& p) { return targets.at(p.department).node == group; }))
                out.removals.push_back(placement->parent());
        }
    }

    // The department target of a path of the snapshot (-1: the top department), resolved once.
    // Paths start below the top department; an attribute's path may name it first. An empty chart
    // takes the base's name for its top department.
    int targetOf(int path)
    {
        int& target = path < 0 ? m_topTarget : m_pathTargets[static_cast<size_t>(path)];
        if (target != kUnresolved)
            return target;
        QStringList names = path < 0 ? QStringList() : m_snapshot.paths[path];
        const QString top = topName();
        if (m_snapshot.bPathsBelowTop || names.isEmpty() || (!m_chart.rootGroup() && names.first() != top))
            names.prepend(top);
        target = m_preview.departmentTargets().resolve(names);
        return target;
    }

    QString topName() const
    {
        const OrgNode* top = m_chart.rootGroup();
        return top ? top->name() : m_snapshot.baseName;
    }

    Fate decideFate(const ImportRow& out) const
    {
        if (!out.refusals.empty())
            return Fate::Refused;
        if (out.memberRow < 0)
            return Fate::New;
        if (!(out.member == m_chart.member(out.memberRow)) || !out.removals.empty())
            return Fate::Update;
        for (const ImportPlacement& placement : out.placements) {
            const OrgNode* department = m_preview.departments().at(placement.department).node;
            const OrgNode* node = department ? m_chart.placementIn(department, out.member.K_MemberID) : nullptr;
            if (!node)
                return Fate::Update;
            if (placement.rank == ImportPlacement::kRankNotGiven)
                continue;
            const RankTarget* rank = placement.rank >= 0 ? &m_preview.ranks().at(placement.rank) : nullptr;
            if ((rank && rank->bNew) || !RankTargets::isSame(m_ranks, node->rankId(), rank ? rank->rankId : -1))
                return Fate::Update;
        }
        return Fate::Unchanged;
    }

    // Kept users whose entry is gone or disabled, and still sit somewhere, leave; links of users
    // deleted by hand are dropped.
    void addLeavers()
    {
        std::vector<ImportLeaver> leavers;
        for (auto at = m_links.all().cbegin(); at != m_links.all().cend(); ++at) {
            const int row = m_chart.rowOf(at.key());
            if (row < 0) {
                m_out.m_linkChanges.push_back({at.key(), std::nullopt});
                continue;
            }
            ++m_out.m_managed;
            const auto present = m_presentEntry.constFind(at->entryId);
            const bool claimed = m_claimedBy.contains(row);
            ImportLeaver leaver {row, ImportLeaver::Why::Gone, at->dn};
            if (present != m_presentEntry.cend() && user(*present).bDisabled && claimed)
                leaver.why = ImportLeaver::Why::Disabled;
            else if (present != m_presentEntry.cend() || claimed)
                continue;
            if (m_chart.hasPlacement(at.key()))
                leavers.push_back(leaver);
        }
        std::sort(leavers.begin(), leavers.end(),
            [](const ImportLeaver& a, const ImportLeaver& b) { return a.memberRow < b.memberRow; });
        for (ImportLeaver& leaver : leavers)
            m_preview.addLeaver(std::move(leaver));
        std::sort(m_out.m_linkChanges.begin(), m_out.m_linkChanges.end(),
            [](const DirectoryLinkChange& a, const DirectoryLinkChange& b) { return a.memberId < b.memberId; });
    }

    // Every user an entry keeps points at that entry as it is now.
    void recordLinks()
    {
        for (const auto& [rowIndex, entry] : m_rowEntry) {
            const ImportRow& row = m_preview.rows()[rowIndex];
            const DirectoryLink wanted {user(entry).uniqueId, user(entry).dn};
            const DirectoryLink* current = m_links.find(row.member.K_MemberID);
            if (current && *current == wanted)
                continue;
            if (!current && row.memberRow >= 0)
                ++m_out.m_adopted;
            m_out.m_linkChanges.push_back({row.member.K_MemberID, wanted});
        }
    }

    const OrgChart& m_chart;
    const RankList& m_ranks;
    const DirectoryLinks& m_links;
    const DirectorySnapshot& m_snapshot;
    const DirectorySyncOptions& m_options;
    DirectorySyncPreview& m_out;
    ImportPreview& m_preview;
    std::vector<int> m_target; // per entry: the member row it keeps, -1 for a new user
    std::vector<QString> m_refusal; // per entry: why it meets nobody
    std::vector<QString> m_idKeys; // per entry: its login ID as login IDs compare
    QHash<QString, int> m_rowById;
    QSet<QString> m_ambiguousIds; // login IDs that several users of the chart share
    QHash<QString, size_t> m_presentEntry; // unique ID -> entry
    QHash<int, size_t> m_claimedBy; // member row -> the entry that keeps it
    std::vector<std::pair<size_t, size_t>> m_rowEntry; // preview row -> entry, for the rows that keep a user
    static constexpr int kUnresolved = -100;
    std::vector<int> m_pathTargets; // per path of the snapshot: its department target
    int m_topTarget = kUnresolved;
};

DirectorySyncPreview::DirectorySyncPreview(ImportPreview preview)
    : m_preview(std::move(preview))
{ }

DirectorySyncPreview DirectorySyncPreview::make(const OrgChart& chart, const RankList& ranks,
    const DirectoryLinks& links, const DirectorySnapshot& snapshot, const DirectorySyncOptions& options)
{
    DirectorySyncPreview sync(ImportPreview::begin(chart, ranks, ImportMode::AddAndUpdate));
    sync.m_links = &links;
    sync.m_linksRevision = links.revision();
    sync.m_entries = static_cast<int>(snapshot.users.size());
    sync.m_thresholdPercent = options.leaverThresholdPercent;
    sync.m_searchSeconds = snapshot.searchSeconds;
    SyncBuilder(chart, ranks, links, snapshot, options, sync).run();
    return sync;
}

bool DirectorySyncPreview::exceedsThreshold() const
{
    return m_managed > 0
        && static_cast<qint64>(leaverCount()) * 100 > static_cast<qint64>(m_thresholdPercent) * m_managed;
}

QList<int> DirectorySyncPreview::newMemberIds() const
{
    QList<int> ids;
    for (const ImportRow& row : m_preview.rows()) {
        if (row.fate == ImportRow::Fate::New)
            ids << row.member.K_MemberID;
    }
    return ids;
}

bool DirectorySyncPreview::isCurrent(const OrgChart& chart, const RankList& ranks, const DirectoryLinks& links) const
{
    return m_preview.isCurrent(chart, ranks) && m_links == &links && m_linksRevision == links.revision();
}

} // namespace sable
