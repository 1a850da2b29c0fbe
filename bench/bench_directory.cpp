// The directory sync on a large chart, beside a reference measured in the same run: the directory's
// own paged search of the same entries through the LDAP client, every value read and dropped. The
// directory is an OpenLDAP server of the bench's own (tests/fixtures/slapd.sh), bulk-loaded with
// slapadd with one entry per user of a generated chart of 100,000 users, in OUs that mirror its
// departments. A dry run over all of them must stay under 10 s end to end, and a second sync after
// applying the first must find every user unchanged in under 5 s.
// usage: bench_directory [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "directory/DirectoryReader.h"
#include "directory/DirectorySyncPreview.h"
#include "document/CSableManagerDoc.h"
#include "document/DirectorySyncEdits.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>

using namespace sable;
using namespace sable::bench;

namespace {

constexpr double kDryRunBound = 10.0;
constexpr double kUnchangedBound = 5.0;
const QString kBase = QStringLiteral("dc=sable,dc=test");

// A value as an RDN holds it (RFC 4514).
QString escapedRdnValue(const QString& value)
{
    QString out;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar ch = value[i];
        if (QStringLiteral(",+\"\\<>;=").contains(ch) || (i == 0 && (ch == u'#' || ch == u' '))
            || (i == value.size() - 1 && ch == u' '))
            out += u'\\';
        out += ch;
    }
    return out;
}

// Departments become OUs below the base (the top department is the base itself); users are
// entries in the OU of one of their departments, with their fields and the rank there as title.
class DirectoryWriter
{
public:
    explicit DirectoryWriter(const CSableManagerDoc& doc)
        : m_chart(doc.chart())
        , m_ranks(doc.ranks())
    { }

    QByteArray ldif()
    {
        QByteArray out = "dn: " + kBase.toUtf8()
            + "\nobjectClass: dcObject\nobjectClass: organization\ndc: sable\n"
              "o: Sable Bench\n\n";
        m_chart.forEachGroup([&](OrgNode* group) {
            if (group == m_chart.rootGroup())
                return;
            out += "dn: " + dnOf(group).toUtf8() + "\nobjectClass: organizationalUnit\nou: " + group->name().toUtf8()
                + "\n\n";
        });
        for (const MemberRecord& member : m_chart.members())
            out += entry(member);
        return out;
    }

private:
    QString dnOf(const OrgNode* group)
    {
        if (!group || group == m_chart.rootGroup() || group == m_chart.invisibleRoot())
            return kBase;
        if (const auto known = m_dns.constFind(group); known != m_dns.cend())
            return *known;
        const QString dn = QStringLiteral("ou=") + escapedRdnValue(group->name()) + u',' + dnOf(group->parent());
        m_dns.insert(group, dn);
        return dn;
    }

    QByteArray entry(const MemberRecord& member)
    {
        const std::vector<OrgNode*>& places = m_chart.placementsOf(member.K_MemberID);
        const OrgNode* place = places.empty() ? nullptr : places.front();
        QByteArray out = "dn: uid=" + escapedRdnValue(member.MemberID).toUtf8() + ','
            + dnOf(place ? place->parent() : nullptr).toUtf8()
            + "\nobjectClass: inetOrgPerson\nuid: " + member.MemberID.toUtf8() + "\ncn: " + member.MemberName.toUtf8()
            + "\nsn: " + member.MemberName.left(1).toUtf8() + '\n';
        const std::pair<const char*, const QString*> fields[] = {{"mail", &member.Email}, {"mobile", &member.HP},
            {"telephoneNumber", &member.OfficePhone}, {"postalAddress", &member.Address},
            {"homePhone", &member.HomePhone}, {"description", &member.Description}};
        for (const auto& [name, value] : fields) {
            if (!value->isEmpty())
                out += QByteArray(name) + ": " + value->toUtf8() + '\n';
        }
        if (place && m_ranks.positionOf(place->rankId()) >= 0)
            out += "title: " + m_ranks.nameOf(place->rankId()).toUtf8() + '\n';
        return out + '\n';
    }

    const OrgChart& m_chart;
    const RankList& m_ranks;
    QHash<const OrgNode*, QString> m_dns;
};

// The bench's own OpenLDAP server, loaded with `ldif`; stopped when this goes.
class BenchDirectory
{
public:
    bool start(const QByteArray& ldif)
    {
        QFile file(m_dir.filePath(QStringLiteral("bench.ldif")));
        if (!file.open(QIODevice::WriteOnly) || file.write(ldif) != ldif.size())
            return false;
        file.close();
        if (!run({QStringLiteral("start"), envFile(), file.fileName()}))
            return false;
        QFile env(envFile());
        if (!env.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray& line : env.readAll().split('\n')) {
            if (line.startsWith("url="))
                m_url = QString::fromUtf8(line.mid(4));
        }
        return !m_url.isEmpty();
    }
    ~BenchDirectory() { run({QStringLiteral("stop"), envFile()}); }

    DirectorySettings settings() const
    {
        DirectorySettings settings;
        settings.applyPreset(DirectoryPreset::OpenLdap);
        settings.url = m_url;
        settings.bindDn.clear(); // the bench's directory lets anybody read
        settings.baseDn = kBase;
        settings.pageSize = 1000;
        settings.timeoutSeconds = 120;
        return settings;
    }

private:
    QString envFile() const { return m_dir.filePath(QStringLiteral("slapd.env")); }
    static bool run(const QStringList& args)
    {
        QProcess script;
        script.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        script.start(QStringLiteral(SLAPD_FIXTURE), args);
        return script.waitForFinished(600000) && script.exitStatus() == QProcess::NormalExit && script.exitCode() == 0;
    }

    QTemporaryDir m_dir;
    QString m_url;
};

// The reference: the paged search of the sync's attributes, every value read and dropped.
int searchOnly(const DirectorySettings& settings)
{
    QString problem;
    const std::optional<DirectoryEndpoint> endpoint = settings.endpoint(&problem);
    const std::unique_ptr<DirectoryBackend> backend = createDirectoryBackend();
    DirectoryFailure failure;
    int entries = 0;
    const std::vector<std::string> attributes {"uid", "cn", "mail", "mobile", "telephoneNumber", "postalAddress",
        "homePhone", "description", "entryUUID", "title"};
    if (!endpoint || !backend->open(*endpoint, &failure)
        || !backend->search(
            kBase.toStdString(), DirectoryScope::Subtree, settings.userFilter.toStdString(), attributes,
            settings.pageSize,
            [&entries](DirectoryRawEntry&) {
                ++entries;
                return true;
            },
            &failure))
        qFatal("search: %s", failure.detail.c_str());
    return entries;
}

// A dry run end to end: the directory read through the mapping, and the preview against the chart.
std::unique_ptr<DirectorySyncPreview> dryRun(
    QTextStream& out, const CSableManagerDoc& doc, const DirectorySettings& settings)
{
    QString problem;
    std::optional<DirectorySnapshot> snapshot;
    const double read = timeIt([&] { snapshot = DirectoryReader(settings).read({}, &problem); });
    if (!snapshot)
        qFatal("%s", qPrintable(problem));
    std::unique_ptr<DirectorySyncPreview> sync;
    const double preview = timeIt([&] {
        sync = std::make_unique<DirectorySyncPreview>(
            DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(), *snapshot,
                {settings.leaverThresholdPercent, settings.passwordLength, settings.passwordAlphabet}));
    });
    out << QStringLiteral("  read %1 ms (of which the directory %2 ms), preview %3 ms\n")
               .arg(read * 1000, 0, 'f', 1)
               .arg(snapshot->searchSeconds * 1000, 0, 'f', 1)
               .arg(preview * 1000, 0, 'f', 1);
    return sync;
}

void printFates(QTextStream& out, const DirectorySyncPreview& sync)
{
    using Fate = ImportRow::Fate;
    const ImportPreview& p = sync.preview();
    out << "  entries " << sync.entryCount() << ": new " << p.count(Fate::New) << ", update " << p.count(Fate::Update)
        << ", unchanged " << p.count(Fate::Unchanged) << ", refused " << p.count(Fate::Refused) << ", leavers "
        << sync.leaverCount() << ", places taken away " << p.removalCount() << ", links " << sync.linkChanges().size()
        << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    Report report(out, 52);
    const ChartSize size = scaledChartSize(app.arguments());
    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments, "
        << doc.chart().placementCount() << " memberships\n";

    QByteArray ldif;
    report.measure(QStringLiteral("directory: LDIF of every user"), [&] { ldif = DirectoryWriter(doc).ldif(); });
    BenchDirectory directory;
    report.measure(QStringLiteral("directory: slapadd and start"), [&] {
        if (!directory.start(ldif))
            qFatal("the directory did not start");
    });
    const DirectorySettings settings = directory.settings();

    int entries = 0;
    const double reference = report.measure(
        QStringLiteral("reference: the directory's own paged search"), [&] { entries = searchOnly(settings); });
    out << "  " << entries << " entries\n";
    std::unique_ptr<DirectorySyncPreview> first;
    const double firstRun = report.measure(
        QStringLiteral("dry run, first sync (read and preview)"), [&] { first = dryRun(out, doc, settings); });
    printFates(out, *first);
    QString refusal;
    report.measure(QStringLiteral("apply the first sync as one step"), [&] {
        if (!DirectorySyncEdits::apply(doc, *first, true, &refusal))
            qFatal("%s", qPrintable(refusal));
    });
    first.reset();

    std::unique_ptr<DirectorySyncPreview> second;
    const double secondRun = report.measure(QStringLiteral("second sync, nothing changed (read and preview)"),
        [&] { second = dryRun(out, doc, settings); });
    printFates(out, *second);
    const int unchanged = second->preview().count(ImportRow::Fate::Unchanged);

    out << QStringLiteral("dry run over %1 entries: %2 ms beside the search's %3 ms (bound: %4 ms)\n")
               .arg(entries)
               .arg(firstRun * 1000, 0, 'f', 1)
               .arg(reference * 1000, 0, 'f', 1)
               .arg(kDryRunBound * 1000, 0, 'f', 0);
    out << QStringLiteral("second sync: %1 of %2 unchanged in %3 ms (bound: %4 ms)\n")
               .arg(unchanged)
               .arg(entries)
               .arg(secondRun * 1000, 0, 'f', 1)
               .arg(kUnchangedBound * 1000, 0, 'f', 0);
    out << QStringLiteral("peak memory: %1 MiB\n").arg(peakMemoryMiB(), 0, 'f', 0);
    out.flush();
    const bool allUnchanged = unchanged == entries && !second->hasChanges();
    return firstRun < kDryRunBound && secondRun < kUnchangedBound && allUnchanged ? 0 : 1;
}
