#include "CommandLine.h"
#include "Messages.h"
#include "directory/DirectoryReader.h"
#include "directory/DirectorySyncPreview.h"
#include "document/CSableManagerDoc.h"
#include "document/DirectorySyncEdits.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace sable::ctl {
namespace {

using Fate = ImportRow::Fate;

// --- configure and show ----------------------------------------------------------------------------

const char* const kFieldNames[MemberColumnCount] = {"login", "name", nullptr, nullptr, nullptr, "email", "mobile",
    "office-phone", "address", "home-phone", "birthday", "description", nullptr, nullptr};

QString ruleText(const DirectoryMapping& mapping)
{
    switch (mapping.leavers) {
    case LeaverRule::Disabled:
        return QStringLiteral("gone or disabled (userAccountControl)");
    case LeaverRule::Filter:
        return QStringLiteral("gone or matching %1").arg(mapping.leaverFilter);
    case LeaverRule::Gone:
        break;
    }
    return QStringLiteral("gone");
}

void printSettings(Context& context, const DirectorySettings& s)
{
    QTextStream& out = context.out;
    out << "url: " << s.url << "\nstarttls: " << (s.bStartTls ? "yes" : "no") << "\nca-file: " << s.caFile
        << "\nbind-dn: " << (s.bindDn.isEmpty() ? QStringLiteral("(anonymous)") : s.bindDn)
        << "\npassword: " << (s.password.isEmpty() ? "(none)" : "(stored)") << "\nbase-dn: " << s.baseDn
        << "\nfilter: " << s.effectiveFilter() << "\npage-size: " << s.pageSize << "\ntimeout: " << s.timeoutSeconds
        << " s\n";
    QStringList fields;
    for (int column = 0; column < MemberColumnCount; ++column) {
        if (kFieldNames[column])
            fields << QLatin1String(kFieldNames[column]) + u'=' + s.mapping.attributes[static_cast<size_t>(column)];
    }
    out << "attributes: " << fields.join(u' ') << "\nunique-id: "
        << (s.mapping.uniqueIdAttribute.isEmpty() ? QStringLiteral("(the DN)") : s.mapping.uniqueIdAttribute)
        << "\ndepartments: "
        << (s.mapping.departments == DepartmentSource::Attribute
                   ? QStringLiteral("attribute ") + s.mapping.departmentAttribute
                   : QStringLiteral("organisational units"))
        << "\nrank: " << (s.mapping.rankAttribute.isEmpty() ? QStringLiteral("(not kept)") : s.mapping.rankAttribute)
        << "\nleavers: " << ruleText(s.mapping) << "\nleaver-threshold: " << s.leaverThresholdPercent
        << "%\npassword-length: " << s.passwordLength << "\npassword-alphabet: " << s.passwordAlphabet << Qt::endl;
}

// Applies the options of `directory configure`; false (with the usage shown) for a value it cannot take.
bool applyOptions(QStringList& args, DirectorySettings& s)
{
    bool missing = false;
    const auto option = [&](const char* name) {
        const std::optional<QString> value = takeOption(args, QLatin1String(name), &missing);
        return value;
    };
    if (const auto preset = option("--preset")) {
        if (*preset != QLatin1String("ad") && *preset != QLatin1String("openldap"))
            return false;
        s.applyPreset(*preset == QLatin1String("ad") ? DirectoryPreset::ActiveDirectory : DirectoryPreset::OpenLdap);
    }
    const std::pair<const char*, QString*> texts[] = {{"--url", &s.url}, {"--bind-dn", &s.bindDn},
        {"--base-dn", &s.baseDn}, {"--filter", &s.userFilter}, {"--ca-file", &s.caFile}};
    for (const auto& [name, field] : texts) {
        if (const auto value = option(name))
            *field = *value;
    }
    if (takeFlag(args, QStringLiteral("--starttls")))
        s.bStartTls = true;
    if (takeFlag(args, QStringLiteral("--no-starttls")))
        s.bStartTls = false;
    if (const auto departments = option("--departments")) {
        s.mapping.departments
            = *departments == QLatin1String("ou") ? DepartmentSource::OrganisationalUnits : DepartmentSource::Attribute;
        if (s.mapping.departments == DepartmentSource::Attribute)
            s.mapping.departmentAttribute = *departments;
    }
    if (const auto rank = option("--rank-attribute"))
        s.mapping.rankAttribute = *rank == QLatin1String("none") ? QString() : *rank;
    if (const auto leavers = option("--leavers")) {
        s.mapping.leavers = *leavers == QLatin1String("gone") ? LeaverRule::Gone
            : *leavers == QLatin1String("disabled")           ? LeaverRule::Disabled
                                                              : LeaverRule::Filter;
        if (s.mapping.leavers == LeaverRule::Filter)
            s.mapping.leaverFilter = *leavers;
    }
    bool ok = true;
    if (const auto threshold = option("--threshold"))
        s.leaverThresholdPercent = QString(*threshold).remove(u'%').toInt(&ok);
    return ok && !missing && args.isEmpty();
}

int configure(Context& context, QStringList args)
{
    DirectorySettings settings = DirectorySettings::read(context.config.registry());
    const QString bindDnBefore = settings.bindDn;
    bool failed = false;
    const std::optional<QString> password = takePassword(context, args, PasswordOnCommandLine::Refused, &failed);
    if (failed)
        return kUsage;
    if (!applyOptions(args, settings))
        return kUsage;
    if (password)
        settings.password = *password;
    else if (settings.bindDn != bindDnBefore)
        settings.password.clear(); // another account's password is not this one's
    if (settings.bindDn.trimmed().isEmpty())
        settings.password.clear();
    if (const QString problem = settings.problem(); !problem.isEmpty())
        return context.fail(problem + QStringLiteral(" (nothing was written)"));
    if (!settings.write(context.config.registry()))
        return context.fail(QStringLiteral("the settings could not be written"));
    printSettings(context, settings);
    return kSuccess;
}

int show(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    printSettings(context, DirectorySettings::read(context.config.registry()));
    return kSuccess;
}

int test(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    QString problem;
    const std::optional<DirectoryTestReport> report
        = DirectoryReader(DirectorySettings::read(context.config.registry())).test(&problem);
    if (!report)
        return context.fail(problem);
    for (const QString& line : report->serverAnswer)
        context.out << line << '\n';
    context.out << Msg::kDirTestCount.arg(report->entries) << Qt::endl;
    return kSuccess;
}

// --- sync ----------------------------------------------------------------------------------------------

QString fateName(Fate fate)
{
    switch (fate) {
    case Fate::New:
        return QStringLiteral("new");
    case Fate::Update:
        return QStringLiteral("update");
    case Fate::Unchanged:
        return QStringLiteral("unchanged");
    case Fate::Refused:
        break;
    }
    return QStringLiteral("refused");
}

// The places a row adds ("+path") and takes away ("-path").
struct PlaceChanges
{
    QStringList added;
    QStringList removed;
};

PlaceChanges placeChanges(const OrgChart& chart, const ImportPreview& preview, const ImportRow& row)
{
    PlaceChanges changes;
    for (const ImportPlacement& placement : row.placements) {
        const DepartmentTarget& target = preview.departments().at(placement.department);
        if (!target.node || !chart.placementIn(target.node, row.member.K_MemberID))
            changes.added << preview.departments().path(placement.department);
    }
    for (const OrgNode* department : row.removals)
        changes.removed << chart.departmentPath(department);
    return changes;
}

QStringList leaverPlaces(const OrgChart& chart, int memberId)
{
    QStringList places;
    for (const OrgNode* placement : chart.placementsOf(memberId))
        places << chart.departmentPath(placement->parent());
    places.sort();
    return places;
}

QString whyText(const ImportLeaver& leaver)
{
    return leaver.why == ImportLeaver::Why::Gone ? QStringLiteral("gone") : QStringLiteral("disabled");
}

void printSummary(QTextStream& out, const DirectorySyncPreview& sync)
{
    const ImportPreview& p = sync.preview();
    out << "entries " << sync.entryCount() << " (search " << QString::number(sync.searchSeconds(), 'f', 2)
        << " s); new " << p.count(Fate::New) << ", update " << p.count(Fate::Update) << ", unchanged "
        << p.count(Fate::Unchanged) << ", refused " << p.count(Fate::Refused) << ", leavers " << sync.leaverCount()
        << "; kept users " << sync.managedCount() << ", kept from now on " << sync.adoptedCount()
        << ", disabled entries left out " << sync.disabledEntries() << '\n';
    for (const QString& path : p.newDepartmentPaths())
        out << "new department: " << path << '\n';
    for (const QString& name : p.newRankNames())
        out << "new rank: " << name << '\n';
}

// Every row but the unchanged ones, tab-separated, and the leavers.
void printTable(Context& context, const OrgChart& chart, const DirectorySyncPreview& sync)
{
    QTextStream& out = context.out;
    printSummary(out, sync);
    out << "fate\tlogin\tname\tdepartments\treason\tdn\n";
    for (const ImportRow& row : sync.preview().rows()) {
        if (row.fate == Fate::Unchanged)
            continue;
        const PlaceChanges places = placeChanges(chart, sync.preview(), row);
        QStringList departments;
        for (const QString& path : places.added)
            departments << u'+' + path;
        for (const QString& path : places.removed)
            departments << u'-' + path;
        QStringList reasons;
        for (const ImportRefusal& refusal : row.refusals)
            reasons << refusal.describe();
        out << fateName(row.fate) << '\t' << row.member.MemberID << '\t' << row.member.MemberName << '\t'
            << departments.join(QStringLiteral("; ")) << '\t' << reasons.join(QStringLiteral("; ")) << '\t'
            << row.origin << '\n';
    }
    for (const ImportLeaver& leaver : sync.preview().leavers()) {
        const MemberRecord& member = chart.member(leaver.memberRow);
        QStringList departments;
        for (const QString& path : leaverPlaces(chart, member.K_MemberID))
            departments << u'-' + path;
        out << "leaver\t" << member.MemberID << '\t' << member.MemberName << '\t'
            << departments.join(QStringLiteral("; ")) << '\t'
            << (leaver.why == ImportLeaver::Why::Gone ? Msg::kDirLeaverGone : Msg::kDirLeaverDisabled) << '\t'
            << leaver.origin << '\n';
    }
    out.flush();
}

QJsonObject jsonSummary(const DirectorySyncPreview& sync)
{
    const ImportPreview& p = sync.preview();
    return {{QStringLiteral("entries"), sync.entryCount()}, {QStringLiteral("searchSeconds"), sync.searchSeconds()},
        {QStringLiteral("new"), p.count(Fate::New)}, {QStringLiteral("update"), p.count(Fate::Update)},
        {QStringLiteral("unchanged"), p.count(Fate::Unchanged)}, {QStringLiteral("refused"), p.count(Fate::Refused)},
        {QStringLiteral("leavers"), sync.leaverCount()}, {QStringLiteral("placesRemoved"), p.removalCount()},
        {QStringLiteral("keptUsers"), sync.managedCount()}, {QStringLiteral("keptFromNowOn"), sync.adoptedCount()},
        {QStringLiteral("disabledEntriesLeftOut"), sync.disabledEntries()},
        {QStringLiteral("leaverThresholdPercent"), sync.thresholdPercent()},
        {QStringLiteral("overThreshold"), sync.exceedsThreshold()},
        {QStringLiteral("newDepartments"), QJsonArray::fromStringList(p.newDepartmentPaths())},
        {QStringLiteral("newRanks"), QJsonArray::fromStringList(p.newRankNames())}};
}

QByteArray json(const OrgChart& chart, const DirectorySyncPreview& sync)
{
    QJsonArray users;
    for (const ImportRow& row : sync.preview().rows()) {
        const PlaceChanges places = placeChanges(chart, sync.preview(), row);
        QStringList reasons;
        for (const ImportRefusal& refusal : row.refusals)
            reasons << refusal.describe();
        users.append(
            QJsonObject {{QStringLiteral("fate"), fateName(row.fate)}, {QStringLiteral("login"), row.member.MemberID},
                {QStringLiteral("name"), row.member.MemberName}, {QStringLiteral("dn"), row.origin},
                {QStringLiteral("placesAdded"), QJsonArray::fromStringList(places.added)},
                {QStringLiteral("placesRemoved"), QJsonArray::fromStringList(places.removed)},
                {QStringLiteral("reasons"), QJsonArray::fromStringList(reasons)}});
    }
    QJsonArray leavers;
    for (const ImportLeaver& leaver : sync.preview().leavers()) {
        const MemberRecord& member = chart.member(leaver.memberRow);
        leavers.append(
            QJsonObject {{QStringLiteral("login"), member.MemberID}, {QStringLiteral("name"), member.MemberName},
                {QStringLiteral("why"), whyText(leaver)}, {QStringLiteral("dn"), leaver.origin},
                {QStringLiteral("placesRemoved"), QJsonArray::fromStringList(leaverPlaces(chart, member.K_MemberID))}});
    }
    return QJsonDocument(QJsonObject {{QStringLiteral("summary"), jsonSummary(sync)}, {QStringLiteral("users"), users},
                             {QStringLiteral("leavers"), leavers}})
        .toJson(QJsonDocument::Indented);
}

int sync(Context& context, QStringList args)
{
    const bool dryRun = takeFlag(args, QStringLiteral("--dry-run"));
    const bool asJson = takeFlag(args, QStringLiteral("--json"));
    const bool yes = takeFlag(args, QStringLiteral("--yes"));
    const bool force = takeFlag(args, QStringLiteral("--force"));
    if (!args.isEmpty() || (asJson && !dryRun) || (dryRun && (yes || force)))
        return kUsage;
    const DirectorySettings settings = DirectorySettings::read(context.config.registry());
    QString problem;
    const std::optional<DirectorySnapshot> snapshot = DirectoryReader(settings).read({}, &problem);
    if (!snapshot)
        return context.fail(problem + QStringLiteral("\nnothing was written"));
    CSableManagerDoc doc;
    if (!loadChart(context, doc))
        return kFailure;
    const DirectorySyncPreview preview = DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(),
        *snapshot, {settings.leaverThresholdPercent, settings.passwordLength, settings.passwordAlphabet});
    if (asJson)
        return printBytes(context, json(doc.chart(), preview));
    printTable(context, doc.chart(), preview);
    // Without --force the apply below refuses with the same text.
    if (const QString over = DirectorySyncEdits::thresholdProblem(preview); !over.isEmpty() && (dryRun || force))
        context.err << over << (force ? " (--force: going on)" : "") << Qt::endl;
    if (dryRun) {
        context.out << "dry run: nothing was written" << Qt::endl;
        return kSuccess;
    }
    QString refusal;
    const std::optional<ImportResult> result = DirectorySyncEdits::apply(doc, preview, force, &refusal);
    if (!result) {
        if (refusal == Msg::kDirNothingToApply) {
            context.out << "nothing to change" << Qt::endl;
            return kSuccess;
        }
        return context.fail(refusal + QStringLiteral("\nnothing was written"));
    }
    const int code = saveChart(context, doc, yes);
    if (code != kSuccess)
        return code;
    context.out << "saved: " << result->added << " added, " << result->updated << " updated, " << result->leavers
                << " leavers out of their departments, " << result->departments << " departments and " << result->ranks
                << " ranks created" << Qt::endl;
    if (result->added > 0)
        context.out << "new users get their password by the registration mail of the console (파일 > "
                    << Msg::kCmdRegistrationMail.section(u'(', 0, 0) << ")" << Qt::endl;
    return kSuccess;
}

} // namespace

std::vector<Command> directoryCommands()
{
    return {
        {{QStringLiteral("directory"), QStringLiteral("configure")},
            QStringLiteral("directory configure --url URL [--bind-dn DN] [--password-file FILE | --password -] "
                           "--base-dn DN [--filter F] [--preset ad|openldap] [--starttls] [--ca-file FILE] "
                           "[--departments ou|ATTRIBUTE] [--rank-attribute A|none] [--leavers gone|disabled|FILTER] "
                           "[--threshold PERCENT]"),
            QStringLiteral("set the directory the chart is kept from"), configure},
        {{QStringLiteral("directory"), QStringLiteral("show")}, QStringLiteral("directory show"),
            QStringLiteral("print the directory settings (not the password)"), show},
        {{QStringLiteral("directory"), QStringLiteral("test")}, QStringLiteral("directory test"),
            QStringLiteral("connect, bind and count the entries of the filter"), test},
        {{QStringLiteral("directory"), QStringLiteral("sync")},
            QStringLiteral("directory sync --dry-run [--json] | --yes [--force]"),
            QStringLiteral("show what a sync would do, or sync and save"), sync},
    };
}

} // namespace sable::ctl
